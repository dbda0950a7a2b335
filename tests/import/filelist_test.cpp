#include "import/filelist.h"

#include <fstream>

#include <gtest/gtest.h>

#include "temporarydirectory.h"

namespace {

using Paths = std::vector<std::string>;

struct LISTED {
    testing_support::RTemporaryDirectory directory;
    Paths paths{"before"};
    std::string fault;
    bool read;

    explicit LISTED(const std::string& content)
    {
        std::ofstream(file(), std::ios::binary) << content;
        read = importing::readFileList(file(), paths, fault);
    }
    [[nodiscard]] std::string file() const { return directory.file("casts.lst"); }
    [[nodiscard]] Paths expected(const Paths& names) const
    {
        Paths all;
        for (const std::string& name : names)
            all.push_back(name.starts_with('/') ? name : directory.file(name));
        return all;
    }
};

TEST(ReadFileList, RelativePathsAreTakenFromTheListsFolder)
{
    const LISTED list("a.txt\nsub/b.txt\n/data/c.txt\n../d e.txt\n");
    EXPECT_TRUE(list.read) << list.fault;
    EXPECT_EQ(list.paths, list.expected({"a.txt", "sub/b.txt", "/data/c.txt", "../d e.txt"}));
}

TEST(ReadFileList, EveryKindOfLineEndWillDo)
{
    for (const char* const content : {"a\nb\nc\n", "a\r\nb\r\nc\r\n", "a\rb\rc\r", "a\r\nb\rc", "a\nb\nc"}) {
        const LISTED list(content);
        EXPECT_EQ(list.paths, list.expected({"a", "b", "c"})) << content;
    }
}

TEST(ReadFileList, AByteOrderMarkBlankLinesAndBlanksAroundAreNoPartOfPaths)
{
    const LISTED list("\xEF\xBB\xBF\n  a.txt \t\n\n\r\n \nb.txt\n\n");
    EXPECT_EQ(list.paths, list.expected({"a.txt", "b.txt"}));
}

TEST(ReadFileList, FaultsNameTheLine)
{
    const LISTED bytes(std::string("a\n\nb\0c\n", 7));
    EXPECT_FALSE(bytes.read);
    EXPECT_EQ(bytes.fault, bytes.file() + ":3: holds bytes that no path has");
    EXPECT_EQ(bytes.paths, Paths{"before"});
    const LISTED folder("a\r\nsub/\r\n");
    EXPECT_EQ(folder.fault, folder.file() + ":2: names a folder");
    const LISTED longName("a\r" + std::string(5000, 'x'));
    EXPECT_EQ(longName.fault, longName.file() + ":2: longer than a path can be");
}

TEST(ReadFileList, AListWithoutPathsIsAFault)
{
    const LISTED empty(""), blank("\n \n");
    EXPECT_EQ(empty.fault, empty.file() + ":1: names no file");
    EXPECT_EQ(blank.fault, blank.file() + ":2: names no file");
}

TEST(ReadFileList, AMissingListIsAFault)
{
    Paths paths;
    std::string fault;
    EXPECT_FALSE(importing::readFileList("/nowhere/x.lst", paths, fault));
    EXPECT_EQ(fault, "/nowhere/x.lst:1: can't be read");
}

} // namespace
