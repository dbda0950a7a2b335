#include "import/gzipstream.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <unistd.h>

#include <zlib.h>

namespace importing {

struct RGzipStream::Inflater {
    z_stream stream{};
    std::array<unsigned char, 65536> input{};
    bool good = false;
};

RGzipStream::RGzipStream(int file) : file_(file), inflater_(std::make_unique<Inflater>())
{
    constexpr int gzipOnly = 16;
    inflater_->good = ::inflateInit2(&inflater_->stream, MAX_WBITS + gzipOnly) == Z_OK;
}

RGzipStream::~RGzipStream()
{
    if (inflater_->good) ::inflateEnd(&inflater_->stream);
}

std::ptrdiff_t RGzipStream::refuse(const char* why)
{
    fault_ = why;
    return -1;
}

// Compressed bytes for the inflater; none are left at the end of the file. False if it can't be read.
bool RGzipStream::fill()
{
    z_stream& z = inflater_->stream;
    if (z.avail_in > 0) return true;
    ssize_t got = 0;
    do {
        got = ::read(file_, inflater_->input.data(), inflater_->input.size());
    } while (got < 0 && errno == EINTR);
    if (got < 0) fault_ = "can't be read";
    z.next_in = inflater_->input.data();
    z.avail_in = got > 0 ? static_cast<uInt>(got) : 0;
    return got >= 0;
}

// Goes to the next compressed part: there may be several, and zeros behind the last. True if one begins.
bool RGzipStream::beginPart()
{
    z_stream& z = inflater_->stream;
    while (fill() && z.avail_in > 0) {
        if (*z.next_in == 0 && anyPart_) {
            ++z.next_in;
            --z.avail_in;
            continue;
        }
        constexpr unsigned char firstOfMagic = 0x1f;
        if (*z.next_in != firstOfMagic) {
            fault_ = anyPart_ ? "damaged: other bytes follow behind the compressed ones" : "no gzip file";
            return false;
        }
        inPart_ = ::inflateReset(&z) == Z_OK;
        return inPart_;
    }
    if (fault_.empty() && !anyPart_) fault_ = "no gzip file: it is empty";
    return false;
}

const char* RGzipStream::faultOf(int code) const
{
    const z_stream& z = inflater_->stream;
    if (code == Z_MEM_ERROR) return "there is not enough memory";
    if (code == Z_NEED_DICT || !z.msg) return "damaged";
    const std::string_view text = z.msg;
    if (text == "incorrect header check" && !anyPart_ && z.total_out == 0) return "no gzip file";
    if (text == "incorrect data check") return "damaged: the check sum is wrong";
    if (text == "incorrect length check") return "damaged: the length is wrong";
    return "damaged";
}

std::ptrdiff_t RGzipStream::read(std::span<unsigned char> buffer)
{
    if (!inflater_->good) return refuse("there is not enough memory");
    if (!fault_.empty()) return -1;
    z_stream& z = inflater_->stream;
    z.next_out = buffer.data();
    z.avail_out = static_cast<uInt>(buffer.size());
    while (z.avail_out > 0) {
        if (!inPart_ && !beginPart()) break;
        if (!fill()) break;
        const int code = ::inflate(&z, Z_NO_FLUSH);
        if (code == Z_STREAM_END) {
            inPart_ = false;
            anyPart_ = true;
        } else if (code == Z_BUF_ERROR && z.avail_in == 0) {
            return refuse("damaged: it ends early");
        } else if (code != Z_OK && code != Z_BUF_ERROR) {
            return refuse(faultOf(code));
        }
    }
    if (!fault_.empty()) return -1;
    return static_cast<std::ptrdiff_t>(buffer.size() - z.avail_out);
}

} // namespace importing
