#pragma once

#include "MidiApi.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace ferrule {

class MidiPort;
struct MidiPortRequest;

// A MIDI output port (RtMidi for ALSA, our own client for JACK, through the MIDI module). Opening
// says why it failed instead of printing.
class MidiOutput {
public:
    MidiOutput();
    ~MidiOutput();
    MidiOutput(const MidiOutput&) = delete;
    MidiOutput& operator=(const MidiOutput&) = delete;

    // Opens another program's port by number or by part of its name.
    bool open(MidiApi api, const QString& clientName, const QString& nameOrNumber, QString* error);
    // Opens a port of our own that other programs connect to.
    bool openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                     QString* error);
    bool isOpen() const;
    QString portName() const { return portName_; }
    // Whether messages can still pass: the MIDI system runs and, for another program's port,
    // that port is still there and connected to ours. False with `why` naming what is gone.
    bool linked(QString* why) const;
    // Sends one complete message; false with `error` set on failure.
    bool send(const QByteArray& message, QString* error);

private:
    bool openPort(const MidiPortRequest& request, QString* error);

    std::unique_ptr<MidiPort> port_;
    QString portName_;
};

} // namespace ferrule
