#include "HostOptions.h"

#include "device/SysexCodec.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstring>

bool wantsHeadless(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const char* a = argv[i];
        for (const char* option :
             {"--screenshot", "--describe", "--transmit", "--list-midi-ports", "--export",
              "--receive", "--request", "--main-screenshot", "--diff", "--history"})
            if (std::strncmp(a, option, std::strlen(option)) == 0) return true;
    }
    return false;
}

bool wantsWidgets(int argc, char** argv) {
    bool windowless = false;
    for (int i = 1; i < argc; ++i) {
        const char* a = argv[i];
        for (const char* option :
             {"--screenshot", "--describe", "--transmit", "--main-screenshot", "--edit"})
            if (std::strncmp(a, option, std::strlen(option)) == 0) return true;
        for (const char* option :
             {"--export", "--receive", "--request", "--list-midi-ports", "--diff", "--history"})
            if (std::strncmp(a, option, std::strlen(option)) == 0) windowless = true;
    }
    return !windowless;
}

void HostOptions::adoptModel(int m) {
    if (title == QStringLiteral("GT-%1").arg(model)) title = QStringLiteral("GT-%1").arg(m);
    model = m;
}

namespace {

// What is wrong with a --diff run's options, or nothing.
QString diffFault(const HostOptions& o) {
    if (o.diffFile.isEmpty()) return QStringLiteral("--diff needs a file name");
    if (o.editorHeadless() || o.edit || !o.mainScreenshot.isEmpty())
        return QStringLiteral("--diff cannot be combined with --screenshot, --describe, "
                              "--transmit, --edit or --main-screenshot");
    if (o.readsDevice()) return {};
    if (o.dataFile.isEmpty())
        return QStringLiteral("--diff needs the other side: --data FILE, --receive or --request");
    if (!o.exportFile.isEmpty())
        return QStringLiteral("--diff and --export go together only with --receive or --request");
    return {};
}

} // namespace

ParsedOptions parseHostOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Stand-alone host for the Ferrule system-settings editor of GT- devices."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption model({QStringLiteral("m"), QStringLiteral("model")},
                                   QStringLiteral("Device model: 3, 5, 6, 8 or 10 (default 10)."),
                                   QStringLiteral("N"), QStringLiteral("10"));
    const QCommandLineOption title(
        QStringLiteral("title"), QStringLiteral("Window title after \"System: \" (default GT-N)."),
        QStringLiteral("TEXT"));
    const QCommandLineOption data(
        {QStringLiteral("d"), QStringLiteral("data")},
        QStringLiteral("System data to edit: a raw 43,252-byte image, a .syx file or a .txt "
                       "settings text (whose model is taken from the file); written "
                       "back in its own form when the editor closes keeping its changes, or "
                       "when --receive or --request has read the device."),
        QStringLiteral("FILE"));
    const QCommandLineOption plugin(QStringLiteral("plugin"),
                                    QStringLiteral("Plug-in library, or a folder holding it."),
                                    QStringLiteral("PATH"));
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("Headless: render the editor as it first appears to FILE.png and exit."),
        QStringLiteral("FILE.png"));
    const QCommandLineOption page(QStringLiteral("page"),
                                  QStringLiteral("Page to open (otherwise the stored one)."),
                                  QStringLiteral("N"));
    const QCommandLineOption describe(
        QStringLiteral("describe"),
        QStringLiteral("Headless: print the open editor's visible controls as JSON and exit."));
    const QCommandLineOption transmit(
        QStringLiteral("transmit"),
        QStringLiteral(
            "Headless: start a transmission as the transmit button does, let it run to the end, "
            "close without keeping changes and print what was sent."));
    const QCommandLineOption syx(QStringLiteral("syx"),
                                 QStringLiteral("Write the transmitted messages to a .syx file."),
                                 QStringLiteral("FILE"));
    const QCommandLineOption midiOut(
        QStringLiteral("midi-out"),
        QStringLiteral("Send the transmitted messages to a MIDI output port."),
        QStringLiteral("NAME or NUMBER"));
    const QCommandLineOption listPorts(QStringLiteral("list-midi-ports"),
                                       QStringLiteral("List the MIDI input and output ports."));
    const QCommandLineOption midiApi(
        QStringLiteral("midi-api"),
        QStringLiteral("MIDI system: alsa or jack (default: the first that runs)."),
        QStringLiteral("API"));
    const QCommandLineOption midiIn(QStringLiteral("midi-in"),
                                    QStringLiteral("MIDI input port to read the device from."),
                                    QStringLiteral("NAME or NUMBER"));
    const QCommandLineOption exportSyx(
        QStringLiteral("export"),
        QStringLiteral("Headless: write the model's whole data as a .syx file (or, for a name "
                       "ending in .txt, as settings text) and exit; with --receive or "
                       "--request, where the data read goes."),
        QStringLiteral("FILE.syx"));
    const QCommandLineOption diff(
        QStringLiteral("diff"),
        QStringLiteral("Headless: compare --data (or the device's data, with --receive or "
                       "--request) with FILE (raw, .syx or .txt), one line per setting that "
                       "differs; exit 0 when nothing differs, 1 when something does."),
        QStringLiteral("FILE"));
    const QCommandLineOption receive(
        QStringLiteral("receive"),
        QStringLiteral("Headless: wait for a dump started on the device and save it."));
    const QCommandLineOption request(
        QStringLiteral("request"),
        QStringLiteral("Headless: ask the device for its system data and save it."));
    const QCommandLineOption timeout(
        QStringLiteral("timeout"),
        QStringLiteral("Seconds of silence that end a receive (default 60 before the first "
                       "message, 10 once data flows)."),
        QStringLiteral("S"));
    const QCommandLineOption requestHeader(
        QStringLiteral("request-header"),
        QStringLiteral("Request header bytes after F0, in hex (default: the data-set header "
                       "with command 11)."),
        QStringLiteral("HEX"));
    const QCommandLineOption gap(
        QStringLiteral("gap"),
        QStringLiteral("Pause after each message's wire time, in ms (default 20)."),
        QStringLiteral("MS"), QStringLiteral("20"));
    const QCommandLineOption header(
        QStringLiteral("sysex-header"),
        QStringLiteral("Header bytes after F0, in hex (default 7D 10, the model, 12)."),
        QStringLiteral("HEX"));
    const QCommandLineOption refuse(
        QStringLiteral("refuse-update"),
        QStringLiteral("Refuse the plug-in's update request (GTUpdate stays false)."));
    const QCommandLineOption edit(
        QStringLiteral("edit"),
        QStringLiteral("Open the editor at once on the data, without the main window; OK "
                       "writes --data back."));
    const QCommandLineOption mainScreenshot(
        QStringLiteral("main-screenshot"),
        QStringLiteral("Headless: render the main window to FILE.png and exit."),
        QStringLiteral("FILE.png"));
    const QCommandLineOption verify(
        QStringLiteral("verify"),
        QStringLiteral("With --transmit: read back what was sent from --midi-in and compare it; "
                       "exit 4 listing the parameters the device holds otherwise."));
    parser.addOption(verify);
    const QCommandLineOption history(
        QStringLiteral("history"),
        QStringLiteral("List the device's states kept in the history, newest first: time, "
                       "model, kind, port and file, one a line; then exit."));
    parser.addOption(history);
    parser.addPositionalArgument(
        QStringLiteral("FILE"),
        QStringLiteral("System data to open in the main window, as File > Open does: a raw "
                       "image, or a .syx file (whose model is taken from the file)."),
        QStringLiteral("[FILE]"));
    parser.addOptions({model,    title,    data,          plugin,  screenshot,     page,
                       describe, transmit, syx,           midiOut, listPorts,      gap,
                       header,   refuse,   midiApi,       midiIn,  exportSyx,      receive,
                       request,  timeout,  requestHeader, edit,    mainScreenshot, diff});

    ParsedOptions result;
    if (!parser.parse(arguments)) {
        result.error = parser.errorText();
        return result;
    }
    if (parser.isSet(help)) {
        result.message = parser.helpText();
        return result;
    }
    if (parser.isSet(version)) {
        result.message = QCoreApplication::applicationName() + QLatin1Char(' ') +
                         QCoreApplication::applicationVersion() + QLatin1Char('\n');
        return result;
    }
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1) {
        result.error =
            QStringLiteral("unexpected argument \"%1\": one file at a time").arg(files[1]);
        return result;
    }
    HostOptions o;
    bool ok = false;
    o.model = parser.value(model).toInt(&ok);
    if (!ok || (o.model != 3 && o.model != 5 && o.model != 6 && o.model != 8 && o.model != 10)) {
        result.error = QStringLiteral("--model \"%1\" is not one of 3, 5, 6, 8 or 10")
                           .arg(parser.value(model));
        return result;
    }
    o.modelGiven = parser.isSet(model);
    o.title = parser.isSet(title) ? parser.value(title) : QStringLiteral("GT-%1").arg(o.model);
    o.dataFile = parser.value(data);
    if (parser.isSet(data) && o.dataFile.isEmpty()) {
        result.error = QStringLiteral("--data needs a file name");
        return result;
    }
    o.pluginPath = parser.value(plugin);
    o.screenshot = parser.value(screenshot);
    o.describe = parser.isSet(describe);
    if (parser.isSet(page)) {
        o.page = parser.value(page).toInt(&ok);
        if (!ok || o.page < 0 || o.page > 15) {
            result.error =
                QStringLiteral("--page \"%1\" is not a page number 0-15").arg(parser.value(page));
            return result;
        }
    }
    o.transmit = parser.isSet(transmit);
    o.listMidiPorts = parser.isSet(listPorts);
    o.syxFile = parser.value(syx);
    o.midiOut = parser.value(midiOut);
    o.midiIn = parser.value(midiIn);
    o.midiApi = parser.value(midiApi).toLower();
    if (parser.isSet(midiApi) && o.midiApi != QLatin1String("alsa") &&
        o.midiApi != QLatin1String("jack")) {
        result.error =
            QStringLiteral("--midi-api \"%1\" is not alsa or jack").arg(parser.value(midiApi));
        return result;
    }
    o.exportFile = parser.value(exportSyx);
    if (parser.isSet(exportSyx) && o.exportFile.isEmpty()) {
        result.error = QStringLiteral("--export needs a file name");
        return result;
    }
    o.edit = parser.isSet(edit);
    o.mainScreenshot = parser.value(mainScreenshot);
    if (parser.isSet(mainScreenshot) &&
        !o.mainScreenshot.endsWith(QStringLiteral(".png"), Qt::CaseInsensitive)) {
        result.error = QStringLiteral("screenshot file \"%1\" must end in .png")
                           .arg(parser.value(mainScreenshot));
        return result;
    }
    o.receive = parser.isSet(receive);
    o.request = parser.isSet(request);
    if (o.receive && o.request) {
        result.error = QStringLiteral("--receive and --request cannot be used together");
        return result;
    }
    if (o.readsDevice()) {
        const QString what = o.receive ? QStringLiteral("--receive") : QStringLiteral("--request");
        if (o.midiIn.isEmpty() || (o.request && o.midiOut.isEmpty())) {
            result.error = QStringLiteral("%1 needs %2")
                               .arg(what, o.request ? QStringLiteral("--midi-in and --midi-out")
                                                    : QStringLiteral("--midi-in"));
            return result;
        }
        if (o.exportFile.isEmpty() && o.dataFile.isEmpty() && !parser.isSet(diff)) {
            result.error = QStringLiteral("%1 needs --export FILE.syx or --data FILE to save "
                                          "what it reads")
                               .arg(what);
            return result;
        }
        if (o.editorHeadless()) {
            result.error = QStringLiteral("%1 cannot be combined with --screenshot, --describe or "
                                          "--transmit")
                               .arg(what);
            return result;
        }
    }
    o.diffFile = parser.value(diff);
    if (parser.isSet(diff)) {
        result.error = diffFault(o);
        if (!result.error.isEmpty()) return result;
    }
    if (parser.isSet(timeout)) {
        o.timeoutS = parser.value(timeout).toInt(&ok);
        if (!ok || o.timeoutS < 1 || o.timeoutS > 3600) {
            result.error = QStringLiteral("--timeout \"%1\" is not a number of seconds 1-3600")
                               .arg(parser.value(timeout));
            return result;
        }
    }
    o.verify = parser.isSet(verify);
    if (o.verify && (!o.transmit || o.midiIn.isEmpty() || o.midiOut.isEmpty())) {
        result.error = QStringLiteral("--verify goes with --transmit, --midi-out and --midi-in "
                                      "(where it reads back what was sent)");
        return result;
    }
    o.history = parser.isSet(history);
    o.refuseUpdate = parser.isSet(refuse);
    o.gapMs = parser.value(gap).toInt(&ok);
    if (!ok || o.gapMs < 0 || o.gapMs > 10000) {
        result.error = QStringLiteral("--gap \"%1\" is not a number of milliseconds 0-10000")
                           .arg(parser.value(gap));
        return result;
    }
    if (parser.isSet(header)) {
        o.sysexHeader = ferrule::Sysex::parseHeader(parser.value(header));
        if (o.sysexHeader.isEmpty()) {
            result.error = QStringLiteral("--sysex-header \"%1\" is not hex bytes 00-7F")
                               .arg(parser.value(header));
            return result;
        }
    }
    if (parser.isSet(requestHeader)) {
        o.requestHeader = ferrule::Sysex::parseHeader(parser.value(requestHeader));
        if (o.requestHeader.isEmpty()) {
            result.error = QStringLiteral("--request-header \"%1\" is not hex bytes 00-7F")
                               .arg(parser.value(requestHeader));
            return result;
        }
    }
    if (!files.isEmpty()) {
        o.openFile = files.first();
        if (!o.mainWindow() || parser.isSet(data)) {
            result.error = QStringLiteral("\"%1\" would open in the main window; with --data, "
                                          "--edit or a headless run, give it as --data FILE")
                               .arg(o.openFile);
            return result;
        }
    }
    result.options = o;
    return result;
}
