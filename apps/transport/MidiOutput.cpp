#include "MidiOutput.h"

#include "QuietStderr.h"
#include "RtMidiPorts.h"

#include <RtMidi.h>

#include <vector>

namespace ferrule {

namespace {

std::unique_ptr<RtMidiOut> makeOutput(MidiApi api, const QString& clientName, QString* error) {
    QString why;
    if (!midiSystemRuns(api, &why)) {
        if (error) *error = why;
        return nullptr;
    }
    try {
        QuietStderr quiet;
        return std::make_unique<RtMidiOut>(api == MidiApi::Alsa ? RtMidi::LINUX_ALSA
                                                                : RtMidi::UNIX_JACK,
                                           clientName.toStdString());
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
        return nullptr;
    }
}

} // namespace

MidiOutput::MidiOutput() = default;
MidiOutput::~MidiOutput() = default;

bool MidiOutput::open(MidiApi api, const QString& clientName, const QString& nameOrNumber,
                      QString* error) {
    out_ = makeOutput(api, clientName, error);
    if (!out_) return false;
    const QString name = openNamedPort(*out_, api, clientName, nameOrNumber, false, error);
    if (name.isEmpty()) {
        out_.reset();
        return false;
    }
    portName_ = name;
    return true;
}

bool MidiOutput::openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                             QString* error) {
    out_ = makeOutput(api, clientName, error);
    if (!out_) return false;
    if (!openOwnPort(*out_, portName, error)) {
        out_.reset();
        return false;
    }
    portName_ = portName;
    return true;
}

bool MidiOutput::isOpen() const {
    // out_ is kept only once a port has been opened.
    return out_ != nullptr;
}

bool MidiOutput::send(const QByteArray& message, QString* error) {
    if (!isOpen()) {
        if (error) *error = QStringLiteral("the MIDI output port is not open");
        return false;
    }
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
