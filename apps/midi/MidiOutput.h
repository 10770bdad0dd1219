#pragma once

#include "MidiEndpoint.h"

#include <QByteArray>
#include <QString>

namespace ferrule {

// A MIDI output port (RtMidi for ALSA, our own client for JACK, through the MIDI module).
class MidiOutput : public MidiEndpoint {
public:
    // Sends one complete message; false with `error` set on failure.
    bool send(const QByteArray& message, QString* error);
};

} // namespace ferrule
