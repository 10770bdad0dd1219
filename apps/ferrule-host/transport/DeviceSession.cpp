#include "DeviceSession.h"

#include "DumpReceiver.h"
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
        end(true, QStringLiteral("sent %1 messages, %2 bytes to %3")
                      .arg(opMessages_)
                      .arg(done_)
                      .arg(outputName()));
    });
    connect(&paced_, &PacedOutput::failed, this, [this](const QString& why) {
        if (operation_ == Operation::Send) {
            // What left before the failure may be on the device; what did not is not.
            forgetDevice(QStringLiteral("a send stopped part way at %1")
                             .arg(clock(QDateTime::currentDateTime())));
            end(false, QStringLiteral("%1; %2").arg(why, sentSoFar()));
        } else if (receiver_) {
            receiver_->disconnect(this);
            receiver_.reset();
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
    const bool needed = input ? operation_ == Operation::Receive || operation_ == Operation::Request
                              : operation_ == Operation::Send || operation_ == Operation::Request;
    if (needed) {
        paced_.clear();
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
                                : QStringLiteral("this data was sent to the device already; "
                                                 "nothing to send"));
        return 0;
    }
    operation_ = Operation::Send;
    sending_ = image;
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
        const QString message = ok ? QStringLiteral("received %1 messages, %2 bytes from %3")
                                         .arg(receiver_->applied())
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
