#pragma once

// Numbers and lines for a PostScript stream, quicker than printf and with the same text.

#include <array>
#include <cstdio>
#include <string_view>

namespace graphics {

inline constexpr int numberTextSize = 16; // "-1.23457e-308" and some

// Writes what printf's "%g" gives (without a terminating zero) and returns its length. `out` has room for
// numberTextSize characters.
int writeNumber(char* out, double value);

// Collects text and hands it to the stream in large pieces, at the latest when it is destroyed. Nobody else
// may write to the stream in between, unless flush() was called. A null stream takes everything and keeps
// nothing.
class RPsWriter {
public:
    explicit RPsWriter(std::FILE* ps) : ps_(ps) {}
    ~RPsWriter() { flush(); }
    RPsWriter(const RPsWriter&) = delete;
    RPsWriter& operator=(const RPsWriter&) = delete;

    RPsWriter& number(double value); // "%g"
    RPsWriter& integer(int value);   // "%d"
    RPsWriter& text(std::string_view text);
    // "%g %g <operation>\n", and "%d %d <operation>\n" on the overlay grid
    RPsWriter& point(double x, double y, std::string_view operation);
    RPsWriter& gridPoint(int x, int y, std::string_view operation);
    void flush();

private:
    // Where the next `size` characters may be written.
    char* room(std::size_t size)
    {
        if (used_ + size > buffer_.size()) flush();
        return buffer_.data() + used_;
    }

    std::FILE* ps_;
    std::size_t used_ = 0;
    std::array<char, 16384> buffer_;
};

} // namespace graphics
