#include <gtest/gtest.h>

#include "graphics/axes.h"
#include "graphics/ink.h"
#include "graphics/scenes.h"

namespace graphics {
namespace {

using testing_support::inkCovered;
using testing_support::inkIn;
using testing_support::pageText;
using testing_support::painted;
using testing_support::useDevice;

class Stamps : public testing::Test {
protected:
    void SetUp() override
    {
        drawState() = DRAWSTATE{};
        useDevice(18, 14, 101.6);
        collection_.name = "atlantic";
        collection_.configName = "ship (1)";
    }
    void TearDown() override { drawState() = before_; }

    [[nodiscard]] FRAMECONTEXT context() const
    {
        return {collection_, "nvqmp - Test", "me", "Jan/01/2020 10:11:12", "c\\s"};
    }
    [[nodiscard]] std::string collectionStamp(float scale, bool landscape) const
    {
        return pageText(
            [&](QPainter*, std::FILE* ps) { DrawCollectionStamp(nullptr, ps, context(), scale, landscape); });
    }
    static void openWindow(std::FILE* ps)
    {
        SetUsrSys(0, 10, 10, 4, 0, 10, 8, 3);
        if (ps) std::fputs("0 10 10 4 0 10 8 3 UsrSys\n", ps);
    }
    static void expectInOrder(const std::string& text, std::initializer_list<const char*> parts)
    {
        std::size_t at = 0;
        for (const char* part : parts) {
            const std::size_t found = text.find(part, at);
            ASSERT_NE(found, std::string::npos) << part << "\nin\n" << text;
            at = found + 1;
        }
    }

    collection::RCollection collection_;

private:
    DRAWSTATE before_ = drawState();
};

TEST_F(Stamps, WindowStampOnThePage)
{
    const std::string text =
        pageText([](QPainter*, std::FILE* ps) { DrawStamp(nullptr, ps, "nvqmp - (x\\y)", 6, 0); });
    EXPECT_EQ(text,
              "\n%%PS-OBJECT: NVQ_Stamp begin\n/fill? false def /stroke? false def /lorg 5 def\n0 setgray\n"
              "6 dfltFont getfont\n/labl [(nvqmp - \\(x\\\\y\\))] def\n"
              "xmax 1.5 rxd-h smul add ymin 3 ryd-h smul sub vertlabl\n"
              "/lorg 0 def 12 SetMyFont very_thin_line\n%%PS-OBJECT: NVQ_Stamp end\n\n");
}

TEST_F(Stamps, WindowStampBeginsAtTheLowerEndRightOfThePlot)
{
    const QImage image = painted([](QPainter* p, std::FILE*) {
        openWindow(nullptr);
        SetClip(p, true); // which the stamp lies outside of
        DrawStamp(p, nullptr, "nvqmp - Test", 8, 0);
    });
    const int right = 14 * 40, bottom = 14 * 40 - 3 * 40;
    EXPECT_GT(inkIn(image, QRect(right + 1, bottom - 100, 20, 100)), 100);
    EXPECT_EQ(inkIn(image, QRect(0, 0, right + 1, 560)), 0);
    EXPECT_EQ(inkIn(image, QRect(right, bottom + 1, 100, 100)), 0);
}

TEST_F(Stamps, NoTitleNoStamp)
{
    EXPECT_EQ(pageText([](QPainter*, std::FILE* ps) { DrawStamp(nullptr, ps, "", 6, 0); }), "");
}

TEST_F(Stamps, CollectionStampNamesWhatThePlotShows)
{
    expectInOrder(collectionStamp(0.5f, true),
                  {"\n%%PS-OBJECT: NVQ_CollectionStamp begin\ngsave\n",
                   "2 magnify /fill? false def /stroke? false def /frame? false def\n",
                   "default_usrsys /lorg TA_RU def 7 dfltFont getfont 0 setgray very_thin_line\n",
                   "(me Jan/01/2020 10:11:12) ", " showstring\n",
                   "11.6 dfltFont getfont 0 0 0 setTextFrameColor 0 0 0 setTextFillColor\n",
                   "/fill? true def /stroke? true def 1 setgray\n", "(A)\n", " showstring\n",
                   "/fill? false def /stroke? false def 0 setgray\n", "7 dfltFont getfont /lorg TA_LU def\n",
                   "(atlantic ship \\(1\\).cfg c\\\\s.sec)\n", " showstring\n",
                   "0.5 magnify 12 SetMyFont /lorg 0 def 0 setgray\n",
                   "/fill? false def /stroke? false def\n0 0 0 setTextFrameColor 1 1 1 setTextFillColor\n",
                   "grestore\n%%PS-OBJECT: NVQ_CollectionStamp end\n"});
}

TEST_F(Stamps, WhatIsUnknownIsLeftOut)
{
    const FRAMECONTEXT bare{collection_, "", "", "", ""};
    collection_.configName.clear();
    const std::string text = pageText(
        [&](QPainter*, std::FILE* ps) { DrawCollectionStamp(nullptr, ps, bare, 1, QPointF(20, 20)); });
    EXPECT_NE(text.find("(atlantic)\n"), std::string::npos);
    EXPECT_EQ(text.find(".cfg"), std::string::npos);
    EXPECT_EQ(text.find(".sec"), std::string::npos);
}

TEST_F(Stamps, CollectionWithoutANameHasNoInitialToFail)
{
    collection_.name.clear();
    EXPECT_NE(collectionStamp(1, false).find("()\n"), std::string::npos);
    collection_.name = "\xc3\xa4gypten"; // an initial of two bytes
    EXPECT_NE(collectionStamp(1, false).find("(\\344)\n"), std::string::npos);
}

TEST_F(Stamps, SizeHoldsWhatIsDrawn)
{
    const QSizeF size = collectionStampSize(context());
    const QImage image = painted(
        [&](QPainter* p, std::FILE*) { DrawCollectionStamp(p, nullptr, context(), 1, QPointF(17, 13)); });
    const QRect area(static_cast<int>((17 - size.width()) * 40) - 3, 40 - 3,
                     static_cast<int>(size.width() * 40) + 6, static_cast<int>(size.height() * 40) + 6);
    EXPECT_GT(inkIn(image, area), 400);
    EXPECT_EQ(inkIn(image, area), inkIn(image, image.rect()));
}

TEST_F(Stamps, PainterAndPageShowTheSame)
{
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
    const auto scene = [&](QPainter* p, std::FILE* ps) {
        openWindow(ps);
        DrawStamp(p, ps, "nvqmp - Test", 8, 0);
        DrawCollectionStamp(p, ps, context(), 1, QPointF(17, 13));
    };
    const std::string file = testing_support::pageFile(pageText(scene));
    EXPECT_EQ(testing_support::complaints(file), "");
    const QImage screen = painted(scene), paper = testing_support::rendered(file, false);
    EXPECT_GT(inkCovered(screen, paper, 4), 0.97);
    EXPECT_GT(inkCovered(paper, screen, 4), 0.97);
    EXPECT_LT(inkCovered(paper, screen.copy(15, 15, 700, 540), 4), 0.9);
}

TEST_F(Stamps, SizeOnThePageIsThatOfThePageWhateverItsScale)
{
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
    const auto stampAt = [&](float scale) {
        const std::string text = pageText([&](QPainter*, std::FILE* ps) {
            DrawCollectionStamp(nullptr, ps, context(), scale, QPointF(17, 13));
        });
        testing_support::PAGE page;
        page.scale = static_cast<double>(scale);
        return testing_support::rendered(testing_support::pageFile(text, page), false);
    };
    const QImage whole = stampAt(1), small = stampAt(0.6f);
    EXPECT_GT(inkCovered(whole, small, 1), 0.99);
    EXPECT_GT(inkCovered(small, whole, 1), 0.99);
}

TEST_F(Stamps, StampLiesOnThePageInBothOrientations)
{
    if (!testing_support::haveGhostscript()) GTEST_SKIP() << "Ghostscript is not installed";
    useDevice(21, 29.7f, 72);
    for (const bool landscape : {false, true}) {
        testing_support::PAGE page;
        page.landscape = landscape;
        const QImage paper =
            testing_support::rendered(testing_support::pageFile(collectionStamp(1, landscape), page), false);
        const QRect upperRight = landscape ? QRect(0, 0, 100, 300) : QRect(300, 0, 300, 100);
        EXPECT_GT(inkIn(paper, upperRight), 200) << landscape;
        EXPECT_EQ(inkIn(paper, upperRight), inkIn(paper, paper.rect())) << landscape;
    }
}

} // namespace
} // namespace graphics
