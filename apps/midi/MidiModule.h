#pragma once

#include "MidiDriver.h"

namespace ferrule {

// The MIDI module (see MidiDriver.h), loaded on first use and kept for the life of the process;
// nullptr with `error` saying why when it cannot be loaded.
MidiDriver* midiDriver(QString* error);

// From now on, ports are opened through `driver` instead of the module (LoopbackDriver in
// tests); nullptr goes back to the module. The caller keeps `driver` while its ports are open.
void useMidiDriver(MidiDriver* driver);

// Opens a port through the module; nullptr with `error` set when it cannot be opened.
std::unique_ptr<MidiPort> openMidiPort(const MidiPortRequest& request, QString* error);

} // namespace ferrule
