#pragma once

#include "MidiApi.h"
#include "MidiInput.h"
#include "MidiOutput.h"
#include "PacedOutput.h"

#include <QByteArray>
#include <QObject>

#include <memory>
#include <optional>

namespace ferrule {

class DumpReceiver;

// The device as the librarian talks to it: the chosen MIDI ports, and the long operations that
// use them (send the model's data, send only what the device does not hold yet, receive or
// request a dump), one at a time, each with progress and an honest end. It remembers what the
// device is known to hold: what was last received from it or sent to it in this run.
class DeviceSession : public QObject {
    Q_OBJECT
public:
    enum class Operation { None, Send, Receive, Request };

    explicit DeviceSession(QObject* parent = nullptr);
    ~DeviceSession() override;

    // Opens the ports (an empty name leaves that side closed); false with `error` for the first
    // that fails.
    bool openPorts(MidiApi api, const QString& input, const QString& output, QString* error);
    void closePorts();
    bool hasInput() const { return input_ != nullptr; }
    bool hasOutput() const { return output_ != nullptr; }
    QString inputName() const { return input_ ? input_->portName() : QString(); }
    QString outputName() const { return output_ ? output_->portName() : QString(); }
    MidiOutput* output() { return output_.get(); }

    void setHeader(int model, const QByteArray& header);
    void setGapMs(int gap) { gapMs_ = gap; }

    // The messages of the model's whole transmission; with `onlyChanges`, only those whose data
    // differ from what the device is known to hold (all of them when nothing is known). Returns
    // the number of messages queued (0: nothing to send).
    int send(const QByteArray& image, bool onlyChanges);
    void receive(const QByteArray& base, bool request, int timeoutS = -1);
    void stop();

    Operation busy() const { return operation_; }
    bool knowsDevice() const { return known_.has_value(); }
    // What the device is known to hold; empty when unknown.
    QByteArray knownImage() const { return known_.value_or(QByteArray()); }
    // The image a finished receive produced.
    const QByteArray& received() const { return received_; }
    // The device was changed elsewhere (the editor's own transmission): what it holds is no
    // longer known.
    void forgetDevice();

signals:
    void started(DeviceSession::Operation operation);
    void progress(qint64 done, qint64 total, qint64 msLeft);
    void finished(bool ok, const QString& message);
    void messageIn(const QByteArray& message);
    void messageOut(const QByteArray& message);

private:
    void end(bool ok, const QString& message);

    std::unique_ptr<MidiInput> input_;
    std::unique_ptr<MidiOutput> output_;
    PacedOutput paced_;
    std::unique_ptr<DumpReceiver> receiver_;
    int model_ = 10;
    QByteArray header_;
    int gapMs_ = 20;
    Operation operation_ = Operation::None;
    std::optional<QByteArray> known_; // the image the device is known to hold
    QByteArray sending_;              // the image being sent
    qint64 total_ = 0, done_ = 0;
    QByteArray received_;
};

} // namespace ferrule
