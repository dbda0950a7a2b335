#include "graphics/imagefiles.h"

#include <cstring>
#include <random>

#include <gif_lib.h>
#include <gtest/gtest.h>

#include <QPainter>

#include "common/files.h"
#include "graphics/plots.h"
#include "temporarydirectory.h"

namespace {

using namespace graphics;

QImage gradient(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x * 255 / width, y * 255 / height, (x + y) % 256));
    }
    return image;
}

struct BYTES {
    const std::string& content;
    std::size_t at = 0;
};

int readBytes(GifFileType* gif, GifByteType* out, int count)
{
    auto* const from = static_cast<BYTES*>(gif->UserData);
    const std::size_t n = std::min(static_cast<std::size_t>(count), from->content.size() - from->at);
    std::memcpy(out, from->content.data() + from->at, n);
    from->at += n;
    return static_cast<int>(n);
}

// The first picture of a GIF, as another reader sees it.
QImage decodeGif(const std::string& content)
{
    BYTES bytes{content};
    int error = 0;
    GifFileType* const gif = DGifOpen(&bytes, readBytes, &error);
    if (!gif) return {};
    QImage image;
    if (DGifSlurp(gif) == GIF_OK && gif->ImageCount == 1) {
        image = QImage(gif->SWidth, gif->SHeight, QImage::Format_RGB32);
        for (int y = 0; y < gif->SHeight; ++y) {
            for (int x = 0; x < gif->SWidth; ++x) {
                const GifColorType& c =
                    gif->SColorMap->Colors[gif->SavedImages[0].RasterBits[y * gif->SWidth + x]];
                image.setPixel(x, y, qRgb(c.Red, c.Green, c.Blue));
            }
        }
    }
    DGifCloseFile(gif, &error);
    return image;
}

double meanError(const QImage& a, const QImage& b)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum +=
                std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    }
    return sum / (3.0 * a.width() * a.height());
}

TEST(ReduceColors, FewColorsStayExact)
{
    QImage image(64, 64, QImage::Format_RGB32);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) image.setPixel(x, y, qRgb(x / 4 * 16, y / 4 * 16, 7)); // 256 colours
    }
    const QImage reduced = reduceColors(image);
    EXPECT_EQ(reduced.format(), QImage::Format_Indexed8);
    EXPECT_EQ(reduced.colorCount(), 256);
    EXPECT_EQ(reduced.convertToFormat(QImage::Format_RGB32), image);
}

TEST(ReduceColors, ManyColorsBecomeAtMost256AndStayNear)
{
    const QImage image = gradient(300, 200);
    const QImage reduced = reduceColors(image);
    EXPECT_LE(reduced.colorCount(), 256);
    EXPECT_LT(meanError(image, reduced.convertToFormat(QImage::Format_RGB32)), 14);
}

TEST(ReduceColors, AThinLineKeepsItsColorBesideAGradient)
{
    QImage image = gradient(300, 200);
    for (int x = 0; x < 300; ++x) image.setPixel(x, 100, qRgb(255, 255, 0));
    const QImage reduced = reduceColors(image).convertToFormat(QImage::Format_RGB32);
    const QRgb line = reduced.pixel(20, 100);
    EXPECT_GT(qRed(line), 215);
    EXPECT_GT(qGreen(line), 215);
    EXPECT_LT(qBlue(line), 60);
}

TEST(ReduceColors, OneColorAndNoImage)
{
    QImage image(5, 3, QImage::Format_RGB32);
    image.fill(qRgb(1, 2, 3));
    EXPECT_EQ(reduceColors(image).pixel(4, 2), qRgb(1, 2, 3));
    EXPECT_TRUE(reduceColors(QImage()).isNull());
}

TEST(Gif, AnotherReaderSeesThePicture)
{
    QImage image(37, 23, QImage::Format_RGB32);
    image.fill(Qt::white);
    {
        QPainter p(&image);
        p.setPen(Qt::red);
        p.drawLine(0, 0, 36, 22);
        p.fillRect(5, 12, 9, 7, Qt::blue);
    }
    const std::string bytes = encodeGif(image);
    EXPECT_EQ(bytes.substr(0, 3), "GIF");
    EXPECT_EQ(decodeGif(bytes), image);
}

TEST(Gif, OnePixelOfOneColor)
{
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(Qt::black);
    EXPECT_EQ(decodeGif(encodeGif(image)), image);
}

TEST(Gif, ManyColorsAreReadableToo)
{
    const QImage image = gradient(211, 97), back = decodeGif(encodeGif(image));
    ASSERT_EQ(back.size(), image.size());
    EXPECT_LT(meanError(image, back), 14);
}

TEST(Gif, AnEmptyImageGivesNoFile)
{
    const testing_support::RTemporaryDirectory directory;
    EXPECT_TRUE(encodeGif(QImage()).empty());
    EXPECT_FALSE(writeGif(QImage(), directory.file("a.gif")));
    EXPECT_FALSE(common::fileExists(directory.file("a.gif")));
}

TEST(Gif, AFailedWriteLeavesTheOldFile)
{
    EXPECT_FALSE(writeGif(gradient(8, 8), "/nowhere/a.gif"));
}

TEST(EncodeImage, PngIsExactAndJpegIsNear)
{
    const QImage image = gradient(64, 48);
    const std::string png = encodeImage(image, "PNG"), jpeg = encodeImage(image, "JPEG");
    EXPECT_EQ(QImage::fromData(QByteArray::fromStdString(png), "PNG").convertToFormat(QImage::Format_RGB32),
              image);
    const QImage back =
        QImage::fromData(QByteArray::fromStdString(jpeg), "JPEG").convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(back.size(), image.size());
    EXPECT_LT(meanError(image, back), 12);
}

} // namespace
