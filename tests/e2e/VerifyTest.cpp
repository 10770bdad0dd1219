// A send read back and compared, against ferrule-device over JACK playing a good device, one
// that loses a message, one that keeps one byte and one that does not answer: from the command
// line and in the window.

#include "HostOptionsForTests.h"
#include "HostProcess.h"
#include "ImageFiles.h"
#include "JackServer.h"
#include "MonitorCounts.h"
#include "QtPrinters.h"
#include "catalogue/ParameterIndex.h"
#include "device/DumpMap.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "transport/SendVerifier.h"
#include "ui/MainWindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <random>

using namespace ferrule;

namespace {

ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
}

// The lines a comparison of what was sent with what the device holds prints.
QStringList differenceLines(int model, const QByteArray& sent, const QByteArray& held) {
    QStringList lines;
    for (const ParameterDifference& d : compareImages(model, bytesOf(sent), bytesOf(held)))
        lines << differenceLine(d);
    return lines;
}

QStringList linesOf(const QByteArray& out) {
    QStringList lines;
    for (const QString& line : QString::fromUtf8(out).split(QLatin1Char('\n')))
        if (line.contains(QLatin1String(" -> "))) lines << line;
    return lines;
}

// The number (from 1) of the first message of the transmission, from the middle on, that
// carries bytes of the image where `a` and `b` differ; and `a` with that message's bytes from
// `b`, as a device that lost it holds it.
std::pair<int, QByteArray> lostMessage(int model, const QByteArray& a, const QByteArray& b) {
    const auto& messages = DumpMap::of(model).transmission();
    for (std::size_t n = messages.size() / 2; n < messages.size(); ++n) {
        const ScheduledMessage& m = messages[n];
        if (m.start + m.length > a.size() || a.mid(m.start, m.length) == b.mid(m.start, m.length))
            continue;
        QByteArray held = a;
        held.replace(m.start, m.length, b.mid(m.start, m.length));
        return {int(n) + 1, held};
    }
    return {0, a};
}

class TransmitVerify : public ::testing::TestWithParam<int> {};

} // namespace

TEST_P(TransmitVerify, ExitSaysWhetherTheDeviceHoldsWhatWasSentAndListsWhatItDoesNot) {
    const int model = GetParam();
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
    EXPECT_EQ(historyLines(runHost({QStringLiteral("--history")}, dir.path())).value(0).value(2),
              QStringLiteral("verified"));

    // One message lost on the way: exit 4, and exactly the settings it carried are listed.
    const auto [lost, held] = lostMessage(model, sent, before);
    ASSERT_GT(lost, 0);
    const QStringList lostLines = differenceLines(model, sent, held);
    ASSERT_FALSE(lostLines.isEmpty());
    r = transmitTo({QStringLiteral("--drop-message"), QString::number(lost)});
    EXPECT_EQ(r.exitCode, 4) << r.err.constData() << r.out.constData();
    EXPECT_EQ(linesOf(r.out), lostLines) << r.out.constData();

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
    const QStringList keptLines = linesOf(r.out);
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

INSTANTIATE_TEST_SUITE_P(Models, TransmitVerify, ::testing::Values(6, 10),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

TEST(TransmitVerify, WithoutAnInputPortIsOneLineAndExitTwo) {
    QTemporaryDir dir;
    const HostRun r = runHost({QStringLiteral("--transmit"), QStringLiteral("--verify"),
                               QStringLiteral("--midi-out"), QStringLiteral("x")},
                              dir.path());
    EXPECT_EQ(r.exitCode, 2);
    ASSERT_EQ(r.errLines().size(), 1) << r.err.constData();
    EXPECT_TRUE(r.errLines()[0].contains("--midi-in")) << r.err.constData();
}

TEST(MainWindowVerify,
     ASendIsReadBackWhatDiffersIsSentAgainAloneAndASilentDeviceIsNotCalledVerified) {
    JackServer jack;
    ASSERT_TRUE(jack.running()) << qPrintable(jack.log());
    qputenv("JACK_DEFAULT_SERVER",
            jack.env().value(QStringLiteral("JACK_DEFAULT_SERVER")).toUtf8());
    QTemporaryDir dir;
    const int model = 6;
    const QByteArray sent = randomImage(60);
    const QByteArray before = randomImage(61);
    const QString deviceData = dir.filePath(QStringLiteral("device.bin"));
    writeFile(deviceData, before);
    const auto [lost, held] = lostMessage(model, sent, before);
    ASSERT_GT(lost, 0);
    DeviceProcess device(jack, {QStringLiteral("--model"), QString::number(model),
                                QStringLiteral("--data"), deviceData,
                                QStringLiteral("--drop-message"), QString::number(lost)});
    ASSERT_TRUE(device.ready()) << device.output().constData();

    HostOptions o = hostOptionsForTests(model);
    o.midiIn = o.midiOut = QStringLiteral("ferrule-device");
    MainWindow w(o, SystemDocument(model, Sysex::defaultHeader(model)));
    w.setAskSave([](const QString&) { return QMessageBox::Discard; });
    w.takeImage(sent, QStringLiteral("test data"));
    ASSERT_TRUE(w.device().hasInput() && w.device().hasOutput()) << qPrintable(w.portState());
    EXPECT_TRUE(w.device().verifies()) << "on by default";

    // The window's own question, answered with Send Again once it shows; rendered for a look.
    QStringList listed;
    int beforeAgain = -1;
    QTimer answer;
    answer.setInterval(20);
    QObject::connect(&answer, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) return;
        answer.stop();
        listed = box->detailedText().split(QLatin1Char('\n'));
        QDir().mkpath(QStringLiteral(FERRULE_GALLERY_DIR));
        box->grab().save(QStringLiteral(FERRULE_GALLERY_DIR) + QStringLiteral("/send-again.png"));
        beforeAgain = dataSetsOut(w.monitor()->model());
        for (QAbstractButton* b : box->buttons())
            if (b->text() == QLatin1String("Send Again")) b->click();
    });
    answer.start();
    QSignalSpy ends(&w.device(), &DeviceSession::finished);
    w.startSend(false);
    // The send, its read-back with the difference, then the message sent again and read back.
    ASSERT_TRUE(QTest::qWaitFor([&] { return ends.count() >= 2; }, 120000))
        << qPrintable(w.lastResult());
    EXPECT_FALSE(ends[0][0].toBool()) << qPrintable(ends[0][1].toString());
    EXPECT_EQ(listed, differenceLines(model, sent, held));
    EXPECT_TRUE(ends[1][0].toBool()) << qPrintable(ends[1][1].toString());
    EXPECT_EQ(dataSetsOut(w.monitor()->model()) - beforeAgain, 1) << "only the lost message";
    EXPECT_TRUE(w.deviceStateText().contains("verified")) << qPrintable(w.deviceStateText());
    QDir().mkpath(QStringLiteral(FERRULE_GALLERY_DIR));
    w.grab().save(QStringLiteral(FERRULE_GALLERY_DIR) +
                  QStringLiteral("/main-window-verified.png"));

    // A device that answers nothing: the send is said not verified, and the Device line never
    // claims more than that it was sent.
    device.stop();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return !w.device().hasInput() && !w.device().hasOutput(); }, 5000));
    DeviceProcess silent(jack, {QStringLiteral("--model"), QString::number(model),
                                QStringLiteral("--stop-after"), QStringLiteral("0")});
    ASSERT_TRUE(silent.ready()) << silent.output().constData();
    w.refreshPorts();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return w.device().hasInput() && w.device().hasOutput(); }, 5000))
        << qPrintable(w.portState());
    w.startSend(false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ends.count() >= 3; }, 120000));
    EXPECT_FALSE(ends[2][0].toBool());
    EXPECT_TRUE(ends[2][1].toString().contains("not verified: no answer for the GT-6"))
        << qPrintable(ends[2][1].toString());
    EXPECT_TRUE(w.deviceStateText().contains("not read back")) << qPrintable(w.deviceStateText());
    EXPECT_FALSE(w.deviceStateText().contains("verified")) << qPrintable(w.deviceStateText());

    // The setting is remembered: turned off, a new window sends without reading back.
    QAction* verify = nullptr;
    for (QAction* a : w.findChildren<QAction*>())
        if (a->text() == QLatin1String("&Verify After Send")) verify = a;
    ASSERT_NE(verify, nullptr);
    ASSERT_TRUE(verify->isChecked());
    verify->trigger();
    EXPECT_FALSE(w.device().verifies());
    {
        MainWindow again(o, SystemDocument(model, Sysex::defaultHeader(model)));
        EXPECT_FALSE(again.device().verifies());
    }
    verify->trigger();
}
