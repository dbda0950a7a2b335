// Pictures as files.

#include <cmath>
#include <filesystem>

#include <gtest/gtest.h>

#include "common/text.h"
#include "graphics/extents.h"
#include "graphics/pagegeometry.h"
#include "graphics/plotfixture.h"
#include "graphics/plotpictures.h"
#include "graphics/plots.h"
#include "graphics/preparewindow.h"
#include "graphics/scenes.h"

namespace {

using namespace graphics;
using testing_support::countOf;
using testing_support::pixelsOtherThan;
using testing_support::RPlotFixture;

constexpr QRgb white = qRgb(255, 255, 255);

struct EXPORTFIXTURE : RPlotFixture {
    explicit EXPORTFIXTURE(int mode = modeStation) : RPlotFixture(10, 6), c(context())
    {
        plotAll();
        switchMode(setup, mode);
        fullRanges(c, 0);
    }
    std::string eps(int window = -1, const std::string& name = "plot.eps")
    {
        EXPECT_TRUE(exportPostScript(c, sample.directory.file(name), window));
        return content(name);
    }
    QImage bitmap(const std::string& name, int window = -1, int dpi = 60)
    {
        EXPECT_TRUE(exportBitmap(c, sample.directory.file(name), window, dpi)) << name;
        return QImage(QString::fromStdString(sample.directory.file(name)))
            .convertToFormat(QImage::Format_RGB32);
    }
    [[nodiscard]] int files() const
    {
        int n = 0;
        for (const auto& entry : std::filesystem::directory_iterator(sample.directory.path())) {
            static_cast<void>(entry);
            ++n;
        }
        return n;
    }
    PLOTCONTEXT c;
};

std::array<double, 4> boxOf(const std::string& ps)
{
    std::string_view rest = std::string_view(ps).substr(ps.find("%%BoundingBox:") + 14);
    std::array<double, 4> box{};
    for (double& side : box) EXPECT_TRUE(common::takeDouble(rest, side));
    return box;
}

// --- PostScript

TEST(ExportPostScript, TheFileIsWrittenInItsOrder)
{
    EXPORTFIXTURE f;
    const std::string ps = f.eps();
    std::size_t at = 0;
    for (const char* const part :
         {"%!PS-Adobe-3.0 EPSF-3.0\n",
          "%%Title: plot.eps\n%%Creator: Nvq Test, 1.0\n%%CreationDate: ", "%%Pages: 1\n",
          "%%DocumentFonts: Helvetica-Bold Helvetica-Bold\n", "%%BoundingBox: ", "%%EndComments\n\n",
          "\n%%Page: 1 1\n%%PageOrientation: Landscape\n%%PS-PAGE: NVQ_Plot=plot.eps begin\nBeginPlot\n\n"
          "/usrclip? false def /usrrot? true def\n/scalefak ",
          "/xOrigin 0 def /yOrigin 0 def /fontfak 0.0833333 def\n/dfltFont (Helvetica-Bold) def\n"
          "/nativeFont (Helvetica-Bold) def\n\n",
          "NVQ4.0_Window_1 begin", "NVQ_Window_1 end", "NVQ4.0_Window_4 begin", "NVQ_Window_4 end",
          "NVQ_MapWindow begin", "NVQ_MapWindow end", "NVQ_CollectionStamp begin",
          "\n%%PS-PAGE: NVQ_Plot=plot.eps end\n\nshowpage\nEndPlot\n\n%%Trailer\n"}) {
        const std::size_t found = ps.find(part, at);
        ASSERT_NE(found, std::string::npos) << part;
        at = found;
    }
    EXPECT_EQ(
        at + std::string("\n%%PS-PAGE: NVQ_Plot=plot.eps end\n\nshowpage\nEndPlot\n\n%%Trailer\n").size(),
        ps.size());
}

TEST(ExportPostScript, OneWindowComesWithTheMapUnlessItIsSwitchedOff)
{
    EXPORTFIXTURE f;
    std::string ps = f.eps(2);
    EXPECT_EQ(countOf(ps, "NVQ4.0_Window_"), 1);
    EXPECT_EQ(countOf(ps, "NVQ4.0_Window_2 begin"), 1);
    EXPECT_EQ(countOf(ps, "NVQ_MapWindow begin"), 1);
    f.setup.postScript.showMap = false;
    ps = f.eps(2);
    EXPECT_EQ(countOf(ps, "NVQ_MapWindow"), 0);
    EXPECT_EQ(countOf(f.eps(0), "NVQ_MapWindow begin"), 1);
    EXPECT_EQ(countOf(f.eps(0), "NVQ4.0_Window_"), 0);
}

TEST(ExportPostScript, MapModeExportsItsMap)
{
    EXPORTFIXTURE f(modeMap);
    f.setup.postScript.showMap = false;
    for (const int window : {-1, 0}) {
        const std::string ps = f.eps(window);
        EXPECT_EQ(countOf(ps, "NVQ_MapWindow begin"), 1);
        EXPECT_EQ(countOf(ps, " D\n"), 10);
    }
}

TEST(ExportPostScript, TheCollectionsStampIsASetting)
{
    EXPORTFIXTURE f;
    f.setup.postScript.showCollectionInfo = false;
    EXPECT_EQ(countOf(f.eps(), "NVQ_CollectionStamp"), 0);
}

TEST(ExportPostScript, OriginsCarryThePagesOffset)
{
    EXPORTFIXTURE f;
    f.setup.postScript.fitToPage = false;
    const std::string ps = f.eps();
    EXPECT_NE(ps.find(" 7 4.6 "), std::string::npos); // 2.6 + 2 of a landscape page
    EXPECT_NE(ps.find(" 3.4 17.8 UsrSys"), std::string::npos);
    EXPECT_NE(ps.find("/scalefak 0.9 def /lenfak 0.9 def"), std::string::npos);
}

TEST(ExportPostScript, PortraitIsNotTurned)
{
    EXPORTFIXTURE f;
    f.setup.postScript.landscape = false;
    const std::string ps = f.eps();
    EXPECT_NE(ps.find("%%PageOrientation: Portrait\n"), std::string::npos);
    EXPECT_NE(ps.find("/usrrot? false def"), std::string::npos);
    const auto box = boxOf(ps);
    EXPECT_GT(box[2] - box[0], box[3] - box[1]); // as wide as the canvas is
}

TEST(ExportPostScript, TheRecordsAreUntouched)
{
    EXPORTFIXTURE f;
    f.setup.window(1).toDraw = 0;
    f.setup.window(3).toDraw = 1;
    f.setup.map.toDraw = 0;
    const DRAWSTATE before = drawState();
    static_cast<void>(f.eps(1));
    EXPECT_EQ(f.setup.window(1).toDraw, 0);
    EXPECT_EQ(f.setup.window(3).toDraw, 1);
    EXPECT_EQ(f.setup.window(3).exists, 1);
    EXPECT_EQ(f.setup.map.toDraw, 0);
    EXPECT_FLOAT_EQ(f.setup.window(1).boxOrgX, 2.6f);
    EXPECT_EQ(drawState().usePixmap, before.usePixmap);
    EXPECT_TRUE(f.c.onCanvas);
}

TEST(ExportPostScript, AWindowThatIsntThereIsRefused)
{
    EXPORTFIXTURE f;
    for (const int window : {5, 7, 21, -2}) {
        EXPECT_FALSE(exportPostScript(f.c, f.sample.directory.file("no.eps"), window)) << window;
        EXPECT_FALSE(exportBitmap(f.c, f.sample.directory.file("no.png"), window, 60)) << window;
    }
    EXPECT_FALSE(common::fileExists(f.sample.directory.file("no.eps")));
}

TEST(ExportPostScript, AnOutputThatCantBeMadeIsTold)
{
    EXPORTFIXTURE f;
    EXPECT_FALSE(exportPostScript(f.c, "/nowhere/plot.eps", -1));
    ASSERT_EQ(f.user().messages.size(), 1u);
    EXPECT_EQ(f.user().messages[0], "Opening PostScript file ...: Could not open /nowhere/plot.eps");
    EXPECT_FALSE(exportPostScript(f.c, f.sample.directory.path(), -1)); // a directory
}

TEST(ExportPostScript, WithoutThePreambleNothingIsWritten)
{
    EXPORTFIXTURE f;
    f.installation.include = f.sample.directory.file("no/");
    const int before = f.files();
    EXPECT_FALSE(exportPostScript(f.c, f.sample.directory.file("plot.eps"), -1));
    EXPECT_EQ(f.files(), before);
    EXPECT_NE(f.user().messages.at(0).find("not found!\n\nNo PostScript file will be written."),
              std::string::npos);
}

TEST(ExportPostScript, EscRemovesTheFileAndKeepsAnOldOne)
{
    EXPORTFIXTURE f;
    const std::string old = f.eps();
    const int before = f.files();
    f.user().abortAfter = 1;
    EXPECT_FALSE(exportPostScript(f.c, f.sample.directory.file("plot.eps"), -1));
    EXPECT_EQ(f.content("plot.eps"), old);
    f.user().setAbort(false);
    f.user().abortAfter = 1;
    EXPECT_FALSE(exportPostScript(f.c, f.sample.directory.file("new.eps"), -1));
    EXPECT_EQ(f.files(), before);
}

TEST(ExportPostScript, ALinkStaysALink)
{
    EXPORTFIXTURE f;
    static_cast<void>(f.eps(-1, "real.eps"));
    std::filesystem::create_symlink(f.sample.directory.file("real.eps"), f.sample.directory.file("link.eps"));
    EXPECT_NE(f.eps(1, "link.eps"), "");
    EXPECT_TRUE(std::filesystem::is_symlink(f.sample.directory.file("link.eps")));
    EXPECT_EQ(f.content("real.eps"), f.content("link.eps"));
}

TEST(ExportPostScript, NamesWithPercentSignsAndBracketsDoNoHarm)
{
    EXPORTFIXTURE f;
    collection::setLabel(f.collection().variables[2], "T (5%s) \\[~^o~_C]");
    f.c.title = "100 % (test) %d";
    const std::string ps = f.eps(-1, "a%s(b).eps");
    EXPECT_NE(ps.find("%%Title: a%s(b).eps\n"), std::string::npos);
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript isn't installed";
    EXPECT_EQ(testing_support::complaints(ps), "");
}

TEST(ExportPostScript, GhostscriptHasNoComplaints)
{
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript isn't installed";
    for (const int mode : {modeMap, modeStation, modeScatter}) {
        EXPORTFIXTURE f(mode);
        f.setup.map.annotation = 2;
        if (mode == modeScatter) {
            ASSERT_TRUE(setWindowVariables(f.setup, 1, 3, 2, -1));
            ASSERT_TRUE(setWindowVariables(f.setup, 2, 3, 2, 4));
            f.setup.window(2).style = styleNumbers;
            fullRanges(f.c, 0);
        }
        EXPECT_EQ(testing_support::complaints(f.eps()), "") << modeName(mode);
    }
}

// Where Ghostscript finds ink, in points from the lower left corner of a page of A4.
QRectF inkOf(const std::string& ps)
{
    const DRAWSTATE saved = drawState();
    testing_support::useDevice(30, 30, 72 * 2.54 / 2.54 * 1.0);
    const QImage page = testing_support::rendered(ps, false);
    const double scale = pointsPerCm / drawState().device.pixelsPerCm;
    drawState() = saved;
    QRect ink;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x) {
            if ((page.pixel(x, y) & RGB_MASK) != (white & RGB_MASK))
                ink |= QRect(x, page.height() - 1 - y, 1, 1);
        }
    }
    return {ink.x() * scale, ink.y() * scale, ink.width() * scale, ink.height() * scale};
}

TEST(ExportPostScript, TheBoundingBoxHoldsAllInkAndNotMuchMore)
{
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript isn't installed";
    for (const int mode : {modeMap, modeStation, modeScatter}) {
        for (const bool landscape : {true, false}) {
            for (const int window : {-1, 0, 1}) {
                EXPORTFIXTURE f(mode);
                if (window == 1 && mode == modeMap) continue;
                f.setup.postScript.landscape = landscape;
                const std::string ps = f.eps(window);
                const auto box = boxOf(ps);
                const QRectF ink = inkOf(ps);
                constexpr double slack = 1.5; // of the rendering
                EXPECT_GE(ink.left(), box[0] - slack) << mode << landscape << window;
                EXPECT_GE(ink.top(), box[1] - slack) << mode << landscape << window;
                EXPECT_LE(ink.right(), box[2] + slack) << mode << landscape << window;
                EXPECT_LE(ink.bottom(), box[3] + slack) << mode << landscape << window;
                constexpr double most = 45; // points of empty margin
                EXPECT_LE(ink.left(), box[0] + most) << mode << landscape << window;
                EXPECT_LE(ink.top(), box[1] + most) << mode << landscape << window;
                EXPECT_GE(ink.right(), box[2] - most) << mode << landscape << window;
                EXPECT_GE(ink.bottom(), box[3] - most) << mode << landscape << window;
            }
        }
    }
}

// --- bitmaps

TEST(ExportBitmap, TheSizeFollowsTheResolution)
{
    EXPORTFIXTURE f;
    const QImage image = f.bitmap("a.png", -1, 100);
    EXPECT_EQ(image.width(), std::lround(29.0 * 100 / 2.54));
    EXPECT_EQ(image.height(), std::lround(20.2 * 100 / 2.54));
    EXPECT_NEAR(image.dotsPerMeterX() * 0.0254, 100, 0.5);
    EXPECT_EQ(image.pixel(0, 0), white);
}

TEST(ExportBitmap, AllFormatsShowTheSamePicture)
{
    EXPORTFIXTURE f(modeScatter);
    const QImage png = f.bitmap("a.png");
    const QImage jpeg = f.bitmap("a.JPG");
    EXPECT_EQ(jpeg.size(), png.size());
    EXPECT_TRUE(exportBitmap(f.c, f.sample.directory.file("a.gif"), -1, 60));
    EXPECT_EQ(f.content("a.gif").substr(0, 6), "GIF87a");
}

TEST(ExportBitmap, AnotherExtensionWritesNothing)
{
    EXPORTFIXTURE f;
    const int before = f.files();
    for (const char* const name : {"a.tif", "a.bmp", "a", "a.pngx"}) {
        EXPECT_FALSE(exportBitmap(f.c, f.sample.directory.file(name), -1, 60)) << name;
    }
    EXPECT_EQ(f.files(), before);
}

TEST(ExportBitmap, TheScreenIsAsItWas)
{
    EXPORTFIXTURE f;
    const DRAWSTATE state = drawState();
    const auto regions = f.setup.regions;
    f.setup.window(2).toDraw = 0;
    const auto pixels = selection::readSelectedList(f.collection());
    static_cast<void>(f.bitmap("a.png", -1, 300));
    EXPECT_EQ(drawState().device.widthPx, state.device.widthPx);
    EXPECT_FLOAT_EQ(drawState().device.pixelsPerCm, state.device.pixelsPerCm);
    EXPECT_FLOAT_EQ(drawState().fontScale, state.fontScale);
    EXPECT_TRUE(drawState().usePixmap);
    EXPECT_EQ(f.setup.window(2).toDraw, 0);
    EXPECT_EQ(f.setup.window(1).toDraw, 1);
    EXPECT_EQ(f.setup.regions, regions);
    const auto after = selection::readSelectedList(f.collection());
    ASSERT_EQ(after.size(), pixels.size());
    for (std::size_t i = 0; i < after.size(); ++i) EXPECT_EQ(after[i].pixelX, pixels[i].pixelX);
}

TEST(ExportBitmap, OneWindowIsCutOutWithAMargin)
{
    EXPORTFIXTURE f;
    const QImage whole = f.bitmap("a.png", -1, 100), one = f.bitmap("b.png", 1, 100),
                 map = f.bitmap("c.png", 0, 100);
    EXPECT_LT(one.width(), whole.width() / 2);
    EXPECT_GT(pixelsOtherThan(one, one.rect(), white), 1000);
    EXPECT_GT(map.width(), 200);
    for (const QImage& image : {one, map}) { // nothing is cut
        EXPECT_EQ(pixelsOtherThan(image, QRect(0, 0, 3, image.height()), white), 0);
        EXPECT_EQ(pixelsOtherThan(image, QRect(image.width() - 3, 0, 3, image.height()), white), 0);
        EXPECT_EQ(pixelsOtherThan(image, QRect(0, 0, image.width(), 3), white), 0);
        EXPECT_EQ(pixelsOtherThan(image, QRect(0, image.height() - 3, image.width(), 3), white), 0);
    }
}

TEST(ExportBitmap, TooLargeAPictureIsRefusedWithTheLimit)
{
    EXPORTFIXTURE f;
    EXPECT_FALSE(exportBitmap(f.c, f.sample.directory.file("a.png"), -1, 100000));
    ASSERT_EQ(f.user().messages.size(), 1u);
    EXPECT_NE(f.user().messages[0].find("too large"), std::string::npos);
    EXPECT_FALSE(exportBitmap(f.c, f.sample.directory.file("a.png"), -1, 0));
}

TEST(ExportBitmap, AnUnwritablePathFails)
{
    EXPORTFIXTURE f;
    EXPECT_FALSE(exportBitmap(f.c, "/nowhere/a.png", -1, 60));
}

TEST(ExportBitmap, EscWritesNothing)
{
    EXPORTFIXTURE f;
    const int before = f.files();
    f.user().abortAfter = 1;
    EXPECT_FALSE(exportBitmap(f.c, f.sample.directory.file("a.png"), -1, 60));
    EXPECT_EQ(f.files(), before);
}

TEST(ExportBitmap, NothingReachesTheCanvasEdge)
{
    for (const int mode : {modeMap, modeStation, modeScatter}) {
        EXPORTFIXTURE f(mode);
        const QImage image = f.bitmap("a.png", -1, 100);
        EXPECT_EQ(pixelsOtherThan(image, QRect(0, 0, 4, image.height()), white), 0) << mode;
        EXPECT_EQ(pixelsOtherThan(image, QRect(0, image.height() - 4, image.width(), 4), white), 0) << mode;
    }
}

// --- both sinks

// The share of the dark pixels of `a` that have a dark pixel of `b` within two pixels.
double shareNear(const QImage& a, const QImage& b)
{
    constexpr int reach = 2, darkest = 128;
    int dark = 0, near = 0;
    for (int y = reach; y < a.height() - reach; ++y) {
        for (int x = reach; x < a.width() - reach; ++x) {
            if (qGray(a.pixel(x, y)) >= darkest) continue;
            ++dark;
            bool found = false;
            for (int dy = -reach; dy <= reach && !found; ++dy) {
                for (int dx = -reach; dx <= reach && !found; ++dx) {
                    found = qGray(b.pixel(x + dx, y + dy)) < darkest + 60;
                }
            }
            near += found ? 1 : 0;
        }
    }
    return dark == 0 ? 0 : static_cast<double>(near) / dark;
}

// The canvas as Ghostscript draws it at the resolution of `like`.
QImage canvasOf(EXPORTFIXTURE& f, const QImage& like)
{
    constexpr double scale = 0.6, xOffset = 4, yOffset = 15; // an upright page, not fitted
    f.setup.postScript = {false, false, true, false};
    const std::string ps = f.eps();
    const DRAWSTATE saved = drawState();
    const double pixelsPerCm = like.width() / (saved.device.widthCm * scale);
    testing_support::useDevice(21, 29.7f, pixelsPerCm * 2.54);
    const QImage page = testing_support::rendered(ps);
    drawState() = saved;
    const double k = pixelsPerCm * scale;
    const int left = static_cast<int>(std::lround(k * xOffset));
    const int bottom = page.height() - static_cast<int>(std::lround(k * yOffset));
    return page.copy(left, bottom - like.height(), like.width(), like.height());
}

TEST(BothSinks, ThePicturesCoverEachOther)
{
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript isn't installed";
    for (const int mode : {modeMap, modeStation, modeScatter}) {
        EXPORTFIXTURE f(mode);
        f.c.title.clear(); // small letters differ too much from font to font
        const QImage screen = f.bitmap("a.png", -1, 100);
        const QImage page = canvasOf(f, screen);
        EXPECT_GT(shareNear(screen, page), 0.93) << modeName(mode);
        EXPECT_GT(shareNear(page, screen), 0.93) << modeName(mode);
    }
}

} // namespace
