#include "import/unpack.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sys/stat.h>

#include <archive.h>
#include <archive_entry.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "archivefixture.h"
#include "common/files.h"
#include "filesizelimit.h"
#include "import/membername.h"
#include "scripteduser.h"
#include "temporarydirectory.h"

namespace importing {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using namespace testing_support;

using Tree = std::map<std::string, std::string>; // content by path; folders, links and others by their kind

Tree treeOf(const std::string& directory)
{
    Tree tree;
    for (const auto& entry : fs::recursive_directory_iterator(directory)) {
        const std::string path = entry.path().string().substr(directory.size());
        if (entry.is_symlink())
            tree[path] = "link to " + fs::read_symlink(entry.path()).string();
        else if (entry.is_directory())
            tree[path] = "folder";
        else if (entry.is_regular_file())
            tree[path] = common::readFile(entry.path().string()).value_or("?");
        else
            tree[path] = "other";
    }
    return tree;
}

// Everything happens in a folder "in" beside a folder "outside" that holds a victim.
class Unpack : public testing::Test {
protected:
    Unpack()
    {
        fs::create_directories(folder.file("in"));
        fs::create_directories(folder.file("outside"));
        write("outside/victim", "precious");
    }

    void write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(folder.file(name), std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const
    {
        return common::readFile(folder.file(name)).value_or("none");
    }
    UNPACKED unpack(const std::string& name, const std::string& bytes, bool junk = false,
                    const UNPACKLIMITS& limits = {})
    {
        write(name, bytes);
        return unpackArchive(folder.file(name), folder.file("in"), junk, user, limits);
    }
    UNPACKED unzip(const std::vector<ZIPMEMBER>& members, const UNPACKLIMITS& limits = {})
    {
        return unpack("a.zip", zipOf(members), true, limits);
    }
    UNPACKED untar(const std::vector<TARMEMBER>& members, const UNPACKLIMITS& limits = {})
    {
        return unpack("a.tar", tarOf(members), false, limits);
    }
    // What failed left no trace.
    void expectFault(const UNPACKED& result, const std::string& text)
    {
        EXPECT_FALSE(result.good);
        EXPECT_THAT(result.fault, HasSubstr(text));
        EXPECT_THAT(result.fault, Not(HasSubstr("\n")));
        EXPECT_THAT(result.files, IsEmpty());
        EXPECT_THAT(treeOf(folder.file("in")), IsEmpty());
        EXPECT_EQ(treeOf(folder.file("outside")), (Tree{{"/victim", "precious"}}));
        EXPECT_EQ(user.busy, 0);
    }
    std::vector<std::string> in(const std::vector<std::string>& names) const
    {
        std::vector<std::string> paths;
        for (const std::string& name : names) paths.push_back(folder.file("in/" + name));
        return paths;
    }

    const RTemporaryDirectory folder;
    RScriptedUser user;
};

// --- names

TEST(ArchiveForm, FollowsTheEndOfTheName)
{
    EXPECT_EQ(archiveForm("/a.zip.d/cast.txt.gz"), ArchiveForm::gzip);
    EXPECT_EQ(archiveForm("CAST.GZ"), ArchiveForm::gzip);
    EXPECT_EQ(archiveForm("cast.zip"), ArchiveForm::zip);
    EXPECT_EQ(archiveForm("CAST.ZIP"), ArchiveForm::zip);
    EXPECT_EQ(archiveForm("cast.tgz"), ArchiveForm::tarGzip);
    EXPECT_EQ(archiveForm("cast.TGZ"), ArchiveForm::tarGzip);
    EXPECT_EQ(archiveForm("cast.tar.gz"), ArchiveForm::tarGzip);
    EXPECT_EQ(archiveForm("CAST.TAR.GZ"), ArchiveForm::tarGzip);
    EXPECT_EQ(archiveForm("cast.tar"), ArchiveForm::tar);
    for (const char* const name : {"", "cast", "cast.gz.txt", "a.gz/cast", "cast.gzip", "gz", "a.gz/"})
        EXPECT_EQ(archiveForm(name), ArchiveForm::none) << name;
}

TEST(MemberPath, StaysBelowTheFolder)
{
    std::string fault;
    EXPECT_EQ(memberPath("a/b/c.txt", false, fault), "a/b/c.txt");
    EXPECT_EQ(memberPath("./a//b/./c.txt", false, fault), "a/b/c.txt");
    EXPECT_EQ(memberPath("///etc/passwd", false, fault), "etc/passwd");
    EXPECT_EQ(memberPath("../../c.txt", true, fault), "c.txt");
    EXPECT_EQ(memberPath("..c/d..", false, fault), "..c/d..");
    EXPECT_THAT(fault, IsEmpty());
}

TEST(MemberPath, RefusesWhatLeadsElsewhere)
{
    std::string deep;
    for (int i = 0; i < 100; ++i) deep += "d/";
    for (const std::string& name :
         {std::string(".."), std::string("../x"), std::string("a/../../x"), std::string("a/.."),
          std::string(""), std::string("."), std::string("/"), std::string("a\nb"), std::string("a\x01"),
          std::string("a\0b", 3), std::string(256, 'x'), std::string(5000, 'x'), deep + "x"}) {
        std::string fault;
        EXPECT_EQ(memberPath(name, false, fault), "") << name;
        EXPECT_THAT(fault, Not(IsEmpty())) << name;
    }
    std::string fault;
    EXPECT_EQ(memberPath("a/..", true, fault), "");
    EXPECT_EQ(memberPath("a/", true, fault), "");
}

// --- what is whole

TEST_F(Unpack, GzipLosesItsLastExtension)
{
    const UNPACKED result = unpack("cast.v2.txt.gz", gzipOf("hello"));
    ASSERT_TRUE(result.good) << result.fault;
    EXPECT_EQ(result.files, in({"cast.v2.txt"}));
    EXPECT_EQ(treeOf(folder.file("in")), (Tree{{"/cast.v2.txt", "hello"}}));
    EXPECT_TRUE(common::fileExists(folder.file("cast.v2.txt.gz")));
}

TEST_F(Unpack, GzipOfNothingIsAnEmptyFile)
{
    EXPECT_TRUE(unpack("empty.txt.gz", gzipOf("")).good);
    EXPECT_EQ(read("in/empty.txt"), "");
}

TEST_F(Unpack, GzipOfSeveralPartsIsOneFile)
{
    EXPECT_TRUE(
        unpack("a.txt.gz", gzipOf("one ") + gzipOf("") + gzipOf("two") + std::string(600, '\0')).good);
    EXPECT_EQ(read("in/a.txt"), "one two");
}

TEST_F(Unpack, LargeGzipIsTheSameByteForByte)
{
    std::string text;
    std::mt19937 random(1);
    while (text.size() < 5000000) text += std::to_string(random()) + "\n";
    EXPECT_TRUE(unpack("a.txt.gz", gzipOf(text)).good);
    EXPECT_EQ(read("in/a.txt"), text);
}

TEST_F(Unpack, ZipLosesItsFolders)
{
    const UNPACKED result = unzip({{"dir/", "", false, 0, 040755},
                                   {"dir/a.txt", "A"},
                                   {"/abs/b.txt", std::string(100000, 'b'), true},
                                   {"../../c.txt", "C"}});
    ASSERT_TRUE(result.good) << result.fault;
    EXPECT_EQ(result.files, in({"a.txt", "b.txt", "c.txt"}));
    EXPECT_EQ(treeOf(folder.file("in")),
              (Tree{{"/a.txt", "A"}, {"/b.txt", std::string(100000, 'b')}, {"/c.txt", "C"}}));
}

TEST_F(Unpack, LaterMemberOfAZipReplacesAnEarlierOne)
{
    const UNPACKED result = unzip({{"x/a.txt", "first, and longer"}, {"b.txt", "B"}, {"y/a.txt", "second"}});
    ASSERT_TRUE(result.good) << result.fault;
    EXPECT_EQ(result.files, in({"a.txt", "b.txt"}));
    EXPECT_EQ(read("in/a.txt"), "second");
}

TEST_F(Unpack, TarKeepsItsFolders)
{
    for (const std::string& name : {std::string("a.tar"), std::string("a.tgz"), std::string("b.tar.gz")}) {
        const std::string tar =
            tarOf({{"d/", "", '5'}, {"d/a.txt", "A"}, {"d/e/b.txt", "B"}, {"c.txt", "C"}});
        const UNPACKED result = unpack(name, name == "a.tar" ? tar : gzipOf(tar));
        ASSERT_TRUE(result.good) << result.fault;
        EXPECT_EQ(result.files, in({"d/a.txt", "d/e/b.txt", "c.txt"}));
        EXPECT_EQ(read("in/d/e/b.txt"), "B");
    }
}

TEST_F(Unpack, NamesStayAsTheyAre)
{
    const std::string utf8 = "K\xc3\xb6nigsstuhl \xe6\xb5\xb7.txt", latin1 = "K\xf6nig.txt";
    ASSERT_TRUE(untar({{utf8, "1"}, {latin1, "2"}, {"a\\b.txt", "3"}}).good);
    EXPECT_EQ(read("in/" + utf8), "1");
    EXPECT_EQ(read("in/" + latin1), "2");
    EXPECT_EQ(read("in/a\\b.txt"), "3");
    ASSERT_TRUE(unzip({{utf8, "4", false, 0x800}, {latin1, "5"}}).good);
    EXPECT_EQ(read("in/" + utf8), "4");
    EXPECT_EQ(read("in/" + latin1), "5");
}

TEST_F(Unpack, TimesOfTheMembersAreKept)
{
    ASSERT_TRUE(untar({{"a.txt", "A"}}).good);
    struct stat status {};
    ASSERT_EQ(::stat(folder.file("in/a.txt").c_str(), &status), 0);
    EXPECT_EQ(status.st_mtime, 1000000000);
}

TEST_F(Unpack, OldOrdinaryFilesAreReplaced)
{
    write("in/a.txt", "old");
    EXPECT_TRUE(unzip({{"a.txt", "new"}}).good);
    EXPECT_EQ(read("in/a.txt"), "new");
    EXPECT_EQ(treeOf(folder.file("in")).size(), 1U);
}

TEST_F(Unpack, RightsAreThoseOfANewFile)
{
    const mode_t old = ::umask(027);
    const UNPACKED result = untar({{"suid", "x", '0', "", 06777}});
    ::umask(old);
    ASSERT_TRUE(result.good) << result.fault;
    struct stat status {};
    ASSERT_EQ(::stat(folder.file("in/suid").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST_F(Unpack, ManySmallMembers)
{
    std::vector<ZIPMEMBER> members;
    for (int i = 0; i < 3000; ++i) members.push_back({std::to_string(i), std::to_string(i * i)});
    const UNPACKED result = unzip(members);
    ASSERT_TRUE(result.good) << result.fault;
    EXPECT_EQ(result.files.size(), 3000U);
    EXPECT_EQ(read("in/2999"), std::to_string(2999 * 2999));
}

// --- what wants to get out

TEST_F(Unpack, AbsoluteNamesLoseTheirSlashes)
{
    const std::string victim = folder.file("outside/victim");
    ASSERT_TRUE(untar({{victim, "evil"}}).good);
    EXPECT_EQ(read("outside/victim"), "precious");
    EXPECT_EQ(read("in" + victim), "evil");
}

TEST_F(Unpack, NamesThatLeadOutAreRefused)
{
    for (const std::string name : {"../outside/victim", "a/../../outside/victim", "..", "a/.."})
        expectFault(untar({{"good.txt", "x"}, {name, "evil"}}), "its name leads out of the folder");
    expectFault(unpack("a.zip", zipOf({{"../outside/victim", "evil"}}), false), "leads out of the folder");
    expectFault(unzip({{"a/..", "evil"}}), "its name leads out of the folder");
}

TEST_F(Unpack, NamesWithControlCharactersAreRefused)
{
    expectFault(untar({{"a\nb.txt", "x"}}), "its name holds control characters");
    expectFault(unzip({{"good", "x"}, {"a\rb.txt", "x"}}), "its name holds control characters");
    expectFault(unzip({{"a\x1b[2J", "x"}}), "a?[2J: its name holds control characters");
}

TEST_F(Unpack, NamesEndAtAZero)
{
    const UNPACKED result = unzip({{std::string("a.txt\0/../../outside/victim", 27), "x"}});
    EXPECT_EQ(treeOf(folder.file("in")).size(), result.good ? 1U : 0U);
    EXPECT_EQ(read("outside/victim"), "precious");
}

TEST_F(Unpack, NamesThatNoFileCanHaveAreRefused)
{
    expectFault(unzip({{std::string(300, 'x'), "x"}}), "its name is too long");
    expectFault(unzip({{std::string(60000, 'x'), "x"}}), "its name is too long");
}

TEST_F(Unpack, LinksAndDevicesAreLeftOutAndTold)
{
    const std::string outside = folder.file("outside");
    const UNPACKED result = untar({{"l", "", '2', outside},
                                   {"h", "", '1', outside + "/victim"},
                                   {"dev", "", '3'},
                                   {"blk", "", '4'},
                                   {"pipe", "", '6'},
                                   {"a.txt", "A"}});
    ASSERT_TRUE(result.good) << result.fault;
    EXPECT_EQ(treeOf(folder.file("in")), (Tree{{"/a.txt", "A"}}));
    EXPECT_THAT(user.notes, ElementsAre("a.tar: 5 links or special files were left out (the first: l)"));
}

TEST_F(Unpack, LinksInAZipAreLeftOut)
{
    const UNPACKED result = unzip({{"l", folder.file("outside/victim"), false, 0, 0120777}, {"a.txt", "A"}});
    ASSERT_TRUE(result.good) << result.fault;
    EXPECT_EQ(treeOf(folder.file("in")), (Tree{{"/a.txt", "A"}}));
}

TEST_F(Unpack, LinkOfTheArchiveIsNoWayOut)
{
    // The link isn't made, so what would go through it goes into a folder of that name.
    ASSERT_TRUE(untar({{"l", "", '2', folder.file("outside")}, {"l/victim", "evil"}}).good);
    EXPECT_EQ(read("outside/victim"), "precious");
    EXPECT_EQ(read("in/l/victim"), "evil");
}

TEST_F(Unpack, PlantedLinksAreNotFollowed)
{
    fs::create_symlink(folder.file("outside"), folder.file("in/l"));
    fs::create_symlink(folder.file("outside/victim"), folder.file("in/v"));
    const Tree before = treeOf(folder.file("in"));
    const UNPACKED through = untar({{"good", "x"}, {"l/victim", "evil"}});
    EXPECT_THAT(through.fault, HasSubstr("l/victim: something that is no folder stands in its way"));
    const UNPACKED over = untar({{"good", "x"}, {"v", "evil"}});
    EXPECT_THAT(over.fault, HasSubstr("v: something that is no ordinary file stands in its place"));
    EXPECT_FALSE(through.good || over.good);
    EXPECT_EQ(treeOf(folder.file("in")), before);
    EXPECT_EQ(read("outside/victim"), "precious");
}

TEST_F(Unpack, OnlyOrdinaryFilesAreReplaced)
{
    ASSERT_EQ(::mkfifo(folder.file("in/pipe").c_str(), 0666), 0);
    fs::create_directories(folder.file("in/dir"));
    const Tree before = treeOf(folder.file("in"));
    for (const char* const name : {"pipe", "dir"}) {
        const UNPACKED result = unzip({{"good", "x"}, {name, "evil"}});
        EXPECT_FALSE(result.good);
        EXPECT_THAT(result.fault, HasSubstr("no ordinary file stands in its place")) << name;
        EXPECT_EQ(treeOf(folder.file("in")), before);
    }
}

TEST_F(Unpack, FileAndFolderOfOneNameAreRefused)
{
    write("in/old", "old");
    for (const auto& members : {std::vector<TARMEMBER>{{"n/m", "1"}, {"old", "2"}, {"a", "3"}, {"a/b", "4"}},
                                std::vector<TARMEMBER>{{"old", "2"}, {"a/b", "4"}, {"a", "3"}}}) {
        EXPECT_FALSE(untar(members).good);
        EXPECT_EQ(treeOf(folder.file("in")), (Tree{{"/old", "old"}}));
    }
}

TEST_F(Unpack, ArchiveNeverReplacesItself)
{
    const std::string bytes = zipOf({{"a.zip", "evil"}});
    write("in/a.zip", bytes);
    const UNPACKED result = unpackArchive(folder.file("in/a.zip"), folder.file("in"), true, user);
    EXPECT_FALSE(result.good);
    EXPECT_THAT(result.fault, HasSubstr("it would replace the archive itself"));
    EXPECT_EQ(treeOf(folder.file("in")), (Tree{{"/a.zip", bytes}}));
}

// --- what is too much

TEST_F(Unpack, BombsAreStoppedByWhatIsWritten)
{
    UNPACKLIMITS limits;
    limits.memberBytes = 1000000;
    const std::string zeros(20000000, '\0');
    expectFault(unpack("a.gz", gzipOf(zeros), false, limits), "more than 1000000 bytes");
    expectFault(unzip({{"a", zeros, true, 0, 0100644, -19999990}}, limits), "a: ");
    expectFault(unzip({{"a", zeros, true}}, limits), "a: it has 20000000 bytes");
    expectFault(unpack("a.tgz", gzipOf(tarOf({{"a", zeros}})), false, limits), "a: it has 20000000 bytes");
}

TEST_F(Unpack, AllTogetherHaveALimit)
{
    UNPACKLIMITS limits;
    limits.totalBytes = 1000000;
    std::vector<ZIPMEMBER> members;
    for (int i = 0; i < 30; ++i) members.push_back({std::to_string(i), std::string(50000, 'x'), true});
    expectFault(unzip(members, limits), "20: all together have more than 1000000 bytes");
    members.assign(30, {"same", std::string(50000, 'x'), true});
    expectFault(unzip(members, limits), "all together have more than 1000000 bytes");
}

TEST_F(Unpack, BytesBehindTheLastMemberCountToo)
{
    UNPACKLIMITS limits;
    limits.totalBytes = 1000000;
    const std::string tar = tarOf({{"a", "x"}}) + std::string(20000000, '\0');
    expectFault(unpack("a.tgz", gzipOf(tar), false, limits), "a.tgz: it has no end");
}

TEST_F(Unpack, TooManyMembersAreRefused)
{
    UNPACKLIMITS limits;
    limits.members = 10;
    std::vector<ZIPMEMBER> files;
    std::vector<TARMEMBER> links;
    for (int i = 0; i < 11; ++i) {
        files.push_back({std::to_string(i), ""});
        links.push_back({std::to_string(i), "", '2', "x"});
    }
    expectFault(unzip(files, limits), "a.zip: it has more than 10 members");
    expectFault(untar(links, limits), "a.tar: it has more than 10 members");
    files.pop_back();
    EXPECT_TRUE(unzip(files, limits).good);
}

TEST_F(Unpack, HugePromisesAreRefused)
{
    const std::string eightGigabytes = tarHeader({"a", ""}, 8589934591U);
    UNPACKLIMITS limits;
    limits.memberBytes = 1000000;
    expectFault(unpack("a.tar", eightGigabytes + std::string(1024, '\0'), false, limits), "8589934591 bytes");
    expectFault(unpack("a.tar", eightGigabytes + std::string(1024, '\0')), "a: ");
}

// A tar with a file of `size` bytes, of which only the first and, if `end`, the last are there.
std::string sparseTar(std::int64_t size, bool end)
{
    std::string out(1 << 20, '\0');
    std::size_t used = 0;
    archive* const a = ::archive_write_new();
    ::archive_write_set_format_pax(a);
    ::archive_write_open_memory(a, out.data(), out.size(), &used);
    archive_entry* const entry = ::archive_entry_new();
    ::archive_entry_set_pathname(entry, "sparse");
    ::archive_entry_set_filetype(entry, AE_IFREG);
    ::archive_entry_set_size(entry, size);
    ::archive_entry_sparse_add_entry(entry, 0, 1);
    if (end) ::archive_entry_sparse_add_entry(entry, size - 1, 1);
    EXPECT_EQ(::archive_write_header(a, entry), ARCHIVE_OK);
    const std::string block(65536, 'x');
    for (std::int64_t at = 0; at < size; at += static_cast<std::int64_t>(block.size())) {
        const auto rest = static_cast<std::size_t>(size - at);
        if (::archive_write_data(a, block.data(), std::min(block.size(), rest)) < 0) break;
    }
    ::archive_entry_free(entry);
    ::archive_write_free(a);
    out.resize(used);
    return out;
}

TEST_F(Unpack, HolesOfAFileAreZeros)
{
    for (const bool end : {true, false}) {
        const UNPACKED result = unpack("a.tar", sparseTar(300000, end));
        ASSERT_TRUE(result.good) << result.fault;
        const std::string content = read("in/sparse");
        ASSERT_EQ(content.size(), 300000U);
        EXPECT_EQ(content[0], 'x');
        EXPECT_EQ(content[150000], '\0');
        EXPECT_EQ(content[299999], end ? 'x' : '\0');
    }
}

TEST_F(Unpack, HolesCountAgainstTheLimits)
{
    UNPACKLIMITS limits;
    limits.memberBytes = 200000;
    expectFault(unpack("a.tar", sparseTar(300000, true), false, limits), "sparse: ");
    limits = {};
    limits.totalBytes = 200000;
    expectFault(unpack("a.tar", sparseTar(300000, true), false, limits), "all together have more than");
    expectFault(unpack("a.tar", sparseTar(300000, false), false, limits), "all together have more than");
}

TEST_F(Unpack, FullDiskLeavesNothing)
{
    const std::string zip = zipOf({{"a", "A"}, {"b", std::string(300000, 'b'), true}});
    const std::string gz = gzipOf(std::string(300000, 'b')), tar = tarOf({{"b", std::string(300000, 'b')}});
    for (const auto& [name, bytes] :
         {std::pair<std::string, std::string>{"a.zip", zip}, {"b.gz", gz}, {"a.tar", tar}}) {
        write(name, bytes);
        UNPACKED result;
        {
            const RFileSizeLimit limit(100000);
            result = unpackArchive(folder.file(name), folder.file("in"), true, user);
        }
        expectFault(result, "b: there is no space left on the disk");
    }
}

TEST_F(Unpack, SomeSpaceIsLeftToOthers)
{
    UNPACKLIMITS limits;
    limits.freeBytes = INT64_MAX; // then a twentieth of the disk
    const fs::space_info space = fs::space(folder.file("in"));
    if (space.available >= space.capacity / 20) {
        EXPECT_TRUE(unzip({{"a", "x"}}, limits).good);
    } else {
        expectFault(unzip({{"a", "x"}}, limits), "no space");
    }
}

TEST_F(Unpack, FolderThatTakesNoFilesIsTold)
{
    write("a.zip", zipOf({{"a", "x"}}));
    for (const std::string& directory :
         {std::string("/proc"), folder.file("nowhere"), folder.file("a.zip")}) {
        const UNPACKED result = unpackArchive(folder.file("a.zip"), directory, true, user);
        EXPECT_FALSE(result.good);
        EXPECT_THAT(result.fault, HasSubstr(directory));
    }
}

// --- what is damaged

TEST_F(Unpack, NoArchiveAtAll)
{
    for (const std::string name : {"a.zip", "a.gz", "a.tar", "a.tgz"}) {
        expectFault(unpack(name, ""), "a");
        expectFault(unpack(name, "x"), "a");
        expectFault(unpack(name, std::string(3000, 'x')), "a");
        expectFault(unpack(name, std::string(3000, '\0')), "a");
    }
    expectFault(unpack("a.txt", "x"), "a.txt: no name of an archive");
    expectFault(unpack("a", "x"), "a: no name of an archive");
    expectFault(unpack(".gz", gzipOf("x")), ".gz: it has no name");
    expectFault(unpack("a.gz", "plain text"), "a: no gzip file");
}

TEST_F(Unpack, WhatIsNoFileIsNoArchive)
{
    fs::create_directories(folder.file("d.zip"));
    ASSERT_EQ(::mkfifo(folder.file("p.zip").c_str(), 0666), 0);
    fs::create_symlink("/dev/zero", folder.file("z.gz"));
    for (const char* const name : {"d.zip", "p.zip", "z.gz", "none.zip"})
        expectFault(unpackArchive(folder.file(name), folder.file("in"), true, user), "can't be opened");
}

TEST_F(Unpack, ArchiveWithoutFilesIsRefused)
{
    expectFault(unzip({}), "a.zip: ");
    expectFault(unzip({{"dir/", "", false, 0, 040755}}), "a.zip: it holds no files");
    expectFault(untar({}), "a.tar: ");
    expectFault(untar({{"d/", "", '5'}, {"l", "", '2', "x"}}), "a.tar: it holds no files");
    expectFault(unpack("a.tgz", gzipOf("")), "a.tgz: ");
}

TEST_F(Unpack, WrongSumsAreNoticed)
{
    expectFault(unzip({{"good", "x"}, {"a.txt", "content", false, 0, 0100644, 0, 1}}), "a.txt: damaged");
    expectFault(unzip({{"a.txt", std::string(1000, 'x'), true, 0, 0100644, 0, 1}}), "a.txt: damaged");
    std::string gz = gzipOf("some text that is long enough");
    gz[gz.size() - 6] = static_cast<char>(gz[gz.size() - 6] ^ 1);
    expectFault(unpack("a.txt.gz", gz), "a.txt: damaged: the check sum is wrong");
    expectFault(unpack("a.txt.gz", gz + gzipOf("more")), "a.txt: damaged: the check sum is wrong");
    gz = gzipOf("some text");
    gz[gz.size() - 1] = 1;
    expectFault(unpack("a.txt.gz", gz), "a.txt: damaged: the length is wrong");
    expectFault(unpack("a.txt.gz", gzipOf("text") + "garbage"), "other bytes follow");
    gz = gzipOf(tarOf({{"a", "x"}}));
    gz[gz.size() - 6] = static_cast<char>(gz[gz.size() - 6] ^ 1);
    expectFault(unpack("a.tgz", gz), "the check sum is wrong");
}

TEST_F(Unpack, WrongSizesAreNoticed)
{
    expectFault(unzip({{"a.txt", std::string(1000, 'x'), true, 0, 0100644, 5}}), "a.txt: damaged");
    expectFault(unzip({{"a.txt", std::string(1000, 'x'), true, 0, 0100644, -5}}), "a.txt: damaged");
}

TEST_F(Unpack, EncryptedMembersAreTold)
{
    expectFault(unzip({{"good", "x"}, {"secret.txt", std::string(50, 's'), false, 1}}),
                "secret.txt: it is encrypted");
}

TEST_F(Unpack, TruncatedArchivesLeaveNothing)
{
    const std::string text(700, 't'), tar = tarOf({{"d/a.txt", text}, {"b.txt", text}});
    const std::pair<std::string, std::string> whole[] = {
        {"a.zip", zipOf({{"a.txt", text, true}, {"b.txt", text}})},
        {"a.gz", gzipOf(text)},
        {"a.tgz", gzipOf(tar)}};
    for (const auto& [name, bytes] : whole) {
        for (std::size_t length = 0; length < bytes.size(); ++length)
            expectFault(unpack(name, bytes.substr(0, length)), "a");
    }
    for (std::size_t length = 0; length < tar.size(); length += 97) {
        if (unpack("a.tar", tar.substr(0, length)).good) { // a tar may end behind any of its members
            EXPECT_GE(length, 2 * 512U);
            EXPECT_EQ(read("in/d/a.txt"), text);
            fs::remove_all(folder.file("in"));
            fs::create_directories(folder.file("in"));
        }
        EXPECT_THAT(treeOf(folder.file("in")), IsEmpty());
    }
}

TEST_F(Unpack, ChangedBytesAreNoticedOrChangeNothing)
{
    std::mt19937 random(7);
    const std::string text = "Cruise\tStation\tType\n" + std::string(3000, 'q') + "end";
    const std::string gz = gzipOf(text), tgz = gzipOf(tarOf({{"a", text}}));
    for (int i = 0; i < 300; ++i) {
        for (const auto& [name, good] : {std::pair<std::string, std::string>{"a.gz", gz}, {"a.tgz", tgz}}) {
            std::string bytes = good;
            bytes[random() % bytes.size()] ^= static_cast<char>(1 << random() % 8);
            const UNPACKED result = unpack(name, bytes);
            EXPECT_TRUE(!result.good || read("in/a") == text) << name;
            fs::remove(folder.file("in/a"));
            EXPECT_THAT(treeOf(folder.file("in")), IsEmpty());
        }
    }
}

TEST_F(Unpack, ChangedBytesOfAZipDoNoHarm)
{
    std::mt19937 random(8);
    const std::string zip = zipOf({{"a.txt", std::string(500, 'a'), true}, {"b.txt", std::string(500, 'b')}});
    const std::string tar = tarOf({{"a.txt", std::string(500, 'a')}, {"d/b.txt", std::string(500, 'b')}});
    for (int i = 0; i < 300; ++i) {
        for (const auto& [name, good] : {std::pair<std::string, std::string>{"a.zip", zip}, {"a.tar", tar}}) {
            std::string bytes = good;
            for (int k = 0; k <= i % 3; ++k) bytes[random() % bytes.size()] = static_cast<char>(random());
            const UNPACKED result = unpack(name, bytes);
            EXPECT_TRUE(result.good || treeOf(folder.file("in")).empty());
            EXPECT_NE(result.good, result.files.empty());
            EXPECT_EQ(treeOf(folder.file("outside")), (Tree{{"/victim", "precious"}}));
            fs::remove_all(folder.file("in"));
            fs::create_directories(folder.file("in"));
        }
    }
}

// --- the user

TEST_F(Unpack, ProgressIsShownAndCleared)
{
    EXPECT_TRUE(unpack("a.gz", gzipOf(std::string(3000000, 'x'))).good);
    EXPECT_TRUE(unpack("a.tgz", gzipOf(tarOf({{"b", "x"}}))).good);
    EXPECT_THAT(user.statusTexts,
                ElementsAre("Unzipping a.gz...     ESC aborts", "Unpacking a.tgz...     ESC aborts"));
    EXPECT_GT(user.lastProgress, 0);
    EXPECT_LE(user.lastProgress, 100);
    EXPECT_EQ(user.busy, 0);
}

TEST_F(Unpack, AbortRemovesWhatWasWritten)
{
    const std::string big(5000000, 'x');
    write("in/a", "old");
    for (const auto& [name, bytes] : {std::pair<std::string, std::string>{"a.gz", gzipOf(big)},
                                      {"a.zip", zipOf({{"a", big, true}})},
                                      {"a.tgz", gzipOf(tarOf({{"a", big}}))}}) {
        user.abort = false;
        user.abortAfter = 2;
        const UNPACKED result = unpack(name, bytes);
        EXPECT_FALSE(result.good);
        EXPECT_TRUE(result.aborted);
        EXPECT_EQ(treeOf(folder.file("in")), (Tree{{"/a", "old"}}));
    }
    EXPECT_THAT(user.messages,
                ElementsAre("Unzipping: Really Want to Abort?", "Unzipping: Really Want to Abort?",
                            "Unpacking: Really Want to Abort?"));
}

TEST_F(Unpack, AbortThatIsTakenBackGoesOn)
{
    user.abortAfter = 2;
    user.answers = {common::Answer::no};
    EXPECT_TRUE(unpack("a.gz", gzipOf(std::string(5000000, 'x'))).good);
    EXPECT_EQ(fs::file_size(folder.file("in/a")), 5000000U);
}

// --- the copy

TEST_F(Unpack, CopyIsUnpackedAndRemoved)
{
    const std::string bytes = zipOf({{"d/a.txt", "A"}});
    write("a.zip", bytes);
    const UNPACKED result = copyAndUnpack(folder.file("a.zip"), folder.file("in"), user);
    ASSERT_TRUE(result.good) << result.fault;
    EXPECT_EQ(result.files, in({"a.txt"}));
    EXPECT_EQ(treeOf(folder.file("in")), (Tree{{"/a.txt", "A"}}));
    EXPECT_EQ(read("a.zip"), bytes);
    EXPECT_THAT(user.statusTexts,
                ElementsAre("Copying a.zip...     ESC aborts", "Unzipping a.zip...     ESC aborts"));
    EXPECT_THAT(user.messages, IsEmpty());
}

TEST_F(Unpack, UnpackingBesideTheArchiveKeepsIt)
{
    const std::string bytes = gzipOf("A");
    write("in/a.txt.gz", bytes);
    ASSERT_TRUE(copyAndUnpack(folder.file("in/a.txt.gz"), folder.file("in"), user).good);
    EXPECT_EQ(treeOf(folder.file("in")), (Tree{{"/a.txt", "A"}, {"/a.txt.gz", bytes}}));
    write("in/b.zip", zipOf({{"b.zip", "evil"}}));
    EXPECT_FALSE(copyAndUnpack(folder.file("in/b.zip"), folder.file("in"), user).good);
    EXPECT_EQ(read("in/b.zip"), zipOf({{"b.zip", "evil"}}));
}

TEST_F(Unpack, MissingArchiveIsTold)
{
    expectFault(copyAndUnpack(folder.file("none.zip"), folder.file("in"), user), "");
    EXPECT_THAT(user.messages, ElementsAre("Copying: File " + folder.file("none.zip") + " not found!"));
}

TEST_F(Unpack, DamagedArchiveIsToldWithItsMember)
{
    write("a.zip", zipOf({{"a.txt", "content", false, 0, 0100644, 0, 1}}));
    write("a.tgz", gzipOf(tarOf({{"../x", "evil"}})));
    write("a.odd", "x");
    for (const char* const name : {"a.zip", "a.tgz", "a.odd"})
        expectFault(copyAndUnpack(folder.file(name), folder.file("in"), user), "");
    ASSERT_EQ(user.messages.size(), 3U);
    EXPECT_THAT(user.messages[0], testing::StartsWith("Unzipping: Could not unzip " + folder.file("a.zip") +
                                                      "!\n\na.txt: damaged"));
    EXPECT_THAT(user.messages[1], testing::StartsWith("Unpacking: Could not unpack " + folder.file("a.tgz") +
                                                      "!\n\n../x: its name leads out"));
    EXPECT_THAT(user.messages[2],
                testing::StartsWith("Unzipping: Could not unzip " + folder.file("a.odd") + "!"));
}

TEST_F(Unpack, FullDiskStopsTheCopy)
{
    write("a.zip", zipOf({{"a", std::string(300000, 'b')}}));
    UNPACKED result;
    {
        const RFileSizeLimit limit(100000);
        result = copyAndUnpack(folder.file("a.zip"), folder.file("in"), user);
    }
    expectFault(result, "no space left");
    EXPECT_THAT(user.messages, ElementsAre("Copying: File " + folder.file("a.zip") +
                                           " could not be copied!\n\nthere is no space left on the disk"));
}

TEST_F(Unpack, AbortedCopyIsNotToldTwice)
{
    write("a.zip", zipOf({{"a", std::string(5000000, 'b')}}));
    user.abortAfter = 1;
    const UNPACKED result = copyAndUnpack(folder.file("a.zip"), folder.file("in"), user);
    EXPECT_TRUE(result.aborted);
    EXPECT_THAT(treeOf(folder.file("in")), IsEmpty());
    EXPECT_THAT(user.messages, ElementsAre("Copying: Really Want to Abort?"));
}

} // namespace
} // namespace importing
