#pragma once

#include "LinkWatch.h"
#include "MidiApi.h"
#include "MidiInput.h"
#include "MidiOutput.h"
#include "PacedOutput.h"

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

namespace ferrule {

class DumpReceiver;
class SendVerifier;

// The device as the librarian talks to it: the chosen MIDI ports, and the long operations that
// use them (send the model's data, send only what the device does not hold yet, receive or
// request a dump), one at a time, each with progress and an honest end.
//
// The ports are watched while they are open: when the MIDI system stops or the device's port
// goes away, the operation that needs it ends at once and says so, the port is closed, and the
// session reopens it by itself once it is back. It remembers what is known of the device: what
// was last received from it, or sent to it (read back and found the same, or not read back),
// in this run, and when. With verify on, a send reads back what it sent and compares it.
class DeviceSession : public QObject {
    Q_OBJECT
public:
    enum class Operation { None, Send, Receive, Request, Verify };

    // What is known of the data the device holds.
    struct Knowledge {
        enum class Kind { Unknown, Received, Sent, Verified };
        Kind kind = Kind::Unknown;
        QByteArray image; // what it holds (Verified: sent and read back the same)
        QDateTime at;     // when it was received, sent or verified
        QString why;      // Unknown: why nothing is known, when there is more to say
    };

    explicit DeviceSession(QObject* parent = nullptr);
    ~DeviceSession() override;

    // Opens the ports (an empty name leaves that side closed) and remembers them; false with
    // `error` for the first that fails. A port that cannot be opened now is tried again while it
    // stays chosen.
    bool openPorts(MidiApi api, const QString& input, const QString& output, QString* error);
    // Closes the ports and forgets the choice.
    void closePorts();
    // Opens again the chosen ports that are not open; true when every chosen port is open.
    // Tried by itself every second while a chosen port is missing.
    bool reconnect();
    bool hasInput() const { return input_ != nullptr; }
    bool hasOutput() const { return output_ != nullptr; }
    QString inputName() const { return input_ ? input_->portName() : QString(); }
    QString outputName() const { return output_ ? output_->portName() : QString(); }
    // The ports chosen, open or not.
    QString chosenInput() const { return chosenIn_; }
    QString chosenOutput() const { return chosenOut_; }
    // Why a chosen port is not open ("the JACK server has stopped", "the MIDI input port … is
    // gone"); empty when every chosen port is open.
    QString linkProblem() const;
    // The output port, kept alive for as long as the caller holds it even if the session lets
    // it go (the editor's transmission runs while the session watches the port).
    std::shared_ptr<MidiOutput> sharedOutput() const { return output_; }

    void setHeader(int model, const QByteArray& header);
    void setGapMs(int gap) { gapMs_ = gap; }

    // The messages of the model's whole transmission; with `onlyChanges`, only those whose data
    // differ from what the device is known to hold (all of them when nothing is known). Returns
    // the number of messages queued (0: nothing to send).
    int send(const QByteArray& image, bool onlyChanges);
    // Whether a send reads back what it sent and compares it (when there is an input port).
    void setVerify(bool on) { verify_ = on; }
    bool verifies() const { return verify_; }
    // The last read-back of a send, or null: its outcome, what differed.
    const SendVerifier* verification() const { return verifier_.get(); }
    // Sends again the messages whose bytes the last read-back found different, then reads them
    // back. Returns the number of messages queued (0: nothing to send).
    int sendAgain();
    void receive(const QByteArray& base, bool request, int timeoutS = -1);
    void stop();

    Operation busy() const { return operation_; }
    const Knowledge& knowledge() const { return known_; }
    bool knowsDevice() const { return known_.kind != Knowledge::Kind::Unknown; }
    // The image a finished receive produced.
    const QByteArray& received() const { return received_; }
    // More about the last failure (every missing address range), when there is more.
    QString lastDetails() const { return details_; }
    // The device was changed elsewhere (the editor's own transmission): what it holds is no
    // longer known.
    void forgetDevice(const QString& why = QString());

signals:
    void started(DeviceSession::Operation operation);
    void progress(qint64 done, qint64 total, qint64 msLeft);
    void finished(bool ok, const QString& message);
    // A send was read back and the device holds every byte sent: `image` is what it holds.
    void verified(const QByteArray& image);
    void messageIn(const QByteArray& message);
    void messageOut(const QByteArray& message);
    // A port was lost or came back, or the choice changed.
    void linkChanged();

private:
    void end(bool ok, const QString& message);
    void portLost(const QString& why, bool input);
    bool openSide(const MidiPortList& list, const QString& name, bool input, QString* error);
    void watchPorts();
    QString sentSoFar() const;
    QString sentWhole() const;
    int startSending(const QByteArray& image, const QByteArray& base,
                     const std::vector<QByteArray>& messages);
    void startVerify();
    void verifyFinished();

    std::unique_ptr<MidiInput> input_;
    std::shared_ptr<MidiOutput> output_;
    LinkWatch watch_;
    QTimer reconnectTimer_;
    MidiApi api_ = MidiApi::Jack;
    QString chosenIn_, chosenOut_;
    QString inProblem_, outProblem_; // why a chosen port is not open
    PacedOutput paced_;
    std::unique_ptr<DumpReceiver> receiver_;
    int model_ = 10;
    QByteArray header_;
    int gapMs_ = 20;
    Operation operation_ = Operation::None;
    Knowledge known_;
    QByteArray sending_; // the image being sent
    bool verify_ = false;
    std::unique_ptr<SendVerifier> verifier_;
    // The operation under way: its messages and bytes, and the clock of a send.
    int opMessages_ = 0, opTotalMessages_ = 0;
    qint64 total_ = 0, done_ = 0;
    qint64 startNs_ = 0;
    double doneWireMs_ = 0;
    QByteArray received_;
    QString details_;
};

// A count of MIDI messages as the window says it: "1 message", "604 messages".
QString messageCount(qint64 count);

} // namespace ferrule
