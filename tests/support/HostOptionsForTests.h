#pragma once

#include "cli/HostOptions.h"

// ferrule-host's options for a test of the window on the built plug-in: no MIDI port is asked
// for, JACK is the MIDI system, and messages leave without a gap.
inline ferrule::HostOptions hostOptionsForTests(int model) {
    ferrule::HostOptions o;
    o.model = model;
    o.pluginPath = QStringLiteral(FERRULE_PLUGIN_FILE);
    o.midiApi = QStringLiteral("jack");
    o.gapMs = 0;
    return o;
}
