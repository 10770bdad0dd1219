#pragma once

#include <QEvent>
#include <QMetaObject>
#include <QWidget>

#include <functional>

namespace ferrule {

// Runs work that a widget's first frame does not need once the widget has first been painted:
// queued behind the paint, it runs when what was painted is on the screen. It runs once, and
// not at all if the widget goes before it is painted.
class AfterFirstPaint : public QObject {
public:
    static void call(QWidget* widget, std::function<void()> work) {
        widget->installEventFilter(new AfterFirstPaint(widget, std::move(work)));
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            QMetaObject::invokeMethod(
                this,
                [this] {
                    work_();
                    deleteLater();
                },
                Qt::QueuedConnection);
        }
        return false;
    }

private:
    AfterFirstPaint(QWidget* widget, std::function<void()> work)
        : QObject(widget)
        , work_(std::move(work)) {}

    std::function<void()> work_;
};

} // namespace ferrule
