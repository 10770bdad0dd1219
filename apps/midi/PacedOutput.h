#pragma once

#include "PacingTimer.h"

#include <QByteArray>
#include <QObject>

#include <deque>
#include <functional>

namespace ferrule {

// Sends messages at the speed of a MIDI cable: each is handed to the sink when its last byte
// would have left a 31,250-baud line, one after another. Deadlines are kept on one clock and
// never drift: a late timer does not push the following messages later.
class PacedOutput : public QObject {
    Q_OBJECT
public:
    // The sink sends one message; false with a reason stops the output.
    using Sink = std::function<bool(const QByteArray&, QString*)>;

    explicit PacedOutput(Sink sink, QObject* parent = nullptr);

    // Queues a message; it leaves no earlier than `notBeforeNs` on this output's clock.
    void enqueue(const QByteArray& message, qint64 notBeforeNs = 0);
    void clear();
    bool idle() const { return queue_.empty(); }
    qint64 nowNs() const { return timer_.nowNs(); }
    int sentMessages() const { return sent_; }
    qint64 sentBytes() const { return bytes_; }

signals:
    void messageSent(const QByteArray& message);
    void failed(const QString& why);
    void drained();

private:
    struct Item {
        QByteArray message;
        qint64 dueNs;
    };
    void pump();

    Sink sink_;
    PacingTimer timer_;
    std::deque<Item> queue_;
    qint64 lineFreeNs_ = 0;
    int sent_ = 0;
    qint64 bytes_ = 0;
};

} // namespace ferrule
