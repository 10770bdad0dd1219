#include "HostOptions.h"

#include "SysexFramer.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstring>

bool wantsHeadless(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const char* a = argv[i];
        if (std::strncmp(a, "--screenshot", 12) == 0 || std::strcmp(a, "--describe") == 0 ||
            std::strcmp(a, "--transmit") == 0 || std::strcmp(a, "--list-midi-ports") == 0)
            return true;
    }
    return false;
}

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
        QStringLiteral("Raw 43,252-byte system data file to edit; written back "
                       "when the editor closes keeping its changes."),
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
                                       QStringLiteral("List the MIDI output ports."));
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
    parser.addOptions({model, title, data, plugin, screenshot, page, describe, transmit, syx,
                       midiOut, listPorts, gap, header, refuse});

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
    if (!parser.positionalArguments().isEmpty()) {
        result.error =
            QStringLiteral("unexpected argument \"%1\"").arg(parser.positionalArguments().first());
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
    o.title = parser.isSet(title) ? parser.value(title) : QStringLiteral("GT-%1").arg(o.model);
    o.dataFile = parser.value(data);
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
    o.refuseUpdate = parser.isSet(refuse);
    o.gapMs = parser.value(gap).toInt(&ok);
    if (!ok || o.gapMs < 0 || o.gapMs > 10000) {
        result.error = QStringLiteral("--gap \"%1\" is not a number of milliseconds 0-10000")
                           .arg(parser.value(gap));
        return result;
    }
    if (parser.isSet(header)) {
        o.sysexHeader = SysexFramer::parseHeader(parser.value(header));
        if (o.sysexHeader.isEmpty()) {
            result.error = QStringLiteral("--sysex-header \"%1\" is not hex bytes 00-7F")
                               .arg(parser.value(header));
            return result;
        }
    }
    result.options = o;
    return result;
}
