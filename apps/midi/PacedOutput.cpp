#include "PacedOutput.h"

#include "WireTime.h"

#include <algorithm>

namespace ferrule {

PacedOutput::PacedOutput(Sink sink, QObject* parent)
    : QObject(parent)
    , sink_(std::move(sink)) {
    connect(&timer_, &PacingTimer::due, this, &PacedOutput::pump);
}

void PacedOutput::enqueue(const QByteArray& message, qint64 notBeforeNs) {
    const qint64 start = std::max({lineFreeNs_, notBeforeNs, nowNs()});
    lineFreeNs_ = start + wireTimeNs(message.size());
    queue_.push_back({message, lineFreeNs_});
    timer_.fireAt(queue_.front().dueNs);
}

void PacedOutput::clear() {
    queue_.clear();
    timer_.stop();
    lineFreeNs_ = std::min(lineFreeNs_, nowNs());
}

void PacedOutput::pump() {
    // Everything that is due leaves now.
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
        timer_.fireAt(queue_.front().dueNs);
}

} // namespace ferrule
