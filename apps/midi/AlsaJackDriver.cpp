// The driver of libferrule_midi.so: ALSA through RtMidi, JACK through JackMidiPort.

#include "JackMidiPort.h"
#include "MidiDriver.h"
#include "PortOpening.h"
#include "QuietStderr.h"

#include <RtMidi.h>

#include <algorithm>
#include <type_traits>
#include <vector>

namespace ferrule {

namespace {

template <typename Port> QStringList portNames(Port& port) {
    QStringList names;
    for (unsigned i = 0; i < port.getPortCount(); ++i)
        names << QString::fromStdString(port.getPortName(i));
    return names;
}

bool alsaRuns(QString* why) {
    try {
        QuietStderr quiet;
        RtMidiIn probe(RtMidi::LINUX_ALSA, "ferrule-probe");
        return true;
    } catch (const RtMidiError&) {
        if (why) *why = QStringLiteral("no ALSA sequencer (/dev/snd/seq)");
        return false;
    }
}

class JackPort final : public MidiPort {
public:
    JackPort(std::unique_ptr<JackMidiPort> port, const QString& name, bool own, bool input)
        : port_(std::move(port))
        , name_(name)
        , own_(own)
        , input_(input) {}
    QString name() const override { return name_; }
    bool linked(QString* why) const override {
        return linkedPort(port_.get(), static_cast<RtMidiIn*>(nullptr), own_, name_, input_, why);
    }
    bool send(const QByteArray& message, QString* error) override {
        return port_->send(message, error);
    }

private:
    std::unique_ptr<JackMidiPort> port_;
    QString name_;
    bool own_;
    bool input_;
};

// RtMidiIn or RtMidiOut on ALSA.
template <class Rt> class AlsaPort final : public MidiPort {
public:
    static constexpr bool kInput = std::is_same_v<Rt, RtMidiIn>;

    AlsaPort(MidiReceiver receiver, void* context)
        : receiver_(receiver)
        , context_(context) {}
    // Makes the RtMidi object and opens the port the request asks for; false with `error` set.
    bool open(const MidiPortRequest& request, QString* error) {
        try {
            QuietStderr quiet;
            rt_ = std::make_unique<Rt>(RtMidi::LINUX_ALSA, request.clientName.toStdString());
            if constexpr (kInput) {
                // System-exclusive messages are what we are here for; timing and sensing are not.
                rt_->ignoreTypes(false, true, true);
                rt_->setCallback(&AlsaPort::callback, this);
            }
        } catch (const RtMidiError& e) {
            if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
            return false;
        }
        own_ = request.own;
        if (own_) {
            name_ = request.portName;
            return openOwnPort(*rt_, request.portName, error);
        }
        name_ = openNamedPort(*rt_, request.api, request.clientName, request.peer, kInput, error);
        return !name_.isEmpty();
    }
    QString name() const override { return name_; }
    bool linked(QString* why) const override {
        return linkedPort(static_cast<const JackMidiPort*>(nullptr), rt_.get(), own_, name_, kInput,
                          why);
    }
    bool send(const QByteArray& message, QString* error) override {
        if constexpr (kInput) {
            if (error) *error = QStringLiteral("a MIDI input port sends nothing");
            return false;
        } else {
            try {
                std::vector<unsigned char> bytes(message.begin(), message.end());
                rt_->sendMessage(&bytes);
            } catch (const RtMidiError& e) {
                if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
                return false;
            }
            return true;
        }
    }

private:
    static void callback(double, std::vector<unsigned char>* message, void* self) {
        auto* port = static_cast<AlsaPort*>(self);
        if (message && !message->empty())
            port->receiver_(message->data(), message->size(), port->context_);
    }

    MidiReceiver receiver_;
    void* context_;
    QString name_;
    bool own_ = false;
    // Last, so that it is closed first: no callback runs once the port is gone.
    std::unique_ptr<Rt> rt_;
};

template <class Rt>
std::unique_ptr<MidiPort> openAlsa(const MidiPortRequest& request, QString* error) {
    auto port = std::make_unique<AlsaPort<Rt>>(request.receiver, request.context);
    if (!port->open(request, error)) return nullptr;
    return port;
}

class AlsaJackDriver final : public MidiDriver {
public:
    QList<MidiApi> compiledApis() const override {
        std::vector<RtMidi::Api> apis;
        RtMidi::getCompiledApi(apis);
        QList<MidiApi> out;
        if (std::find(apis.begin(), apis.end(), RtMidi::LINUX_ALSA) != apis.end())
            out << MidiApi::Alsa;
        // JACK is reached through our own client.
        out << MidiApi::Jack;
        return out;
    }

    bool systemRuns(MidiApi api, QString* why) const override {
        return api == MidiApi::Jack ? JackMidiPort::serverRuns(why) : alsaRuns(why);
    }

    MidiPortList listPorts(MidiApi api, const QString& clientName) const override {
        MidiPortList list;
        if (api == MidiApi::Jack) {
            // Listing opens a client, which says by itself when no server runs.
            const JackMidiPort::Ports ports = JackMidiPort::list(clientName, &list.error);
            list.inputs = ports.outputs;
            list.outputs = ports.inputs;
            return list;
        }
        if (!alsaRuns(&list.error)) return list;
        try {
            QuietStderr quiet;
            RtMidiIn in(RtMidi::LINUX_ALSA, clientName.toStdString());
            RtMidiOut out(RtMidi::LINUX_ALSA, clientName.toStdString());
            list.inputs = portNames(in);
            list.outputs = portNames(out);
        } catch (const RtMidiError& e) {
            list.error = QString::fromStdString(e.getMessage());
        }
        return list;
    }

    std::unique_ptr<MidiPort> open(const MidiPortRequest& request, QString* error) override {
        if (request.api == MidiApi::Jack) {
            auto jack = JackMidiPort::open(request.clientName, request.portName,
                                           request.input ? JackMidiPort::Direction::In
                                                         : JackMidiPort::Direction::Out,
                                           error, request.receiver, request.context);
            if (!jack) return nullptr;
            const QString name = request.own
                                     ? request.portName
                                     : connectNamedPort(*jack, request.peer, request.input, error);
            if (name.isEmpty()) return nullptr;
            return std::make_unique<JackPort>(std::move(jack), name, request.own, request.input);
        }
        if (!alsaRuns(error)) return nullptr;
        return request.input ? openAlsa<RtMidiIn>(request, error)
                             : openAlsa<RtMidiOut>(request, error);
    }

    void closeStoppedClients() override { JackMidiPort::closeStoppedClients(); }
};

} // namespace

} // namespace ferrule

extern "C" __attribute__((visibility("default"))) ferrule::MidiDriver*
ferrule_midi_driver(void (*linkChanged)()) {
    static ferrule::AlsaJackDriver driver;
    ferrule::JackMidiPort::setLinkChanged(linkChanged);
    return &driver;
}
