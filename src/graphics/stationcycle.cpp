#include <array>

#include "graphics/plots.h"

namespace graphics {

void RStationCycle::next()
{
    constexpr std::array<int, 16> colors = {1, 4, 2, 5, 8, 6, 3, 9, 12, 13, 10, 11, 14, 0, 15, 4};
    constexpr int symbolCount = 8;
    color = colors[static_cast<std::size_t>(count_) % colors.size()];
    symbol = count_ % symbolCount + 1;
    if (symbol == 1 && count_ > 0) fill = !fill;
    ++count_;
}

} // namespace graphics
