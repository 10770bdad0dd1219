#include "VSlider.h"

#include "ControlArt.h"
#include "Twips.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ferrule {

VSlider::VSlider(int poolIndex, QWidget* parent)
    : ValueControl(poolIndex, parent)
    , travel_(int(std::lround(kTwipsPerPixel * 52.0))) {
    setObjectName(QStringLiteral("VSlider1_%1").arg(poolIndex));
    setProperty("ferruleKind", QStringLiteral("slider"));
    setFixedSize(twipsToPx(kWidth), twipsToPx(kHeight));
    setLabelWidth(0);
    placeThumb();
}

int VSlider::thumbPosition(int value, int min, int max, int travel) {
    if (max == min) return travel;
    return int(std::floor(double(travel) / (max - min) * (max - value) + 0.5));
}

QRect VSlider::thumbRect() const {
    return QRect(twipsToPx(kThumbLeft), twipsToPx(thumbTop_), twipsToPx(kThumbWidth),
                 twipsToPx(kThumbHeight))
        .adjusted(-2, -2, 2, 2);
}

void VSlider::placeThumb() {
    // The thumb is a picture placed in twips, so it sits on whole pixels: it is painted again
    // only when its pixel changes, and only at its old and new places.
    const int top = thumbPosition(value_, min_, max_, travel_);
    if (twipsToPx(top) == twipsToPx(thumbTop_)) {
        thumbTop_ = top;
        return;
    }
    update(thumbRect());
    thumbTop_ = top;
    update(thumbRect());
}

void VSlider::setMin(int m) {
    min_ = m;
    if (value_ < m) storeValue(m);
    placeThumb();
}

void VSlider::setMax(int m) {
    ValueControl::setMax(m);
}

void VSlider::setValue(int v) {
    value_ = v;
    placeThumb();
    rewriteLabel();
}

void VSlider::setLabelWidth(int n) {
    // Width, left and the value read back; the label stays centred on the track (x = 645).
    struct Preset {
        int width, left, reads;
    };
    static constexpr Preset presets[] = {{300, 495, 0}, {630, 330, 0}, {750, 270, 1},
                                         {870, 210, 2}, {990, 150, 3}, {1290, 0, 4}};
    const Preset& p = n >= -1 && n <= 3 ? presets[n + 1] : presets[5];
    labelWidth_ = p.reads;
    setLabelGeometry(p.left, p.width, 960);
}

void VSlider::pressAt(double x, double y) {
    if (!acceptsInput()) return;
    const int t = thumbTop_;
    if (y >= t && y <= t + kThumbHeight && x >= kThumbLeft && x <= kThumbLeft + kThumbWidth) {
        dragging_ = true;
        grab_ = int(std::lround(y - t));
    } else if (y >= t) {
        if (value_ > min_) CommitValue(value_ - 1);
    } else if (value_ < max_) {
        CommitValue(value_ + 1);
    }
}

void VSlider::dragTo(double y) {
    if (!dragging_) return;
    const double p = double(std::lround(y - grab_));
    if (p > travel_)
        CommitValue(min_);
    else if (p < 0)
        CommitValue(max_);
    else
        CommitValue(int(std::floor(max_ - p / travel_ * (max_ - min_) + 0.5)));
}

void VSlider::paintEvent(QPaintEvent* e) {
    QPainter p(this);
    const QRect track(twipsToPx(495), 0, twipsToPx(300), twipsToPx(915));
    // Only what the paint covers: a new value text alone does not lay the track again.
    if (e->region().intersects(track)) {
        const qreal ratio = devicePixelRatioF();
        p.setCompositionMode(QPainter::RasterOp_SourceAndDestination);
        p.drawPixmap(track, ControlArt::trackMask(ratio));
        p.setCompositionMode(QPainter::RasterOp_SourceOrDestination);
        p.drawPixmap(track, ControlArt::trackImage(ratio));
        p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
    // The thumb travels 52 pixels; its picture is 9 pixels high, drawn from its top. A value
    // outside the range puts it outside its travel, where presses are tested against it too:
    // what the user sees is what a press hits.
    p.drawPixmap(QPoint(twipsToPx(kThumbLeft), twipsToPx(thumbTop_)),
                 ControlArt::thumbImage(devicePixelRatioF()));
    // The text is laid out only when its box is part of what is painted.
    if (e->region().intersects(valueLabelRect())) paintValueLabel(p);
}

void VSlider::mousePressEvent(QMouseEvent* e) {
    if (pressOnLabel(e)) return;
    if (e->button() != Qt::LeftButton) return;
    const double x = pxToTwips(e->position().x());
    const double y = pxToTwips(e->position().y());
    guarded([this, x, y] { pressAt(x, y); });
}

void VSlider::mouseMoveEvent(QMouseEvent* e) {
    const double y = pxToTwips(e->position().y());
    guarded([this, y] { dragTo(y); });
}

} // namespace ferrule
