#include "collection/leftovers.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "temporarydirectory.h"

namespace {

using testing_support::RTemporaryDirectory;

// A process number that nobody has: that of a child which has ended.
int deadProcess()
{
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    ::waitpid(child, nullptr, 0);
    return static_cast<int>(child);
}

class Leftovers : public testing::Test {
protected:
    void make(const std::string& name) const { std::ofstream(directory.file(name)) << "x"; }
    [[nodiscard]] bool exists(const std::string& name) const
    {
        return std::filesystem::exists(directory.file(name));
    }
    [[nodiscard]] static std::string of(const std::string& file, int process)
    {
        return file + "." + std::to_string(process) + ".1.tmp";
    }
    RTemporaryDirectory directory;
    const int dead = deadProcess();
    const int living = static_cast<int>(::getppid());
};

TEST_F(Leftovers, HalfWrittenFilesOfTheCollectionGo)
{
    for (const char* const file : {"a.var", "a.inv", "a.log"}) make(of(file, dead));
    make(of("a.cid", living)); // of another machine: who holds the lock is the only writer
    EXPECT_EQ(collection::removeLeftovers(directory.file("a")), 4);
    EXPECT_FALSE(exists(of("a.var", dead)));
}

TEST_F(Leftovers, FilesOfOthersStay)
{
    const std::vector<std::string> others = {of("ab.var", dead),
                                             of("a.b.var", dead),
                                             of("a.txt", dead),
                                             of("b.var", dead),
                                             of("a.var", ::getpid()),
                                             of("TRG.var", living),
                                             "a.var",
                                             "a.var.tmp",
                                             "a.var.x.1.tmp",
                                             "a.5.tmp"};
    for (const std::string& name : others) make(name);
    EXPECT_EQ(collection::removeLeftovers(directory.file("a")), 0);
    for (const std::string& name : others) EXPECT_TRUE(exists(name)) << name;
}

TEST_F(Leftovers, RewritingsAndWritingTestsOfDeadProgramsGo)
{
    make(of("TRG.var", dead));
    make(of("write_test", dead));
    make(of("write_test", living));
    EXPECT_EQ(collection::removeLeftovers(directory.file("a")), 2);
    EXPECT_TRUE(exists(of("write_test", living)));
}

TEST_F(Leftovers, LinksAndFoldersStay)
{
    std::filesystem::create_directory(directory.file(of("a.var", dead)));
    std::filesystem::create_symlink("/nowhere", directory.file(of("a.inv", dead)));
    EXPECT_EQ(collection::removeLeftovers(directory.file("a")), 0);
    EXPECT_EQ(collection::removeLeftovers("/nowhere/at/all/a"), 0);
}

} // namespace
