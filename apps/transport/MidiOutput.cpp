#include "MidiOutput.h"

#include "QuietStderr.h"

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
    QStringList names;
    for (unsigned i = 0; i < out_->getPortCount(); ++i)
        names << QString::fromStdString(out_->getPortName(i));
    const int chosen = choosePort(names, nameOrNumber);
    if (chosen < 0) {
        if (error)
            *error = QStringLiteral("no %1 MIDI output port \"%2\" (%3 port(s); see "
                                    "--list-midi-ports)")
                         .arg(midiApiName(api).toUpper(), nameOrNumber)
                         .arg(names.size());
        out_.reset();
        return false;
    }
    try {
        QuietStderr quiet;
        out_->openPort(unsigned(chosen), clientName.toStdString() + " out");
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
        out_.reset();
        return false;
    }
    portName_ = names[chosen];
    return true;
}

bool MidiOutput::openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                             QString* error) {
    out_ = makeOutput(api, clientName, error);
    if (!out_) return false;
    try {
        QuietStderr quiet;
        out_->openVirtualPort(portName.toStdString());
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
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
