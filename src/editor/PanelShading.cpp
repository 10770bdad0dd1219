#include "PanelShading.h"

#include "controls/Twips.h"

#include <QColor>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ferrule {

int RedOf(int colour) {
    return colour & 0xFF;
}
int GreenOf(int colour) {
    return (colour >> 8) & 0xFF;
}
int BlueOf(int colour) {
    return (colour >> 16) & 0xFF;
}
int RgbColour(int red, int green, int blue) {
    return red | (green << 8) | (blue << 16);
}

int BlendColour(int colourA, int colourB, int amount) {
    const int scale = amount < 100 ? 100 : 1000;
    auto channel = [&](int a, int b) {
        const double c = (double(a) * amount + double(b) * (scale - amount) + scale / 2.0) / scale;
        return std::min(int(std::nearbyint(c)), 255); // the default rounding mode: half to even
    };
    return RgbColour(channel(RedOf(colourA), RedOf(colourB)),
                     channel(GreenOf(colourA), GreenOf(colourB)),
                     channel(BlueOf(colourA), BlueOf(colourB)));
}

bool FillGradient(QPainter& painter, int left, int top, int right, int bottom, int colour1,
                  int colour2, int direction) {
    if (direction < 0 || direction > 3) return false;
    const QRect r(QPoint(left / kTwipsPerPixel, top / kTwipsPerPixel),
                  QPoint(right / kTwipsPerPixel - 1, bottom / kTwipsPerPixel - 1));
    const QColor c1(RedOf(colour1), GreenOf(colour1), BlueOf(colour1));
    const QColor c2(RedOf(colour2), GreenOf(colour2), BlueOf(colour2));
    const bool horizontal = direction <= 1;
    QLinearGradient g(r.topLeft(), horizontal ? QPointF(r.right() + 1, r.top())
                                              : QPointF(r.left(), r.bottom() + 1));
    const bool reversed = direction == 1 || direction == 3;
    g.setColorAt(0, reversed ? c2 : c1);
    g.setColorAt(1, reversed ? c1 : c2);
    painter.fillRect(r, g);
    return true;
}

} // namespace ferrule
