#pragma once

// The unpacked bytes of a gzip file. Unlike libarchive's gzip filter it compares the sums and lengths that
// stand behind each compressed part, so that damage doesn't go unnoticed.

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace importing {

class RGzipStream {
public:
    // `file`: open for reading, at its start; not owned.
    explicit RGzipStream(int file);
    ~RGzipStream();
    RGzipStream(const RGzipStream&) = delete;
    RGzipStream& operator=(const RGzipStream&) = delete;

    // Bytes put into `buffer`, 0 at the end of a file that is whole, -1 if it isn't: then fault() says why.
    [[nodiscard]] std::ptrdiff_t read(std::span<unsigned char> buffer);
    [[nodiscard]] const std::string& fault() const { return fault_; } // one line, empty if there is none

private:
    struct Inflater;
    [[nodiscard]] bool fill();
    [[nodiscard]] bool beginPart();
    [[nodiscard]] std::ptrdiff_t refuse(const char* why);
    [[nodiscard]] const char* faultOf(int code) const;

    int file_;
    std::unique_ptr<Inflater> inflater_;
    bool inPart_ = false, anyPart_ = false;
    std::string fault_;
};

} // namespace importing
