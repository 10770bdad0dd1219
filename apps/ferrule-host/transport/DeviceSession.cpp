#include "DeviceSession.h"

#include "DumpReceiver.h"
#include "SendVerifier.h"
#include "TimeLeft.h"
#include "WireTime.h"
#include "device/DefaultImage.h"
#include "device/DumpMap.h"
#include "device/SysexCodec.h"

#include <QRegularExpression>

namespace ferrule {

namespace {

constexpr int kReconnectEveryMs = 1000;

ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
}

QString clock(const QDateTime& at) {
    return at.toString(QStringLiteral("HH:mm:ss"));
}

} // namespace

DeviceSession::DeviceSession(QObject* parent)
    : QObject(parent)
    , paced_([this](const QByteArray& m, QString* why) {
        if (!output_) {
            *why = QStringLiteral("no MIDI output port");
            return false;
        }
        return output_->send(m, why);
    }) {
    reconnectTimer_.setInterval(kReconnectEveryMs);
    connect(&reconnectTimer_, &QTimer::timeout, this, &DeviceSession::reconnect);
    connect(&watch_, &LinkWatch::lost, this, &DeviceSession::portLost);
    connect(&paced_, &PacedOutput::messageSent, this, [this](const QByteArray& m) {
        emit messageOut(m);
        if (operation_ != Operation::Send) return;
        if (verifier_) verifier_->sent(m);
        ++opMessages_;
        done_ += m.size();
        doneWireMs_ += wireTimeMs(m.size()) + gapMs_;
        TimeLeft t;
        t.doneWireMs = doneWireMs_;
        t.doneExchanges = opMessages_;
        t.elapsedMs = double(paced_.nowNs() - startNs_) / 1e6;
        t.leftWireMs = wireTimeMs(total_ - done_) + double(opTotalMessages_ - opMessages_) * gapMs_;
        t.leftExchanges = opTotalMessages_ - opMessages_;
        emit progress(done_, total_, t.ms());
    });
    connect(&paced_, &PacedOutput::drained, this, [this] {
        if (operation_ != Operation::Send) return;
        known_ = {Knowledge::Kind::Sent, sending_, QDateTime::currentDateTime(), {}};
        if (verifier_ && input_) {
            startVerify();
            return;
        }
        QString message = sentWhole();
        if (verifier_)
            message += QStringLiteral("; not verified: no MIDI input port to read the device");
        verifier_.reset();
        end(true, message);
    });
    connect(&paced_, &PacedOutput::failed, this, [this](const QString& why) {
        if (operation_ == Operation::Send) {
            // What left before the failure may be on the device; what did not is not.
            forgetDevice(QStringLiteral("a send stopped part way at %1")
                             .arg(clock(QDateTime::currentDateTime())));
            end(false, QStringLiteral("%1; %2").arg(why, sentSoFar()));
        } else if (receiver_ || operation_ == Operation::Verify) {
            if (receiver_) receiver_->disconnect(this);
            receiver_.reset();
            if (verifier_) verifier_->stop();
            end(false, QStringLiteral("the request could not be sent: %1").arg(why));
        }
    });
}

DeviceSession::~DeviceSession() {
    watch_.clear();
}

bool DeviceSession::openSide(const MidiPortList& list, const QString& name, bool input,
                             QString* error) {
    // Said in the window's words: which port is not there, or which MIDI system does not run.
    if (!list.error.isEmpty()) {
        *error = list.error;
        return false;
    }
    // ALSA names end in the client's and port's numbers, which change when a device is plugged
    // in again; the name without them finds it.
    static const QRegularExpression numbers(QStringLiteral(" \\d+:\\d+$"));
    QString wanted = name;
    if (choosePort(input ? list.inputs : list.outputs, wanted) < 0) wanted.remove(numbers);
    if (choosePort(input ? list.inputs : list.outputs, wanted) < 0) {
        *error = QStringLiteral("the MIDI %1 port \"%2\" is not there")
                     .arg(input ? QStringLiteral("input") : QStringLiteral("output"), name);
        return false;
    }
    if (input) {
        auto in = std::make_unique<MidiInput>();
        if (!in->open(api_, QStringLiteral("ferrule-host"), wanted, error)) return false;
        connect(in.get(), &MidiInput::messageReceived, this, &DeviceSession::messageIn);
        input_ = std::move(in);
    } else {
        auto out = std::make_shared<MidiOutput>();
        if (!out->open(api_, QStringLiteral("ferrule-host"), wanted, error)) return false;
        output_ = std::move(out);
    }
    return true;
}

bool DeviceSession::openPorts(MidiApi api, const QString& input, const QString& output,
                              QString* error) {
    closePorts();
    api_ = api;
    chosenIn_ = input;
    chosenOut_ = output;
    const bool ok = reconnect();
    if (!ok && error) *error = linkProblem();
    return ok;
}

bool DeviceSession::reconnect() {
    const bool hadIn = hasInput(), hadOut = hasOutput();
    const QString hadProblem = linkProblem();
    const bool missIn = !chosenIn_.isEmpty() && !input_;
    const bool missOut = !chosenOut_.isEmpty() && !output_;
    if (missIn || missOut) {
        // Each side says for itself why it cannot open; the listing serves both.
        const MidiPortList list = listMidiPorts(api_, QStringLiteral("ferrule-host"));
        inProblem_.clear();
        outProblem_.clear();
        if (missIn) openSide(list, chosenIn_, true, &inProblem_);
        if (missOut) openSide(list, chosenOut_, false, &outProblem_);
    }
    const bool ok = linkProblem().isEmpty();
    if (ok)
        reconnectTimer_.stop();
    else if (!reconnectTimer_.isActive())
        reconnectTimer_.start();
    watchPorts();
    if (hadIn != hasInput() || hadOut != hasOutput() || hadProblem != linkProblem())
        emit linkChanged();
    return ok;
}

QString DeviceSession::linkProblem() const {
    if (inProblem_ == outProblem_ || outProblem_.isEmpty()) return inProblem_;
    if (inProblem_.isEmpty()) return outProblem_;
    return inProblem_ + QStringLiteral("; ") + outProblem_;
}

void DeviceSession::watchPorts() {
    watch_.watch(input_.get(), output_.get());
}

void DeviceSession::portLost(const QString& why, bool input) {
    const bool needed = operation_ == Operation::Verify || operation_ == Operation::Request ||
                        (input ? operation_ == Operation::Receive : operation_ == Operation::Send);
    if (needed) {
        paced_.clear();
        if (verifier_) verifier_->stop();
        if (receiver_) {
            receiver_->disconnect(this);
            receiver_.reset();
        }
        const QString what =
            operation_ == Operation::Send ? QStringLiteral("; ") + sentSoFar() : QString();
        operation_ = Operation::None;
        emit finished(false, why + what);
    }
    // A device reached again may not be the one that was there; what it holds is not known.
    forgetDevice(QStringLiteral("%1 at %2").arg(why, clock(QDateTime::currentDateTime())));
    if (input) {
        input_.reset();
        inProblem_ = why;
    } else {
        output_.reset();
        outProblem_ = why;
    }
    watchPorts();
    reconnectTimer_.start();
    emit linkChanged();
}

void DeviceSession::setHeader(int model, const QByteArray& header) {
    if (model != model_) forgetDevice();
    model_ = model;
    header_ = header;
}

int DeviceSession::send(const QByteArray& image, bool onlyChanges) {
    if (operation_ != Operation::None || !output_) return 0;
    const QByteArray header = Sysex::headerOr(header_, model_);
    const bool known = knowsDevice();
    std::vector<QByteArray> messages;
    for (const ScheduledMessage& m : DumpMap::of(model_).transmission()) {
        if (m.start + m.length > image.size()) continue;
        const QByteArray data = m.data(bytesOf(image));
        if (onlyChanges && known && m.data(bytesOf(known_.image)) == data) continue;
        messages.push_back(Sysex::frame(header, m.address, data));
    }
    if (messages.empty()) {
        emit finished(true, known_.kind == Knowledge::Kind::Received
                                ? QStringLiteral("the device already holds this data")
                            : known_.kind == Knowledge::Kind::Verified
                                ? QStringLiteral("the device holds this data (verified); "
                                                 "nothing to send")
                                : QStringLiteral("this data was sent to the device already; "
                                                 "nothing to send"));
        return 0;
    }
    return startSending(image, image, messages);
}

int DeviceSession::sendAgain() {
    if (operation_ != Operation::None || !output_ || !verifier_ ||
        verifier_->outcome() != SendVerifier::Outcome::Differs)
        return 0;
    // The messages go again as they went; the image they are laid over is what the device was
    // found to hold.
    const QByteArray image = verifier_->sentImage();
    const QByteArray base = verifier_->readImage();
    const std::vector<QByteArray> messages = verifier_->messagesToSendAgain();
    return startSending(image, base, messages);
}

int DeviceSession::startSending(const QByteArray& image, const QByteArray& base,
                                const std::vector<QByteArray>& messages) {
    if (messages.empty()) return 0;
    operation_ = Operation::Send;
    sending_ = image;
    verifier_.reset();
    if (verify_) {
        const QByteArray header = Sysex::headerOr(header_, model_);
        verifier_ =
            std::make_unique<SendVerifier>(model_, header, Sysex::requestHeaderFor(header), base);
    }
    total_ = done_ = 0;
    opMessages_ = 0;
    opTotalMessages_ = int(messages.size());
    doneWireMs_ = 0;
    details_.clear();
    for (const QByteArray& m : messages)
        total_ += m.size();
    startNs_ = paced_.nowNs();
    qint64 at = startNs_;
    const qint64 gap = qint64(gapMs_) * 1000000;
    for (const QByteArray& m : messages) {
        paced_.enqueue(m, at);
        at = std::max(at, paced_.nowNs()) + wireTimeNs(m.size()) + gap;
    }
    emit started(operation_);
    TimeLeft t;
    t.leftWireMs = wireTimeMs(total_) + double(opTotalMessages_) * gapMs_;
    t.leftExchanges = opTotalMessages_;
    emit progress(0, total_, t.ms());
    return opTotalMessages_;
}

void DeviceSession::startVerify() {
    operation_ = Operation::Verify;
    connect(verifier_.get(), &SendVerifier::progress, this,
            [this](int got, int expected) { emit progress(got, expected, verifier_->msLeft()); });
    connect(verifier_.get(), &SendVerifier::finished, this, &DeviceSession::verifyFinished);
    emit started(operation_);
    verifier_->start(*input_, paced_);
}

void DeviceSession::verifyFinished() {
    // A retried request still queued must not go out with the next operation.
    paced_.clear();
    const QString sent = sentWhole();
    const QDateTime now = QDateTime::currentDateTime();
    switch (verifier_->outcome()) {
    case SendVerifier::Outcome::Verified:
        known_ = {Knowledge::Kind::Verified, sending_, now, {}};
        emit verified(sending_);
        end(true,
            QStringLiteral("%1; verified: read back, the device holds every byte sent").arg(sent));
        return;
    case SendVerifier::Outcome::Differs: {
        // What the device was found to hold is known now: Send Changes sends the difference.
        known_ = {Knowledge::Kind::Received, verifier_->readImage(), now, {}};
        const int again = int(verifier_->messagesToSendAgain().size());
        end(false, QStringLiteral("%1; read back, the device holds %2 byte(s) otherwise (in %3 "
                                  "message(s))")
                       .arg(sent)
                       .arg(verifier_->differingBytes().size())
                       .arg(again));
        return;
    }
    case SendVerifier::Outcome::NoAnswer:
    case SendVerifier::Outcome::Running:
        details_ = verifier_->error();
        end(false, QStringLiteral("%1; not verified: %2").arg(sent, verifier_->error()));
        return;
    }
}

void DeviceSession::receive(const QByteArray& base, bool request, int timeoutS) {
    if (operation_ != Operation::None || !input_ || (request && !output_)) return;
    DumpReceiver::Options o;
    o.model = model_;
    o.header = Sysex::headerOr(header_, model_);
    o.requestHeader = Sysex::requestHeaderFor(o.header);
    o.request = request;
    if (timeoutS > 0) o.firstTimeoutMs = o.silenceTimeoutMs = timeoutS * 1000;
    operation_ = request ? Operation::Request : Operation::Receive;
    details_.clear();
    receiver_ = std::make_unique<DumpReceiver>(o, base, *input_, request ? &paced_ : nullptr);
    total_ = receiver_->assembler().unitsExpected();
    connect(receiver_.get(), &DumpReceiver::progress, this,
            [this](int got, int expected) { emit progress(got, expected, receiver_->msLeft()); });
    connect(receiver_.get(), &DumpReceiver::finished, this, [this](bool ok) {
        // A retried request still queued must not go out with the next operation.
        paced_.clear();
        if (ok) {
            received_ = receiver_->assembler().image();
            known_ = {Knowledge::Kind::Received, received_, QDateTime::currentDateTime(), {}};
        }
        const QString message = ok ? QStringLiteral("received %1, %2 bytes from %3")
                                         .arg(messageCount(receiver_->applied()))
                                         .arg(receiver_->assembler().unitsReceived())
                                         .arg(inputName())
                                   : receiver_->error();
        details_ = receiver_->details();
        receiver_.release()->deleteLater();
        end(ok, message);
    });
    emit started(operation_);
    receiver_->start();
}

QString DeviceSession::sentWhole() const {
    return QStringLiteral("sent %1, %2 bytes to %3")
        .arg(messageCount(opMessages_))
        .arg(done_)
        .arg(outputName());
}

QString messageCount(qint64 count) {
    return count == 1 ? QStringLiteral("1 message") : QStringLiteral("%1 messages").arg(count);
}

QString DeviceSession::sentSoFar() const {
    return QStringLiteral("%1 of %2 messages (%3 of %4 bytes) had left")
        .arg(opMessages_)
        .arg(opTotalMessages_)
        .arg(done_)
        .arg(total_);
}

void DeviceSession::stop() {
    if (operation_ == Operation::None) return;
    paced_.clear();
    QString message = QStringLiteral("stopped");
    if (operation_ == Operation::Send) {
        // Part of it may have left.
        forgetDevice(QStringLiteral("a send was stopped part way at %1")
                         .arg(clock(QDateTime::currentDateTime())));
        message += QStringLiteral(": ") + sentSoFar();
    }
    if (operation_ == Operation::Verify) {
        // Sent, but not read back.
        verifier_->stop();
        message += QStringLiteral(": the read-back of a send; not verified");
    }
    if (receiver_) {
        receiver_->disconnect(this);
        receiver_.reset();
    }
    end(false, message);
}

void DeviceSession::forgetDevice(const QString& why) {
    known_ = {Knowledge::Kind::Unknown, {}, {}, why};
}

void DeviceSession::closePorts() {
    stop();
    forgetDevice();
    watch_.clear();
    reconnectTimer_.stop();
    const bool changed = input_ || output_ || !chosenIn_.isEmpty() || !chosenOut_.isEmpty() ||
                         !linkProblem().isEmpty();
    input_.reset();
    output_.reset();
    chosenIn_.clear();
    chosenOut_.clear();
    inProblem_.clear();
    outProblem_.clear();
    if (changed) emit linkChanged();
}

void DeviceSession::end(bool ok, const QString& message) {
    operation_ = Operation::None;
    emit finished(ok, message);
}

} // namespace ferrule
