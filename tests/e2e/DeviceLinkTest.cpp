// The link to the device as a user meets it: a JACK server that stops and comes back while the
// window holds ports, during a request and during a send; a device whose ports vanish mid-send,
// in the window and on the command line.

#include "HostOptionsForTests.h"
#include "HostProcess.h"
#include "JackServer.h"
#include "MidiApi.h"
#include "MidiInput.h"
#include "QtPrinters.h"
#include "WindowPorts.h"
#include "device/SysexCodec.h"
#include "ui/MainWindow.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <functional>

using namespace ferrule;

namespace {

// How long a wait may take before it counts as a hang. The tests wait for what they need, never
// for a time: a loaded machine is slow, and how fast the link reacts is printed as measured.
constexpr int kHangMs = 120000;

struct Result {
    bool ended = false;
    bool ok = false;
    QString message;
    qint64 atMs = -1; // when it ended, on the caller's clock
};

// Runs the event loop until the session's operation ends; `during` is called once when
// `doneShare` of the operation is done.
Result runOperation(MainWindow& w, const QElapsedTimer& clock, double doneShare = 2.0,
                    const std::function<void()>& during = {}) {
    Result r;
    bool called = false;
    const auto progress = QObject::connect(
        &w.device(), &DeviceSession::progress, &w, [&](qint64 done, qint64 total, qint64) {
            if (called || total <= 0 || double(done) < doneShare * double(total)) return;
            called = true;
            during();
        });
    const auto finished = QObject::connect(&w.device(), &DeviceSession::finished, &w,
                                           [&](bool ok, const QString& message) {
                                               r = {true, ok, message, clock.elapsed()};
                                           });
    static_cast<void>(QTest::qWaitFor([&] { return r.ended; }, kHangMs));
    QObject::disconnect(progress);
    QObject::disconnect(finished);
    return r;
}

// How soon the link reacted, as measured.
void measured(const char* what, qint64 ms) {
    std::printf("[ measured ] %s %lld ms\n", what, static_cast<long long>(ms));
}

QAction* action(MainWindow& w, const QString& text) {
    for (QAction* a : w.findChildren<QAction*>())
        if (a->text().remove(QLatin1Char('&')) == text) return a;
    return nullptr;
}

QStringList deviceArgs(int model, const QStringList& more = {}) {
    return QStringList{QStringLiteral("--model"), QString::number(model)} + more;
}

class DeviceLink : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(jack_.running()) << qPrintable(jack_.log());
        // The JACK clients of this process must find the test's server.
        qputenv("JACK_DEFAULT_SERVER",
                jack_.env().value(QStringLiteral("JACK_DEFAULT_SERVER")).toUtf8());
    }
    std::unique_ptr<MainWindow> window(int model) {
        HostOptions o = hostOptionsForTests(model);
        o.midiIn = o.midiOut = QStringLiteral("ferrule-device");
        auto w =
            std::make_unique<MainWindow>(o, SystemDocument(model, Sysex::defaultHeader(model)));
        w->setAskSave([](const QString&) { return QMessageBox::Discard; });
        w->setAskUnknownDevice([] { return MainWindow::UnknownDeviceAnswer::SendEverything; });
        // Sends here end when the last message has left; reading them back is tested over the
        // loopback (SessionLoopbackTest).
        w->device().setVerify(false);
        // The window lists its ports and opens the named ones once it has been painted.
        w->show();
        waitForPorts(*w, kHangMs);
        return w;
    }
    JackServer jack_;
};

} // namespace

TEST_F(DeviceLink, AServerThatStopsAndComesBackNeverCrashesTheWindowWhichSaysSoAndReconnects) {
    const int model = 6;
    auto device = std::make_unique<DeviceProcess>(jack_, deviceArgs(model));
    ASSERT_TRUE(device->ready());
    auto w = window(model);
    ASSERT_TRUE(w->device().hasInput() && w->device().hasOutput()) << qPrintable(w->portState());
    auto* inBox = w->findChild<QComboBox*>(QStringLiteral("midiIn"));
    auto* portLabel = w->findChild<QLabel*>(QStringLiteral("portState"));

    // The server stops with the ports open: the window says so at once, everywhere.
    QElapsedTimer clock;
    clock.start();
    jack_.stop();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !w->device().hasOutput(); }, kHangMs));
    const qint64 noticedMs = clock.elapsed();
    EXPECT_FALSE(w->device().hasInput());
    EXPECT_TRUE(portLabel->text().contains("the JACK server has stopped"))
        << qPrintable(portLabel->text());
    EXPECT_EQ(w->lastResult(), QStringLiteral("the JACK server has stopped"));
    EXPECT_TRUE(w->deviceStateText().startsWith("not reachable: the JACK server has stopped"))
        << qPrintable(w->deviceStateText());
    w->show();
    QDir().mkpath(QStringLiteral(FERRULE_GALLERY_DIR));
    w->grab().save(QStringLiteral(FERRULE_GALLERY_DIR "/main-window-server-stopped.png"));
    for (const QString name : {"Request", "Receive", "Send", "Send Changes"}) {
        QAction* a = action(*w, name);
        ASSERT_TRUE(a) << qPrintable(name);
        EXPECT_FALSE(a->isEnabled()) << qPrintable(name);
        EXPECT_TRUE(a->toolTip().contains("the JACK server has stopped")) << qPrintable(name);
    }

    // What the user did when it crashed: Request, Refresh, the server back, Refresh, another
    // choice in the In box.
    action(*w, QStringLiteral("Request"))->trigger();
    EXPECT_EQ(w->device().busy(), DeviceSession::Operation::None);
    w->refreshPorts();
    EXPECT_TRUE(inBox->currentText().startsWith("(not there) "))
        << qPrintable(inBox->currentText());
    ASSERT_TRUE(jack_.restart()) << qPrintable(jack_.log());
    device = std::make_unique<DeviceProcess>(jack_, deviceArgs(model));
    ASSERT_TRUE(device->ready());
    // By itself, once the device's ports are there again.
    clock.restart();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return w->device().hasInput() && w->device().hasOutput(); }, kHangMs))
        << qPrintable(w->portState());
    measured("the server's stop was noticed after:", noticedMs);
    measured("reconnected after the device was back:", clock.elapsed());
    EXPECT_TRUE(w->device().linkProblem().isEmpty()) << qPrintable(w->device().linkProblem());
    EXPECT_TRUE(w->lastResult().startsWith("the MIDI ports are open again: In: ferrule-device"))
        << qPrintable(w->lastResult());
    EXPECT_FALSE(portLabel->text().contains("stopped")) << qPrintable(portLabel->text());
    EXPECT_TRUE(action(*w, QStringLiteral("Request"))->isEnabled());
    w->refreshPorts();
    EXPECT_TRUE(w->setPorts(QString(), QStringLiteral("ferrule-device")));
    EXPECT_TRUE(w->setPorts(QStringLiteral("ferrule-device"), QStringLiteral("ferrule-device")));
    EXPECT_EQ(inBox->currentData().toString(), w->device().inputName());

    // A request that works, then one that the server's stop cuts short: the stop is named,
    // never the device, and soon.
    w->device().receive(w->document().image(), true);
    Result r = runOperation(*w, clock);
    ASSERT_TRUE(r.ok) << qPrintable(r.message);
    w->device().receive(w->document().image(), true);
    clock.restart();
    qint64 stoppedAt = -1;
    r = runOperation(*w, clock, 0.3, [&] {
        stoppedAt = clock.elapsed();
        jack_.stop();
    });
    ASSERT_TRUE(r.ended);
    EXPECT_FALSE(r.ok);
    EXPECT_EQ(r.message, QStringLiteral("the JACK server has stopped"));
    measured("the request ended after the server's stop:", r.atMs - stoppedAt);
    // The request is over and its receiver gone with its timeout: what is queued is all that
    // can follow.
    EXPECT_EQ(w->device().busy(), DeviceSession::Operation::None);
    QCoreApplication::processEvents();
    EXPECT_TRUE(w->lastResult().contains("the JACK server has stopped"))
        << qPrintable(w->lastResult());
    EXPECT_FALSE(w->device().knowsDevice());
    EXPECT_TRUE(w->deviceStateText().endsWith("what it holds is not known"))
        << qPrintable(w->deviceStateText());

    // Back again, and a send cut short the same way: only what left is counted, and the
    // device is not said to hold anything.
    ASSERT_TRUE(jack_.restart()) << qPrintable(jack_.log());
    device = std::make_unique<DeviceProcess>(jack_, deviceArgs(model));
    ASSERT_TRUE(device->ready());
    w->refreshPorts();
    waitForPorts(*w, kHangMs);
    ASSERT_TRUE(w->device().hasOutput()) << qPrintable(w->portState());
    ASSERT_GT(w->device().send(w->document().image(), false), 0);
    clock.restart();
    r = runOperation(*w, clock, 0.3, [&] {
        stoppedAt = clock.elapsed();
        jack_.stop();
    });
    ASSERT_TRUE(r.ended);
    EXPECT_FALSE(r.ok);
    EXPECT_TRUE(r.message.startsWith("the JACK server has stopped; ")) << qPrintable(r.message);
    EXPECT_TRUE(r.message.contains("had left")) << qPrintable(r.message);
    measured("the send ended after the server's stop:", r.atMs - stoppedAt);
    EXPECT_FALSE(w->device().knowsDevice());
    // The send may fail on its next message before the watch has looked at the ports.
    EXPECT_TRUE(QTest::qWaitFor([&] { return !w->device().linkProblem().isEmpty(); }, kHangMs));
    EXPECT_TRUE(w->deviceStateText().endsWith("what it holds is not known"))
        << qPrintable(w->deviceStateText());

    // Quit with the server gone and its clients stopped.
    w.reset();
}

TEST_F(DeviceLink, ADevicePortThatVanishesMidSendFailsInTheWindowAndOnTheCommandLine) {
    const int model = 10;
    auto device = std::make_unique<DeviceProcess>(jack_, deviceArgs(model));
    ASSERT_TRUE(device->ready());
    auto w = window(model);
    ASSERT_TRUE(w->device().hasOutput()) << qPrintable(w->portState());

    // A monitor listens to the window's output too: its connection must not hide the device's
    // going.
    MidiInput monitor;
    QString error;
    ASSERT_TRUE(monitor.openVirtual(MidiApi::Jack, QStringLiteral("ferrule-monitor"),
                                    QStringLiteral("monitor in"), &error))
        << qPrintable(error);
    int heard = 0;
    QObject::connect(&monitor, &MidiInput::messageReceived, [&heard] { ++heard; });
    // Connects the monitor to the output of ferrule-host, once there is one.
    const auto listenToTheHost = [&] {
        QStringList outputs;
        int hostOut = -1;
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                outputs = listMidiPorts(MidiApi::Jack, QStringLiteral("ferrule-test")).inputs;
                hostOut = choosePort(outputs, QStringLiteral("ferrule-host out"));
                return hostOut >= 0;
            },
            kHangMs))
            << qPrintable(outputs.join(", "));
        QProcess connect;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(jack_.env());
        connect.setProcessEnvironment(env);
        connect.start(QStringLiteral("jack_connect"),
                      {outputs[hostOut], QStringLiteral("ferrule-monitor:monitor in")});
        ASSERT_TRUE(connect.waitForFinished(kHangMs) && connect.exitCode() == 0)
            << connect.readAllStandardError().constData();
    };
    listenToTheHost();
    if (HasFatalFailure()) return;

    // The window: a whole send, the device closed a third of the way.
    const int queued = w->device().send(w->document().image(), false);
    ASSERT_GT(queued, 100);
    QElapsedTimer clock;
    clock.start();
    qint64 killedAt = -1;
    const Result r = runOperation(*w, clock, 0.33, [&] {
        device->stop();
        killedAt = clock.elapsed();
    });
    ASSERT_TRUE(r.ended);
    EXPECT_FALSE(r.ok);
    EXPECT_TRUE(r.message.contains("ferrule-device") && r.message.contains("is gone"))
        << qPrintable(r.message);
    EXPECT_FALSE(r.message.contains(QStringLiteral("%1 of %1 messages").arg(queued)));
    EXPECT_FALSE(w->device().knowsDevice());
    // The send may fail before the link watch has heard of the ports' going; the window then
    // says so as soon as it has.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return w->deviceStateText().startsWith("not reachable: the MIDI"); }, kHangMs))
        << qPrintable(w->deviceStateText());
    EXPECT_FALSE(w->device().hasOutput());
    measured("the window's send ended after the device's ports went:", r.atMs - killedAt);

    // The command line: the destination closes once the GT-10's eight seconds of messages are
    // under way, as the monitor hears.
    w.reset();
    device = std::make_unique<DeviceProcess>(jack_, deviceArgs(model));
    ASSERT_TRUE(device->ready());
    QTemporaryDir settings;
    QProcess host;
    host.setProcessEnvironment(hostEnvironment(settings.path(), jack_.env()));
    host.start(QStringLiteral(FERRULE_HOST_BINARY),
               {QStringLiteral("--model"), QStringLiteral("10"), QStringLiteral("--transmit"),
                QStringLiteral("--midi-api"), QStringLiteral("jack"), QStringLiteral("--midi-out"),
                QStringLiteral("ferrule-device"), QStringLiteral("--plugin"),
                QStringLiteral(FERRULE_PLUGIN_FILE)});
    ASSERT_TRUE(host.waitForStarted());
    heard = 0;
    listenToTheHost();
    if (HasFatalFailure()) return;
    ASSERT_TRUE(QTest::qWaitFor([&] { return heard > 0; }, kHangMs));
    clock.restart();
    device->stop();
    ASSERT_TRUE(host.waitForFinished(kHangMs));
    const qint64 tookMs = clock.elapsed();
    const QByteArray out = host.readAllStandardOutput(), err = host.readAllStandardError();
    EXPECT_EQ(host.exitCode(), 3) << out.constData() << err.constData();
    EXPECT_TRUE(err.contains("the MIDI output port \"ferrule-device:")) << err.constData();
    EXPECT_TRUE(err.contains("is gone")) << err.constData();
    EXPECT_FALSE(out.contains("sent ")) << out.constData();
    measured("--transmit ended after the device's ports went:", tookMs);
}
