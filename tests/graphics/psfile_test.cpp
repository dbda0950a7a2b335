#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "common/files.h"
#include "graphics/drawing.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace {

using namespace graphics;
using testing_support::RScriptedUser;
using testing_support::RTemporaryDirectory;

TEST(OpenPsFile, PartsStandInTheirOrder)
{
    const RTemporaryDirectory directory;
    const std::string preamble = directory.file("pre.ps"), output = directory.file("out.eps");
    std::ofstream(preamble, std::ios::binary) << std::string("%procedures\r\n\0\xff", 15);
    RScriptedUser user;
    {
        const common::FilePtr file(
            OpenPsFile(output, preamble, "%%Title: 100%s\n", "BeginPlot %d\n", true, user));
        ASSERT_NE(file, nullptr);
    }
    EXPECT_EQ(common::readFile(output).value(), "%!PS-Adobe-3.0 EPSF-3.0\n%%Title: 100%s\n" +
                                                    std::string("%procedures\r\n\0\xff", 15) +
                                                    "BeginPlot %d\n");
    EXPECT_TRUE(user.messages.empty());
}

TEST(OpenPsFile, PlainPostScriptHasItsOwnStart)
{
    const RTemporaryDirectory directory;
    const std::string preamble = directory.file("pre.ps"), output = directory.file("out.ps");
    std::ofstream(preamble) << "%p\n";
    RScriptedUser user;
    const common::FilePtr file(OpenPsFile(output, preamble, "", "", false, user));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(common::readFile(output).value(), "%!PS-Adobe-3.0\n%p\n");
}

TEST(OpenPsFile, PreambleMissing_MessageAndNothingWritten)
{
    const RTemporaryDirectory directory;
    const std::string output = directory.file("out.eps");
    RScriptedUser user;
    EXPECT_EQ(OpenPsFile(output, "/nowhere/PSGraph.ps", "", "", true, user), nullptr);
    ASSERT_EQ(user.messages.size(), 1u);
    EXPECT_EQ(user.messages[0], "Opening PostScript file ...: PS-Preamble /nowhere/PSGraph.ps not found!\n\n"
                                "No PostScript file will be written.");
    EXPECT_FALSE(std::filesystem::exists(output));
}

TEST(OpenPsFile, PreambleMissing_OldFileStays)
{
    const RTemporaryDirectory directory;
    const std::string output = directory.file("out.eps");
    std::ofstream(output) << "old";
    RScriptedUser user;
    EXPECT_EQ(OpenPsFile(output, "/nowhere/PSGraph.ps", "", "", true, user), nullptr);
    EXPECT_EQ(common::readFile(output).value(), "old");
}

TEST(OpenPsFile, OutputThatCantBeOpened_Message)
{
    const RTemporaryDirectory directory;
    const std::string preamble = directory.file("pre.ps"), output = directory.file("none/out.eps");
    std::ofstream(preamble) << "%p\n";
    RScriptedUser user;
    EXPECT_EQ(OpenPsFile(output, preamble, "", "", true, user), nullptr);
    ASSERT_EQ(user.messages.size(), 1u);
    EXPECT_EQ(user.messages[0], "Opening PostScript file ...: Could not open " + output);
}

TEST(OpenPsFile, FullDisk_MessageAndNoPretence)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full here";
    const RTemporaryDirectory directory;
    const std::string preamble = directory.file("pre.ps");
    std::ofstream(preamble) << std::string(100000, '%');
    const std::string link = directory.file("full.eps");
    std::filesystem::create_symlink("/dev/full", link);
    RScriptedUser user;
    EXPECT_EQ(OpenPsFile(link, preamble, "", "", true, user), nullptr);
    ASSERT_EQ(user.messages.size(), 1u);
    EXPECT_EQ(user.messages[0], "Opening PostScript file ...: Could not write " + link);
    EXPECT_FALSE(std::filesystem::is_symlink(link));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

} // namespace
