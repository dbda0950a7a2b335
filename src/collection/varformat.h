#pragma once

// The limits of the formats of variables, which hold wherever one is read, typed or stored.

namespace collection {

inline constexpr int mostDecimals = 4;
inline constexpr int leastExtraWidth = 3, mostExtraWidth = 15; // of a field, beyond the decimals

// Decimals first, then the width beside them.
void clampFormat(int& width, int& decimals);
[[nodiscard]] bool isFormat(int width, int decimals);

} // namespace collection
