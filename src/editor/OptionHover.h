#pragma once

#include "controls/cCheckRadio.h"

#include <QObject>
#include <QPointer>

#include <initializer_list>

class QLabel;
class QWidget;

namespace ferrule {

class ControlPools;

// Lights option items up under the mouse and lets them be clicked through their labels: a move
// over a glyph or its label begins a hover over the union of both and captures the mouse to the
// page area; leaving that rectangle, or any release, ends it. Coordinates are page twips.
class OptionHover : public QObject {
    Q_OBJECT
public:
    OptionHover(QWidget* pageArea, ControlPools& pools, QObject* parent);

    // Watches the glyphs and labels of the option groups and the page area itself.
    void install();

    void BeginHover(QLabel* glyph, QLabel* label, cCheckRadio* group, int item);
    void TrackHover(int x, int y);
    void EndHover();
    void mouseDown(Qt::MouseButton button);
    void mouseUp(Qt::MouseButton button, const QPoint& globalPos);

    bool active() const { return !glyph_.isNull(); }
    cCheckRadio* group() const { return group_; }
    int left() const { return left_; }
    int top() const { return top_; }
    int right() const { return right_; }
    int bottom() const { return bottom_; }

    static int MinOf(std::initializer_list<int> values);
    static int MaxOf(std::initializer_list<int> values);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* pageArea_;
    ControlPools& pools_;
    QPointer<QLabel> glyph_;
    QPointer<cCheckRadio> group_;
    int left_ = 0, top_ = 0, right_ = 0, bottom_ = 0;
};

} // namespace ferrule
