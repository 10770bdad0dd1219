#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace ferrule {

// Fires at a moment on its own monotonic clock, on time: a Qt timer waits out the whole
// milliseconds (rounded down, so it never fires late on their account) and the last fraction
// of a millisecond is spun out. What is paced to a MIDI cable's speed leaves neither early nor
// up to a millisecond late.
class PacingTimer : public QObject {
    Q_OBJECT
public:
    explicit PacingTimer(QObject* parent = nullptr);

    // Nanoseconds since this timer was made.
    qint64 nowNs() const { return clock_.nsecsElapsed(); }
    // Fires `due` at `atNs` on this clock (at once when that has passed); replaces an earlier
    // moment.
    void fireAt(qint64 atNs);
    void stop() { timer_.stop(); }

signals:
    void due();

private:
    void wake();

    QElapsedTimer clock_;
    QTimer timer_;
    qint64 atNs_ = 0;
};

} // namespace ferrule
