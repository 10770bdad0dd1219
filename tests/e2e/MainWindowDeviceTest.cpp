// The librarian's window against ferrule-device over JACK: request, an edit through the real
// editor, a comparison with the device, send changes; ports remembered across starts, and a port
// that vanished.

#include "EditorDriver.h"
#include "HostOptionsForTests.h"
#include "JackServer.h"
#include "MonitorCounts.h"
#include "QtPrinters.h"
#include "WindowPorts.h"
#include "catalogue/ParameterIndex.h"
#include "device/DefaultImage.h"
#include "device/DumpMap.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"
#include "ui/MainWindow.h"
#include "ui/MidiMonitor.h"
#include "ui/SettingsView.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

// Runs the event loop until the device session reports the end of its operation.
bool waitForEnd(MainWindow& w, int timeoutMs) {
    QSignalSpy spy(&w.device(), &DeviceSession::finished);
    if (!spy.wait(timeoutMs)) return false;
    return spy.first().first().toBool();
}

// The model's data of an image as the transmission sends it.
QByteArray sentBytes(const QByteArray& image, int model) {
    return SyxFile::write(
        {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())},
        model, Sysex::defaultHeader(model));
}

} // namespace

TEST(MainWindowDevice, RequestEditSendChangesAndPortsThatAreRememberedOrGone) {
    // The JACK client names of this process must find the server of the test.
    JackServer jack;
    ASSERT_TRUE(jack.running()) << qPrintable(jack.log());
    qputenv("JACK_DEFAULT_SERVER",
            jack.env().value(QStringLiteral("JACK_DEFAULT_SERVER")).toUtf8());
    QTemporaryDir dir;
    const int model = 10;
    const QString saved = dir.filePath(QStringLiteral("device.bin"));
    // The device starts from values in the middle of most ranges, so a knob can step down.
    QByteArray start = makeDefaultImage();
    for (int i = modelStretch(model).start; i < kImageSize; ++i)
        start[i] = char(5);
    const QString startFile = dir.filePath(QStringLiteral("start.bin"));
    {
        QFile f(startFile);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(start);
    }
    auto device = std::make_unique<DeviceProcess>(
        jack, QStringList{QStringLiteral("--model"), QString::number(model),
                          QStringLiteral("--data"), startFile, QStringLiteral("--save"), saved});
    ASSERT_TRUE(device->ready());

    QDir(History::defaultFolder()).removeRecursively();
    {
        HostOptions o = hostOptionsForTests(model);
        o.midiIn = o.midiOut = QStringLiteral("ferrule-device");
        MainWindow w(o, SystemDocument(model, Sysex::defaultHeader(model)));
        w.setAskSave([](const QString&) { return QMessageBox::Discard; });
        ASSERT_TRUE(waitForPorts(w)) << qPrintable(w.portState());

        // Request: the document becomes the device's data. Half way, the window is rendered
        // for the gallery (and the README).
        w.show();
        bool rendered = false;
        QObject::connect(&w.device(), &DeviceSession::progress, &w,
                         [&](qint64 done, qint64 total, qint64) {
                             if (rendered || done * 2 < total) return;
                             rendered = true;
                             QDir().mkpath(QStringLiteral(FERRULE_GALLERY_DIR));
                             w.grab().save(QStringLiteral(FERRULE_GALLERY_DIR) +
                                           QStringLiteral("/main-window-request.png"));
                         });
        w.device().receive(w.document().image(), true);
        ASSERT_TRUE(waitForEnd(w, 60000)) << qPrintable(w.lastResult());
        w.takeImage(w.device().received(), QStringLiteral("received"));
        EXPECT_EQ(w.document().image().mid(modelStretch(model).start, 200),
                  start.mid(modelStretch(model).start, 200));
        // The history keeps each state of the device the window learns: read, then sent.
        const auto newest = [&w](Snapshot::Kind kind) {
            const QList<Snapshot> kept = w.history().snapshots();
            EXPECT_FALSE(kept.isEmpty());
            if (kept.isEmpty()) return QByteArray();
            EXPECT_EQ(kept.first().kind, kind);
            EXPECT_TRUE(kept.first().portText().contains("ferrule-device"))
                << qPrintable(kept.first().portText());
            QString error;
            const auto doc =
                SystemDocument::open(kept.first().path, model, Sysex::defaultHeader(model), &error);
            EXPECT_TRUE(doc) << qPrintable(error);
            return doc ? sentBytes(doc->image(), model) : QByteArray();
        };
        EXPECT_EQ(newest(Snapshot::Kind::Requested), sentBytes(w.device().received(), model));

        // Edit one parameter through the real editor, then send only what changed.
        EditorDriver driver;
        driver.arm();
        ASSERT_TRUE(w.edit()) << qPrintable(w.lastResult());

        // Compare with the device: a request that leaves the document as it is; the edited
        // parameter alone differs.
        const QByteArray edited = w.document().image();
        w.compareWithDevice();
        ASSERT_TRUE(waitForEnd(w, 60000)) << qPrintable(w.lastResult());
        EXPECT_EQ(w.document().image(), edited);
        const SettingsModel& settings = *w.settingsView()->model();
        EXPECT_EQ(settings.differences(SettingsModel::DeviceSide), 1);
        EXPECT_TRUE(settings.differs(ParameterIndex::of(model).covering(driver.memLoc),
                                     SettingsModel::DeviceSide));
        EXPECT_TRUE(w.lastResult().contains(settingsDiffer(1))) << qPrintable(w.lastResult());

        const int before = dataSetsOut(w.monitor()->model());
        ASSERT_GT(w.device().send(w.document().image(), true), 0);
        ASSERT_TRUE(waitForEnd(w, 120000)) << qPrintable(w.lastResult());
        const int sent = dataSetsOut(w.monitor()->model()) - before;
        EXPECT_GE(sent, 1);
        EXPECT_LE(sent, 2) << "one parameter, at most two messages instead of 106";
        // Verify is on by default: the send was read back, and is kept as verified.
        EXPECT_EQ(newest(Snapshot::Kind::Verified), sentBytes(w.document().image(), model));
        // Nothing left to send now, and nothing new to keep.
        EXPECT_EQ(w.device().send(w.document().image(), true), 0);
        EXPECT_EQ(w.history().snapshots().size(), 2);

        // The send ends when the last byte has left the line, which the device may not have
        // taken yet. It takes messages in order, so once it has answered a request made after
        // the send, it holds the send; what it answers is the document too.
        const QByteArray document = w.document().image();
        w.device().receive(document, true);
        ASSERT_TRUE(waitForEnd(w, 60000)) << qPrintable(w.lastResult());
        EXPECT_EQ(w.device().received(), document);
        EXPECT_EQ(device->stop(), 0);
        QFile f(saved);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        const QByteArray onDevice = f.readAll();
        int differences = 0;
        for (const DumpMap::Block& b : DumpMap::of(model).blocks())
            for (int i = b.start; b.inImage && i < b.start + b.units; ++i)
                if (onDevice[i] != w.document().image()[i]) {
                    ++differences;
                    ADD_FAILURE() << "byte " << i << ": device " << int(onDevice[i])
                                  << ", document " << int(w.document().image()[i]) << ", edited "
                                  << driver.memLoc << ", sent " << sent;
                }
        EXPECT_EQ(differences, 0) << "the device holds the document";
    }

    // A second start remembers the ports; with the device gone, the window says so. The device
    // that answers meanwhile gets the first state of the history back, once that is confirmed.
    {
        auto again = std::make_unique<DeviceProcess>(
            jack, QStringList{QStringLiteral("--model"), QString::number(model)});
        ASSERT_TRUE(again->ready());
        MainWindow w(hostOptionsForTests(model),
                     SystemDocument(model, Sysex::defaultHeader(model)));
        EXPECT_TRUE(waitForPorts(w)) << qPrintable(w.portState());
        EXPECT_TRUE(w.portState().contains("ferrule-device")) << qPrintable(w.portState());

        const Snapshot first = w.history().snapshots().last();
        QStringList asked;
        w.setAskSendSnapshot([&](const QString& question) {
            asked << question;
            return asked.size() > 1; // No the first time, Yes the second
        });
        EXPECT_FALSE(w.sendSnapshot(first.path));
        EXPECT_EQ(w.device().busy(), DeviceSession::Operation::None) << "nothing sent on No";
        ASSERT_TRUE(w.sendSnapshot(first.path));
        ASSERT_TRUE(waitForEnd(w, 60000)) << qPrintable(w.lastResult());
        ASSERT_EQ(asked.size(), 2);
        EXPECT_TRUE(asked[0].contains(first.localTime())) << qPrintable(asked[0]);
        // Read back (the request follows the send on the same line): the device holds the
        // first state again, and the history does not keep that state twice.
        w.device().receive(w.document().image(), true);
        ASSERT_TRUE(waitForEnd(w, 60000)) << qPrintable(w.lastResult());
        EXPECT_EQ(sentBytes(w.device().received(), model), sentBytes(start, model));
        const QList<Snapshot> kept = w.history().snapshots();
        ASSERT_EQ(kept.size(), 3);
        EXPECT_EQ(kept.first().kind, Snapshot::Kind::Verified);
    }
    MainWindow gone(hostOptionsForTests(model), SystemDocument(model, Sysex::defaultHeader(model)));
    EXPECT_FALSE(gone.device().hasInput());
    EXPECT_TRUE(gone.portState().contains("input port \"ferrule-device") &&
                gone.portState().contains("is not there"))
        << qPrintable(gone.portState());
}
