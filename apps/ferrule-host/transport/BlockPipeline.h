#pragma once

#include "PacingTimer.h"

#include <QByteArray>
#include <QFile>
#include <QObject>

#include <functional>

namespace ferrule {

class MidiOutput;

// Where the blocks of a transmission go: each is framed as a system-exclusive message, sent to
// a MIDI output port and/or appended to a .syx file, and counted. The plug-in's QueueEmpty is
// called when the messages queued so far have had their wire time (31,250 baud, 10 bits a
// byte) plus a gap after each.
class BlockPipeline : public QObject {
    Q_OBJECT
public:
    struct Options {
        QByteArray header; // empty: the default header for the block's model
        int gapMs = 20;
        QString syxFile;
    };

    // `midi` is an opened output port, or null for none.
    BlockPipeline(Options options, MidiOutput* midi, QObject* parent = nullptr);

    // Opens the .syx file; false with `error` on failure.
    bool open(QString* error);
    // Whether anything leaves at all: a MIDI port or a .syx file.
    bool hasOutput() const;
    void setQueueEmpty(std::function<void()> queueEmpty) { queueEmpty_ = std::move(queueEmpty); }
    // Tells whether the editor's transmission still runs, so that its end can be timed.
    void setRunningProbe(std::function<bool()> running) { running_ = std::move(running); }

    // One block from the plug-in's MIDISendEx. Throws when the port or the file fails; after
    // the first failure every block is refused and QueueEmpty is no longer called.
    void send(int address, const QByteArray& data, int model);

    // Whether an output has failed, and why (the system's reason).
    bool failed() const { return !failure_.isEmpty(); }
    QString failure() const { return failure_; }
    // Whether it was the MIDI link that failed (the port or the MIDI system gone), not the file.
    bool linkFailed() const { return linkFailed_; }
    // What reached each output: "12 messages (3,456 bytes) to MIDI port X; 11 messages (...) to
    // FILE".
    QString deliveryReport() const;

signals:
    // A message left for the outputs.
    void messageSent(const QByteArray& message);
    // An output failed; emitted from the event loop, after the plug-in's call has returned.
    void outputFailed(const QString& why);

public:
    int messages() const { return messages_; }
    qint64 bytes() const { return bytes_; }
    double wireMs() const { return wireMs_; }
    double gapsMs() const { return double(messages_) * options_.gapMs; }
    // Milliseconds from the first message to the QueueEmpty that ended the transmission, or -1.
    double elapsedMs() const { return endMs_; }

private:
    void drained();
    void fail(const QString& why);
    void arm(double atMs);
    // Milliseconds since the first message.
    double nowMs() const { return double(pacer_.nowNs() - startNs_) / 1e6; }

    Options options_;
    MidiOutput* midi_;
    QFile syx_;
    PacingTimer pacer_;
    qint64 startNs_ = -1; // when the first message left, on the pacer's clock
    std::function<void()> queueEmpty_;
    std::function<bool()> running_;
    double deadlineMs_ = 0;
    int messages_ = 0;
    qint64 bytes_ = 0;
    double wireMs_ = 0;
    double endMs_ = -1;
    int failures_ = 0;
    int idleCalls_ = 0;
    QString failure_;
    bool linkFailed_ = false;
    int midiMessages_ = 0, syxMessages_ = 0;
    qint64 midiBytes_ = 0, syxBytes_ = 0;
};

} // namespace ferrule
