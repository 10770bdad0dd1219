#include "PacingTimer.h"

#include <algorithm>

namespace ferrule {

namespace {
constexpr qint64 kNsPerMs = 1000000;
} // namespace

PacingTimer::PacingTimer(QObject* parent)
    : QObject(parent) {
    clock_.start();
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &PacingTimer::wake);
}

void PacingTimer::fireAt(qint64 atNs) {
    atNs_ = atNs;
    timer_.start(int(std::max<qint64>(0, (atNs - nowNs()) / kNsPerMs)));
}

void PacingTimer::wake() {
    // A timer that woke a whole millisecond or more early waits again rather than spinning.
    if (atNs_ - nowNs() >= kNsPerMs) {
        fireAt(atNs_);
        return;
    }
    while (nowNs() < atNs_) {
    }
    emit due();
}

} // namespace ferrule
