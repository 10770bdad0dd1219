// ferrule-device: a GT device on MIDI, for trying ferrule-host without hardware and for tests.
// It opens a virtual input and output port, takes system data sent to it, answers requests,
// sends a dump when told, and writes its image when it ends.

#include "DeviceSimulator.h"
#include "device/DefaultImage.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "device/SystemDataFile.h"
#include "device/SyxFile.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

using namespace ferrule;

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int number) {
    const char c = char(number);
    const ssize_t n = ::write(signalPipe[1], &c, 1);
    static_cast<void>(n);
}

int fail(const QString& line) {
    std::fprintf(stderr, "ferrule-device: %s\n", qPrintable(line));
    return 2;
}

QByteArray loadImage(const QString& path, int model, const QByteArray& header, QString* error) {
    if (path.isEmpty()) return makeDefaultImage();
    const SystemDataFile::Read read = SystemDataFile::read(path, model, header, makeDefaultImage());
    *error = read.error;
    return read.image;
}

bool saveImage(const QString& path, const QByteArray& image, int model, const QByteArray& header) {
    QByteArray bytes = image;
    if (path.endsWith(QStringLiteral(".syx"), Qt::CaseInsensitive)) {
        const auto* p = reinterpret_cast<const std::uint8_t*>(image.constData());
        bytes = SyxFile::write(ImageBytes(p, std::size_t(image.size())), model, header);
    }
    QSaveFile out(path);
    return out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size() && out.commit();
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ferrule-device"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FERRULE_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Plays a GT device on MIDI: takes system data, answers requests, sends "
                       "dumps."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption model({QStringLiteral("m"), QStringLiteral("model")},
                                   QStringLiteral("Model: 3, 5, 6, 8 or 10 (default 10)."),
                                   QStringLiteral("N"), QStringLiteral("10"));
    const QCommandLineOption data(QStringLiteral("data"),
                                  QStringLiteral("Starting image: raw or .syx (default: the "
                                                 "embedded one)."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption save(QStringLiteral("save"),
                                  QStringLiteral("Write the image here at exit and on SIGTERM "
                                                 "(.syx or raw, by the name)."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption name(QStringLiteral("name"),
                                  QStringLiteral("Client and port name (default ferrule-device)."),
                                  QStringLiteral("NAME"), QStringLiteral("ferrule-device"));
    const QCommandLineOption api(QStringLiteral("midi-api"),
                                 QStringLiteral("alsa or jack (default: the first that runs)."),
                                 QStringLiteral("API"));
    const QCommandLineOption dumpAfter(QStringLiteral("dump-after"),
                                       QStringLiteral("Send the whole dump unasked after S "
                                                      "seconds (SIGUSR1 sends it at once)."),
                                       QStringLiteral("S"));
    const QCommandLineOption chunk(QStringLiteral("chunk"),
                                   QStringLiteral("At most N data bytes a message (default: as "
                                                  "the transmission chunks)."),
                                   QStringLiteral("N"));
    const QCommandLineOption stopAfter(QStringLiteral("stop-after"),
                                       QStringLiteral("Fall silent after sending N messages."),
                                       QStringLiteral("N"));
    const QCommandLineOption corrupt(QStringLiteral("bad-checksums"),
                                     QStringLiteral("Send every message with a wrong checksum."));
    const QCommandLineOption dropMessage(
        QStringLiteral("drop-message"),
        QStringLiteral("Ignore the Nth data-set message received (from 1), as if lost on the "
                       "way."),
        QStringLiteral("N"));
    const QCommandLineOption keepByte(
        QStringLiteral("keep-byte"),
        QStringLiteral("Refuse every write to image byte INDEX (decimal, or hex with 0x): it "
                       "keeps its value, the rest of each message is taken."),
        QStringLiteral("INDEX"));
    const QCommandLineOption header(QStringLiteral("sysex-header"),
                                    QStringLiteral("Data-set header in hex (default 7D 10 model "
                                                   "12)."),
                                    QStringLiteral("HEX"));
    parser.addOptions({model, data, save, name, api, dumpAfter, chunk, stopAfter, corrupt,
                       dropMessage, keepByte, header});
    parser.process(app);

    DeviceSimulator::Options o;
    bool ok = false;
    o.model = parser.value(model).toInt(&ok);
    if (!ok || !isKnownModel(o.model))
        return fail(QStringLiteral("--model \"%1\" is not one of 3, 5, 6, 8 or 10")
                        .arg(parser.value(model)));
    o.header = Sysex::headerOr(
        parser.isSet(header) ? Sysex::parseHeader(parser.value(header)) : QByteArray(), o.model);
    if (parser.isSet(header) && Sysex::parseHeader(parser.value(header)).isEmpty())
        return fail(QStringLiteral("--sysex-header is not hex bytes 00-7F"));
    o.requestHeader = Sysex::requestHeaderFor(o.header);
    o.chunk = parser.value(chunk).toInt();
    o.stopAfter = parser.isSet(stopAfter) ? parser.value(stopAfter).toInt() : -1;
    o.corruptChecksums = parser.isSet(corrupt);
    if (parser.isSet(dropMessage)) {
        o.dropMessage = parser.value(dropMessage).toInt(&ok);
        if (!ok || o.dropMessage < 1)
            return fail(QStringLiteral("--drop-message \"%1\" is not a message number from 1")
                            .arg(parser.value(dropMessage)));
    }
    if (parser.isSet(keepByte)) {
        o.keepByte = parser.value(keepByte).toInt(&ok, 0);
        if (!ok || o.keepByte < 0 || o.keepByte >= kImageSize)
            return fail(QStringLiteral("--keep-byte \"%1\" is not an image byte 0-%2")
                            .arg(parser.value(keepByte))
                            .arg(kImageSize - 1));
    }

    QString error;
    const QByteArray image = loadImage(parser.value(data), o.model, o.header, &error);
    if (!error.isEmpty()) return fail(error);

    std::optional<MidiApi> chosen;
    if (parser.isSet(api)) {
        chosen = midiApiFromName(parser.value(api));
        if (!chosen) return fail(QStringLiteral("--midi-api is not alsa or jack"));
    } else {
        chosen = defaultMidiApi(&error);
    }
    if (!chosen) return fail(error);

    DeviceSimulator device(o, image);
    if (!device.open(*chosen, parser.value(name), &error)) return fail(error);

    // SIGTERM and SIGINT end the event loop (the image is saved on the way out); SIGUSR1 is the
    // device's dump button. The handlers only write the signal's number to a socket.
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, signalPipe) != 0) return fail("no socketpair");
    QSocketNotifier signalNotifier(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&signalNotifier, &QSocketNotifier::activated, &app, [&device] {
        char number = 0;
        if (::read(signalPipe[0], &number, 1) == 1 && number == SIGUSR1)
            device.sendDump();
        else
            QCoreApplication::quit();
    });
    std::signal(SIGPIPE, SIG_IGN); // a dropped connection is a failed write, not the end
    std::signal(SIGTERM, onSignal);
    std::signal(SIGINT, onSignal);
    std::signal(SIGUSR1, onSignal);

    if (parser.isSet(dumpAfter))
        QTimer::singleShot(int(parser.value(dumpAfter).toDouble() * 1000), &device,
                           &DeviceSimulator::sendDump);

    std::printf("ferrule-device: GT-%d ready on %s (%s in, %s out)\n", o.model,
                qPrintable(midiApiName(*chosen).toUpper()), qPrintable(parser.value(name)),
                qPrintable(parser.value(name)));
    std::fflush(stdout);
    const int status = QCoreApplication::exec();

    std::printf("ferrule-device: took %d messages, rejected %d, dropped %d, answered %d "
                "requests, sent %d messages\n",
                device.taken(), device.rejected(), device.dropped(), device.requests(),
                device.sent());
    if (parser.isSet(save) && !saveImage(parser.value(save), device.image(), o.model, o.header))
        return fail(QStringLiteral("cannot write \"%1\"").arg(parser.value(save)));
    return status;
}
