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
            ASSERT_TRUE(file.write(static_cast<std::int64_t>(at), bytesOf(model).subspan(at, length)));
        } else {
            ASSERT_EQ(textAt(file, static_cast<std::int64_t>(at), length), model.substr(at, length)) << i;
        }
        at += length;
    }
}

} // namespace
} // namespace collection
