#pragma once

#include "device/DumpAssembler.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <optional>

namespace ferrule {

class MidiInput;
class PacedOutput;

// Reads a model's system data from the device: either waits for a dump the user starts on the
// device (receive), or asks for it range by range (request). Data-set messages of the model go
// into the image through the dump map; other messages and messages with a bad checksum are
// counted and never applied. Ends when every mapped byte has arrived, or with an error naming
// what is missing.
class DumpReceiver : public QObject {
    Q_OBJECT
public:
    struct Options {
        int model = 10;
        QByteArray header;        // data-set header of the model
        QByteArray requestHeader; // request header (request only)
        bool request = false;
        int firstTimeoutMs = 60000;   // receive: silence before the first message
        int silenceTimeoutMs = 10000; // receive: silence once data flows
        int retries = 2;              // request: tries after the first, per range
        // Request: the address ranges to ask for, ascending; empty for every mapped range. The
        // read ends when these have arrived.
        std::vector<DumpMap::Range> ranges;
    };

    DumpReceiver(Options options, QByteArray baseImage, MidiInput& input, PacedOutput* requests,
                 QObject* parent = nullptr);

    void start();

    const DumpAssembler& assembler() const { return assembler_; }
    // Why it failed, in one sentence; empty on success.
    QString error() const { return error_; }
    // Every address range still missing, whole, for those who want the details.
    QString details() const { return details_; }
    // The time the rest takes, from what is left on the wire and what the exchanges so far
    // have taken beyond their wire time.
    qint64 msLeft() const;
    // Units asked for: the ranges', or the whole map's.
    int unitsExpected() const;
    int applied() const { return applied_; }
    int foreign() const { return foreign_; }
    int badChecksums() const { return badChecksums_; }
    int rejected() const { return rejected_; }
    int requestsSent() const { return requestsSent_; }
    // Milliseconds from the start to the end.
    double elapsedMs() const { return elapsedMs_; }
    // Bytes that crossed the wire both ways (requests and the messages taken in).
    qint64 wireBytes() const { return wireBytes_; }

signals:
    void progress(int unitsReceived, int unitsExpected);
    void finished(bool ok);

private:
    void onMessage(const QByteArray& message);
    void onTimeout();
    void sendRequest();
    bool currentRangeComplete() const;
    void finish(const QString& error);
    int blockMessageBytes(const DumpMap::Block& block) const;
    int expectedAnswerBytes(const DumpMap::Range& range) const;
    QByteArray requestFor(const DumpMap::Range& range) const;
    QString rangeName(const DumpMap::Range& range) const;

    Options options_;
    DumpAssembler assembler_;
    MidiInput& input_;
    PacedOutput* requests_;
    QTimer timer_;
    QElapsedTimer clock_;
    std::vector<DumpMap::Range> ranges_;
    std::vector<double> exchangeWireMs_; // request: each range's request and answer on the wire
    std::size_t rangeIndex_ = 0;
    int tries_ = 0;
    bool running_ = false;
    QString error_;
    QString details_;
    double lastExchangeEndMs_ = 0; // when the last range completed (request)
    qint64 rangeBytes_ = 0;        // request: the answer bytes of the range under way so far
    int applied_ = 0, foreign_ = 0, badChecksums_ = 0, rejected_ = 0, requestsSent_ = 0;
    double elapsedMs_ = 0;
    qint64 wireBytes_ = 0;
};

} // namespace ferrule
