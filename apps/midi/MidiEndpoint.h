#pragma once

#include "MidiApi.h"
#include "MidiDriver.h"

#include <QString>

#include <memory>

namespace ferrule {

// What an input and an output port have in common: opening one through the MIDI module (see
// MidiModule.h), by another program's port or as a port of our own, its name, and whether
// messages can still pass. Opening says why it failed instead of printing.
class MidiEndpoint {
public:
    MidiEndpoint(const MidiEndpoint&) = delete;
    MidiEndpoint& operator=(const MidiEndpoint&) = delete;

    // Opens another program's port by number or by part of its name.
    bool open(MidiApi api, const QString& clientName, const QString& nameOrNumber, QString* error);
    // Opens a port of our own that other programs connect to.
    bool openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                     QString* error);
    bool isOpen() const { return port_ != nullptr; }
    QString portName() const { return portName_; }
    // Whether messages can still pass: the MIDI system runs and, for another program's port,
    // that port is still there and connected to ours. False with `why` naming what is gone.
    bool linked(QString* why) const;

protected:
    // An output port; an input port hands each message to `receiver` with `context`.
    MidiEndpoint();
    MidiEndpoint(MidiReceiver receiver, void* context);
    ~MidiEndpoint();

    MidiPort* port() const { return port_.get(); }
    // Closes the port: no message reaches the receiver after this.
    void close() { port_.reset(); }
    // From now on opening fails with `why` (the port's owner cannot take messages).
    void refuseOpening(const QString& why) { refusal_ = why; }

private:
    bool input() const { return receiver_ != nullptr; }
    bool openPort(MidiPortRequest request, QString* error);

    MidiReceiver receiver_ = nullptr;
    void* context_ = nullptr;
    QString refusal_;
    std::unique_ptr<MidiPort> port_;
    QString portName_;
};

} // namespace ferrule
