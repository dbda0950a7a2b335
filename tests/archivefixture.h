#pragma once

// Archives for tests, made byte by byte, so that they can be as wrong as those that come from outside.

#include <cstdint>
#include <string>
#include <vector>

#include <zlib.h>

namespace testing_support {

inline std::string deflated(const std::string& text, int windowBits)
{
    z_stream z{};
    ::deflateInit2(&z, Z_BEST_SPEED, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    std::string out(::deflateBound(&z, text.size()) + 64, '\0');
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    z.avail_in = static_cast<uInt>(text.size());
    z.next_out = reinterpret_cast<Bytef*>(out.data());
    z.avail_out = static_cast<uInt>(out.size());
    ::deflate(&z, Z_FINISH);
    out.resize(z.total_out);
    ::deflateEnd(&z);
    return out;
}

inline std::string gzipOf(const std::string& text)
{
    return deflated(text, 16 + MAX_WBITS);
}

// --- tar

struct TARMEMBER {
    std::string name, content;
    char type = '0'; // 1 hard link, 2 symbolic link, 3 and 4 devices, 5 folder, 6 pipe
    std::string link = {};
    unsigned mode = 0644;
};

inline std::string octal(std::uint64_t value, std::size_t width)
{
    std::string digits(width - 1, '0');
    for (std::size_t i = digits.size(); i-- > 0; value /= 8) digits[i] = static_cast<char>('0' + value % 8);
    return digits + '\0';
}

inline std::string padded(std::string text, std::size_t size)
{
    text.resize(size, '\0');
    return text;
}

inline std::string tarHeader(const TARMEMBER& member, std::uint64_t size)
{
    std::string h = padded(member.name, 100) + octal(member.mode, 8) + octal(0, 8) + octal(0, 8) +
                    octal(size, 12) + octal(1000000000, 12) + std::string(8, ' ') + member.type +
                    padded(member.link, 100) + std::string("ustar\00000", 8);
    h.resize(512, '\0');
    unsigned sum = 0;
    for (const char c : h) sum += static_cast<unsigned char>(c);
    const std::string digits = octal(sum, 7) + ' ';
    return h.replace(148, 8, digits);
}

inline std::string tarMember(const TARMEMBER& member)
{
    const std::size_t blocks = (member.content.size() + 511) / 512;
    return tarHeader(member, member.content.size()) + padded(member.content, blocks * 512);
}

inline std::string tarOf(const std::vector<TARMEMBER>& members)
{
    std::string out;
    for (const TARMEMBER& member : members) out += tarMember(member);
    return out + std::string(1024, '\0');
}

// --- zip

struct ZIPMEMBER {
    std::string name, content;
    bool deflate = false;
    unsigned flags = 0;      // 1 encrypted, 0x800 the name is UTF-8
    unsigned mode = 0100644; // with the type of the file
    int sizeError = 0;       // added to the unpacked size that is promised
    unsigned crcError = 0;
};

inline std::string little(std::uint64_t value, std::size_t bytes)
{
    std::string out;
    for (std::size_t i = 0; i < bytes; ++i, value >>= 8) out += static_cast<char>(value & 0xff);
    return out;
}

inline std::string zipOf(const std::vector<ZIPMEMBER>& members)
{
    std::string out, directory;
    for (const ZIPMEMBER& m : members) {
        const std::string data = m.deflate ? deflated(m.content, -MAX_WBITS) : m.content;
        const auto crc = ::crc32(0, reinterpret_cast<const Bytef*>(m.content.data()),
                                 static_cast<uInt>(m.content.size())) ^
                         m.crcError;
        const std::string common = little(m.flags, 2) + little(m.deflate ? 8 : 0, 2) + little(0, 2) +
                                   little(0x2c21, 2) + little(crc, 4) + little(data.size(), 4) +
                                   little(m.content.size() + static_cast<std::size_t>(m.sizeError), 4) +
                                   little(m.name.size(), 2) + little(0, 2);
        const std::size_t offset = out.size();
        out += "PK\3\4" + little(20, 2) + common + m.name + data;
        directory += "PK\1\2" + little(20 | 3 << 8, 2) + little(20, 2) + common + little(0, 2) +
                     little(0, 2) + little(0, 2) + little(std::uint64_t{m.mode} << 16, 4) +
                     little(offset, 4) + m.name;
    }
    const std::size_t start = out.size();
    return out + directory + "PK\5\6" + little(0, 4) + little(members.size(), 2) + little(members.size(), 2) +
           little(directory.size(), 4) + little(start, 4) + little(0, 2);
}

} // namespace testing_support
