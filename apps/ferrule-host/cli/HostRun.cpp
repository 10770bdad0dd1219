#include "HostRun.h"

#include "DeviceRuns.h"
#include "DiffRun.h"
#include "HistoryRun.h"
#include "device/SyxFile.h"
#include "document/SystemDocument.h"
#include "io/QtThreads.h"

#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <cstdio>
#include <vector>

namespace ferrule {

namespace {

bool displayAvailable() {
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// The model a file named alone holds: a .syx file's or a settings text's own, otherwise the
// options' model.
int modelToOpen(const HostOptions& options) {
    if (const int model = SystemDocument::textModel(options.openFile)) return model;
    QFile file(options.openFile);
    if (!file.open(QIODevice::ReadOnly)) return options.model;
    const int model = SyxFile::modelOf(file.read(SyxFile::kMaxSize), options.dataSetHeader());
    return model != 0 ? model : options.model;
}

// The document the options name: the --data file, or the embedded default. A device read may
// name a --data file that does not exist yet; it is created when the read succeeds. A file
// named alone is opened by the main window itself, on the default data of its model.
std::optional<SystemDocument> openDocument(const HostOptions& options, QString* error) {
    if (!options.openFile.isEmpty()) {
        const int model = modelToOpen(options);
        return SystemDocument(model, options.dataSetHeader(model));
    }
    if (options.dataFile.isEmpty() ||
        (options.readsDevice() && !QFileInfo::exists(options.dataFile)))
        return SystemDocument(options.model, options.dataSetHeader());
    return SystemDocument::open(options.dataFile, options.model, options.dataSetHeader(), error);
}

int run(int argc, char** argv, const WindowedRuns* windowed) {
    // A closed pipe or socket (a MIDI system that dropped us, a reader that went away) must
    // come back as a failed write that is reported, not end the process unannounced.
    std::signal(SIGPIPE, SIG_IGN);
    const bool headless = wantsHeadless(argc, argv);
    if (headless && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool needsDisplay = !headless && !answersWithText(argc, argv);
    if (needsDisplay && !displayAvailable())
        return fail(kExitBadInput,
                    QStringLiteral("no display to show the editor on; use --screenshot FILE.png "
                                   "to render it without one"));
    if (!needsDisplay && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !displayAvailable())
        qputenv("QT_QPA_PLATFORM", "offscreen");

    // Qt takes "-plugin NAME" for itself, so the command line is read from argv before
    // QApplication sees it, and our --plugin option is kept away from Qt.
    QStringList arguments;
    std::vector<char*> qtArgv;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
        const QByteArray a(argv[i]);
        if (i > 0 && (a == "--plugin" || a == "-plugin") && i + 1 < argc) {
            arguments << QString::fromLocal8Bit(argv[++i]);
            continue;
        }
        if (i > 0 && (a.startsWith("--plugin=") || a.startsWith("-plugin="))) continue;
        qtArgv.push_back(argv[i]);
    }
    int qtArgc = int(qtArgv.size());
    qtArgv.push_back(nullptr);
    // Runs that open no window start faster without the GUI: no platform, no fonts.
    const std::unique_ptr<QCoreApplication> app =
        windowed && wantsWidgets(argc, argv)
            ? windowed->makeApplication(qtArgc, qtArgv.data())
            : std::make_unique<QCoreApplication>(qtArgc, qtArgv.data());
    QCoreApplication::setApplicationName(QStringLiteral("ferrule-host"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FERRULE_VERSION));

    const ParsedOptions parsed = parseHostOptions(arguments);
    if (!parsed.message.isEmpty()) {
        std::fputs(qPrintable(parsed.message), stdout);
        return 0;
    }
    if (!parsed.options) return fail(kExitBadInput, parsed.error);
    HostOptions options = *parsed.options;
    // A settings text names its model; without --model, that is the model to work on.
    if (!options.modelGiven)
        if (const int model = SystemDocument::textModel(options.dataFile))
            options.adoptModel(model);

    if (options.listMidiPorts) return runListPorts(options);
    if (options.history) return runHistory();

    QString error;
    std::optional<SystemDocument> document = openDocument(options, &error);
    if (!document) return fail(kExitBadInput, error);
    printWarnings(*document);
    if (!options.screenshot.isEmpty() &&
        !options.screenshot.endsWith(QStringLiteral(".png"), Qt::CaseInsensitive))
        return fail(
            kExitBadInput,
            QStringLiteral("screenshot file \"%1\" must end in .png").arg(options.screenshot));

    if (options.readsDevice()) return runReadDevice(options, *document);
    if (options.diffs()) return runDiff(options, *document);
    if (!options.exportFile.isEmpty() && !options.editorHeadless())
        return runExport(options, *document);
    if (!windowed)
        return fail(kExitBadInput, QStringLiteral("this run needs the host's windowed part"));
    return windowed->run(options, *document);
}

} // namespace

int runHost(int argc, char** argv, const WindowedRuns* windowed) {
    waitForQtThreadsAtExit();
    const int code = run(argc, argv, windowed);
    // The application object is gone; its painting threads end before the process does.
    waitForQtThreadsToEnd();
    return code;
}

} // namespace ferrule
