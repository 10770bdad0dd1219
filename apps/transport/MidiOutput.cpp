#include "MidiOutput.h"

#include "PortOpening.h"
#include "QuietStderr.h"

#include <RtMidi.h>

#include <vector>

namespace ferrule {

namespace {

std::unique_ptr<RtMidiOut> makeAlsaOutput(MidiApi api, const QString& clientName, QString* error) {
    QString why;
    if (!midiSystemRuns(api, &why)) {
        if (error) *error = why;
        return nullptr;
    }
    try {
        QuietStderr quiet;
        return std::make_unique<RtMidiOut>(RtMidi::LINUX_ALSA, clientName.toStdString());
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
        return nullptr;
    }
}

} // namespace

MidiOutput::MidiOutput() = default;
MidiOutput::~MidiOutput() = default;

bool MidiOutput::create(MidiApi api, const QString& clientName, const QString& portName,
                        QString* error) {
    if (api == MidiApi::Jack)
        jack_ = JackMidiPort::open(clientName, portName, JackMidiPort::Direction::Out, error);
    else
        out_ = makeAlsaOutput(api, clientName, error);
    return isOpen();
}

bool MidiOutput::open(MidiApi api, const QString& clientName, const QString& nameOrNumber,
                      QString* error) {
    if (!create(api, clientName, clientName + QStringLiteral(" out"), error)) return false;
    const QString name = jack_ ? connectNamedPort(*jack_, nameOrNumber, false, error)
                               : openNamedPort(*out_, api, clientName, nameOrNumber, false, error);
    if (name.isEmpty()) {
        out_.reset();
        jack_.reset();
        return false;
    }
    portName_ = name;
    return true;
}

bool MidiOutput::openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                             QString* error) {
    if (!create(api, clientName, portName, error)) return false;
    if (out_ && !openOwnPort(*out_, portName, error)) {
        out_.reset();
        return false;
    }
    portName_ = portName;
    own_ = true;
    return true;
}

bool MidiOutput::linked(QString* why) const {
    if (!isOpen()) {
        if (why) *why = QStringLiteral("the MIDI output port is not open");
        return false;
    }
    return linkedPort(jack_.get(), out_.get(), own_, portName_, false, why);
}

bool MidiOutput::isOpen() const {
    // A port is kept only once it has been opened.
    return out_ || jack_;
}

bool MidiOutput::send(const QByteArray& message, QString* error) {
    // A message that would reach nobody is refused, so that nothing is counted as sent that
    // did not leave towards the device.
    if (!linked(error)) return false;
    if (jack_) return jack_->send(message, error);
    try {
        std::vector<unsigned char> bytes(message.begin(), message.end());
        out_->sendMessage(&bytes);
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
        return false;
    }
    return true;
}

} // namespace ferrule
