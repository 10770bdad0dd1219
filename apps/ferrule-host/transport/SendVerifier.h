#pragma once

#include "device/DumpAssembler.h"

#include <QByteArray>
#include <QObject>
#include <QStringList>

#include <memory>
#include <vector>

namespace ferrule {

class DumpReceiver;
class MidiInput;
class PacedOutput;

// Reads back what a send put on the device and compares it with what was sent. It is told each
// message as it leaves; then it asks the device, with requests as a device read makes them, for
// the address ranges those messages covered (joined where they adjoin, so a whole send asks as
// a whole read does), and compares the answers with the sent bytes.
class SendVerifier : public QObject {
    Q_OBJECT
public:
    enum class Outcome { Running, Verified, Differs, NoAnswer };

    // `base` is the image the sent messages are laid over: bytes no message carried are not
    // compared.
    SendVerifier(int model, QByteArray header, QByteArray requestHeader, QByteArray base,
                 QObject* parent = nullptr);
    ~SendVerifier() override;

    // A data-set message that left for the device; messages of another header are ignored.
    void sent(const QByteArray& message);
    int sentMessages() const { return int(sent_.size()); }
    // The image as the device should hold it now.
    const QByteArray& sentImage() const { return sentImage_.image(); }
    // The mapped address ranges the sent messages covered, ascending, joined where they adjoin.
    std::vector<DumpMap::Range> sentRanges() const;

    // Asks the device; `finished` follows.
    void start(MidiInput& input, PacedOutput& requests);
    void stop();

    Outcome outcome() const { return outcome_; }
    // Why the device could not be read; empty unless NoAnswer.
    QString error() const { return error_; }
    // What the device answered, over the sent image.
    QByteArray readImage() const;
    // Image indices whose byte the device holds otherwise than it was sent, ascending.
    std::vector<int> differingBytes() const;
    // What differs, one line a parameter (a byte no parameter covers, by its address), as
    // differenceLine says it: "Page / Heading / Caption [instance]: sent -> held".
    QStringList differenceLines() const;
    // The sent messages that carry a differing byte, as they were sent.
    std::vector<QByteArray> messagesToSendAgain() const;
    // Requests sent, and bytes on the wire both ways.
    int requests() const;
    // The time the read-back still takes (see DumpReceiver::msLeft).
    qint64 msLeft() const;
    qint64 wireBytes() const;
    // Milliseconds the read-back took.
    double elapsedMs() const;

signals:
    void progress(int unitsReceived, int unitsExpected);
    void finished(SendVerifier::Outcome outcome);

private:
    struct Sent {
        int address; // packed
        int units;
        QByteArray message;
    };

    int model_;
    QByteArray header_, requestHeader_;
    DumpAssembler sentImage_;
    std::vector<Sent> sent_;
    std::unique_ptr<DumpReceiver> receiver_;
    Outcome outcome_ = Outcome::Running;
    QString error_;
};

} // namespace ferrule
