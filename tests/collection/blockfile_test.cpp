#include "collection/blockfile.h"

#include <cstring>
#include <filesystem>
#include <random>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "common/files.h"
#include "filesizelimit.h"
#include "temporarydirectory.h"

namespace collection {
namespace {

std::span<const std::byte> bytesOf(std::string_view text)
{
    return std::as_bytes(std::span(text));
}

std::string textAt(RBlockFile& file, std::int64_t offset, std::size_t length)
{
    const std::byte* const bytes = file.view(offset, length);
    return bytes ? std::string(reinterpret_cast<const char*>(bytes), length) : "none";
}

class BlockFile : public testing::Test {
protected:
    testing_support::RTemporaryDirectory directory;
    std::string path = directory.file("f");
    RBlockFile file;
};

TEST_F(BlockFile, ReadsBackWhatWasWritten)
{
    ASSERT_TRUE(file.open(path, RBlockFile::Mode::create));
    ASSERT_TRUE(file.write(0, bytesOf("hello "), bytesOf("world")));
    EXPECT_EQ(file.size(), 11);
    EXPECT_EQ(textAt(file, 0, 5), "hello");
    EXPECT_EQ(textAt(file, 6, 5), "world");
    ASSERT_TRUE(file.write(4, bytesOf("O_W")));
    EXPECT_EQ(textAt(file, 0, 11), "hellO_World");
}

TEST_F(BlockFile, BeyondTheEndThereIsNothing)
{
    ASSERT_TRUE(file.open(path, RBlockFile::Mode::create));
    ASSERT_TRUE(file.write(0, bytesOf("0123456789")));
    EXPECT_EQ(file.view(5, 6), nullptr);
    EXPECT_EQ(file.view(10, 1), nullptr);
    EXPECT_EQ(file.view(std::int64_t{1} << 40, 1), nullptr);
    EXPECT_EQ(textAt(file, 9, 1), "9");
}

TEST_F(BlockFile, APipeIsRefusedAndNobodyWaits)
{
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(file.open(path, RBlockFile::Mode::read));
    EXPECT_FALSE(file.open(directory.path(), RBlockFile::Mode::read));
}

TEST_F(BlockFile, AFileThatShrankIsNoticed)
{
    ASSERT_TRUE(file.open(path, RBlockFile::Mode::create));
    ASSERT_TRUE(file.write(0, bytesOf("0123456789")));
    std::filesystem::resize_file(path, 4);
    EXPECT_EQ(file.view(2, 4), nullptr);
    EXPECT_EQ(textAt(file, 0, 4), "0123");
}

TEST_F(BlockFile, AFullDiskIsAFailedWrite)
{
    ASSERT_TRUE(file.open(path, RBlockFile::Mode::create));
    const testing_support::RFileSizeLimit full(4);
    EXPECT_FALSE(file.write(0, bytesOf("0123"), bytesOf("4567")));
}

TEST_F(BlockFile, MixedReadsAndWritesAgreeWithAnArray)
{
    constexpr std::size_t size = 1 << 20;
    std::mt19937 random(20240607);
    std::string model(size, '\0');
    for (char& c : model) c = static_cast<char>(random());
    ASSERT_TRUE(file.open(path, RBlockFile::Mode::create));
    ASSERT_TRUE(file.write(0, bytesOf(model)));
    std::size_t at = 0;
    for (int i = 0; i < 5000; ++i) {
        const std::size_t length = 1 + random() % 3000;
        at = random() % 3 == 0 ? random() % size : at + random() % 2000;
        if (at + length > size) at = 0;
        if (random() % 4 == 0) {
            for (std::size_t k = 0; k < length; ++k) model[at + k] = static_cast<char>(random());
            const auto offset = static_cast<std::int64_t>(at);
            const auto bytes = bytesOf(model).subspan(at, length);
            if (random() % 3 > 0) {
                file.hold(offset, bytes.first(length / 2), bytes.subspan(length / 2));
            } else {
                ASSERT_TRUE(file.write(offset, bytes));
            }
            if (random() % 100 == 0) {
                ASSERT_TRUE(file.flush());
            }
        } else {
            ASSERT_EQ(textAt(file, static_cast<std::int64_t>(at), length), model.substr(at, length)) << i;
        }
        at += length;
    }
    ASSERT_TRUE(file.sync());
    EXPECT_TRUE(common::readFile(path) == model);
}

TEST_F(BlockFile, HeldBytesAreSeenAndReachTheFileWithTheFlush)
{
    ASSERT_TRUE(file.open(path, RBlockFile::Mode::create));
    ASSERT_TRUE(file.write(0, bytesOf("0123456789")));
    EXPECT_EQ(textAt(file, 0, 10), "0123456789"); // in the read-ahead now
    file.hold(8, bytesOf("ab"), bytesOf("cd"));
    file.hold(2, bytesOf("X"));
    EXPECT_EQ(file.size(), 12);
    EXPECT_EQ(textAt(file, 0, 12), "01X34567abcd");
    EXPECT_EQ(file.view(10, 3), nullptr);
    EXPECT_EQ(common::readFile(path).value_or(""), "0123456789");
    ASSERT_TRUE(file.flush());
    EXPECT_EQ(file.heldPieces(), 0U);
    EXPECT_EQ(common::readFile(path).value_or(""), "01X34567abcd");
}

TEST_F(BlockFile, DroppedBytesAreForgotten)
{
    ASSERT_TRUE(file.open(path, RBlockFile::Mode::create));
    ASSERT_TRUE(file.write(0, bytesOf("0123456789")));
    file.hold(8, bytesOf("abcd"));
    EXPECT_EQ(textAt(file, 7, 5), "7abcd");
    file.drop();
    EXPECT_EQ(file.size(), 10);
    EXPECT_EQ(textAt(file, 7, 3), "789");
    EXPECT_EQ(file.view(10, 1), nullptr);
}

TEST_F(BlockFile, WhatCouldNotBeFlushedIsHeldOn)
{
    ASSERT_TRUE(file.open(path, RBlockFile::Mode::create));
    file.hold(0, bytesOf("0123456789"));
    {
        const testing_support::RFileSizeLimit full(4);
        EXPECT_FALSE(file.flush());
        EXPECT_FALSE(file.sync());
        EXPECT_FALSE(file.write(20, bytesOf("x")));
        EXPECT_EQ(textAt(file, 0, 10), "0123456789");
    }
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(common::readFile(path).value_or(""), "0123456789");
}

TEST_F(BlockFile, AFileThatLostItsNameIsNoticed)
{
    ASSERT_TRUE(file.open(path, RBlockFile::Mode::create));
    EXPECT_TRUE(file.isAt(path));
    std::filesystem::rename(path, path + "2");
    EXPECT_FALSE(file.isAt(path));
    EXPECT_TRUE(file.isAt(path + "2"));
    ASSERT_TRUE(common::writeFile(path, "another"));
    EXPECT_FALSE(file.isAt(path));
}

} // namespace
} // namespace collection
