#include "HostOptions.h"

#include "device/SysexCodec.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <cstring>

namespace ferrule {

const std::vector<HostOption>& hostOptionTable() {
    static const std::vector<HostOption> table{
        {HostOption::Verify,
         QCommandLineOption(
             QStringLiteral("verify"),
             QStringLiteral(
                 "With --transmit: read back what was sent from --midi-in and compare it; "
                 "exit 4 listing the parameters the device holds otherwise.")),
         false, HostOption::Widgets::Either},
        {HostOption::History,
         QCommandLineOption(
             QStringLiteral("history"),
             QStringLiteral("List the device's states kept in the history, newest first: time, "
                            "model, kind, port and file, one a line; then exit.")),
         true, HostOption::Widgets::None},
        {HostOption::Model,
         QCommandLineOption({QStringLiteral("m"), QStringLiteral("model")},
                            QStringLiteral("Device model: 3, 5, 6, 8 or 10 (default 10)."),
                            QStringLiteral("N"), QStringLiteral("10")),
         false, HostOption::Widgets::Either},
        {HostOption::Title,
         QCommandLineOption(QStringLiteral("title"),
                            QStringLiteral("Window title after \"System: \" (default GT-N)."),
                            QStringLiteral("TEXT")),
         false, HostOption::Widgets::Either},
        {HostOption::Data,
         QCommandLineOption(
             {QStringLiteral("d"), QStringLiteral("data")},
             QStringLiteral("System data to edit: a raw 43,252-byte image, a .syx file or a .txt "
                            "settings text (whose model is taken from the file); written "
                            "back in its own form when the editor closes keeping its changes, or "
                            "when --receive or --request has read the device."),
             QStringLiteral("FILE")),
         false, HostOption::Widgets::Either},
        {HostOption::Plugin,
         QCommandLineOption(QStringLiteral("plugin"),
                            QStringLiteral("Plug-in library, or a folder holding it."),
                            QStringLiteral("PATH")),
         false, HostOption::Widgets::Either},
        {HostOption::Screenshot,
         QCommandLineOption(
             QStringLiteral("screenshot"),
             QStringLiteral(
                 "Headless: render the editor as it first appears to FILE.png and exit."),
             QStringLiteral("FILE.png")),
         true, HostOption::Widgets::Needed},
        {HostOption::Page,
         QCommandLineOption(QStringLiteral("page"),
                            QStringLiteral("Page to open (otherwise the stored one)."),
                            QStringLiteral("N")),
         false, HostOption::Widgets::Either},
        {HostOption::Describe,
         QCommandLineOption(
             QStringLiteral("describe"),
             QStringLiteral(
                 "Headless: print the open editor's visible controls as JSON and exit.")),
         true, HostOption::Widgets::Needed},
        {HostOption::Transmit,
         QCommandLineOption(
             QStringLiteral("transmit"),
             QStringLiteral("Headless: start a transmission as the transmit button does, let it "
                            "run to the end, "
                            "close without keeping changes and print what was sent.")),
         true, HostOption::Widgets::Needed},
        {HostOption::Syx,
         QCommandLineOption(QStringLiteral("syx"),
                            QStringLiteral("Write the transmitted messages to a .syx file."),
                            QStringLiteral("FILE")),
         false, HostOption::Widgets::Either},
        {HostOption::MidiOut,
         QCommandLineOption(QStringLiteral("midi-out"),
                            QStringLiteral("Send the transmitted messages to a MIDI output port."),
                            QStringLiteral("NAME or NUMBER")),
         false, HostOption::Widgets::Either},
        {HostOption::ListPorts,
         QCommandLineOption(QStringLiteral("list-midi-ports"),
                            QStringLiteral("List the MIDI input and output ports.")),
         true, HostOption::Widgets::None},
        {HostOption::Gap,
         QCommandLineOption(
             QStringLiteral("gap"),
             QStringLiteral("Pause after each message's wire time, in ms (default 20)."),
             QStringLiteral("MS"), QStringLiteral("20")),
         false, HostOption::Widgets::Either},
        {HostOption::Header,
         QCommandLineOption(
             QStringLiteral("sysex-header"),
             QStringLiteral("Header bytes after F0, in hex (default 7D 10, the model, 12)."),
             QStringLiteral("HEX")),
         false, HostOption::Widgets::Either},
        {HostOption::Refuse,
         QCommandLineOption(
             QStringLiteral("refuse-update"),
             QStringLiteral("Refuse the plug-in's update request (GTUpdate stays false).")),
         false, HostOption::Widgets::Either},
        {HostOption::MidiApi,
         QCommandLineOption(
             QStringLiteral("midi-api"),
             QStringLiteral("MIDI system: alsa or jack (default: the first that runs)."),
             QStringLiteral("API")),
         false, HostOption::Widgets::Either},
        {HostOption::MidiIn,
         QCommandLineOption(QStringLiteral("midi-in"),
                            QStringLiteral("MIDI input port to read the device from."),
                            QStringLiteral("NAME or NUMBER")),
         false, HostOption::Widgets::Either},
        {HostOption::ExportSyx,
         QCommandLineOption(
             QStringLiteral("export"),
             QStringLiteral("Headless: write the model's whole data as a .syx file (or, for a name "
                            "ending in .txt, as settings text) and exit; with --receive or "
                            "--request, where the data read goes."),
             QStringLiteral("FILE.syx")),
         true, HostOption::Widgets::None},
        {HostOption::Receive,
         QCommandLineOption(
             QStringLiteral("receive"),
             QStringLiteral("Headless: wait for a dump started on the device and save it.")),
         true, HostOption::Widgets::None},
        {HostOption::Request,
         QCommandLineOption(
             QStringLiteral("request"),
             QStringLiteral("Headless: ask the device for its system data and save it.")),
         true, HostOption::Widgets::None},
        {HostOption::Timeout,
         QCommandLineOption(
             QStringLiteral("timeout"),
             QStringLiteral("Seconds of silence that end a receive (default 60 before the first "
                            "message, 10 once data flows)."),
             QStringLiteral("S")),
         false, HostOption::Widgets::Either},
        {HostOption::RequestHeader,
         QCommandLineOption(
             QStringLiteral("request-header"),
             QStringLiteral("Request header bytes after F0, in hex (default: the data-set header "
                            "with command 11)."),
             QStringLiteral("HEX")),
         false, HostOption::Widgets::Either},
        {HostOption::Edit,
         QCommandLineOption(
             QStringLiteral("edit"),
             QStringLiteral("Open the editor at once on the data, without the main window; OK "
                            "writes --data back.")),
         false, HostOption::Widgets::Needed},
        {HostOption::MainScreenshot,
         QCommandLineOption(
             QStringLiteral("main-screenshot"),
             QStringLiteral("Headless: render the main window to FILE.png and exit."),
             QStringLiteral("FILE.png")),
         true, HostOption::Widgets::Needed},
        {HostOption::Diff,
         QCommandLineOption(
             QStringLiteral("diff"),
             QStringLiteral("Headless: compare --data (or the device's data, with --receive or "
                            "--request) with FILE (raw, .syx or .txt), one line per setting that "
                            "differs; exit 0 when nothing differs, 1 when something does."),
             QStringLiteral("FILE")),
         true, HostOption::Widgets::None},
    };
    return table;
}

namespace {

// Whether an argument names an option of the table's long names (or a prefix of one's value,
// as --export=FILE), for the choices made before the command line is parsed.
bool names(const char* argument, const HostOption& row) {
    for (const QString& name : row.option.names()) {
        if (name.size() < 2) continue;
        const QByteArray option = "--" + name.toLatin1();
        if (std::strncmp(argument, option.constData(), size_t(option.size())) == 0) return true;
    }
    return false;
}

} // namespace

bool wantsHeadless(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        for (const HostOption& row : hostOptionTable())
            if (row.headless && names(argv[i], row)) return true;
    return false;
}

bool wantsWidgets(int argc, char** argv) {
    bool windowless = false;
    for (int i = 1; i < argc; ++i)
        for (const HostOption& row : hostOptionTable())
            if (row.widgets != HostOption::Widgets::Either && names(argv[i], row)) {
                if (row.widgets == HostOption::Widgets::Needed) return true;
                windowless = true;
            }
    return !windowless;
}

bool answersWithText(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArray a(argv[i]);
        if (a == "--help" || a == "-h" || a == "--version" || a == "-v") return true;
    }
    return false;
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
    for (const HostOption& row : hostOptionTable())
        parser.addOption(row.option);
    const auto option = [](HostOption::Name name) -> const QCommandLineOption& {
        const auto& table = hostOptionTable();
        return std::find_if(table.begin(), table.end(),
                            [name](const HostOption& row) { return row.name == name; })
            ->option;
    };
    parser.addPositionalArgument(
        QStringLiteral("FILE"),
        QStringLiteral("System data to open in the main window, as File > Open does: a raw "
                       "image, or a .syx file (whose model is taken from the file)."),
        QStringLiteral("[FILE]"));

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
    o.model = parser.value(option(HostOption::Model)).toInt(&ok);
    if (!ok || (o.model != 3 && o.model != 5 && o.model != 6 && o.model != 8 && o.model != 10)) {
        result.error = QStringLiteral("--model \"%1\" is not one of 3, 5, 6, 8 or 10")
                           .arg(parser.value(option(HostOption::Model)));
        return result;
    }
    o.modelGiven = parser.isSet(option(HostOption::Model));
    o.title = parser.isSet(option(HostOption::Title)) ? parser.value(option(HostOption::Title))
                                                      : QStringLiteral("GT-%1").arg(o.model);
    o.dataFile = parser.value(option(HostOption::Data));
    if (parser.isSet(option(HostOption::Data)) && o.dataFile.isEmpty()) {
        result.error = QStringLiteral("--data needs a file name");
        return result;
    }
    o.pluginPath = parser.value(option(HostOption::Plugin));
    o.screenshot = parser.value(option(HostOption::Screenshot));
    o.describe = parser.isSet(option(HostOption::Describe));
    if (parser.isSet(option(HostOption::Page))) {
        o.page = parser.value(option(HostOption::Page)).toInt(&ok);
        if (!ok || o.page < 0 || o.page > 15) {
            result.error = QStringLiteral("--page \"%1\" is not a page number 0-15")
                               .arg(parser.value(option(HostOption::Page)));
            return result;
        }
    }
    o.transmit = parser.isSet(option(HostOption::Transmit));
    o.listMidiPorts = parser.isSet(option(HostOption::ListPorts));
    o.syxFile = parser.value(option(HostOption::Syx));
    o.midiOut = parser.value(option(HostOption::MidiOut));
    o.midiIn = parser.value(option(HostOption::MidiIn));
    o.midiApi = parser.value(option(HostOption::MidiApi)).toLower();
    if (parser.isSet(option(HostOption::MidiApi)) && o.midiApi != QLatin1String("alsa") &&
        o.midiApi != QLatin1String("jack")) {
        result.error = QStringLiteral("--midi-api \"%1\" is not alsa or jack")
                           .arg(parser.value(option(HostOption::MidiApi)));
        return result;
    }
    o.exportFile = parser.value(option(HostOption::ExportSyx));
    if (parser.isSet(option(HostOption::ExportSyx)) && o.exportFile.isEmpty()) {
        result.error = QStringLiteral("--export needs a file name");
        return result;
    }
    o.edit = parser.isSet(option(HostOption::Edit));
    o.mainScreenshot = parser.value(option(HostOption::MainScreenshot));
    if (parser.isSet(option(HostOption::MainScreenshot)) &&
        !o.mainScreenshot.endsWith(QStringLiteral(".png"), Qt::CaseInsensitive)) {
        result.error = QStringLiteral("screenshot file \"%1\" must end in .png")
                           .arg(parser.value(option(HostOption::MainScreenshot)));
        return result;
    }
    o.receive = parser.isSet(option(HostOption::Receive));
    o.request = parser.isSet(option(HostOption::Request));
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
        if (o.exportFile.isEmpty() && o.dataFile.isEmpty() &&
            !parser.isSet(option(HostOption::Diff))) {
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
    o.diffFile = parser.value(option(HostOption::Diff));
    if (parser.isSet(option(HostOption::Diff))) {
        result.error = diffFault(o);
        if (!result.error.isEmpty()) return result;
    }
    if (parser.isSet(option(HostOption::Timeout))) {
        o.timeoutS = parser.value(option(HostOption::Timeout)).toInt(&ok);
        if (!ok || o.timeoutS < 1 || o.timeoutS > 3600) {
            result.error = QStringLiteral("--timeout \"%1\" is not a number of seconds 1-3600")
                               .arg(parser.value(option(HostOption::Timeout)));
            return result;
        }
    }
    o.verify = parser.isSet(option(HostOption::Verify));
    if (o.verify && (!o.transmit || o.midiIn.isEmpty() || o.midiOut.isEmpty())) {
        result.error = QStringLiteral("--verify goes with --transmit, --midi-out and --midi-in "
                                      "(where it reads back what was sent)");
        return result;
    }
    o.history = parser.isSet(option(HostOption::History));
    o.refuseUpdate = parser.isSet(option(HostOption::Refuse));
    o.gapMs = parser.value(option(HostOption::Gap)).toInt(&ok);
    if (!ok || o.gapMs < 0 || o.gapMs > 10000) {
        result.error = QStringLiteral("--gap \"%1\" is not a number of milliseconds 0-10000")
                           .arg(parser.value(option(HostOption::Gap)));
        return result;
    }
    if (parser.isSet(option(HostOption::Header))) {
        o.sysexHeader = Sysex::parseHeader(parser.value(option(HostOption::Header)));
        if (o.sysexHeader.isEmpty()) {
            result.error = QStringLiteral("--sysex-header \"%1\" is not hex bytes 00-7F")
                               .arg(parser.value(option(HostOption::Header)));
            return result;
        }
    }
    if (parser.isSet(option(HostOption::RequestHeader))) {
        o.requestHeader = Sysex::parseHeader(parser.value(option(HostOption::RequestHeader)));
        if (o.requestHeader.isEmpty()) {
            result.error = QStringLiteral("--request-header \"%1\" is not hex bytes 00-7F")
                               .arg(parser.value(option(HostOption::RequestHeader)));
            return result;
        }
    }
    if (!files.isEmpty()) {
        o.openFile = files.first();
        if (!o.mainWindow() || parser.isSet(option(HostOption::Data))) {
            result.error = QStringLiteral("\"%1\" would open in the main window; with --data, "
                                          "--edit or a headless run, give it as --data FILE")
                               .arg(o.openFile);
            return result;
        }
    }
    result.options = o;
    return result;
}

} // namespace ferrule
