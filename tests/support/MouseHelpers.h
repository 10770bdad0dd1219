#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

// Mouse events at positions given in twips (15 to a pixel), as a user would send them.
inline QPoint px(int xTwips, int yTwips) {
    return {xTwips / 15, yTwips / 15};
}

inline void pressAt(QWidget* w, int x, int y, Qt::MouseButton b = Qt::LeftButton) {
    QTest::mousePress(w, b, {}, px(x, y));
}
inline void releaseAt(QWidget* w, int x, int y, Qt::MouseButton b = Qt::LeftButton) {
    QTest::mouseRelease(w, b, {}, px(x, y));
}
inline void moveTo(QWidget* w, int x, int y, Qt::MouseButtons held = Qt::LeftButton) {
    const QPointF p = px(x, y);
    QMouseEvent e(QEvent::MouseMove, p, w->mapToGlobal(p), Qt::NoButton, held, {});
    QApplication::sendEvent(w, &e);
}
inline void clickAt(QWidget* w, int x, int y, Qt::MouseButton b = Qt::LeftButton) {
    pressAt(w, x, y, b);
    releaseAt(w, x, y, b);
}

// A click in the middle of a knob's or slider's value label.
template <class Control> void clickLabel(Control* c, Qt::MouseButton b) {
    QTest::mouseClick(c, b, {}, c->valueLabelRect().center());
}

// The value each signal a spy caught carried first: what a control reported, in order.
inline QList<int> reported(const QSignalSpy& spy) {
    QList<int> out;
    for (const auto& args : spy)
        out << args.at(0).toInt();
    return out;
}
