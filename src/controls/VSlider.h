#pragma once

#include "ValueControl.h"

namespace ferrule {

// The vertical fader: a track, a thumb that sits at whole values (top = Max, bottom = Min) and
// the value label below. User input is accepted only while Enabled is set and Off is not.
class VSlider : public ValueControl {
    Q_OBJECT
    Q_PROPERTY(int Min READ Min WRITE setMin)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabledInput)
    Q_PROPERTY(int thumbTop READ thumbTop)
    Q_PROPERTY(int travel READ travel)
public:
    static constexpr int kWidth = 1290;
    static constexpr int kHeight = 1200;
    static constexpr int kThumbLeft = 525;
    static constexpr int kThumbWidth = 240;
    static constexpr int kThumbHeight = 135;

    explicit VSlider(int poolIndex = 0, QWidget* parent = nullptr);

    int Min() const { return min_; }
    void setMin(int m);
    void setMax(int m) override;
    void setValue(int v) override;
    void setLabelWidth(int n) override;
    bool Enabled() const { return enabled_; }
    void setEnabledInput(bool e) { enabled_ = e; }
    int thumbTop() const { return thumbTop_; }
    int travel() const { return travel_; }

    // A left press at (x, y) twips: on the thumb it starts a drag; above or below it steps.
    void pressAt(double x, double y);
    // A mouse move to y twips while dragging.
    void dragTo(double y);
    // The thumb's top for a value, in twips; with no range the thumb sits at the bottom.
    static int thumbPosition(int value, int min, int max, int travel);

protected:
    int minimum() const override { return min_; }
    bool acceptsInput() const override { return !Off() && enabled_; }
    void rangeChanged() override { placeThumb(); }
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;

private:
    void placeThumb();
    QRect thumbRect() const;

    int min_ = 0;
    bool enabled_ = false;
    int thumbTop_ = 0;
    int travel_;
    int grab_ = 0;
};

} // namespace ferrule
