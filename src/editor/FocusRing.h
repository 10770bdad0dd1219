#pragma once

#include <QPointer>
#include <QWidget>

namespace ferrule {

// The focus frame of the editor window: a thin amber ring drawn around the control that has the
// keyboard focus, or around the part a control names in its `focusRect` property (the current
// grid cell). It shows once the keyboard is used and hides on a mouse press, as focus cues do,
// so that a window worked with the mouse looks as designed.
class FocusRing : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QWidget* target READ target)
public:
    explicit FocusRing(QWidget* window);

    // Follows focus into `w`.
    void watch(QWidget* w);
    QWidget* target() const { return isVisible() ? target_.data() : nullptr; }
    // Places the ring again (the target moved its focus rectangle).
    void follow();
    // The keyboard is in use from now on (a window that opens with its focus on a control, a
    // page switch from the keyboard): the ring shows on `target`, which has or gets the focus.
    void showForKeyboard(QWidget* target);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent*) override;

private:
    QPointer<QWidget> target_;
    bool keyboard_ = false;
};

} // namespace ferrule
