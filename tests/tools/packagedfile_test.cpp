#include "packagedfile.h"

#include <cstdio>

#include <gtest/gtest.h>

#include "common/files.h"
#include "temporarydirectory.h"

namespace {

using namespace tools;

std::string written(const std::string& path, const std::string& content)
{
    const common::FilePtr file = common::openFile(path, "wb");
    std::fwrite(content.data(), 1, content.size(), file.get());
    return path;
}

TEST(Sha256, KnownDigest)
{
    const testing_support::RTemporaryDirectory directory;
    EXPECT_EQ(sha256Of(written(directory.file("abc"), "abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256Of(directory.file("none")), "");
}

TEST(ComplaintAbout, UnknownName)
{
    EXPECT_NE(complaintAbout("/usr/share/land.shp").find("not a file that this converter knows"),
              std::string::npos);
}

TEST(ComplaintAbout, OtherContentUnderAKnownName)
{
    const testing_support::RTemporaryDirectory directory;
    const std::string path = written(directory.file("etopo5.cdf"), "something else");
    const std::string complaint = complaintAbout(path);
    EXPECT_NE(complaint.find(path), std::string::npos);
    EXPECT_NE(complaint.find("not the known edition"), std::string::npos);
    EXPECT_NE(complaint.find("1455d5e5feebd183"), std::string::npos);
}

TEST(ComplaintAbout, MissingFile)
{
    EXPECT_NE(complaintAbout("/nowhere/etopo5.cdf").find("can't be read"), std::string::npos);
}

} // namespace
