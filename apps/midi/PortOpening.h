#pragma once

// Opening ports, the same way for inputs and outputs, through RtMidi (ALSA) or our own JACK
// client. Private to the transport.

#include "JackMidiPort.h"
#include "MidiApi.h"
#include "QuietStderr.h"

#include <QStringList>

#include <RtMidi.h>

namespace ferrule {

// The port among `names` chosen by number or part of its name; -1 with `error` set if none is.
inline int chooseNamedPort(const QStringList& names, MidiApi api, const QString& nameOrNumber,
                           bool input, QString* error) {
    const int chosen = choosePort(names, nameOrNumber);
    if (chosen < 0 && error)
        *error = QStringLiteral("no %1 MIDI %2 port \"%3\" (%4 port(s); see "
                                "--list-midi-ports)")
                     .arg(midiApiName(api).toUpper(),
                          input ? QStringLiteral("input") : QStringLiteral("output"), nameOrNumber)
                     .arg(names.size());
    return chosen;
}

// Connects `port` to another program's port, chosen by number or part of its name. Returns the
// port's full name, or an empty string with `error` set.
template <class Port>
QString openNamedPort(Port& port, MidiApi api, const QString& clientName,
                      const QString& nameOrNumber, bool input, QString* error) {
    QStringList names;
    for (unsigned i = 0; i < port.getPortCount(); ++i)
        names << QString::fromStdString(port.getPortName(i));
    const int chosen = chooseNamedPort(names, api, nameOrNumber, input, error);
    if (chosen < 0) return {};
    try {
        QuietStderr quiet;
        port.openPort(unsigned(chosen), clientName.toStdString() + (input ? " in" : " out"));
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
        return {};
    }
    return names[chosen];
}

inline QString connectNamedPort(JackMidiPort& port, const QString& nameOrNumber, bool input,
                                QString* error) {
    const QStringList names = port.peers();
    const int chosen = chooseNamedPort(names, MidiApi::Jack, nameOrNumber, input, error);
    if (chosen < 0 || !port.connectTo(names[chosen], error)) return {};
    return names[chosen];
}

// Whether messages still pass through an open port: the MIDI system runs and, unless the port
// is our own, the other program's port `peer` is still there (and, on JACK, still connected).
// False with `why` naming what is gone.
template <class Port>
bool linkedPort(const JackMidiPort* jack, Port* alsa, bool own, const QString& peer, bool input,
                QString* why) {
    const QString gone = QStringLiteral("the MIDI %1 port \"%2\" is gone")
                             .arg(input ? QStringLiteral("input") : QStringLiteral("output"), peer);
    if (jack) {
        QString reason;
        if (jack->linked(&reason) || (own && !jack->serverGone())) return true;
        if (why) *why = jack->serverGone() ? reason : gone;
        return false;
    }
    if (own || !alsa) return alsa != nullptr;
    // ALSA through RtMidi tells nothing when a port goes away; the port list is asked instead,
    // which costs a few system calls.
    try {
        for (unsigned i = 0; i < alsa->getPortCount(); ++i)
            if (QString::fromStdString(alsa->getPortName(i)) == peer) return true;
    } catch (const RtMidiError&) {
    }
    if (why) *why = gone;
    return false;
}

// Opens a port of our own that other programs connect to; false with `error` set.
template <class Port> bool openOwnPort(Port& port, const QString& portName, QString* error) {
    try {
        QuietStderr quiet;
        port.openVirtualPort(portName.toStdString());
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
        return false;
    }
    return true;
}

} // namespace ferrule
