#include "graphics/textsize.h"

#include <gtest/gtest.h>

#include "graphics/drawing.h"
#include "graphics/scenes.h"

namespace graphics {
namespace {

TEST(TextWidth, EmptyTextHasTheMarginOfItsBox)
{
    EXPECT_DOUBLE_EQ(textWidth(""), 0.278);
}

TEST(TextWidth, SumsThePublishedWidths)
{
    EXPECT_NEAR(textWidth("34.5"), 3 * 0.556 + 0.278 + 0.278, 1e-12);
    EXPECT_NEAR(textWidth("W"), widthOfW + 0.278, 1e-12);
}

TEST(TextWidth, SequencesTakeNoRoomAndScriptsLess)
{
    EXPECT_DOUBLE_EQ(textWidth("~$s~#"), textWidth("s"));
    EXPECT_NEAR(textWidth("m~^3"), textWidth("m") + 0.65 * 0.556, 1e-12);
    EXPECT_NEAR(textWidth("x~_0"), textWidth("x") + 0.65 * 0.556, 1e-12);
}

TEST(TextWidth, TrailingTildeIsACharacter)
{
    EXPECT_NEAR(textWidth("a~"), textWidth("a") + 0.584, 1e-12);
    EXPECT_NEAR(textWidth("~_"), 0.278 + 0.584 + 0.556, 1e-12);
}

TEST(TextWidth, OneCharacterInTwoBytesCountsOnce)
{
    EXPECT_DOUBLE_EQ(textWidth("\xc3\xbc"), textWidth("\xfc")); // UTF-8 and Latin-1
    EXPECT_DOUBLE_EQ(textWidth("\xc2\xb0"), textWidth("\xb0"));
}

TEST(TextWidth, IsNearTheWidthOnTheScreen)
{
    const DRAWSTATE before = drawState();
    testing_support::useDevice(20, 10, 150);
    for (const char* text : {"5000", "34.65", "Potential Temperature [C]", "Depth [m]", "-0.0001"}) {
        QSizeF size;
        (void)testing_support::painted([&](QPainter* p, std::FILE*) { size = labelSize(p, text, 12); });
        const double cm = size.width() / static_cast<double>(drawState().device.pixelsPerCm);
        EXPECT_NEAR(cm, textCm(12 * textWidth(text)), 0.12 * cm) << text;
        EXPECT_NEAR(size.height() / static_cast<double>(drawState().device.pixelsPerCm),
                    textCm(12 * labelHeight), 0.15 * textCm(12 * labelHeight));
    }
    drawState() = before;
}

} // namespace
} // namespace graphics
