#include "collection/varformat.h"

#include <algorithm>

namespace collection {

void clampFormat(int& width, int& decimals)
{
    decimals = std::clamp(decimals, 0, mostDecimals);
    width = std::clamp(width, decimals + leastExtraWidth, decimals + mostExtraWidth);
}

bool isFormat(int width, int decimals)
{
    int sameWidth = width, sameDecimals = decimals;
    clampFormat(sameWidth, sameDecimals);
    return sameWidth == width && sameDecimals == decimals;
}

} // namespace collection
