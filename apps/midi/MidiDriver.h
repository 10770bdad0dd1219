#pragma once

#include "MidiApi.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <memory>

namespace ferrule {

// The MIDI systems themselves (ALSA through RtMidi, JACK through a client of our own) live in a
// module of their own, libferrule_midi.so, that is loaded when MIDI is first used: a run that
// never lists or opens a port does not load RtMidi, libjack and libasound. This is what the
// module offers; MidiModule.h loads it.

// Where an input hands each complete message, on the MIDI system's thread: copy it and return.
using MidiReceiver = void (*)(const unsigned char* bytes, std::size_t size, void* context);

// One open port: a connection to another program's port, or a port of our own that other
// programs connect to.
class MidiPort {
public:
    virtual ~MidiPort() = default;
    // The other program's port, or our own port's name.
    virtual QString name() const = 0;
    // Whether messages can still pass: the MIDI system runs and, for another program's port,
    // that port is still there and connected to ours. False with `why` naming what is gone.
    virtual bool linked(QString* why) const = 0;
    // Queues or sends one complete message (an output); false with `error` set on failure.
    virtual bool send(const QByteArray& message, QString* error) = 0;
};

struct MidiPortRequest {
    MidiPortRequest(MidiApi api, const QString& clientName, const QString& portName)
        : api(api)
        , clientName(clientName)
        , portName(portName) {}

    MidiApi api;
    QString clientName;
    // Our port's name. With `own` it is the port other programs connect to; otherwise `peer`
    // (a number or part of a name) chooses the other program's port to connect to.
    QString portName;
    QString peer;
    bool own = false;
    bool input = false;
    MidiReceiver receiver = nullptr; // an input's messages
    void* context = nullptr;
};

class MidiDriver {
public:
    // The APIs the module can use, in order of preference.
    virtual QList<MidiApi> compiledApis() const = 0;
    virtual bool systemRuns(MidiApi api, QString* why) const = 0;
    virtual MidiPortList listPorts(MidiApi api, const QString& clientName) const = 0;
    // Opens a port; nullptr with `error` set when it cannot be opened.
    virtual std::unique_ptr<MidiPort> open(const MidiPortRequest& request, QString* error) = 0;
    // Closes the JACK clients whose server has stopped (on the Qt thread): a client left open
    // blocks other programs' clients of the restarted server.
    virtual void closeStoppedClients() = 0;

protected:
    ~MidiDriver() = default;
};

// The module's one exported function: its driver, which calls `linkChanged` from any thread
// when something about the MIDI links may have changed (see LinkEvents).
using MidiDriverEntry = MidiDriver* (*)(void (*linkChanged)());
inline constexpr char kMidiDriverEntry[] = "ferrule_midi_driver";

} // namespace ferrule
