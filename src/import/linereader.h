#pragma once

// The lines of a text file, read in blocks: any size of file, no allocation a line.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "common/files.h"

namespace importing {

class RLineReader {
public:
    static constexpr std::size_t maxLine = std::size_t{1} << 20; // bytes of a line, its end included

    enum class Result { line, end, tooLong, failed };

    // False if the file can't be read. A leading UTF-8 mark is skipped. If the first line end is a bare
    // carriage return, every carriage return ends a line; otherwise line feeds do.
    [[nodiscard]] bool open(const std::string& path);

    // The next line, cut at its first line feed and carriage return. The view holds until the next call; the
    // byte behind it is readable and a line end.
    [[nodiscard]] Result next(std::string_view& line);

    [[nodiscard]] int lineNumber() const { return lineNumber_; } // of the line last read, from 1
    [[nodiscard]] std::int64_t bytesRead() const { return bytesRead_; }
    [[nodiscard]] std::int64_t size() const { return size_; } // bytes of the file when it was opened

    // Lines that were cut at a line end of the other kind with text behind it, and the first of them.
    [[nodiscard]] int linesCut() const { return linesCut_; }
    [[nodiscard]] int firstCut() const { return firstCut_; }

    // How the file's text is coded: UTF-8 as long as no byte has told otherwise.
    [[nodiscard]] bool isUtf8() const { return utf8_; }
    void setLatin1() { utf8_ = false; }

    // False as long as no quote stands in what was read of the file: then no line needs to be searched.
    [[nodiscard]] bool mayHoldQuotes() const { return quotes_; }

private:
    [[nodiscard]] bool fill();
    void inspectFirstBlock();
    void noteCut(std::string_view dropped);

    common::FilePtr file_;
    std::unique_ptr<char[]> buffer_; // lines stand between begin_ and end_
    std::size_t begin_ = 0, end_ = 0;
    std::int64_t size_ = 0, bytesRead_ = 0;
    int lineNumber_ = 0, linesCut_ = 0, firstCut_ = 0;
    char terminator_ = '\n';
    bool utf8_ = true, atEnd_ = false, quotes_ = false;
};

} // namespace importing
