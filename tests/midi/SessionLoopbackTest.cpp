// The librarian's device session and window over the loopback MIDI system, against a simulated
// device: request, an edit through the real editor, a comparison with the device, Send Changes
// (also to a device nothing is known of), a send read back and sent again, a device that falls
// silent, ports remembered across starts or gone, and the time left on the way.

#include "EditorDriver.h"
#include "HostOptionsForTests.h"
#include "ImageFiles.h"
#include "LoopbackMidi.h"
#include "MonitorCounts.h"
#include "ParameterLines.h"
#include "QtPrinters.h"
#include "WireTime.h"
#include "device/DumpMap.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "transport/DeviceSession.h"
#include "ui/MainWindow.h"
#include "ui/MidiMonitor.h"
#include "ui/SettingsView.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace ferrule;

namespace {

// How long a wait may take before it counts as a hang.
constexpr int kHangMs = 120000;

struct End {
    bool ok = false;
    QString message;
};

// Starts an operation of the session and runs the event loop until it ends.
template <typename Start> End run(DeviceSession& session, Start start) {
    QSignalSpy finished(&session, &DeviceSession::finished);
    start();
    if (!finished.wait(kHangMs)) return {false, QStringLiteral("(no end)")};
    return {finished[0][0].toBool(), finished[0][1].toString()};
}

class SessionLoopback : public LoopbackMidi {
protected:
    // A window on the device's ports, named or remembered from the last start.
    std::unique_ptr<MainWindow> window(int model, bool named = true, bool there = true) {
        HostOptions o = hostOptionsForTests(model);
        o.midiApi = QStringLiteral("alsa");
        if (named) {
            o.midiIn = QStringLiteral("dev out");
            o.midiOut = QStringLiteral("dev in");
        }
        auto w =
            std::make_unique<MainWindow>(o, SystemDocument(model, Sysex::defaultHeader(model)));
        w->setAskSave([](const QString&) { return QMessageBox::Discard; });
        // The window lists its ports and opens the named ones once it has been painted.
        w->show();
        EXPECT_TRUE(QTest::qWaitFor([&] { return w->portsListed(); }, kHangMs));
        EXPECT_EQ(w->device().hasInput() && w->device().hasOutput(), there)
            << qPrintable(w->portState());
        return w;
    }
};

} // namespace

TEST_F(SessionLoopback, TheTimeLeftOfARequestAndASendIsNeverBelowTheWireTimeLeftAndEndsAtZero) {
    const int model = 6;
    const QByteArray image = SystemDocument(model, Sysex::defaultHeader(model)).image();
    const auto device = simulatedDevice(model, image);
    DeviceSession session;
    QString error;
    ASSERT_TRUE(session.openPorts(MidiApi::Alsa, QStringLiteral("dev out"),
                                  QStringLiteral("dev in"), &error))
        << qPrintable(error);
    session.setHeader(model, Sysex::defaultHeader(model));
    session.setGapMs(0);

    // What holds however fast the machine is: the data still to come cannot cross the wire
    // faster than MIDI's rate (a request counts units, each at least a byte on the wire; a
    // send counts bytes), and once all is there nothing is left. How close the estimate comes
    // to the clock is measured by the benchmark BM_TimeLeftAgainstTheClock.
    for (const bool request : {true, false}) {
        const char* what = request ? "request" : "send";
        struct Sample {
            qint64 done, total, msLeft;
        };
        std::vector<Sample> samples;
        const auto c = QObject::connect(&session, &DeviceSession::progress,
                                        [&](qint64 done, qint64 total, qint64 msLeft) {
                                            samples.push_back({done, total, msLeft});
                                        });
        const End end = run(session, [&] {
            if (request)
                session.receive(image, true);
            else
                ASSERT_GT(session.send(image, false), 0);
        });
        QObject::disconnect(c);
        ASSERT_TRUE(end.ok) << what << ": " << qPrintable(end.message);
        ASSERT_GT(samples.size(), 10u) << what;
        qint64 lastDone = 0;
        for (const Sample& s : samples) {
            ASSERT_GT(s.total, 0) << what;
            EXPECT_GE(s.done, lastDone) << what;
            lastDone = s.done;
            EXPECT_GE(double(s.msLeft) + 0.5, wireTimeMs(s.total - s.done))
                << what << " at " << s.done << " of " << s.total << ": " << s.msLeft << " ms left";
            if (s.done == s.total)
                EXPECT_EQ(s.msLeft, 0) << what;
            else
                EXPECT_GT(s.msLeft, 0) << what << " at " << s.done << " of " << s.total;
        }
        EXPECT_EQ(samples.back().done, samples.back().total) << what;
    }
}

TEST_F(SessionLoopback, SendChangesToAnUnknownDeviceAsksAndASilentDeviceIsNamedInWords) {
    const int model = 6;
    // The device holds the defaults but for one byte.
    QByteArray onDevice = SystemDocument(model, Sysex::defaultHeader(model)).image();
    const DumpMap::Block& block = DumpMap::of(model).blocks()[40];
    onDevice[block.start] = char(onDevice[block.start] ^ 1);
    auto device = simulatedDevice(model, onDevice);
    auto w = window(model);
    w->device().setVerify(false);
    MidiMonitorModel* monitor = w->monitor()->model();
    int asked = 0;
    MainWindow::UnknownDeviceAnswer answer = MainWindow::UnknownDeviceAnswer::Cancel;
    w->setAskUnknownDevice([&] {
        ++asked;
        return answer;
    });

    // Cancel: nothing leaves.
    w->startSend(true);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(w->device().busy(), DeviceSession::Operation::None);
    EXPECT_EQ(dataSetsOut(monitor), 0);

    // Read first: the device is read, the document stays, and only the one differing message
    // is sent; the counts are this operation's alone.
    const QByteArray document = w->document().image();
    answer = MainWindow::UnknownDeviceAnswer::ReadFirst;
    QSignalSpy ends(&w->device(), &DeviceSession::finished);
    w->startSend(true);
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(w->device().busy(), DeviceSession::Operation::Request);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ends.size() == 2; }, kHangMs)); // read, then send
    ASSERT_TRUE(ends[0][0].toBool()) << qPrintable(ends[0][1].toString());
    ASSERT_TRUE(ends[1][0].toBool()) << qPrintable(ends[1][1].toString());
    EXPECT_TRUE(ends[1][1].toString().startsWith("sent 1 message, "))
        << qPrintable(ends[1][1].toString());
    EXPECT_EQ(dataSetsOut(monitor), 1);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return device->image()[block.start] == document[block.start]; }, kHangMs));
    EXPECT_EQ(w->document().image(), document);
    EXPECT_TRUE(w->deviceStateText().startsWith("was sent this data at "))
        << qPrintable(w->deviceStateText());
    EXPECT_TRUE(w->deviceStateText().contains("not read back"));

    // Known now: no question, nothing left to send.
    w->startSend(true);
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(dataSetsOut(monitor), 1);

    // A device that falls silent part way: said in words, the details whole elsewhere.
    device.reset();
    DeviceSimulator::Options silent;
    silent.stopAfter = 40;
    device = simulatedDevice(model, onDevice, silent);
    const End end = run(w->device(), [&] { w->device().receive(w->document().image(), true); });
    EXPECT_FALSE(end.ok);
    EXPECT_TRUE(end.message.startsWith("no answer for the GT-6 ")) << qPrintable(end.message);
    EXPECT_TRUE(end.message.endsWith(", 3 tries)")) << qPrintable(end.message);
    EXPECT_LT(end.message.size(), 100) << qPrintable(end.message);
    EXPECT_TRUE(w->device().lastDetails().startsWith("missing "));
    EXPECT_FALSE(w->device().lastDetails().contains("more range"));
}

TEST_F(SessionLoopback,
       ASendIsReadBackWhatDiffersIsSentAgainAloneAndASilentDeviceIsNotCalledVerified) {
    const int model = 6;
    const QByteArray sent = randomImage(60);
    const QByteArray before = randomImage(61);
    // A message from the middle of the transmission that changes the device is lost.
    const auto& messages = DumpMap::of(model).transmission();
    int lost = 0;
    QByteArray held = sent;
    for (std::size_t n = messages.size() / 2; n < messages.size() && !lost; ++n) {
        const ScheduledMessage& m = messages[n];
        if (m.start + m.length > sent.size() ||
            sent.mid(m.start, m.length) == before.mid(m.start, m.length))
            continue;
        lost = int(n) + 1;
        held.replace(m.start, m.length, before.mid(m.start, m.length));
    }
    ASSERT_GT(lost, 0);
    DeviceSimulator::Options drops;
    drops.dropMessage = lost;
    auto device = simulatedDevice(model, before, drops);

    auto w = window(model);
    w->takeImage(sent, QStringLiteral("test data"));
    EXPECT_TRUE(w->device().verifies()) << "on by default";

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
        box->grab().save(QStringLiteral(FERRULE_GALLERY_DIR "/send-again.png"));
        beforeAgain = dataSetsOut(w->monitor()->model());
        for (QAbstractButton* b : box->buttons())
            if (b->text() == QLatin1String("Send Again")) b->click();
    });
    answer.start();
    QSignalSpy ends(&w->device(), &DeviceSession::finished);
    w->startSend(false);
    // The send, its read-back with the difference, then the message sent again and read back.
    ASSERT_TRUE(QTest::qWaitFor([&] { return ends.count() >= 2; }, kHangMs))
        << qPrintable(w->lastResult());
    EXPECT_FALSE(ends[0][0].toBool()) << qPrintable(ends[0][1].toString());
    EXPECT_EQ(listed, differenceLines(model, sent, held));
    EXPECT_TRUE(ends[1][0].toBool()) << qPrintable(ends[1][1].toString());
    EXPECT_EQ(dataSetsOut(w->monitor()->model()) - beforeAgain, 1) << "only the lost message";
    EXPECT_TRUE(w->deviceStateText().contains("verified")) << qPrintable(w->deviceStateText());
    w->show();
    w->grab().save(QStringLiteral(FERRULE_GALLERY_DIR "/main-window-verified.png"));

    // A device that answers nothing: the send is said not verified, and the Device line never
    // claims more than that it was sent.
    DeviceSimulator::Options silent;
    silent.stopAfter = 0;
    device.reset();
    device = simulatedDevice(model, before, silent);
    w->startSend(false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ends.count() >= 3; }, kHangMs));
    EXPECT_FALSE(ends[2][0].toBool());
    EXPECT_TRUE(ends[2][1].toString().contains("not verified: no answer for the GT-6"))
        << qPrintable(ends[2][1].toString());
    EXPECT_TRUE(w->deviceStateText().contains("not read back")) << qPrintable(w->deviceStateText());
    EXPECT_FALSE(w->deviceStateText().contains("verified")) << qPrintable(w->deviceStateText());

    // The setting is remembered: turned off, a new window sends without reading back.
    QAction* verify = nullptr;
    for (QAction* a : w->findChildren<QAction*>())
        if (a->text() == QLatin1String("&Verify After Send")) verify = a;
    ASSERT_NE(verify, nullptr);
    ASSERT_TRUE(verify->isChecked());
    verify->trigger();
    EXPECT_FALSE(w->device().verifies());
    EXPECT_FALSE(window(model)->device().verifies());
    verify->trigger();
}

TEST_F(SessionLoopback, RequestEditCompareSendChangesAndPortsThatAreRememberedOrGone) {
    const int model = 6;
    // The device starts from values in the middle of most ranges, so a knob can step down.
    QByteArray start = SystemDocument(model, Sysex::defaultHeader(model)).image();
    for (int i = modelStretch(model).start; i < kImageSize; ++i)
        start[i] = char(5);
    auto device = simulatedDevice(model, start);
    // Whether the device holds `image` on every mapped byte.
    const auto holds = [&](const QByteArray& image) {
        for (const DumpMap::Block& b : DumpMap::of(model).blocks())
            for (int i = b.start; b.inImage && i < b.start + b.units; ++i)
                if (device->image()[i] != image[i]) return false;
        return true;
    };
    QDir(History::defaultFolder()).removeRecursively();
    {
        auto w = window(model);
        // Request: the document becomes the device's data. Half way, the window is rendered
        // for the gallery.
        w->show();
        bool rendered = false;
        QObject::connect(&w->device(), &DeviceSession::progress, w.get(),
                         [&](qint64 done, qint64 total, qint64) {
                             if (rendered || done * 2 < total) return;
                             rendered = true;
                             QDir().mkpath(QStringLiteral(FERRULE_GALLERY_DIR));
                             w->grab().save(
                                 QStringLiteral(FERRULE_GALLERY_DIR "/main-window-request.png"));
                         });
        End end = run(w->device(), [&] { w->device().receive(w->document().image(), true); });
        ASSERT_TRUE(end.ok) << qPrintable(end.message);
        w->takeImage(w->device().received(), QStringLiteral("received"));
        EXPECT_TRUE(holds(w->document().image()));
        // The history keeps each state of the device the window learns: read, then sent.
        const auto newest = [&](Snapshot::Kind kind) {
            const QList<Snapshot> kept = w->history().snapshots();
            EXPECT_FALSE(kept.isEmpty());
            if (kept.isEmpty()) return QByteArray();
            EXPECT_EQ(kept.first().kind, kind);
            EXPECT_TRUE(kept.first().portText().contains("dev out"))
                << qPrintable(kept.first().portText());
            QString error;
            const auto doc =
                SystemDocument::open(kept.first().path, model, Sysex::defaultHeader(model), &error);
            EXPECT_TRUE(doc) << qPrintable(error);
            return doc ? doc->image() : QByteArray();
        };
        EXPECT_TRUE(holds(newest(Snapshot::Kind::Requested)));

        // Edit one parameter through the real editor.
        EditorDriver driver;
        driver.arm();
        ASSERT_TRUE(w->edit()) << qPrintable(w->lastResult());

        // Compare with the device: a request that leaves the document as it is; the edited
        // parameter alone differs.
        const QByteArray edited = w->document().image();
        end = run(w->device(), [&] { w->compareWithDevice(); });
        ASSERT_TRUE(end.ok) << qPrintable(end.message);
        EXPECT_EQ(w->document().image(), edited);
        const SettingsModel& settings = *w->settingsView()->model();
        EXPECT_EQ(settings.differences(SettingsModel::DeviceSide), 1);
        EXPECT_TRUE(settings.differs(ParameterIndex::of(model).covering(driver.memLoc),
                                     SettingsModel::DeviceSide));
        EXPECT_TRUE(w->lastResult().contains(settingsDiffer(1))) << qPrintable(w->lastResult());

        // Send Changes: one parameter, at most two messages instead of the whole data, read back
        // (verify is on by default) and kept as verified; then nothing is left to send or to keep.
        const int before = dataSetsOut(w->monitor()->model());
        end =
            run(w->device(), [&] { ASSERT_GT(w->device().send(w->document().image(), true), 0); });
        ASSERT_TRUE(end.ok) << qPrintable(end.message);
        const int sent = dataSetsOut(w->monitor()->model()) - before;
        EXPECT_GE(sent, 1);
        EXPECT_LE(sent, 2);
        EXPECT_TRUE(holds(w->document().image()));
        EXPECT_TRUE(holds(newest(Snapshot::Kind::Verified)));
        EXPECT_EQ(w->device().send(w->document().image(), true), 0);
        EXPECT_EQ(w->history().snapshots().size(), 2);
    }

    // A second start remembers the ports. The first state of the history goes back to the
    // device once that is confirmed, and is not kept twice.
    {
        const auto remembered = window(model, false);
        MainWindow& w = *remembered;
        const Snapshot first = w.history().snapshots().last();
        QStringList asked;
        w.setAskSendSnapshot([&](const QString& question) {
            asked << question;
            return asked.size() > 1; // No the first time, Yes the second
        });
        EXPECT_FALSE(w.sendSnapshot(first.path));
        EXPECT_EQ(w.device().busy(), DeviceSession::Operation::None) << "nothing sent on No";
        const End end = run(w.device(), [&] { ASSERT_TRUE(w.sendSnapshot(first.path)); });
        ASSERT_TRUE(end.ok) << qPrintable(end.message);
        ASSERT_EQ(asked.size(), 2);
        EXPECT_TRUE(asked[0].contains(first.localTime())) << qPrintable(asked[0]);
        EXPECT_TRUE(holds(start));
        const QList<Snapshot> kept = w.history().snapshots();
        ASSERT_EQ(kept.size(), 3);
        EXPECT_EQ(kept.first().kind, Snapshot::Kind::Verified);
    }

    // With the device gone, a new window says so.
    device.reset();
    const QString gone = window(model, false, false)->portState();
    EXPECT_TRUE(gone.contains("input port \"dev out") && gone.contains("is not there"))
        << qPrintable(gone);
}
