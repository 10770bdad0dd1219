#pragma once

#include "HostOptions.h"

#include <QCoreApplication>

#include <memory>

namespace ferrule {

class SystemDocument;

// What a run that opens windows needs beyond the command line: its application object and the
// runs themselves (the main window, its screenshot, the editor). They live in the host's
// windowed part, which only such runs load, so that the runs without a window (--diff,
// --export, --receive, --request, --list-midi-ports) never load the GUI libraries.
struct WindowedRuns {
    std::unique_ptr<QCoreApplication> (*makeApplication)(int& argc, char** argv);
    int (*run)(const HostOptions& options, SystemDocument& document);
};

// The whole run of ferrule-host on its command line: the options, the document, then the run
// they ask for. `windowed` is null in the part of the host that has no windows; a run that
// needs them then fails.
int runHost(int argc, char** argv, const WindowedRuns* windowed);

// The name of the windowed part's entry point: int(int argc, char** argv).
inline constexpr char kWindowedEntry[] = "ferruleHostWindowed";

} // namespace ferrule
