#pragma once

#include <QRect>
#include <cmath>

namespace ferrule {

// Positions and sizes are kept in twips; 15 twips make one device-independent pixel. Qt scales
// pixels for high-density screens.
inline constexpr int kTwipsPerPixel = 15;

inline int twipsToPx(double twips) {
    return int(std::floor(twips / kTwipsPerPixel));
}
inline int pxToTwips(double px) {
    return int(std::lround(px * kTwipsPerPixel));
}
inline QRect twipsRect(int x, int y, int w, int h) {
    return QRect(twipsToPx(x), twipsToPx(y), twipsToPx(w), twipsToPx(h));
}

} // namespace ferrule
