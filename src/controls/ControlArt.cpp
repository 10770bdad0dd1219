#include "ControlArt.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

#include <array>
#include <cmath>
#include <functional>
#include <map>

namespace ferrule::ControlArt {
namespace {

constexpr int kKnobW = 51;
constexpr int kKnobH = 48;
// The knob's centre and radius in pixels; the pointer circle (radius 14) lies inside the cap.
constexpr double kCx = 25.5;
constexpr double kCy = 25.0;
constexpr double kSkirt = 21.5;
constexpr double kCap = 17.5;

// A picture of w × h logical pixels at the screen's pixel ratio: painting in logical
// coordinates, so that the 1× picture is exactly what it always was and finer screens get finer
// edges instead of scaled pixels.
QImage canvas(int w, int h, qreal ratio, const QColor& fill) {
    QImage img(int(std::ceil(w * ratio)), int(std::ceil(h * ratio)), QImage::Format_RGB32);
    img.setDevicePixelRatio(ratio);
    img.fill(fill);
    return img;
}
QPixmap clearCanvas(int w, int h, qreal ratio) {
    QPixmap pm(int(std::ceil(w * ratio)), int(std::ceil(h * ratio)));
    pm.setDevicePixelRatio(ratio);
    pm.fill(Qt::transparent);
    return pm;
}

// One picture set per pixel ratio met so far.
template <class Set, class Make> const Set& perRatio(qreal ratio, Make make) {
    static std::map<int, Set> sets;
    const int key = int(std::lround(ratio * 100));
    auto it = sets.find(key);
    if (it == sets.end()) it = sets.emplace(key, make(ratio)).first;
    return it->second;
}

const std::array<QColor, kKnobColours> kKnobColourSet = {
    QColor(0x9a, 0x6f, 0xa8), // mauve
    QColor(0xc8, 0x4a, 0x5e), // rose-red
    QColor(0x4f, 0xa5, 0x5e), // green
    QColor(0x45, 0x78, 0xc4), // blue
    QColor(0x8d, 0x93, 0x9b), // grey
};

QImage drawKnob(const QColor& colour, qreal ratio) {
    QImage img = canvas(kKnobW, kKnobH, ratio, Qt::black);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    // Skirt: a dark ring with scale ticks along the 300° travel.
    QRadialGradient skirt(QPointF(kCx, kCy - 4), kSkirt * 1.3);
    skirt.setColorAt(0, QColor(0x4a, 0x4f, 0x57));
    skirt.setColorAt(1, QColor(0x16, 0x18, 0x1b));
    p.setPen(Qt::NoPen);
    p.setBrush(skirt);
    p.drawEllipse(QPointF(kCx, kCy), kSkirt, kSkirt);
    p.setPen(QPen(QColor(0xc9, 0xcf, 0xd6), 1.0));
    for (int i = 0; i <= 10; ++i) {
        const double a = (30.0 + 30.0 * i) * M_PI / 180.0; // from straight down, clockwise
        const double sx = -std::sin(a), sy = std::cos(a);
        p.drawLine(QPointF(kCx + sx * (kCap + 1.0), kCy + sy * (kCap + 1.0)),
                   QPointF(kCx + sx * (kSkirt - 1.0), kCy + sy * (kSkirt - 1.0)));
    }
    // Cap: the colour, lit from the upper left.
    QRadialGradient cap(QPointF(kCx - 6, kCy - 7), kCap * 1.6);
    cap.setColorAt(0, colour.lighter(165));
    cap.setColorAt(0.45, colour);
    cap.setColorAt(1, colour.darker(200));
    p.setPen(QPen(colour.darker(260), 1.0));
    p.setBrush(cap);
    p.drawEllipse(QPointF(kCx, kCy), kCap, kCap);
    p.setPen(QPen(QColor(255, 255, 255, 70), 1.0));
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(kCx - kCap + 2, kCy - kCap + 2, 2 * kCap - 4, 2 * kCap - 4), 60 * 16, 80 * 16);
    return img;
}

QImage drawMask(int w, int h, qreal ratio, const std::function<void(QPainter&)>& shape) {
    QImage img = canvas(w, h, ratio, Qt::white);
    QPainter p(&img);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::black);
    shape(p);
    return img;
}

// The track: a slot with a scale on both sides.
constexpr int kTrackW = 20;
constexpr int kTrackH = 61;
const QRectF kSlot(8, 3, 4, 55);

QImage drawTrack(qreal ratio) {
    QImage img = canvas(kTrackW, kTrackH, ratio, Qt::black);
    QPainter p(&img);
    p.setPen(QPen(QColor(0x6c, 0x74, 0x7e), 1));
    for (int i = 0; i <= 10; ++i) {
        const int y = 4 + i * 52 / 10;
        const int len = (i % 5 == 0) ? 4 : 2;
        p.drawLine(1, y, 1 + len, y);
        p.drawLine(kTrackW - 2 - len, y, kTrackW - 2, y);
    }
    QLinearGradient g(kSlot.left(), 0, kSlot.right(), 0);
    g.setColorAt(0, QColor(0x0e, 0x10, 0x12));
    g.setColorAt(1, QColor(0x3a, 0x3f, 0x46));
    p.fillRect(kSlot, g);
    return img;
}

QPixmap drawThumb(qreal ratio) {
    QPixmap pm = clearCanvas(16, 9, ratio);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient g(0, 0, 0, 9);
    g.setColorAt(0, QColor(0xf2, 0xf4, 0xf6));
    g.setColorAt(0.5, QColor(0xb9, 0xc0, 0xc8));
    g.setColorAt(1, QColor(0x7d, 0x85, 0x8f));
    p.setPen(QPen(QColor(0x2a, 0x2e, 0x33), 1));
    p.setBrush(g);
    p.drawRoundedRect(QRectF(0.5, 0.5, 15, 8), 2, 2);
    p.setPen(QPen(QColor(0xf2, 0xa3, 0x3a), 1));
    p.drawLine(QPointF(2.5, 4.5), QPointF(13.5, 4.5));
    return pm;
}

QPixmap drawGlyph(qreal ratio, const QColor& frame, const QColor& interior, const QColor& dot) {
    QPixmap pm = clearCanvas(13, 13, ratio);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(frame, 1.2));
    p.setBrush(interior);
    p.drawEllipse(QRectF(0.8, 0.8, 11.4, 11.4));
    if (dot.isValid()) {
        QRadialGradient g(QPointF(5.5, 5.0), 4.0);
        g.setColorAt(0, dot.lighter(150));
        g.setColorAt(1, dot.darker(120));
        p.setPen(Qt::NoPen);
        p.setBrush(g);
        p.drawEllipse(QPointF(6.5, 6.5), 3.4, 3.4);
    }
    return pm;
}

QPixmap drawSwitch(bool on, qreal ratio) {
    QPixmap pm = clearCanvas(34, 16, ratio);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF body(0.5, 0.5, 33, 15);
    p.setPen(QPen(QColor(0x22, 0x25, 0x29), 1));
    p.setBrush(on ? QColor(0x3f, 0x9c, 0x52) : QColor(0x5b, 0x62, 0x6b));
    p.drawRoundedRect(body, 7.5, 7.5);
    QRadialGradient knob(on ? QPointF(24, 6) : QPointF(8, 6), 8);
    knob.setColorAt(0, QColor(0xfa, 0xfb, 0xfc));
    knob.setColorAt(1, QColor(0xb4, 0xbb, 0xc3));
    p.setBrush(knob);
    p.drawEllipse(on ? QPointF(25.5, 8) : QPointF(8.5, 8), 6, 6);
    p.setPen(on ? QColor(Qt::white) : QColor(0xe3, 0xe6, 0xea));
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(8);
    f.setBold(true);
    p.setFont(f);
    p.drawText(on ? QRectF(3, 0, 16, 16) : QRectF(15, 0, 17, 16), Qt::AlignCenter,
               on ? QStringLiteral("ON") : QStringLiteral("OFF"));
    return pm;
}

} // namespace

const QPixmap& knobImage(int colour, qreal ratio) {
    using Set = std::array<QPixmap, kKnobColours>;
    const Set& images = perRatio<Set>(ratio, [](qreal r) {
        Set a;
        for (int i = 0; i < kKnobColours; ++i)
            a[std::size_t(i)] = QPixmap::fromImage(drawKnob(kKnobColourSet[std::size_t(i)], r));
        return a;
    });
    return images.at(std::size_t(colour >= 0 && colour < kKnobColours ? colour : 0));
}

const QPixmap& knobMask(qreal ratio) {
    return perRatio<QPixmap>(ratio, [](qreal r) {
        return QPixmap::fromImage(drawMask(kKnobW, kKnobH, r, [](QPainter& p) {
            p.setRenderHint(QPainter::Antialiasing);
            p.drawEllipse(QPointF(kCx, kCy), kSkirt, kSkirt);
        }));
    });
}

const QPixmap& trackImage(qreal ratio) {
    return perRatio<QPixmap>(ratio, [](qreal r) { return QPixmap::fromImage(drawTrack(r)); });
}

const QPixmap& trackMask(qreal ratio) {
    return perRatio<QPixmap>(ratio, [](qreal r) {
        return QPixmap::fromImage(drawMask(kTrackW, kTrackH, r, [](QPainter& p) {
            p.fillRect(kSlot, Qt::black);
            // The ticks with the very strokes of the picture, so that they cover the same pixels
            // at any ratio.
            p.setPen(QPen(Qt::black, 1));
            for (int i = 0; i <= 10; ++i) {
                const int y = 4 + i * 52 / 10;
                const int len = (i % 5 == 0) ? 4 : 2;
                p.drawLine(1, y, 1 + len, y);
                p.drawLine(kTrackW - 2 - len, y, kTrackW - 2, y);
            }
        }));
    });
}

const QPixmap& thumbImage(qreal ratio) {
    return perRatio<QPixmap>(ratio, [](qreal r) { return drawThumb(r); });
}

const QPixmap& checkImage(int index, qreal ratio) {
    using Set = std::array<QPixmap, 10>;
    const Set& glyphs = perRatio<Set>(ratio, [](qreal r) {
        const QColor grey(0x8a, 0x92, 0x9c), green(0x3c, 0xc4, 0x55), yellow(0xe8, 0xc3, 0x3a);
        const QColor blue(0x2f, 0x7b, 0xd8), light(0xe9, 0xf2, 0xfd);
        Set a;
        a[0] = drawGlyph(r, QColor(0x6a, 0x71, 0x7a), QColor(0xf4, 0xf5, 0xf7), grey.lighter(120));
        a[1] = drawGlyph(r, QColor(0x4a, 0x52, 0x5b), QColor(0xf4, 0xf5, 0xf7), green);
        a[2] = drawGlyph(r, QColor(0x6a, 0x71, 0x7a), QColor(0xf4, 0xf5, 0xf7), yellow);
        a[4] = drawGlyph(r, blue, light, QColor());
        a[5] = drawGlyph(r, blue, light, green);
        a[8] = drawGlyph(r, QColor(0x3a, 0x40, 0x47), Qt::white, grey.darker(140));
        a[9] = drawGlyph(r, QColor(0x3a, 0x40, 0x47), Qt::white, green.darker(150));
        a[3] = a[6] = a[7] = clearCanvas(13, 13, r);
        return a;
    });
    return glyphs.at(std::size_t(index >= 0 && index < 10 ? index : 3));
}

const QPixmap& onOffImage(int index, qreal ratio) {
    using Set = std::array<QPixmap, 2>; // off, on
    const Set& set = perRatio<Set>(ratio, [](qreal r) {
        return Set{drawSwitch(false, r), drawSwitch(true, r)};
    });
    return set[index == 11 ? 1 : 0];
}

} // namespace ferrule::ControlArt
