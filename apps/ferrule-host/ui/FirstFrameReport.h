#pragma once

#include <QApplication>
#include <QEvent>
#include <QMetaObject>
#include <QString>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace ferrule {

// With FERRULE_FIRST_FRAME set in the environment, says on stderr when a window (the one named
// `windowName`, or any) has first been painted and put on the screen: "first frame at T", T
// in microseconds of the system clock, so that whoever started the process can tell how long
// its first frame took. With FERRULE_FIRST_FRAME=exit the process ends right there, so that a
// profiler counts exactly the work up to the first frame. Whole-process benchmarks use it; it
// costs nothing otherwise.
class FirstFrameReport : public QObject {
public:
    static void installIfAsked(const QString& windowName = {}) {
        if (qEnvironmentVariableIsEmpty("FERRULE_FIRST_FRAME")) return;
        qApp->installEventFilter(new FirstFrameReport(windowName));
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        // A window's paint comes first in its tree; what it and its children paint reaches the
        // screen before the event loop takes the next event, when the report is made.
        if (event->type() == QEvent::Paint && watched->isWidgetType() &&
            static_cast<QWidget*>(watched)->isWindow() &&
            (windowName_.isEmpty() || watched->objectName() == windowName_)) {
            qApp->removeEventFilter(this);
            QMetaObject::invokeMethod(
                this,
                [this] {
                    timespec now{};
                    clock_gettime(CLOCK_REALTIME, &now);
                    std::fprintf(stderr, "first frame at %lld\n",
                                 static_cast<long long>(now.tv_sec) * 1000000 + now.tv_nsec / 1000);
                    std::fflush(stderr);
                    if (qEnvironmentVariable("FERRULE_FIRST_FRAME") == QLatin1String("exit"))
                        std::_Exit(0);
                    deleteLater();
                },
                Qt::QueuedConnection);
        }
        return false;
    }

private:
    explicit FirstFrameReport(const QString& windowName)
        : QObject(qApp)
        , windowName_(windowName) {}

    QString windowName_;
};

} // namespace ferrule
