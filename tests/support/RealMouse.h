#pragma once

#include <QTest>
#include <QWidget>
#include <QWindow>

// The mouse as the window system delivers it: through the widget's window, so that Qt makes of
// the events what it makes of a real mouse (the implicit grab to the pressed widget, and for a
// double-click press, release, MouseButtonDblClick in place of the second press, release).
namespace realMouse {

inline QWindow* windowOf(QWidget* w) {
    return w->window()->windowHandle();
}
inline QPoint at(QWidget* w, QPoint p) {
    return w->mapTo(w->window(), p);
}
inline void click(QWidget* w, QPoint p, Qt::MouseButton b = Qt::LeftButton) {
    QTest::mouseClick(windowOf(w), b, {}, at(w, p));
}
inline void doubleClick(QWidget* w, QPoint p, Qt::MouseButton b = Qt::LeftButton) {
    QTest::mouseDClick(windowOf(w), b, {}, at(w, p));
}
// Pressed at `from`, dragged to `to` (both in `w`'s coordinates) and released there.
inline void dragOff(QWidget* w, QPoint from, QPoint to) {
    QTest::mousePress(windowOf(w), Qt::LeftButton, {}, at(w, from));
    QTest::mouseMove(windowOf(w), at(w, to));
    QTest::mouseRelease(windowOf(w), Qt::LeftButton, {}, at(w, to));
}

} // namespace realMouse
