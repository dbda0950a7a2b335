#include "import/linereader.h"

#include <algorithm>
#include <cstring>

#include "common/textcoding.h"

namespace importing {
namespace {

constexpr std::size_t blockSize = std::size_t{1} << 18; // stays in the processor's cache
constexpr std::size_t bufferSize = RLineReader::maxLine + blockSize + 1;

// `text` without an unfinished UTF-8 character at its end.
std::string_view withoutCutCharacter(std::string_view text)
{
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, text.size()); ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        if (byte >= 0xC0) return text.substr(0, text.size() - back);
        if (byte < 0x80) break;
    }
    return text;
}

} // namespace

bool RLineReader::open(const std::string& path)
{
    file_ = common::openFile(path, "rb");
    if (!file_) return false;
    std::setvbuf(file_.get(), nullptr, _IONBF, 0);
    buffer_ = std::make_unique_for_overwrite<char[]>(bufferSize); // not filled: most files are smaller
    begin_ = end_ = 0;
    bytesRead_ = 0;
    lineNumber_ = linesCut_ = firstCut_ = 0;
    atEnd_ = quotes_ = false;
    size_ = common::fileSize(file_.get());
    while (end_ < maxLine && !atEnd_) {
        if (!fill()) return false;
    }
    inspectFirstBlock();
    return size_ >= 0;
}

void RLineReader::inspectFirstBlock()
{
    std::string_view block(buffer_.get(), end_);
    utf8_ = common::isValidUtf8(atEnd_ ? block : withoutCutCharacter(block));
    if (block.starts_with("\xEF\xBB\xBF")) {
        begin_ = 3;
        bytesRead_ = 3;
    }
    const std::size_t lineEnd = block.find_first_of("\r\n");
    const bool bareReturn = lineEnd != std::string_view::npos && block[lineEnd] == '\r' &&
                            (lineEnd + 1 == block.size() || block[lineEnd + 1] != '\n');
    terminator_ = bareReturn ? '\r' : '\n';
}

// Moves what is left to the front and reads one more block behind it.
bool RLineReader::fill()
{
    if (begin_ > 0) {
        std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    const std::size_t room = std::min(blockSize, bufferSize - 1 - end_);
    const std::size_t got = std::fread(buffer_.get() + end_, 1, room, file_.get());
    if (got < room && std::ferror(file_.get())) return false;
    quotes_ = quotes_ || std::memchr(buffer_.get() + end_, '"', got) != nullptr;
    end_ += got;
    atEnd_ = got < room;
    buffer_[end_] = '\n'; // a last line without an end gets one
    return true;
}

void RLineReader::noteCut(std::string_view dropped)
{
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= 32 || c == 127; };
    if (std::all_of(dropped.begin(), dropped.end(), isBlank)) return;
    if (++linesCut_ == 1) firstCut_ = lineNumber_;
}

RLineReader::Result RLineReader::next(std::string_view& line)
{
    std::size_t searched = begin_;
    for (;;) {
        const char* const start = buffer_.get() + searched;
        const auto* const found = static_cast<const char*>(std::memchr(start, terminator_, end_ - searched));
        if (found || (atEnd_ && begin_ < end_)) {
            const char* const first = buffer_.get() + begin_;
            const char* const last = found ? found : buffer_.get() + end_;
            const std::size_t length = static_cast<std::size_t>(last - first) + (found ? 1 : 0);
            if (length > maxLine) return Result::tooLong;
            begin_ += length;
            bytesRead_ += static_cast<std::int64_t>(length);
            ++lineNumber_;
            line = {first, static_cast<std::size_t>(last - first)};
            break;
        }
        if (atEnd_) return Result::end;
        if (end_ - begin_ > maxLine) return Result::tooLong;
        searched = end_ - begin_; // fill() moves the line to the front
        if (!fill()) return Result::failed;
    }
    // The other kind of line end may stand in front of or behind this one.
    if (terminator_ == '\r' && line.starts_with('\n')) line.remove_prefix(1);
    const char other = terminator_ == '\r' ? '\n' : '\r';
    if (const void* const cut = std::memchr(line.data(), other, line.size())) {
        const auto length = static_cast<std::size_t>(static_cast<const char*>(cut) - line.data());
        if (length + 1 < line.size()) noteCut(line.substr(length + 1));
        line = line.substr(0, length);
    }
    return Result::line;
}

} // namespace importing
