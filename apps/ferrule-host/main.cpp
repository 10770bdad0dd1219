// ferrule-host: a stand-alone host for the Ferrule system-settings editor. It reads the system
// data from a file or the device, runs the plug-in's editor on it, sends it to the device and
// saves it. The parts: cli (options, headless runs), document (the data and its files),
// transport (MIDI and pacing), plugin (the host object and the plug-in's editor), ui (the main
// window). The program itself carries the runs without a window; the ones with windows are in
// its windowed part, a library it loads only for them, so that a --diff or an --export starts
// without the GUI libraries.

#include "cli/DeviceRuns.h"
#include "cli/HostRun.h"

#include <QFile>
#include <QFileInfo>

#include <dlfcn.h>

using namespace ferrule;

namespace {

// The windowed part's entry point, from the library beside the program (its folder relative
// to the program's is the same in the build tree and when installed).
int runWindowed(int argc, char** argv) {
    const QString self = QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
    const QString library = QFileInfo(self).path() +
                            QStringLiteral("/" FERRULE_WINDOWED_RELDIR "/" FERRULE_WINDOWED_FILE);
    // Bound lazily: of the thousands of Qt functions the part refers to, a run calls a few
    // hundred, and each binding is a symbol look-up across every library loaded.
    void* handle = dlopen(QFile::encodeName(library).constData(), RTLD_LAZY | RTLD_LOCAL);
    if (!handle)
        return fail(kExitBadInput,
                    QStringLiteral("cannot load the windowed part: %1").arg(dlerror()));
    using Entry = int (*)(int, char**);
    const auto entry = reinterpret_cast<Entry>(dlsym(handle, kWindowedEntry));
    if (!entry)
        return fail(kExitBadInput,
                    QStringLiteral("\"%1\" has no %2").arg(library, QLatin1String(kWindowedEntry)));
    return entry(argc, argv);
}

} // namespace

int main(int argc, char** argv) {
    if (wantsWidgets(argc, argv)) return runWindowed(argc, argv);
    return runHost(argc, argv, nullptr);
}
