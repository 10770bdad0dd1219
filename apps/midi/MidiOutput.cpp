#include "MidiOutput.h"

#include "MidiModule.h"

namespace ferrule {

MidiOutput::MidiOutput() = default;
MidiOutput::~MidiOutput() = default;

bool MidiOutput::openPort(const MidiPortRequest& request, QString* error) {
    port_ = openMidiPort(request, error);
    if (!port_) return false;
    portName_ = port_->name();
    return true;
}

bool MidiOutput::open(MidiApi api, const QString& clientName, const QString& nameOrNumber,
                      QString* error) {
    MidiPortRequest request(api, clientName, clientName + QStringLiteral(" out"));
    request.peer = nameOrNumber;
    return openPort(request, error);
}

bool MidiOutput::openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                             QString* error) {
    MidiPortRequest request(api, clientName, portName);
    request.own = true;
    return openPort(request, error);
}

bool MidiOutput::linked(QString* why) const {
    if (!isOpen()) {
        if (why) *why = QStringLiteral("the MIDI output port is not open");
        return false;
    }
    return port_->linked(why);
}

bool MidiOutput::isOpen() const {
    // A port is kept only once it has been opened.
    return port_ != nullptr;
}

bool MidiOutput::send(const QByteArray& message, QString* error) {
    // A message that would reach nobody is refused, so that nothing is counted as sent that
    // did not leave towards the device.
    if (!linked(error)) return false;
    return port_->send(message, error);
}

} // namespace ferrule
