#include "RKnob.h"

#include "ControlArt.h"
#include "Twips.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ferrule {
namespace {
const double kPi = 4.0 * std::atan(1.0);
constexpr double kDeg = 180.0;
} // namespace

RKnob::RKnob(int poolIndex, QWidget* parent)
    : ValueControl(poolIndex, parent) {
    setObjectName(QStringLiteral("RKnob1_%1").arg(poolIndex));
    setProperty("ferruleKind", QStringLiteral("knob"));
    setFixedSize(twipsToPx(kWidth), twipsToPx(kHeight));
    setCursor(Qt::PointingHandCursor);
    setColor(0);
    setLabelWidth(0);
}

QPoint RKnob::pointerPosition(int value, int max) {
    // With no range the pointer rests at the low end stop.
    const double fraction = max > 0 ? double(value) / max : 0.0;
    const double theta = (30.0 + 300.0 * fraction) * kPi / kDeg;
    const int top = int(std::floor(210.0 * std::cos(theta) + 300.0));
    const int left = int(std::floor(300.0 - 210.0 * std::sin(theta)));
    return {left, top};
}

QPointF RKnob::pointerCentre() const {
    // The pointer is a picture placed at (Left, Top) in twips; like any control it sits on
    // whole pixels, and the dot is centred in its 165-twip square.
    return {twipsToPx(pointerLeft_) + kPointerSize / 2.0 / kTwipsPerPixel,
            twipsToPx(pointerTop_) + kPointerSize / 2.0 / kTwipsPerPixel};
}

QRect RKnob::pointerRect() const {
    // The dot and its antialiased edge, with a pixel to spare.
    const QPointF centre = pointerCentre();
    return QRectF(centre.x() - 5, centre.y() - 5, 10, 10).toAlignedRect();
}

void RKnob::movePointer(int left, int top) {
    // The position is kept in twips; the dot is painted again only when its pixel changes, and
    // only at its old and new places.
    const QPoint before(twipsToPx(pointerLeft_), twipsToPx(pointerTop_));
    if (before == QPoint(twipsToPx(left), twipsToPx(top))) {
        pointerLeft_ = left;
        pointerTop_ = top;
        return;
    }
    update(pointerRect());
    pointerLeft_ = left;
    pointerTop_ = top;
    update(pointerRect());
}

void RKnob::placePointer() {
    const QPoint p = pointerPosition(value_, max_);
    movePointer(p.x(), p.y());
}

void RKnob::setValue(int v) {
    value_ = max_ > 0 ? v : 0;
    placePointer();
    rewriteLabel();
}

void RKnob::setLabelWidth(int n) {
    labelWidth_ = n != 0 ? 1 : 0;
    if (labelWidth_)
        setLabelGeometry(15, 735, 780);
    else
        setLabelGeometry(75, 615, 780);
}

void RKnob::setColor(int n) {
    color_ = n >= 0 && n < ControlArt::kKnobColours ? n : 0;
    update();
}

void RKnob::TrackPointer(double x, double y) {
    double dx = x - 375.0;
    double dy = y - 375.0;
    const double r = std::sqrt(dx * dx + dy * dy);
    if (r < 65.0) return;
    dx = 210.0 * dx / r;
    dy = 210.0 * dy / r;
    int newValue = 0;
    double refX = 0;
    double refY = 0;
    if (dy > 182.0) {
        // Into the gap between the end stops.
        newValue = dx >= 0 ? max_ : 0;
        refX = dx >= 0 ? 480.0 : 270.0;
        refY = 557.0;
    } else {
        refX = 375.0 + dx;
        refY = 375.0 + dy;
        const double c = dy / 210.0;
        double theta = 180.0;
        if (c != -1.0) {
            const double a = std::asin(c) * kDeg / kPi;
            theta = refX < 375.0 ? 90.0 - a : 270.0 + a;
        }
        newValue = int(std::trunc((theta - 30.0) * (max_ + 1) / 300.0));
        newValue = std::min(newValue, max_);
    }
    if (max_ > 1) {
        if (value_ == 0 && newValue > max_ * 0.5) return;
        if (value_ == max_ && newValue < max_ * 0.5) return;
    }
    movePointer(int(std::floor(refX)) - 75, int(std::floor(refY)) - 75);
    if (newValue == value_) return;
    storeValue(newValue);
    emit Change(newValue);
}

void RKnob::paintEvent(QPaintEvent* e) {
    QPainter p(this);
    const QRect picture(0, 0, twipsToPx(kWidth), twipsToPx(kPictureHeight));
    // The mask clears the knob's area to black and keeps the background; OR lays the knob in.
    p.setCompositionMode(QPainter::RasterOp_SourceAndDestination);
    p.drawPixmap(picture, ControlArt::knobMask(devicePixelRatioF()));
    p.setCompositionMode(QPainter::RasterOp_SourceOrDestination);
    p.drawPixmap(picture, ControlArt::knobImage(color_, devicePixelRatioF()));
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    // The pointer: a lit dot centred in its 165-twip square.
    p.setRenderHint(QPainter::Antialiasing);
    const QPointF centre = pointerCentre();
    p.setPen(QPen(QColor(0x1b, 0x1e, 0x22), 1.0));
    p.setBrush(Off() ? QColor(0x9a, 0xa0, 0xa8) : QColor(0xfb, 0xf7, 0xe8));
    p.drawEllipse(centre, 2.6, 2.6);
    p.setRenderHint(QPainter::Antialiasing, false);
    // The text is laid out only when its box is part of what is painted.
    if (e->region().intersects(valueLabelRect())) paintValueLabel(p);
}

void RKnob::mousePressEvent(QMouseEvent* e) {
    if (pressOnLabel(e)) return;
    if (e->button() != Qt::LeftButton || Off()) return;
    lastX_ = -1;
    lastY_ = -1;
    fineValue_ = -1;
    dragging_ = true;
    const double x = pxToTwips(e->position().x());
    const double y = pxToTwips(e->position().y());
    guarded([this, x, y] { TrackPointer(x, y); });
}

void RKnob::mouseMoveEvent(QMouseEvent* e) {
    if (!dragging_) return;
    const double x = pxToTwips(e->position().x());
    const double y = pxToTwips(e->position().y());
    if (x == lastX_ && y == lastY_) return;
    const bool fine = e->modifiers() & Qt::ShiftModifier;
    if (fine && lastX_ >= 0)
        guarded([this, x, y] { TrackFine(lastX_, lastY_, x, y); });
    else
        fineValue_ = -1;
    lastX_ = x;
    lastY_ = y;
    if (!fine) guarded([this, x, y] { TrackPointer(x, y); });
}

double RKnob::fineTurn(double fromX, double fromY, double toX, double toY) {
    // The angle the mouse turned around the centre, clockwise positive, a quarter of it.
    const double from = std::atan2(fromY - 375.0, fromX - 375.0);
    const double to = std::atan2(toY - 375.0, toX - 375.0);
    double turn = (to - from) * kDeg / kPi;
    if (turn > kDeg) turn -= 2 * kDeg;
    if (turn < -kDeg) turn += 2 * kDeg;
    return turn / 4.0;
}

void RKnob::TrackFine(double fromX, double fromY, double toX, double toY) {
    if (fineValue_ < 0) fineValue_ = value_;
    // 300° span the range; with Shift the value moves a quarter as far as the mouse turns.
    fineValue_ += fineTurn(fromX, fromY, toX, toY) * (max_ + 1) / 300.0;
    fineValue_ = std::clamp(fineValue_, 0.0, double(max_));
    CommitValue(int(std::lround(fineValue_)));
}

} // namespace ferrule
