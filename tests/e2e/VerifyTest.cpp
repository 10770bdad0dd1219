// A send read back and compared from the command line, against ferrule-device over JACK playing
// a good device, one that keeps one byte and one that does not answer.

#include "HostProcess.h"
#include "ImageFiles.h"
#include "JackServer.h"
#include "ParameterLines.h"
#include "QtPrinters.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace ferrule;

// What a read-back finds, for every model and every fault, is SendVerifier's, tested over the
// loopback; here the command line says it: its exit, its lines, its history.
TEST(TransmitVerify, ExitSaysWhetherTheDeviceHoldsWhatWasSentAndListsWhatItDoesNot) {
    const int model = 6;
    JackServer jack;
    ASSERT_TRUE(jack.running()) << qPrintable(jack.log());
    QTemporaryDir dir;
    const QString port = QStringLiteral("ferrule-device");
    const QByteArray sent = randomImage(unsigned(model));
    const QByteArray before = randomImage(unsigned(200 + model));
    const QString hostData = dir.filePath(QStringLiteral("host.bin"));
    const QString deviceData = dir.filePath(QStringLiteral("device.bin"));
    writeFile(hostData, sent);
    writeFile(deviceData, before);
    const QStringList gt = {QStringLiteral("--model"), QString::number(model)};
    const auto transmitTo = [&](const QStringList& fault) {
        DeviceProcess device(jack, gt + QStringList{QStringLiteral("--data"), deviceData} + fault);
        EXPECT_TRUE(device.ready()) << device.output().constData();
        return runHost(gt + QStringList{QStringLiteral("--data"), hostData,
                                        QStringLiteral("--transmit"), QStringLiteral("--verify"),
                                        QStringLiteral("--gap"), QStringLiteral("0"),
                                        QStringLiteral("--midi-out"), port,
                                        QStringLiteral("--midi-in"), port},
                       dir.path(), 120000, jack.env());
    };

    // A device that takes everything: exit 0.
    HostRun r = transmitTo({});
    EXPECT_EQ(r.exitCode, 0) << r.err.constData() << r.out.constData();
    EXPECT_TRUE(r.out.contains("verified: the GT-")) << r.out.constData();
    // ...and the history keeps the send as verified.
    EXPECT_EQ(history(dir.path()).value(0).value(2), QStringLiteral("verified"));

    // One byte the device keeps: exit 4, that one parameter.
    const auto parameters = ParameterIndex::of(model).parameters();
    const Parameter* kept = nullptr;
    for (std::size_t i = parameters.size() / 3; i < parameters.size() && !kept; ++i)
        if (sent[parameters[i].address] != before[parameters[i].address]) kept = &parameters[i];
    ASSERT_NE(kept, nullptr);
    QByteArray keeping = sent;
    keeping[kept->address] = before[kept->address];
    r = transmitTo({QStringLiteral("--keep-byte"), QString::number(kept->address)});
    EXPECT_EQ(r.exitCode, 4) << r.err.constData() << r.out.constData();
    const QStringList keptLines =
        QString::fromUtf8(r.out).split(QLatin1Char('\n')).filter(QStringLiteral(" -> "));
    ASSERT_EQ(keptLines.size(), 1) << r.out.constData();
    EXPECT_TRUE(keptLines[0].startsWith(kept->name() + QLatin1Char(':')))
        << qPrintable(keptLines[0]);
    EXPECT_EQ(keptLines, differenceLines(model, sent, keeping));

    // A device that answers nothing: exit 3, and nothing claims to be verified.
    r = transmitTo({QStringLiteral("--stop-after"), QStringLiteral("0")});
    EXPECT_EQ(r.exitCode, 3) << r.err.constData() << r.out.constData();
    EXPECT_FALSE(r.out.contains("verified")) << r.out.constData();
    EXPECT_TRUE(r.err.contains("not verified: no answer for the GT-")) << r.err.constData();
}

TEST(TransmitVerify, WithoutAnInputPortIsOneLineAndExitTwo) {
    QTemporaryDir dir;
    const HostRun r = runHost({QStringLiteral("--transmit"), QStringLiteral("--verify"),
                               QStringLiteral("--midi-out"), QStringLiteral("x")},
                              dir.path());
    EXPECT_EQ(r.exitCode, 2);
    ASSERT_EQ(r.errLines().size(), 1) << r.err.constData();
    EXPECT_TRUE(r.errLines()[0].contains("--midi-in")) << r.err.constData();
}
