#pragma once

#include "HostOptions.h"
#include "document/History.h"

namespace ferrule {

// --history: the snapshots, newest first, one a line: time (local), model, kind, ports, the
// file's full path, separated by tabs.
int runHistory();

// Keeps what a run read from or left in the device in the history. A snapshot that cannot be
// written costs the run nothing: it is said on stderr.
void keepInHistory(Snapshot::Kind kind, int model, const QByteArray& image,
                   const QByteArray& header, QStringList ports);

} // namespace ferrule
