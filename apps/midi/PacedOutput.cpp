#include "PacedOutput.h"

#include "WireTime.h"

#include <algorithm>

namespace ferrule {

PacedOutput::PacedOutput(Sink sink, QObject* parent)
    : QObject(parent)
    , sink_(std::move(sink)) {
    clock_.start();
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &PacedOutput::pump);
}

void PacedOutput::enqueue(const QByteArray& message, qint64 notBeforeNs) {
    const qint64 start = std::max({lineFreeNs_, notBeforeNs, nowNs()});
    lineFreeNs_ = start + wireTimeNs(message.size());
    queue_.push_back({message, lineFreeNs_});
    schedule();
}

void PacedOutput::clear() {
    queue_.clear();
    timer_.stop();
    lineFreeNs_ = std::min(lineFreeNs_, nowNs());
}

void PacedOutput::schedule() {
    if (queue_.empty()) return;
    const qint64 waitNs = queue_.front().dueNs - nowNs();
    // Whole milliseconds down: a message may leave up to 1 ms early rather than late, and the
    // pump sends everything that is due.
    timer_.start(int(std::max<qint64>(0, waitNs / 1000000)));
}

void PacedOutput::pump() {
    // Spin out the last fraction of a millisecond so the message leaves on time.
    while (!queue_.empty() && queue_.front().dueNs - nowNs() > 0 &&
           queue_.front().dueNs - nowNs() < 1000000) {
    }
    while (!queue_.empty() && queue_.front().dueNs <= nowNs()) {
        const Item item = queue_.front();
        queue_.pop_front();
        QString why;
        if (!sink_(item.message, &why)) {
            clear();
            emit failed(why);
            return;
        }
        ++sent_;
        bytes_ += item.message.size();
        emit messageSent(item.message);
    }
    if (queue_.empty())
        emit drained();
    else
        schedule();
}

} // namespace ferrule
