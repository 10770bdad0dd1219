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
