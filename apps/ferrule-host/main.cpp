// ferrule-host: a stand-alone host for the Ferrule system-settings editor. It loads the plug-in,
// owns the system data, answers the plug-in's calls and saves the data when the editor closes
// keeping its changes.

#include "BlockPipeline.h"
#include "DefaultImage.h"
#include "HeadlessRun.h"
#include "HostObject.h"
#include "HostOptions.h"
#include "MidiOutput.h"
#include "PlugInLocator.h"
#include "host/PlugInInterface.h"
#include "host/SettingsStore.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QPluginLoader>
#include <QSaveFile>
#include <QScreen>
#include <QWidget>

#include <cstdio>
#include <exception>
#include <vector>

namespace {

constexpr int kImageSize = 43252;
constexpr int kBadInput = 2;

int badInput(const QString& line) {
    std::fprintf(stderr, "ferrule-host: %s\n", qPrintable(line));
    return kBadInput;
}

// Reads the data file; on failure returns an empty array and says why.
QByteArray readImage(const QString& path, QString& error) {
    const QFileInfo info(path);
    if (!info.exists()) {
        error = QStringLiteral("data file \"%1\" does not exist").arg(path);
        return {};
    }
    if (info.isDir()) {
        error = QStringLiteral("data file \"%1\" is a folder, not a file").arg(path);
        return {};
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("data file \"%1\" cannot be read: %2").arg(path, file.errorString());
        return {};
    }
    QByteArray data = file.read(kImageSize + 1);
    if (data.size() != kImageSize) {
        error = QStringLiteral(
                    "data file \"%1\" holds %2 bytes; system data must be exactly 43252 bytes")
                    .arg(path)
                    .arg(info.size());
        return {};
    }
    return data;
}

bool displayAvailable() {
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

} // namespace

int main(int argc, char** argv) {
    const bool headless = wantsHeadless(argc, argv);
    if (headless && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    bool needsDisplay = !headless;
    for (int i = 1; i < argc; ++i) {
        const QByteArray a(argv[i]);
        if (a == "--help" || a == "-h" || a == "--version" || a == "-v") needsDisplay = false;
    }
    if (needsDisplay && !displayAvailable())
        return badInput(
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
    QApplication app(qtArgc, qtArgv.data());
    QApplication::setApplicationName(QStringLiteral("ferrule-host"));
    QApplication::setApplicationVersion(QStringLiteral("4.2.0"));

    const ParsedOptions parsed = parseHostOptions(arguments);
    if (!parsed.message.isEmpty()) {
        std::fputs(qPrintable(parsed.message), stdout);
        return 0;
    }
    if (!parsed.options) return badInput(parsed.error);
    const HostOptions& options = *parsed.options;

    if (options.listMidiPorts) {
        QString why;
        const QStringList ports = MidiOutput::ports(&why);
        if (!why.isEmpty())
            std::printf("%s\n", qPrintable(why));
        else if (ports.isEmpty())
            std::printf("no MIDI output ports\n");
        for (int i = 0; i < ports.size(); ++i)
            std::printf("%d: %s\n", i, qPrintable(ports[i]));
        return 0;
    }

    QByteArray image;
    if (options.dataFile.isEmpty()) {
        image = makeDefaultImage();
    } else {
        QString error;
        image = readImage(options.dataFile, error);
        if (image.isEmpty()) return badInput(error);
    }
    if (!options.screenshot.isEmpty() &&
        !options.screenshot.endsWith(QStringLiteral(".png"), Qt::CaseInsensitive))
        return badInput(
            QStringLiteral("screenshot file \"%1\" must end in .png").arg(options.screenshot));

    const LocatedPlugIn located =
        locatePlugIn(QStringLiteral("Ferrule.PlugIn"), options.pluginPath);
    if (!located.error.isEmpty()) return badInput(located.error);
    QPluginLoader loader(located.file);
    QObject* instance = loader.instance();
    if (!instance)
        return badInput(QStringLiteral("plug-in \"%1\" cannot be loaded: %2")
                            .arg(located.file, loader.errorString()));
    auto* plugIn = qobject_cast<ferrule::PlugInInterface*>(instance);
    if (!plugIn)
        return badInput(
            QStringLiteral("\"%1\" does not offer the plug-in interface").arg(located.file));

    ferrule::RegCreateKey(ferrule::RegRoot::LocalMachine, ferrule::kEditorKey);

    BlockPipeline pipeline({options.sysexHeader, options.gapMs, options.syxFile, options.midiOut});
    {
        QString why;
        if (!pipeline.open(&why)) return badInput(why);
    }
    HostObject host(image);
    host.setRefuseUpdate(options.refuseUpdate);
    host.setBlockSink([&pipeline](int address, const QByteArray& data, int model) {
        pipeline.send(address, data, model);
    });
    pipeline.setQueueEmpty([plugIn] { plugIn->QueueEmpty(); });
    QWidget ownerWindow;
    ownerWindow.setWindowTitle(QStringLiteral("Tonebench"));
    HeadlessRun headlessRun(options, pipeline);
    int status = 0;
    try {
        plugIn->Interface(&host);
        plugIn->Owner(&ownerWindow);
        plugIn->Title(options.title);
        plugIn->Format(options.model);
        const QScreen* screen = QGuiApplication::primaryScreen();
        const QPoint centre = screen ? screen->geometry().center() : QPoint(512, 384);
        plugIn->Center(qint16(std::min(centre.x() * 15, 32767)),
                       qint16(std::min(centre.y() * 15, 32767)));
        headlessRun.arm();
        plugIn->Start();
        plugIn->Quit();
        status = headlessRun.status();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "ferrule-host: error: %s\n", e.what());
        return 1;
    }

    if (!options.dataFile.isEmpty() && host.changed()) {
        QSaveFile out(options.dataFile);
        if (!out.open(QIODevice::WriteOnly) || out.write(host.image()) != kImageSize ||
            !out.commit()) {
            std::fprintf(stderr, "ferrule-host: data file \"%s\" could not be written: %s\n",
                         qPrintable(options.dataFile), qPrintable(out.errorString()));
            return 1;
        }
    }
    return status;
}
