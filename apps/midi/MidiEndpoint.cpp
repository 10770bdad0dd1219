#include "MidiEndpoint.h"

#include "MidiModule.h"

namespace ferrule {

MidiEndpoint::MidiEndpoint() = default;

MidiEndpoint::MidiEndpoint(MidiReceiver receiver, void* context)
    : receiver_(receiver)
    , context_(context) {}

MidiEndpoint::~MidiEndpoint() = default;

bool MidiEndpoint::openPort(MidiPortRequest request, QString* error) {
    if (!refusal_.isEmpty()) {
        if (error) *error = refusal_;
        return false;
    }
    request.input = input();
    request.receiver = receiver_;
    request.context = context_;
    port_ = openMidiPort(request, error);
    if (!port_) return false;
    portName_ = port_->name();
    return true;
}

bool MidiEndpoint::open(MidiApi api, const QString& clientName, const QString& nameOrNumber,
                        QString* error) {
    MidiPortRequest request(
        api, clientName, clientName + (input() ? QStringLiteral(" in") : QStringLiteral(" out")));
    request.peer = nameOrNumber;
    return openPort(request, error);
}

bool MidiEndpoint::openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                               QString* error) {
    MidiPortRequest request(api, clientName, portName);
    request.own = true;
    return openPort(request, error);
}

bool MidiEndpoint::linked(QString* why) const {
    if (!isOpen()) {
        if (why)
            *why = QStringLiteral("the MIDI %1 port is not open")
                       .arg(input() ? QStringLiteral("input") : QStringLiteral("output"));
        return false;
    }
    return port_->linked(why);
}

} // namespace ferrule
