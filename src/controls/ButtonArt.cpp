#include "ButtonArt.h"

#include "catalogue/PageCatalogue.h"

#include <cmath>

#include <QFont>
#include <QFontMetrics>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <array>

namespace ferrule {
namespace {

enum class Look { Normal, Pressed, Current };

const QColor kAmber(0xf2, 0xa3, 0x3a);
const QColor kLedGreen(0x5c, 0xe0, 0x6a);

// A transparent picture of w × h logical pixels at the screen's pixel ratio.
QPixmap blank(int w, int h, qreal ratio) {
    QPixmap pm(int(std::ceil(w * ratio)), int(std::ceil(h * ratio)));
    pm.setDevicePixelRatio(ratio);
    pm.fill(Qt::transparent);
    return pm;
}

QFont captionFont(int pixelSize, bool bold) {
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(pixelSize);
    f.setBold(bold);
    return f;
}

// A tab: a rounded-top strip whose caption runs upwards, with an indicator bar at the foot.
QPixmap drawTab(const QString& caption, Look look, qreal ratio) {
    const int w = ButtonArt::kTabWidth;
    const int h = ButtonArt::kTabHeight;
    QPixmap pm = blank(w, h, ratio);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    const QRectF r(1.5, 1.5, w - 3.0, h - 2.0);
    path.moveTo(r.left(), r.bottom());
    path.lineTo(r.left(), r.top() + 6);
    path.quadTo(r.left(), r.top(), r.left() + 6, r.top());
    path.lineTo(r.right() - 6, r.top());
    path.quadTo(r.right(), r.top(), r.right(), r.top() + 6);
    path.lineTo(r.right(), r.bottom());
    path.closeSubpath();

    QLinearGradient g(0, 0, w, 0);
    QColor text;
    switch (look) {
    case Look::Normal:
        g.setColorAt(0, QColor(0x4a, 0x52, 0x5d));
        g.setColorAt(1, QColor(0x33, 0x39, 0x41));
        text = QColor(0xd6, 0xdc, 0xe3);
        break;
    case Look::Pressed:
        g.setColorAt(0, QColor(0x24, 0x28, 0x2e));
        g.setColorAt(1, QColor(0x2e, 0x33, 0x3a));
        text = QColor(0xf0, 0xf3, 0xf6);
        break;
    case Look::Current:
        g.setColorAt(0, QColor(0xf4, 0xf6, 0xf8));
        g.setColorAt(1, QColor(0xdd, 0xe2, 0xe8));
        text = QColor(0x1d, 0x22, 0x28);
        break;
    }
    p.fillPath(path, g);
    p.setPen(QPen(look == Look::Current ? QColor(0x9a, 0xa4, 0xb0) : QColor(0x16, 0x19, 0x1d), 1));
    p.drawPath(path);
    if (look == Look::Current) {
        p.fillRect(QRectF(4, 3, w - 8, 3), kAmber);
    } else {
        p.setPen(QPen(QColor(255, 255, 255, 40), 1));
        p.drawLine(QPointF(3, 7), QPointF(3, h - 2));
    }

    // The caption reads from bottom to top, centred on the strip.
    p.save();
    const int shift = look == Look::Pressed ? 1 : 0;
    p.translate(w / 2.0 + shift, h - 6 + shift);
    p.rotate(-90);
    p.setPen(text);
    // Every tab in one size; a caption of two words too long for the strip takes two lines.
    QFont font = captionFont(11, true);
    const bool twoLines = QFontMetrics(font).horizontalAdvance(caption) > h - 14 &&
                          caption.contains(QLatin1Char(' '));
    while (!twoLines && font.pixelSize() > 8 &&
           QFontMetrics(font).horizontalAdvance(caption) > h - 14)
        font.setPixelSize(font.pixelSize() - 1);
    p.setFont(font);
    if (twoLines) {
        QString text = caption;
        text.replace(text.indexOf(QLatin1Char(' ')), 1, QLatin1Char('\n'));
        const int line = QFontMetrics(font).lineSpacing();
        p.drawText(QRectF(0, -line, h - 12, 2 * line), Qt::AlignCenter, text);
    } else {
        p.drawText(QRectF(0, -w / 2.0, h - 12, w), Qt::AlignCenter, caption);
    }
    p.restore();
    return pm;
}

QPixmap drawPlate(int w, int h, const QString& caption, Look look, const QColor& led,
                  const QColor& faceTop, const QColor& faceBottom, qreal ratio) {
    QPixmap pm = blank(w, h, ratio);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r(0.5, 0.5, w - 1.0, h - 1.0);
    QLinearGradient g(0, 0, 0, h);
    if (look == Look::Pressed) {
        g.setColorAt(0, faceBottom.darker(125));
        g.setColorAt(1, faceTop.darker(115));
    } else {
        g.setColorAt(0, faceTop);
        g.setColorAt(1, faceBottom);
    }
    p.setPen(QPen(QColor(0x12, 0x14, 0x17), 1));
    p.setBrush(g);
    p.drawRoundedRect(r, 4, 4);
    if (look != Look::Pressed) {
        p.setPen(QPen(QColor(255, 255, 255, 50), 1));
        p.drawLine(QPointF(4, 1.5), QPointF(w - 4, 1.5));
    }
    const int shift = look == Look::Pressed ? 1 : 0;
    // Indicator lamp at the left.
    const QPointF lamp(9 + shift, h / 2.0 + shift);
    QRadialGradient lg(lamp, 4);
    lg.setColorAt(0, led.lighter(150));
    lg.setColorAt(1, led.darker(130));
    p.setPen(QPen(QColor(0, 0, 0, 160), 1));
    p.setBrush(lg);
    p.drawEllipse(lamp, 3.5, 3.5);
    p.setPen(look == Look::Current ? QColor(Qt::white) : QColor(0xdf, 0xe4, 0xea));
    // The caption is centred right of the lamp; a long one is set closer to keep its margins.
    QFont font = captionFont(11, true);
    const qreal room = w - 20;
    const int natural = QFontMetrics(font).horizontalAdvance(caption);
    if (natural > room && caption.size() > 1)
        font.setLetterSpacing(QFont::AbsoluteSpacing, -(natural - room) / (caption.size() - 1));
    p.setFont(font);
    p.drawText(QRectF(16 + shift, shift, w - 20, h), Qt::AlignVCenter | Qt::AlignHCenter, caption);
    return pm;
}

const std::array<QString, 4> kCommandCaptions = {QStringLiteral("Transmit"),
                                                 QStringLiteral("Reload"), QStringLiteral("Cancel"),
                                                 QStringLiteral("OK")};

} // namespace

QString ButtonArt::tabCaption(int tab) {
    return QString::fromUtf8(PageCatalogue::tabCaption(tab));
}

QString ButtonArt::commandCaption(int index) {
    return kCommandCaptions.at(std::size_t(index));
}

QString ButtonArt::modeCaption(int index) {
    static const int models[] = {3, 5, 6, 8, 10};
    return QStringLiteral("GT-%1").arg(models[index]);
}

ButtonArt::ButtonArt() = default;

void ButtonArt::setRatio(qreal ratio) {
    if (ratio == ratio_) return;
    // Another screen: every picture is drawn anew at its ratio when next asked for.
    ratio_ = ratio;
    mImgDrawn_.fill(false);
    ImgDrawn_.fill(false);
    CButtonDrawn_.fill(false);
}

namespace {

const QColor kSlateTop(0x4b, 0x53, 0x5e), kSlateBottom(0x2f, 0x35, 0x3d);

// The pictures by their index: mode buttons 0-4 (normal), 10-14 (pressed), 20-24 (current);
// tabs 0-12, 20-32, 40-52 likewise; command buttons 4-7 (normal), 8-11 (pressed), 12 and 13
// (stop, and stop pressed). Other indexes hold no picture.
QPixmap drawMode(int index, qreal ratio) {
    const int i = index % 10;
    if (index >= 25 || i >= 5) return {};
    const QString c = ButtonArt::modeCaption(i);
    const QColor dark(0x3a, 0x40, 0x48);
    switch (index / 10) {
    case 0:
        return drawPlate(ButtonArt::kModeWidth, ButtonArt::kModeHeight, c, Look::Normal, dark,
                         kSlateTop, kSlateBottom, ratio);
    case 1:
        return drawPlate(ButtonArt::kModeWidth, ButtonArt::kModeHeight, c, Look::Pressed, dark,
                         kSlateTop, kSlateBottom, ratio);
    default:
        return drawPlate(ButtonArt::kModeWidth, ButtonArt::kModeHeight, c, Look::Current, kLedGreen,
                         QColor(0x3d, 0x5a, 0x48), QColor(0x25, 0x3a, 0x2d), ratio);
    }
}

QPixmap drawTabPicture(int index, qreal ratio) {
    const int i = index % 20;
    if (index >= 53 || i >= 13) return {};
    const Look look = index < 20 ? Look::Normal : index < 40 ? Look::Pressed : Look::Current;
    return drawTab(ButtonArt::tabCaption(i), look, ratio);
}

QPixmap drawCommand(int index, qreal ratio) {
    const QColor leds[4] = {QColor(0x3f, 0x9b, 0xe8), QColor(0xd9, 0xb2, 0x3c),
                            QColor(0xd8, 0x58, 0x4f), kLedGreen};
    if (index >= 4 && index < 12) {
        const int i = index % 4;
        return drawPlate(ButtonArt::kCommandWidth, ButtonArt::kCommandHeight,
                         kCommandCaptions[std::size_t(i)], index < 8 ? Look::Normal : Look::Pressed,
                         leds[i], kSlateTop, kSlateBottom, ratio);
    }
    const QColor stopTop(0x8a, 0x2f, 0x2a), stopBottom(0x5c, 0x1c, 0x19), red(0xff, 0x4a, 0x3d);
    if (index == 12 || index == 13)
        return drawPlate(ButtonArt::kCommandWidth, ButtonArt::kCommandHeight,
                         QStringLiteral("Stop"), index == 12 ? Look::Current : Look::Pressed, red,
                         stopTop, stopBottom, ratio);
    return {};
}

} // namespace

// Each picture is drawn the first time it is asked for and kept: a window shows few of them.
const QPixmap& ButtonArt::mImg(int index) const {
    return cached(mImg_[index], mImgDrawn_[std::size_t(index)],
                  [this, index] { return drawMode(index, ratio_); });
}
const QPixmap& ButtonArt::Img(int index) const {
    return cached(Img_[index], ImgDrawn_[std::size_t(index)],
                  [this, index] { return drawTabPicture(index, ratio_); });
}
const QPixmap& ButtonArt::CButton(int index) const {
    return cached(CButton_[index], CButtonDrawn_[std::size_t(index)],
                  [this, index] { return drawCommand(index, ratio_); });
}

} // namespace ferrule
