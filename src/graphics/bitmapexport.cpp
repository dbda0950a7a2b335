// A picture as a bitmap file.

#include <cmath>

#include "common/files.h"
#include "common/text.h"
#include "graphics/exportsetup.h"
#include "graphics/imagefiles.h"
#include "graphics/mapplot.h"
#include "graphics/plots.h"
#include "graphics/preparewindow.h"

namespace graphics {

namespace {

constexpr const char* caption = "Saving Screen to File ...";
constexpr double cmPerInch = 2.54;
constexpr double mostPixels = 150e6;  // 600 MB in memory
constexpr double longestSide = 32000; // of the toolkit's rasteriser
constexpr double windowMargin = 0.35; // cm around a single window

enum class Format { none, png, jpeg, gif };

Format formatOf(const std::string& path)
{
    const std::string extension = common::toLower(common::splitPath(path).extension);
    if (extension == ".png") return Format::png;
    if (extension == ".jpg" || extension == ".jpeg") return Format::jpeg;
    if (extension == ".gif") return Format::gif;
    return Format::none;
}

// The canvas at `dpi` dots an inch.
DEVICE scaledDevice(const DEVICE& device, int dpi)
{
    const double pixelsPerCm = dpi / cmPerInch;
    DEVICE scaled = device;
    scaled.pixelsPerCm = static_cast<float>(pixelsPerCm);
    scaled.widthPx = static_cast<int>(std::lround(device.widthCm * pixelsPerCm));
    scaled.heightPx = static_cast<int>(std::lround(device.heightCm * pixelsPerCm));
    return scaled;
}

bool isTooLarge(const DEVICE& device, int dpi)
{
    const double width = device.widthCm * dpi / cmPerInch;
    const double height = device.heightCm * dpi / cmPerInch;
    return width > longestSide || height > longestSide || width * height > mostPixels;
}

void tellTooLarge(const DEVICE& device, int dpi, common::RUser& user)
{
    const double width = device.widthCm / cmPerInch;
    const double height = device.heightCm / cmPerInch;
    const double most =
        std::min(std::sqrt(mostPixels / (width * height)), longestSide / std::max(width, height));
    user.about(caption, common::format("A picture at %d dots per inch would be too large.\n\nThe highest "
                                       "resolution is %d dots per inch.",
                                       dpi, static_cast<int>(most)));
}

QImage paint(PLOTCONTEXT& context, int dpi)
{
    const DEVICE& device = drawState().device;
    QImage image(device.widthPx, device.heightPx, QImage::Format_RGB32);
    if (image.isNull()) return image;
    image.setDotsPerMeterX(qRound(dpi * 100 / cmPerInch));
    image.setDotsPerMeterY(qRound(dpi * 100 / cmPerInch));
    image.fill(Qt::white);
    QPainter painter(&image);
    RedrawCanvas(&painter, context, false);
    return image;
}

bool save(const QImage& image, Format format, const std::string& path)
{
    if (format == Format::gif) return writeGif(image, path);
    const std::string bytes = encodeImage(image, format == Format::png ? "PNG" : "JPEG");
    return !bytes.empty() && common::writeFile(path, bytes);
}

// The part of the picture that shows `window`.
QRect cropOf(const PLOTCONTEXT& context, int window)
{
    return toPixels(clampToCanvas(grow(windowExtent(context, window), windowMargin)));
}

} // namespace

bool exportBitmap(PLOTCONTEXT& context, const std::string& path, int window, int dpi)
{
    const Format format = formatOf(path);
    if (format == Format::none || dpi < 1 || !canExport(context, window)) return false;
    if (isTooLarge(drawState().device, dpi)) {
        tellTooLarge(drawState().device, dpi, context.user);
        return false;
    }
    refreshSelection(context);
    if (context.user.abortRequested()) return false;
    const RExportGuard guard(context);
    drawState().device = scaledDevice(drawState().device, dpi);
    markForExport(context, window, window <= 0 && (window == 0 || mapIsShown(context.setup)));
    const QImage image = paint(context, dpi);
    if (image.isNull() || context.user.abortRequested()) return false;
    return save(window < 0 ? image : image.copy(cropOf(context, window)), format, path);
}

} // namespace graphics
