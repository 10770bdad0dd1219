#include "MidiModule.h"

#include "LinkEvents.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <dlfcn.h>

namespace ferrule {

namespace {

struct LoadedDriver {
    MidiDriver* driver = nullptr;
    QString error;
};

// Where the module is: next to the program as installed, or where the build made it.
QStringList moduleFiles() {
    QStringList files;
    if (QCoreApplication::instance())
        files << QDir(QCoreApplication::applicationDirPath())
                     .filePath(QStringLiteral(FERRULE_MIDI_MODULE_RELPATH));
    files << QStringLiteral(FERRULE_MIDI_MODULE_BUILD);
    return files;
}

LoadedDriver load() {
    QString tried;
    for (const QString& file : moduleFiles()) {
        if (!QFileInfo::exists(file)) continue;
        // Never closed: ports and JACK's threads use its code until the process ends.
        void* module = dlopen(QFile::encodeName(file).constData(), RTLD_NOW | RTLD_LOCAL);
        if (!module) {
            tried = QString::fromLocal8Bit(dlerror());
            continue;
        }
        const auto entry = reinterpret_cast<MidiDriverEntry>(dlsym(module, kMidiDriverEntry));
        if (!entry) {
            tried = QStringLiteral("%1 has no %2").arg(file, QLatin1String(kMidiDriverEntry));
            continue;
        }
        return {entry(&LinkEvents::notify), {}};
    }
    if (tried.isEmpty())
        tried = QStringLiteral("looked for %1").arg(moduleFiles().join(QStringLiteral(", ")));
    return {nullptr, QStringLiteral("the MIDI module cannot be loaded (%1)").arg(tried)};
}

MidiDriver* chosenDriver = nullptr;

} // namespace

void useMidiDriver(MidiDriver* driver) {
    chosenDriver = driver;
}

MidiDriver* midiDriver(QString* error) {
    if (chosenDriver) return chosenDriver;
    static const LoadedDriver loaded = load();
    if (!loaded.driver && error) *error = loaded.error;
    return loaded.driver;
}

std::unique_ptr<MidiPort> openMidiPort(const MidiPortRequest& request, QString* error) {
    MidiDriver* driver = midiDriver(error);
    if (!driver) return nullptr;
    std::unique_ptr<MidiPort> port = driver->open(request, error);
    if (port && request.api == MidiApi::Jack) {
        // A stopped server's clients are closed as soon as the Qt thread hears of the stop: a
        // client left open blocks other programs' clients of the restarted server.
        static QPointer<LinkEvents> closing;
        if (closing != LinkEvents::instance()) {
            closing = LinkEvents::instance();
            QObject::connect(closing, &LinkEvents::changed, closing,
                             [driver] { driver->closeStoppedClients(); });
        }
    }
    return port;
}

QList<MidiApi> compiledMidiApis() {
    MidiDriver* driver = midiDriver(nullptr);
    return driver ? driver->compiledApis() : QList<MidiApi>();
}

bool midiSystemRuns(MidiApi api, QString* why) {
    MidiDriver* driver = midiDriver(why);
    return driver && driver->systemRuns(api, why);
}

std::optional<MidiApi> defaultMidiApi(QString* why) {
    MidiDriver* driver = midiDriver(why);
    if (!driver) return std::nullopt;
    QStringList reasons;
    for (MidiApi api : driver->compiledApis()) {
        QString reason;
        if (driver->systemRuns(api, &reason)) return api;
        reasons << reason;
    }
    if (why)
        *why = QStringLiteral("no MIDI system runs: %1").arg(reasons.join(QStringLiteral(", ")));
    return std::nullopt;
}

MidiPortList listMidiPorts(MidiApi api, const QString& clientName) {
    MidiPortList list;
    if (MidiDriver* driver = midiDriver(&list.error)) list = driver->listPorts(api, clientName);
    return list;
}

} // namespace ferrule
