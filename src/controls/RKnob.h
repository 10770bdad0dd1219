#pragma once

#include "ValueControl.h"

namespace ferrule {

// The rotary knob: a round picture with a pointer on a 300° arc and the value label below. The
// value follows the angle of the mouse around the centre while the left button is held.
class RKnob : public ValueControl {
    Q_OBJECT
    Q_PROPERTY(int Color READ Color WRITE setColor)
    Q_PROPERTY(int pointerLeft READ pointerLeft)
    Q_PROPERTY(int pointerTop READ pointerTop)
public:
    static constexpr int kWidth = 765;
    static constexpr int kHeight = 1020;
    static constexpr int kPictureHeight = 720;
    static constexpr int kPointerSize = 165;

    explicit RKnob(int poolIndex = 0, QWidget* parent = nullptr);

    void setValue(int v) override;
    void setLabelWidth(int n) override;
    int Color() const { return color_; }
    void setColor(int n);
    int pointerLeft() const { return pointerLeft_; }
    int pointerTop() const { return pointerTop_; }

    // The mouse at (x, y) twips while dragging: moves the pointer and, when the value changes,
    // stores it and raises Change.
    void TrackPointer(double x, double y);
    // A drag with Shift from (fromX, fromY) to (toX, toY) twips: the value moves by a quarter of
    // the angle the mouse turned around the centre, from where it was.
    void TrackFine(double fromX, double fromY, double toX, double toY);
    // A quarter of the angle, in degrees clockwise, that a move turns around the centre.
    static double fineTurn(double fromX, double fromY, double toX, double toY);
    // The pointer's top-left corner for a value, in twips.
    static QPoint pointerPosition(int value, int max);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;

private:
    void placePointer();

    int color_ = 0;
    QPointF pointerCentre() const;
    QRect pointerRect() const;
    void movePointer(int left, int top);

    int pointerLeft_ = 0;
    int pointerTop_ = 0;
    double lastX_ = -1;
    double lastY_ = -1;
    double fineValue_ = -1;
};

} // namespace ferrule
