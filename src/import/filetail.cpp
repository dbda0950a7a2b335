#include "import/filetail.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "common/files.h"

namespace importing {

std::int64_t lastFilledByte(const std::string& path, char separator)
{
    const common::FilePtr file = common::openFile(path, "rb");
    if (!file) return -1;
    const auto isFilled = [&](char c) {
        return static_cast<unsigned char>(c) > 32 && c != 127 && c != separator;
    };
    std::array<char, 65536> block;
    std::int64_t end = common::fileSize(file.get());
    while (end > 0) {
        const std::int64_t begin = std::max<std::int64_t>(0, end - static_cast<std::int64_t>(block.size()));
        const auto size = static_cast<std::size_t>(end - begin);
        if (::fseeko(file.get(), begin, SEEK_SET) != 0 ||
            std::fread(block.data(), 1, size, file.get()) != size)
            return -1;
        for (std::size_t i = size; i > 0; --i) {
            if (isFilled(block[i - 1])) return begin + static_cast<std::int64_t>(i) - 1;
        }
        end = begin;
    }
    return -1;
}

} // namespace importing
