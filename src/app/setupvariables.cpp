#include "app/setupvariables.h"

#include <cstdlib>

namespace app {
namespace {

// Of a variable, or of an axis that is reversed by its sign.
int newNumber(int variable, std::span<const int> newNumbers)
{
    const auto old = static_cast<std::size_t>(std::abs(variable));
    const int number = old < newNumbers.size() ? newNumbers[old] : 0;
    return variable < 0 ? -number : number;
}

void takeVariables(graphics::DATAWINDOW& window, const graphics::DATAWINDOW& from)
{
    window.xVar = from.xVar;
    window.yVar = from.yVar;
    window.zVar = from.zVar;
}

// True if the window still shows what it showed.
bool follow(graphics::DATAWINDOW& window, std::span<const int> newNumbers)
{
    const int x = newNumber(window.xVar, newNumbers), y = newNumber(window.yVar, newNumbers);
    window.xVar = x;
    window.yVar = y;
    window.zVar = newNumber(window.zVar, newNumbers);
    return x != 0 && y != 0;
}

} // namespace

void followVariables(graphics::GRAPHICSSETUP& setup, std::span<const int> newNumbers,
                     const graphics::GRAPHICSSETUP& defaults, RANGEDWINDOWS& ranged)
{
    for (int mode = 0; mode < graphics::modeCount; ++mode) {
        const auto m = static_cast<std::size_t>(mode);
        for (std::size_t i = 0; i < setup.windows[m].size(); ++i) {
            graphics::DATAWINDOW& window = setup.windows[m][i];
            // Axes of SECTION and SURFACE windows count in other variables, which are made anew.
            const bool propertyPlot = mode == graphics::modeStation || mode == graphics::modeScatter;
            const bool same = propertyPlot && follow(window, newNumbers);
            if (!same) ranged[m].reset(i + 1);
            if (!same) takeVariables(window, defaults.windows[m][i]);
            const bool inLayout = static_cast<int>(i) < setup.windowCount[m];
            window.exists = inLayout && graphics::hasVariables(mode, window) ? 1 : 0;
            window.complete = 0;
        }
    }
    graphics::markAllToDraw(setup);
}

} // namespace app
