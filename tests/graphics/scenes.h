#pragma once

// Pictures of both sinks, for comparing them: a painter's image, and a PostScript page as Ghostscript shows
// it.

#include <cstdio>
#include <functional>
#include <string>

#include <QImage>
#include <QPainter>

namespace testing_support {

// Draws into one of the sinks.
using Scene = std::function<void(QPainter*, std::FILE*)>;

// A device of `width` by `height` cm becomes the drawing state's, at `dpi`.
void useDevice(float widthCm, float heightCm, double dpi);

// The scene on a white image with the device of the drawing state.
[[nodiscard]] QImage painted(const Scene& scene);

// What the scene writes, as text.
[[nodiscard]] std::string pageText(const Scene& scene);

[[nodiscard]] std::string preamblePath();
[[nodiscard]] bool haveGhostscript();

struct PAGE {
    bool landscape = false;
    double scale = 1;
    std::string family = "Helvetica-Bold";
};
// A complete file around a page's text.
[[nodiscard]] std::string pageFile(const std::string& content, const PAGE& page = {});
// Ghostscript's messages for a file, "" if it has none, its operand stack is empty at the end and its
// dictionary stack is as it was.
[[nodiscard]] std::string complaints(const std::string& file);
// The page from its lower left corner as Ghostscript draws it, as large as the device of the drawing state
// and at its resolution. smooth: with soft edges, so that areas are true; otherwise every pixel that is
// touched is painted. Null on failure.
[[nodiscard]] QImage rendered(const std::string& file, bool smooth = true);

} // namespace testing_support
