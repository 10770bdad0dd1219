#include "DeviceSession.h"

#include "DumpReceiver.h"
#include "WireTime.h"
#include "device/DefaultImage.h"
#include "device/DumpMap.h"
#include "device/SysexCodec.h"

namespace ferrule {

namespace {

ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
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
    connect(&paced_, &PacedOutput::messageSent, this, [this](const QByteArray& m) {
        emit messageOut(m);
        if (operation_ != Operation::Send) return;
        done_ += m.size();
        const qint64 left = total_ - done_;
        emit progress(done_, total_, qint64(wireTimeMs(left)));
    });
    connect(&paced_, &PacedOutput::drained, this, [this] {
        if (operation_ != Operation::Send) return;
        known_ = sending_;
        end(true, QStringLiteral("sent %1 messages, %2 bytes to %3")
                      .arg(paced_.sentMessages())
                      .arg(done_)
                      .arg(outputName()));
    });
    connect(&paced_, &PacedOutput::failed, this, [this](const QString& why) {
        // What left before the failure is on the device; what did not is unknown.
        known_.reset();
        end(false, QStringLiteral("sending stopped after %1 of %2 bytes: %3")
                       .arg(done_)
                       .arg(total_)
                       .arg(why));
    });
}

DeviceSession::~DeviceSession() = default;

bool DeviceSession::openPorts(MidiApi api, const QString& input, const QString& output,
                              QString* error) {
    closePorts();
    if (!input.isEmpty()) {
        auto in = std::make_unique<MidiInput>();
        if (!in->open(api, QStringLiteral("ferrule-host"), input, error)) return false;
        connect(in.get(), &MidiInput::messageReceived, this, &DeviceSession::messageIn);
        input_ = std::move(in);
    }
    if (!output.isEmpty()) {
        auto out = std::make_unique<MidiOutput>();
        if (!out->open(api, QStringLiteral("ferrule-host"), output, error)) return false;
        output_ = std::move(out);
    }
    return true;
}

void DeviceSession::setHeader(int model, const QByteArray& header) {
    if (model != model_) known_.reset();
    model_ = model;
    header_ = header;
}

int DeviceSession::send(const QByteArray& image, bool onlyChanges) {
    if (operation_ != Operation::None || !output_) return 0;
    const QByteArray header = Sysex::headerOr(header_, model_);
    std::vector<QByteArray> messages;
    for (const ScheduledMessage& m : DumpMap::of(model_).transmission()) {
        if (m.start + m.length > image.size()) continue;
        const QByteArray data = m.data(bytesOf(image));
        if (onlyChanges && known_ && m.data(bytesOf(*known_)) == data) continue;
        messages.push_back(Sysex::frame(header, m.address, data));
    }
    if (messages.empty()) {
        emit finished(true, QStringLiteral("the device already holds this data"));
        return 0;
    }
    operation_ = Operation::Send;
    sending_ = image;
    total_ = done_ = 0;
    for (const QByteArray& m : messages)
        total_ += m.size();
    qint64 at = paced_.nowNs();
    const qint64 gap = qint64(gapMs_) * 1000000;
    for (const QByteArray& m : messages) {
        paced_.enqueue(m, at);
        at = std::max(at, paced_.nowNs()) + wireTimeNs(m.size()) + gap;
    }
    const int queued = int(messages.size());
    emit started(operation_);
    emit progress(0, total_, qint64(wireTimeMs(total_)) + queued * gapMs_);
    return queued;
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
    receiver_ = std::make_unique<DumpReceiver>(o, base, *input_, request ? &paced_ : nullptr);
    total_ = receiver_->assembler().unitsExpected();
    connect(receiver_.get(), &DumpReceiver::progress, this, [this](int got, int expected) {
        emit progress(got, expected, qint64(wireTimeMs(expected - got)));
    });
    connect(receiver_.get(), &DumpReceiver::finished, this, [this](bool ok) {
        if (ok) {
            received_ = receiver_->assembler().image();
            known_ = received_;
        }
        const QString message = ok ? QStringLiteral("received %1 messages, %2 bytes from %3")
                                         .arg(receiver_->applied())
                                         .arg(receiver_->assembler().unitsReceived())
                                         .arg(inputName())
                                   : receiver_->error();
        receiver_.release()->deleteLater();
        end(ok, message);
    });
    emit started(operation_);
    receiver_->start();
}

void DeviceSession::stop() {
    if (operation_ == Operation::None) return;
    paced_.clear();
    if (operation_ == Operation::Send) known_.reset(); // part of it may have left
    if (receiver_) {
        receiver_->disconnect(this);
        receiver_.reset();
    }
    end(false, QStringLiteral("stopped"));
}

void DeviceSession::forgetDevice() {
    known_.reset();
}

void DeviceSession::closePorts() {
    stop();
    known_.reset();
    input_.reset();
    output_.reset();
}

void DeviceSession::end(bool ok, const QString& message) {
    operation_ = Operation::None;
    emit finished(ok, message);
}

} // namespace ferrule
