#include "LoopbackDriver.h"

#include "SysexJoiner.h"

#include <algorithm>

namespace ferrule {

class LoopbackPort final : public MidiPort {
public:
    LoopbackPort(LoopbackDriver& driver, const MidiPortRequest& request)
        : driver_(driver)
        , request_(request)
        , joiner_(request.receiver, request.context) {
        driver_.ports_.push_back(this);
    }
    ~LoopbackPort() override { std::erase(driver_.ports_, this); }

    QString name() const override { return request_.own ? request_.portName : request_.peer; }
    bool linked(QString* why) const override {
        if (driver_.broken_.isEmpty()) return true;
        if (why) *why = driver_.broken_;
        return false;
    }
    bool send(const QByteArray& message, QString* error) override {
        return driver_.send(*this, message, error);
    }

    const MidiPortRequest& request() const { return request_; }
    void take(const QByteArray& message, const LoopbackDriver::Pieces& pieces) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(message.constData());
        std::size_t at = 0;
        const auto size = std::size_t(message.size());
        while (at < size) {
            const std::size_t left = size - at;
            const std::size_t piece =
                pieces ? std::clamp<std::size_t>(pieces(left), 1, left) : left;
            joiner_.take(bytes + at, piece);
            at += piece;
        }
    }

private:
    LoopbackDriver& driver_;
    MidiPortRequest request_;
    SysexJoiner joiner_;
};

LoopbackDriver::LoopbackDriver() = default;

LoopbackDriver::~LoopbackDriver() = default;

QList<MidiApi> LoopbackDriver::compiledApis() const {
    return {MidiApi::Alsa};
}

bool LoopbackDriver::systemRuns(MidiApi, QString*) const {
    return true;
}

MidiPortList LoopbackDriver::listPorts(MidiApi, const QString&) const {
    MidiPortList list;
    for (const LoopbackPort* port : ports_)
        if (port->request().own)
            (port->request().input ? list.outputs : list.inputs) << port->name();
    return list;
}

std::unique_ptr<MidiPort> LoopbackDriver::open(const MidiPortRequest& request, QString* error) {
    if (request.own) return std::make_unique<LoopbackPort>(*this, request);
    QStringList ours;
    for (const LoopbackPort* port : ports_)
        if (port->request().own && port->request().input != request.input) ours << port->name();
    const int chosen = choosePort(ours, request.peer);
    if (chosen < 0) {
        if (error) *error = QStringLiteral("no MIDI port matches \"%1\"").arg(request.peer);
        return nullptr;
    }
    MidiPortRequest joined = request;
    joined.peer = ours.at(chosen);
    return std::make_unique<LoopbackPort>(*this, joined);
}

void LoopbackDriver::breakAfter(int messages, const QString& why) {
    sendsLeft_ = messages;
    if (messages == 0)
        broken_ = why;
    else
        broken_.clear();
    brokenWhy_ = why;
}

bool LoopbackDriver::joined(const LoopbackPort& a, const LoopbackPort& b) const {
    const MidiPortRequest& x = a.request();
    const MidiPortRequest& y = b.request();
    if (x.input == y.input || x.own == y.own) return false;
    return x.own ? y.peer == x.portName : x.peer == y.portName;
}

bool LoopbackDriver::send(const LoopbackPort& from, const QByteArray& message, QString* error) {
    if (!from.linked(error)) return false;
    if (sendsLeft_ > 0 && --sendsLeft_ == 0) broken_ = brokenWhy_;
    sent_ << message;
    if (sent_.size() == lose_) return true;
    // A copy of the list: an answer may open or close ports.
    const std::vector<LoopbackPort*> ports = ports_;
    for (LoopbackPort* to : ports)
        if (to->request().input && joined(from, *to)) to->take(message, pieces_);
    return true;
}

} // namespace ferrule
