#pragma once

#include "cli/HostOptions.h"

namespace ferrule {

class SystemDocument;

// Loads the plug-in and runs its editor on the document as the host contract defines: Interface,
// Owner, Title, Format, Center, Start, Quit. Blocks go to the chosen MIDI output and/or .syx file.
// When the editor closes keeping its changes, the document takes them and a document with a file
// is saved. Returns the process's exit code.
int runEditor(const HostOptions& options, SystemDocument& document);

} // namespace ferrule
