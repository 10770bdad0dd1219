// ferrule-host against ferrule-device over a real MIDI system (a JACK server on the dummy
// driver): requests, transmissions, --diff against the device and dumps, and the failures a user
// meets. What every model's messages carry is checked over the loopback (SessionLoopbackTest);
// over JACK, the two models that differ most: the GT-3 (the smallest) and the GT-10 (double-byte
// addresses).

#include "HostProcess.h"
#include "ImageFiles.h"
#include "JackServer.h"
#include "ParameterLines.h"
#include "QtPrinters.h"
#include "device/DefaultImage.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

// The image a file holds: raw as it is, a .syx read over the default image.
QByteArray imageOf(const QString& path, int model) {
    const QByteArray bytes = readFile(path);
    if (!SyxFile::looksLikeSyx(bytes)) return bytes;
    const SyxFile::Loaded l =
        SyxFile::read(bytes, model, Sysex::defaultHeader(model), makeDefaultImage());
    EXPECT_TRUE(l.error.isEmpty()) << qPrintable(l.error);
    return l.image;
}

class DeviceRoundTrip : public ::testing::TestWithParam<int> {};

} // namespace

TEST_P(DeviceRoundTrip, RequestGetsTheDevicesDataAndTransmitPutsTheHostsThere) {
    const int model = GetParam();
    JackServer jack;
    ASSERT_TRUE(jack.running()) << qPrintable(jack.log());
    QTemporaryDir dir;
    const QString deviceData = dir.filePath(QStringLiteral("device.bin"));
    const QString deviceSaved = dir.filePath(QStringLiteral("device-saved.bin"));
    const QByteArray deviceImage = randomImage(unsigned(model));
    writeFile(deviceData, deviceImage);
    DeviceProcess device(jack, {QStringLiteral("--model"), QString::number(model),
                                QStringLiteral("--data"), deviceData, QStringLiteral("--save"),
                                deviceSaved});
    ASSERT_TRUE(device.ready()) << device.output().constData();
    const QString port = QStringLiteral("ferrule-device");

    // Request: the exported file holds the device's data on every mapped byte.
    const QString exported = dir.filePath(QStringLiteral("backup.syx"));
    HostRun r = runHost({QStringLiteral("--model"), QString::number(model),
                         QStringLiteral("--request"), QStringLiteral("--midi-in"), port,
                         QStringLiteral("--midi-out"), port, QStringLiteral("--export"), exported},
                        dir.path(), 120000, jack.env());
    ASSERT_EQ(r.exitCode, 0) << r.err.constData() << r.out.constData()
                             << "\njackd: " << qPrintable(jack.serverOutput());
    EXPECT_TRUE(r.out.startsWith("received GT-")) << r.out.constData();
    EXPECT_EQ(mappedDifferences(imageOf(exported, model), deviceImage, model), 0);
    // ...and the history keeps what was read, with the ports it came over.
    QList<QStringList> kept = history(dir.path());
    ASSERT_EQ(kept.size(), 1);
    ASSERT_EQ(kept[0].size(), 5) << qPrintable(kept[0].join(QLatin1Char('|')));
    EXPECT_TRUE(QDateTime::fromString(kept[0][0], QStringLiteral("yyyy-MM-dd HH:mm:ss")).isValid())
        << qPrintable(kept[0][0]);
    EXPECT_EQ(kept[0][1], QStringLiteral("GT-%1").arg(model));
    EXPECT_EQ(kept[0][2], QStringLiteral("requested"));
    EXPECT_TRUE(kept[0][3].contains(port)) << qPrintable(kept[0][3]);
    EXPECT_TRUE(kept[0][4].startsWith(dir.path() + QStringLiteral("/ferrule-host/history/")))
        << qPrintable(kept[0][4]);
    EXPECT_EQ(readFile(kept[0][4]), readFile(exported));

    // Transmit: the host's data (another image) lands in the device.
    const QString hostData = dir.filePath(QStringLiteral("host.bin"));
    const QByteArray hostImage = randomImage(unsigned(100 + model));
    writeFile(hostData, hostImage);
    r = runHost({QStringLiteral("--model"), QString::number(model), QStringLiteral("--data"),
                 hostData, QStringLiteral("--transmit"), QStringLiteral("--gap"),
                 QStringLiteral("0"), QStringLiteral("--midi-out"), port},
                dir.path(), 120000, jack.env());
    ASSERT_EQ(r.exitCode, 0) << r.err.constData() << r.out.constData()
                             << "\njackd: " << qPrintable(jack.serverOutput());
    // The history's newest state is the one sent.
    kept = history(dir.path());
    ASSERT_EQ(kept.size(), 2);
    EXPECT_EQ(kept[0][2], QStringLiteral("sent"));
    EXPECT_TRUE(kept[0][3].contains(port)) << qPrintable(kept[0][3]);
    EXPECT_GE(kept[0][0], kept[1][0]);
    EXPECT_EQ(mappedDifferences(imageOf(kept[0][4], model), hostImage, model), 0);

    // --diff against the device, by parameter, with a text that differs in one: that line alone
    // and exit 1 say that every other byte read alike (exit 0 for alike is --diff's own, in
    // TextFiles.DiffSaysWhatDiffersByNameAndExitsZeroOrOne).
    const Parameter& changed = ParameterIndex::of(model).parameters()[3];
    const int onDevice = changed.value(bytesOf(hostImage));
    const int inFile = onDevice == changed.minimum ? changed.maximum : changed.minimum;
    QByteArray other = hostImage;
    changed.store(writable(other), inFile);
    writeFile(dir.filePath(QStringLiteral("other.bin")), other);
    const QString otherText = dir.filePath(QStringLiteral("other.txt"));
    const QStringList gt = {QStringLiteral("--model"), QString::number(model)};
    r = runHost(gt + QStringList{QStringLiteral("--data"),
                                 dir.filePath(QStringLiteral("other.bin")),
                                 QStringLiteral("--export"), otherText},
                dir.path());
    ASSERT_EQ(r.exitCode, 0) << r.err.constData();
    r = runHost(gt + QStringList{QStringLiteral("--request"), QStringLiteral("--midi-in"), port,
                                 QStringLiteral("--midi-out"), port, QStringLiteral("--diff"),
                                 otherText},
                dir.path(), 120000, jack.env());
    EXPECT_EQ(r.exitCode, 1) << r.err.constData();
    EXPECT_EQ(QString::fromUtf8(r.out),
              QStringLiteral("%1: %2 -> %3\n")
                  .arg(changed.name(), changed.valueText(onDevice), changed.valueText(inFile)));

    EXPECT_EQ(device.stop(), 0) << device.output().constData();
    EXPECT_TRUE(device.output().contains("rejected 0")) << device.output().constData();
    EXPECT_EQ(mappedDifferences(readFile(deviceSaved), hostImage, model), 0);
    // And only the mapped bytes: the rest of the device's image is as it was.
    EXPECT_EQ(readFile(deviceSaved).left(modelStretch(model).start),
              deviceImage.left(modelStretch(model).start));
}

INSTANTIATE_TEST_SUITE_P(EveryModel, DeviceRoundTrip, ::testing::Values(3, 10),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

// How a dump is cut into messages and into events matters not: the dump map's law of any
// chunking and the loopback's reads in any chunking say so. A device whose answers have bad
// checksums is the loopback's too.
TEST(DeviceRead, ADumpStartedOnTheDeviceIsReceivedAndFailuresWriteNothing) {
    JackServer jack;
    ASSERT_TRUE(jack.running()) << qPrintable(jack.log());
    QTemporaryDir dir;
    const QString port = QStringLiteral("ferrule-device");
    const QString deviceData = dir.filePath(QStringLiteral("device.bin"));
    const QByteArray deviceImage = randomImage(6);
    writeFile(deviceData, deviceImage);
    const QStringList gt6 = {QStringLiteral("--model"), QStringLiteral("6")};

    // A dump sent unasked: --receive takes it into an existing .syx.
    const QString target = dir.filePath(QStringLiteral("gt6.syx"));
    writeFile(target,
              SyxFile::write({reinterpret_cast<const std::uint8_t*>(makeDefaultImage().constData()),
                              std::size_t(kImageSize)},
                             6, Sysex::defaultHeader(6)));
    {
        DeviceProcess device(jack, gt6 + QStringList{QStringLiteral("--data"), deviceData});
        ASSERT_TRUE(device.ready());
        const HostRun r = runHostWithCue(
            gt6 + QStringList{QStringLiteral("--receive"), QStringLiteral("--midi-in"), port,
                              QStringLiteral("--data"), target},
            dir.path(), jack.env(), "waiting for", [&] { device.sendDump(); });
        ASSERT_EQ(r.exitCode, 0) << r.err.constData() << r.out.constData()
                                 << "\njackd: " << qPrintable(jack.serverOutput());
        EXPECT_TRUE(SyxFile::looksLikeSyx(readFile(target))) << "kept in its own form";
        EXPECT_EQ(mappedDifferences(imageOf(target, 6), deviceImage, 6), 0);
    }

    // A device that stops half way: exit 3 naming what is missing, the file untouched.
    const QByteArray before = readFile(target);
    {
        DeviceProcess device(
            jack, gt6 + QStringList{QStringLiteral("--stop-after"), QStringLiteral("40")});
        ASSERT_TRUE(device.ready());
        const HostRun r = runHostWithCue(
            gt6 + QStringList{QStringLiteral("--receive"), QStringLiteral("--midi-in"), port,
                              QStringLiteral("--timeout"), QStringLiteral("1"),
                              QStringLiteral("--data"), target},
            dir.path(), jack.env(), "waiting for", [&] { device.sendDump(); });
        EXPECT_EQ(r.exitCode, 3);
        ASSERT_FALSE(r.errLines().isEmpty());
        EXPECT_TRUE(r.errLines().last().contains("the dump stopped after")) << r.err.constData();
        EXPECT_TRUE(r.errLines().last().contains("missing 02 ")) << r.err.constData();
        EXPECT_EQ(readFile(target), before);
    }

    // Ports that are not there, and a MIDI system that does not run: exit 3, one line, and
    // never a claim of messages sent.
    const HostRun noPort =
        runHost(gt6 + QStringList{QStringLiteral("--receive"), QStringLiteral("--midi-in"),
                                  QStringLiteral("no-such-port"), QStringLiteral("--export"),
                                  dir.filePath(QStringLiteral("x.syx"))},
                dir.path(), 120000, jack.env());
    EXPECT_EQ(noPort.exitCode, 3);
    EXPECT_EQ(noPort.errLines().filter(QStringLiteral("ferrule-host:")),
              QStringList{QStringLiteral(
                  "ferrule-host: no JACK MIDI input port \"no-such-port\" (0 port(s); see "
                  "--list-midi-ports)")});
    QProcessEnvironment noServer = jack.env();
    noServer.insert(QStringLiteral("JACK_DEFAULT_SERVER"), QStringLiteral("ferrule-none"));
    const HostRun noMidi =
        runHost(gt6 + QStringList{QStringLiteral("--transmit"), QStringLiteral("--midi-api"),
                                  QStringLiteral("jack"), QStringLiteral("--midi-out"), port},
                dir.path(), 120000, noServer);
    EXPECT_EQ(noMidi.exitCode, 3);
    EXPECT_TRUE(noMidi.err.contains("ferrule-host: no JACK server runs")) << noMidi.err.constData();
    EXPECT_FALSE(noMidi.out.contains("sent"));

    // Of all these, only the dump that arrived whole is in the history.
    const QList<QStringList> kept = history(dir.path());
    ASSERT_EQ(kept.size(), 1);
    EXPECT_EQ(kept[0].mid(1, 2), (QStringList{QStringLiteral("GT-6"), QStringLiteral("received")}));
}
