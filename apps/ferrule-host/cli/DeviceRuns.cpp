#include "DeviceRuns.h"

#include "DiffRun.h"
#include "HistoryRun.h"
#include "LinkWatch.h"
#include "MidiInput.h"
#include "MidiOutput.h"
#include "PacedOutput.h"
#include "WireTime.h"
#include "device/SysexCodec.h"
#include "document/SystemDocument.h"
#include "io/AtomicFile.h"
#include "transport/DumpReceiver.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

namespace ferrule {

int fail(int code, const QString& line) {
    std::fprintf(stderr, "ferrule-host: %s\n", qPrintable(line));
    return code;
}

void printWarnings(const SystemDocument& document) {
    for (const QString& warning : document.warnings())
        std::fprintf(stderr, "ferrule-host: %s: %s\n",
                     qPrintable(QFileInfo(document.path()).fileName()), qPrintable(warning));
}

namespace {

// --export writes messages, or settings text for a name ending in .txt.
DataFormat exportFormat(const QString& path) {
    return SystemDocument::formatForName(path) == DataFormat::Text ? DataFormat::Text
                                                                   : DataFormat::Syx;
}

} // namespace

std::optional<MidiApi> chosenMidiApi(const HostOptions& options, QString* why) {
    if (options.midiApi.isEmpty()) return defaultMidiApi(why);
    const MidiApi api = *midiApiFromName(options.midiApi);
    if (!compiledMidiApis().contains(api)) {
        *why = QStringLiteral("this build has no %1 MIDI").arg(options.midiApi.toUpper());
        return std::nullopt;
    }
    if (!midiSystemRuns(api, why)) return std::nullopt;
    return api;
}

int runListPorts(const HostOptions& options) {
    QList<MidiApi> apis = compiledMidiApis();
    if (!options.midiApi.isEmpty()) apis = {*midiApiFromName(options.midiApi)};
    for (MidiApi api : apis) {
        const QString name = midiApiName(api).toUpper();
        const MidiPortList list = listMidiPorts(api, QStringLiteral("ferrule-host"));
        if (!list.error.isEmpty()) {
            std::printf("%s: %s\n", qPrintable(name), qPrintable(list.error));
            continue;
        }
        std::printf("%s inputs:%s\n", qPrintable(name), list.inputs.isEmpty() ? " none" : "");
        for (int i = 0; i < list.inputs.size(); ++i)
            std::printf("  %d: %s\n", i, qPrintable(list.inputs[i]));
        std::printf("%s outputs:%s\n", qPrintable(name), list.outputs.isEmpty() ? " none" : "");
        for (int i = 0; i < list.outputs.size(); ++i)
            std::printf("  %d: %s\n", i, qPrintable(list.outputs[i]));
    }
    return 0;
}

int runExport(const HostOptions& options, const SystemDocument& document) {
    const QByteArray bytes = document.encode(exportFormat(options.exportFile));
    QString error;
    if (!AtomicFile::write(options.exportFile, bytes, &error)) return fail(1, error);
    std::printf("exported GT-%d system data: %lld bytes to %s\n", document.model(),
                static_cast<long long>(bytes.size()), qPrintable(options.exportFile));
    return 0;
}

int runReadDevice(const HostOptions& options, SystemDocument& document) {
    // Where the result goes is checked before the device is asked for anything.
    QString error;
    for (const QString& target : {options.exportFile, options.dataFile})
        if (!target.isEmpty() && !AtomicFile::writable(target, &error))
            return fail(kExitBadInput, error);
    std::optional<SystemDocument> other;
    if (options.diffs()) {
        other = openDiffFile(options, document.model(), &error);
        if (!other) return fail(kExitBadInput, error);
    }
    const std::optional<MidiApi> api = chosenMidiApi(options, &error);
    if (!api) return fail(kExitDevice, error);

    MidiInput input;
    if (!input.open(*api, QStringLiteral("ferrule-host"), options.midiIn, &error))
        return fail(kExitDevice, error);
    MidiOutput output;
    if (options.request &&
        !output.open(*api, QStringLiteral("ferrule-host"), options.midiOut, &error))
        return fail(kExitDevice, error);
    PacedOutput requests(
        [&output](const QByteArray& m, QString* why) { return output.send(m, why); });

    DumpReceiver::Options o;
    o.model = document.model();
    o.header = options.dataSetHeader();
    o.requestHeader =
        options.requestHeader.isEmpty() ? Sysex::requestHeaderFor(o.header) : options.requestHeader;
    o.request = options.request;
    if (options.timeoutS > 0) o.firstTimeoutMs = o.silenceTimeoutMs = options.timeoutS * 1000;
    DumpReceiver receiver(o, document.image(), input, options.request ? &requests : nullptr);

    std::fprintf(stderr, "ferrule-host: %s GT-%d system data on %s\n",
                 options.request ? "requesting" : "waiting for", o.model,
                 qPrintable(input.portName()));
    int lastTenth = -1;
    QObject::connect(&receiver, &DumpReceiver::progress, [&](int got, int expected) {
        const int tenth = expected > 0 ? got * 10 / expected : 10;
        if (tenth == lastTenth) return;
        lastTenth = tenth;
        std::fprintf(stderr, "ferrule-host: received %d%% (%d of %d bytes)\n", got * 100 / expected,
                     got, expected);
    });
    QObject::connect(&requests, &PacedOutput::failed, &receiver, [&](const QString& why) {
        error = QStringLiteral("the request could not be sent: %1").arg(why);
        QCoreApplication::exit(kExitDevice);
    });
    QObject::connect(&receiver, &DumpReceiver::finished, [](bool) { QCoreApplication::exit(0); });
    // A port or a MIDI system that goes away ends the run at once, named as what it is.
    LinkWatch watch;
    QObject::connect(&watch, &LinkWatch::lost, &receiver, [&](const QString& why) {
        error = why;
        QCoreApplication::exit(kExitDevice);
    });
    watch.watch(&input, options.request ? &output : nullptr);
    receiver.start();
    if (QCoreApplication::exec() != 0) return fail(kExitDevice, error);
    if (!receiver.error().isEmpty()) return fail(kExitDevice, receiver.error());

    document.setImage(receiver.assembler().image());
    if (!options.exportFile.isEmpty() &&
        !AtomicFile::write(options.exportFile, document.encode(exportFormat(options.exportFile)),
                           &error))
        return fail(1, error);
    if (!options.dataFile.isEmpty()) {
        const DataFormat format = document.path().isEmpty()
                                      ? SystemDocument::formatForName(options.dataFile)
                                      : document.format();
        if (!document.saveAs(options.dataFile, format, &error)) return fail(1, error);
    }
    keepInHistory(options.request ? Snapshot::Kind::Requested : Snapshot::Kind::Received, o.model,
                  receiver.assembler().image(), o.header,
                  {input.portName(), options.request ? output.portName() : QString()});
    const double wire = wireTimeMs(receiver.wireBytes());
    QString report =
        QStringLiteral(
            "received GT-%1 system data: %2 messages, %3 bytes in %4 ms (wire time %5 ms)")
            .arg(o.model)
            .arg(receiver.applied())
            .arg(receiver.assembler().unitsReceived())
            .arg(receiver.elapsedMs(), 0, 'f', 1)
            .arg(wire, 0, 'f', 1);
    if (options.request) report += QStringLiteral("; %1 requests").arg(receiver.requestsSent());
    if (receiver.foreign() + receiver.badChecksums() + receiver.rejected() > 0)
        report += QStringLiteral("; ignored %1 foreign, %2 with a bad checksum, %3 outside the map")
                      .arg(receiver.foreign())
                      .arg(receiver.badChecksums())
                      .arg(receiver.rejected());
    // With --diff, standard output holds the differences alone.
    std::fprintf(options.diffs() ? stderr : stdout, "%s%s\n",
                 options.diffs() ? "ferrule-host: " : "", qPrintable(report));
    return other ? printDifferences(document, *other) : 0;
}

} // namespace ferrule
