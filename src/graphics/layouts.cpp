#include "graphics/layouts.h"

#include <array>

#include "common/text.h"

namespace graphics {

namespace {

// Boxes are width, x, height, y in cm. Between two plots stand the numbers and label of the right one, about
// 1.8 cm, and the colour bar of the left one, about 1.5 cm; below a plot its numbers and label take 1.4 cm.

constexpr BOX twoWindows[] = {{13.0f, 14.0f, 16.3f, 2.3f}, {8.3f, 2.1f, 8.3f, 10.3f}};
constexpr BOX sixWindows[] = {{7.0f, 2.6f, 3.4f, 15.8f},  {7.0f, 2.6f, 3.4f, 10.2f},
                              {7.0f, 11.8f, 7.7f, 11.5f}, {7.0f, 21.0f, 7.7f, 11.5f},
                              {7.0f, 11.8f, 7.7f, 2.2f},  {7.0f, 21.0f, 7.7f, 2.2f}};
constexpr BOX section2[] = {{23.4f, 3.0f, 9.6f, 8.9f}, {12.3f, 14.5f, 5.5f, 1.5f}};
constexpr BOX section3[] = {
    {23.4f, 3.0f, 4.6f, 14.2f}, {23.4f, 3.0f, 4.6f, 8.0f}, {12.3f, 14.5f, 4.5f, 1.5f}};
constexpr BOX section5[] = {{9.8f, 2.6f, 4.2f, 14.6f},
                            {9.8f, 16.6f, 4.2f, 14.6f},
                            {9.8f, 2.6f, 4.2f, 8.2f},
                            {9.8f, 16.6f, 4.2f, 8.2f},
                            {9.8f, 16.6f, 4.2f, 1.8f}};
constexpr BOX section6[] = {{5.4f, 2.2f, 3.4f, 15.8f},  {5.4f, 2.2f, 3.4f, 10.2f}, {6.4f, 11.0f, 7.7f, 11.5f},
                            {6.4f, 20.9f, 7.7f, 11.5f}, {6.4f, 11.0f, 7.7f, 2.2f}, {6.4f, 20.9f, 7.7f, 2.2f}};
constexpr BOX surface1[] = {{23.0f, 2.5f, 16.0f, 2.0f}};
constexpr BOX surface2[] = {{17.0f, 5.5f, 7.9f, 10.8f}, {17.0f, 5.5f, 7.9f, 1.2f}};
constexpr BOX surface4[] = {{11.4f, 1.6f, 7.9f, 10.8f},
                            {11.4f, 15.5f, 7.9f, 10.8f},
                            {11.4f, 1.6f, 7.9f, 1.2f},
                            {11.4f, 15.5f, 7.9f, 1.2f}};
constexpr BOX surface6[] = {{11.4f, 1.6f, 5.2f, 13.5f}, {11.4f, 15.5f, 5.2f, 13.5f},
                            {11.4f, 1.6f, 5.2f, 7.0f},  {11.4f, 15.5f, 5.2f, 7.0f},
                            {11.4f, 1.6f, 5.2f, 0.5f},  {11.4f, 15.5f, 5.2f, 0.5f}};
constexpr BOX surface9[] = {{7.0f, 1.0f, 5.1f, 14.0f}, {7.0f, 10.3f, 5.1f, 14.0f}, {7.0f, 19.6f, 5.1f, 14.0f},
                            {7.0f, 1.0f, 5.1f, 7.5f},  {7.0f, 10.3f, 5.1f, 7.5f},  {7.0f, 19.6f, 5.1f, 7.5f},
                            {7.0f, 1.0f, 5.1f, 1.0f},  {7.0f, 10.3f, 5.1f, 1.0f},  {7.0f, 19.6f, 5.1f, 1.0f}};
constexpr BOX surface12[] = {
    {6.8f, 1.0f, 4.0f, 15.5f}, {6.8f, 10.3f, 4.0f, 15.5f}, {6.8f, 19.6f, 4.0f, 15.5f},
    {6.8f, 1.0f, 4.0f, 10.6f}, {6.8f, 10.3f, 4.0f, 10.6f}, {6.8f, 19.6f, 4.0f, 10.6f},
    {6.8f, 1.0f, 4.0f, 5.7f},  {6.8f, 10.3f, 4.0f, 5.7f},  {6.8f, 19.6f, 4.0f, 5.7f},
    {6.8f, 1.0f, 4.0f, 0.8f},  {6.8f, 10.3f, 4.0f, 0.8f},  {6.8f, 19.6f, 4.0f, 0.8f}};

// The map's places: the free corner at the lower left, and the whole canvas.
constexpr BOX wholeMap = {23.6f, 2.3f, 15.8f, 2.2f}; // with room for its colour bar
constexpr BOX mapOfTwo = {9.4f, 1.7f, 6.2f, 1.7f};
constexpr BOX mapOfSix = {7.9f, 1.7f, 6.2f, 1.7f};
constexpr BOX mapOfSection2 = {10.4f, 1.7f, 5.3f, 1.4f};
constexpr BOX mapOfSection3 = {10.4f, 1.7f, 4.5f, 1.4f};
constexpr BOX mapOfSection5 = {10.6f, 1.8f, 4.4f, 1.6f};
constexpr BOX mapOfSection6 = {7.0f, 1.7f, 6.2f, 1.7f};

constexpr LAYOUTTEMPLATE templates[] = {
    {"STATION 2 Win", "_STATION_2Win", modeStation, twoWindows, mapOfTwo},
    {"STATION 6 Win", "", modeStation, sixWindows, mapOfSix},
    {"SCATTER 2 Win", "_SCATTER_2Win", modeScatter, twoWindows, mapOfTwo},
    {"SCATTER 6 Win", "_SCATTER_6Win", modeScatter, sixWindows, mapOfSix},
    {"SECTION 2 Win", "_SECTION_2Win", modeSection, section2, mapOfSection2},
    {"SECTION 3 Win", "_SECTION_3Win", modeSection, section3, mapOfSection3},
    {"SECTION 5 Win", "_SECTION_5Win", modeSection, section5, mapOfSection5},
    {"", "_SECTION_6Win", modeSection, section6, mapOfSection6},
    {"SURFACE 1 Win", "_SURFACE_1Win", modeSurface, surface1, wholeMap},
    {"SURFACE 2 Win", "_SURFACE_2Win", modeSurface, surface2, wholeMap},
    {"SURFACE 4 Win", "_SURFACE_4Win", modeSurface, surface4, wholeMap},
    {"SURFACE 6 Win", "_SURFACE_6Win", modeSurface, surface6, wholeMap},
    {"SURFACE 9 Win", "_SURFACE_9Win", modeSurface, surface9, wholeMap},
    {"SURFACE 12 Win", "_SURFACE_12Win", modeSurface, surface12, wholeMap},
};
constexpr std::array<std::size_t, modeCount> defaultTemplates = {1, 3, 7, 10};
constexpr std::array<std::size_t, modeCount> smallTemplates = {0, 2, 4, 9};

void placeWindow(DATAWINDOW& window, const BOX& box)
{
    window.boxLen = window.xLen = box.width;
    window.boxOrgX = window.xOrg = box.x;
    window.boxHeight = window.yLen = box.height;
    window.boxOrgY = window.yOrg = box.y;
}

} // namespace

std::span<const LAYOUTTEMPLATE> layoutTemplates()
{
    return templates;
}

const LAYOUTTEMPLATE* layoutByName(std::string_view menuText)
{
    const std::string_view wanted = common::trimBlanks(menuText);
    if (wanted.empty()) return nullptr;
    for (const LAYOUTTEMPLATE& layout : templates) {
        if (common::equalsIgnoreCase(layout.menuText, wanted)) return &layout;
    }
    return nullptr;
}

const LAYOUTTEMPLATE& defaultLayout(int mode, bool few)
{
    return templates[(few ? smallTemplates : defaultTemplates)[static_cast<std::size_t>(mode)]];
}

BOX fullMapBox()
{
    return wholeMap;
}

void applyLayout(GRAPHICSSETUP& setup, const LAYOUTTEMPLATE& layout)
{
    const auto mode = static_cast<std::size_t>(layout.mode);
    for (std::size_t i = 0; i < setup.windows[mode].size(); ++i) {
        DATAWINDOW& window = setup.windows[mode][i];
        const bool inLayout = i < layout.windows.size();
        if (inLayout) placeWindow(window, layout.windows[i]);
        window.exists = inLayout && hasVariables(layout.mode, window) ? 1 : 0;
        window.toDraw = window.exists;
        window.complete = 0;
    }
    setup.windowCount[mode] = static_cast<std::int32_t>(layout.windows.size());
    setup.mapBoxes[mode + 1] = layout.map;
    if (setup.mode != layout.mode) return;
    setup.map.box = layout.map;
    setup.map.toDraw = 1;
}

bool useLayout(GRAPHICSSETUP& setup, std::string_view menuText)
{
    const LAYOUTTEMPLATE* const layout = layoutByName(menuText);
    if (layout) applyLayout(setup, *layout);
    return layout != nullptr;
}

std::vector<std::string> layoutNames()
{
    std::vector<std::string> names;
    for (const LAYOUTTEMPLATE& layout : templates) {
        if (*layout.menuText) names.emplace_back(layout.menuText);
    }
    return names;
}

} // namespace graphics
