#pragma once

// Pictures in memory as files.

#include <string>
#include <vector>

#include <QColor>
#include <QImage>

namespace graphics {

// The image in at most 256 colours: exact if it has no more, otherwise the colours that represent best what
// the picture consists of (median cut; Heckbert, 1982). Format_Indexed8.
[[nodiscard]] QImage reduceColors(const QImage& image);

// Encoders: the bytes of a file, empty on failure.
[[nodiscard]] std::string encodeGif(const QImage& image);
[[nodiscard]] std::string encodeImage(const QImage& image, const char* format); // "PNG", "JPEG"

} // namespace graphics
