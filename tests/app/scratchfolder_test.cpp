#include "app/scratchfolder.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "castfile.h"
#include "temporarydirectory.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using testing_support::writeText;

class ScratchFolder : public testing::Test {
protected:
    std::string old(const std::string& name) const
    {
        const std::string path = directory.file(name);
        fs::create_directories(path);
        writeText(path + "/file", "x");
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
        return path;
    }
    const testing_support::RTemporaryDirectory directory;
};

TEST_F(ScratchFolder, GoesWithAllThatIsInIt)
{
    std::string path;
    {
        const RScratchFolder folder(directory.path());
        path = folder.path();
        ASSERT_TRUE(fs::is_directory(path));
        EXPECT_TRUE(path.starts_with(directory.file("NVQ_")) && path.ends_with("/"));
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
        fs::create_directories(path + "a/b");
        writeText(path + "a/b/c", "x");
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(ScratchFolder, EachIsAnother)
{
    const RScratchFolder a(directory.path()), b(directory.path());
    EXPECT_NE(a.path(), b.path());
}

TEST_F(ScratchFolder, WhatADeadProgramLeftGoes)
{
    const std::string left = old("NVQ_unpacked_abc123");
    const RScratchFolder folder(directory.path());
    EXPECT_FALSE(fs::exists(left));
}

TEST_F(ScratchFolder, WhatIsInUseStays)
{
    auto first = std::make_unique<RScratchFolder>(directory.path());
    fs::last_write_time(first->path(), fs::file_time_type::clock::now() - std::chrono::hours(1));
    const RScratchFolder second(directory.path());
    EXPECT_TRUE(fs::exists(first->path()));
}

TEST_F(ScratchFolder, ForeignThingsStay)
{
    const std::string foreign = old("NVQ_other"), target = old("target");
    fs::create_directory_symlink(target, directory.file("NVQ_unpacked_link"));
    writeText(directory.file("NVQ_unpacked_file"), "x");
    const RScratchFolder folder(directory.path());
    EXPECT_TRUE(fs::exists(foreign + "/file"));
    EXPECT_TRUE(fs::exists(target + "/file"));
    EXPECT_TRUE(fs::is_symlink(directory.file("NVQ_unpacked_link")));
    EXPECT_TRUE(fs::exists(directory.file("NVQ_unpacked_file")));
}

TEST_F(ScratchFolder, ImpossiblePlaceGivesNone)
{
    EXPECT_EQ(RScratchFolder("/nowhere/").path(), "");
}

} // namespace
} // namespace app
