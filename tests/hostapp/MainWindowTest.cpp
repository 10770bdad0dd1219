// The librarian's window on the real plug-in: a .syx opened, edited through the editor and
// saved changes exactly the parameter's bytes; unsaved changes are asked about.

#include "ui/MainWindow.h"
#include "BoxAnswerer.h"
#include "DocumentFiles.h"
#include "EditorDriver.h"
#include "HostOptionsForTests.h"
#include "HostProcess.h"
#include "LoopbackDriver.h"
#include "MidiInput.h"
#include "MidiModule.h"
#include "MidiOutput.h"
#include "QtPrinters.h"
#include "catalogue/ParameterIndex.h"
#include "device/DefaultImage.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"
#include "document/DocumentLock.h"
#include "sysdata/ParameterEncoding.h"
#include "ui/MidiMonitor.h"

#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QStatusBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

QByteArray imageOfSyx(const QString& path, int model) {
    return SyxFile::read(readFile(path), model, Sysex::defaultHeader(model), makeDefaultImage())
        .image;
}

} // namespace

TEST(MainWindow, AnEditThroughTheEditorSavedChangesExactlyThatParametersBytes) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("gt10.syx"));
    const int model = 10;
    ASSERT_EQ(saveMidRange(path, model, DataFormat::Syx), path);
    const QByteArray before = imageOfSyx(path, model);
    MainWindow window(hostOptionsForTests(model),
                      SystemDocument(model, Sysex::defaultHeader(model)));
    ASSERT_TRUE(window.openFile(path));
    EXPECT_FALSE(window.isWindowModified());

    EditorDriver driver;
    driver.arm();
    EXPECT_TRUE(window.edit()) << qPrintable(window.lastResult());
    ASSERT_TRUE(driver.done);
    ASSERT_GE(driver.memLoc, 0);
    EXPECT_TRUE(window.documentModified());
    EXPECT_TRUE(window.isWindowModified());
    EXPECT_TRUE(window.windowTitle().startsWith("gt10.syx[*]"));
    ASSERT_TRUE(window.save());
    EXPECT_FALSE(window.documentModified());

    const QByteArray after = imageOfSyx(path, model);
    ASSERT_FALSE(after.isEmpty());
    QList<int> changed;
    for (int i = 0; i < after.size(); ++i)
        if (after[i] != before[i]) changed << i;
    const QList<int> expected = IsDoubleByte(driver.memLoc, model)
                                    ? QList<int>{driver.memLoc, driver.memLoc + 1}
                                    : QList<int>{driver.memLoc};
    // One step down changes the low byte, or both bytes of a double-byte value at a boundary.
    ASSERT_FALSE(changed.isEmpty());
    for (int i : changed)
        EXPECT_TRUE(expected.contains(i)) << i;
    EXPECT_TRUE(SyxFile::looksLikeSyx(readFile(path))) << "saved in its own form";
}

TEST(MainWindow, UnsavedChangesAreAskedAboutAndEachAnswerDoesWhatItSays) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("gt8.bin"));
    const int model = 8;
    SystemDocument doc(model, Sysex::defaultHeader(model));
    QString error;
    ASSERT_TRUE(doc.saveAs(path, DataFormat::Raw, &error));
    const QByteArray original = readFile(path);
    const QByteArray edited = changed(original, 10500);

    MainWindow window(hostOptionsForTests(model), doc);
    QStringList asked;
    QMessageBox::StandardButton answer = QMessageBox::Cancel;
    window.setAskSave([&](const QString& text) {
        asked << text;
        return answer;
    });
    window.close();
    EXPECT_TRUE(asked.isEmpty()) << "nothing to ask without changes";

    window.takeImage(edited, QStringLiteral("edited"));
    window.show();
    EXPECT_FALSE(window.close()) << "Cancel keeps the window";
    EXPECT_TRUE(window.isVisible());
    ASSERT_EQ(asked.size(), 1);
    EXPECT_TRUE(asked[0].contains("gt8.bin has unsaved changes"));

    // A window on the file, edited, closed with `reply` to the question.
    const auto closeAnswering = [&](QMessageBox::StandardButton reply) {
        MainWindow w(hostOptionsForTests(model),
                     *SystemDocument::open(path, model, Sysex::defaultHeader(model), &error));
        w.setAskSave([reply](const QString&) { return reply; });
        w.takeImage(edited, QStringLiteral("edited"));
        w.show();
        return w.close();
    };
    EXPECT_TRUE(closeAnswering(QMessageBox::Discard));
    EXPECT_EQ(readFile(path), original) << "Discard closes, the file keeps its old bytes";
    EXPECT_TRUE(closeAnswering(QMessageBox::Save));
    EXPECT_EQ(readFile(path), edited) << "Save closes after writing the changes";
}

TEST(MainWindow, AFileWithUnsavedChangesInAnotherHostIsOpenedReadOnlyUntilThatHostIsGone) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("gt8.bin"));
    const int model = 8;
    const QByteArray original = makeDefaultImage();
    ASSERT_TRUE(writeFile(path, original));
    // Another ferrule-host edits the file in its editor; the lock lives in the runtime folder,
    // which this process and the other share.
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(dir.path()));
    const QStringList edit = {QStringLiteral("--edit"),
                              QStringLiteral("--model"),
                              QString::number(model),
                              QStringLiteral("--data"),
                              path,
                              QStringLiteral("--plugin"),
                              QStringLiteral(FERRULE_PLUGIN_FILE)};
    QProcess other;
    other.setProcessEnvironment(hostEnvironment(dir.path(), {}));
    other.start(QStringLiteral(FERRULE_HOST_BINARY), edit);
    ASSERT_TRUE(other.waitForStarted());
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return DocumentLock::holder(path) == other.processId(); }, 120000))
        << other.readAllStandardError().constData();

    // A third one that would edit it is refused, with the reason.
    const HostRun third = runHost(edit, dir.path(), 120000);
    EXPECT_EQ(third.exitCode, 2);
    EXPECT_TRUE(third.err.contains(
        QStringLiteral("has unsaved changes in another ferrule-host (process %1)")
            .arg(other.processId())
            .toUtf8()))
        << third.err.constData();

    // The window asks, opens it read-only, and a save goes elsewhere or nowhere.
    MainWindow window(hostOptionsForTests(model),
                      SystemDocument(model, Sysex::defaultHeader(model)));
    QStringList asked;
    window.setAskReadOnly([&](const QString& text) {
        asked << text;
        return true;
    });
    window.setAskAfterFailedSave([](const QString&, bool) {
        return SaveChoice{SaveChoice::Discard, {}};
    });
    ASSERT_TRUE(window.openFile(path));
    ASSERT_EQ(asked.size(), 1);
    EXPECT_TRUE(asked[0].startsWith("gt8.bin has unsaved changes in another ferrule-host"));
    EXPECT_TRUE(window.document().readOnly());
    const QByteArray edits = changed(original, 10500);
    window.takeImage(edits, QStringLiteral("edited"));
    EXPECT_FALSE(window.holdsFileLock());
    EXPECT_FALSE(window.save());
    EXPECT_EQ(readFile(path), original);

    // The other host dies: its lock goes with it, and the file opens as usual.
    other.kill();
    ASSERT_TRUE(other.waitForFinished());
    EXPECT_EQ(DocumentLock::holder(path), 0);
    MainWindow again(hostOptionsForTests(model),
                     SystemDocument(model, Sysex::defaultHeader(model)));
    again.setAskReadOnly([&](const QString& text) {
        asked << text;
        return false;
    });
    ASSERT_TRUE(again.openFile(path));
    EXPECT_EQ(asked.size(), 1);
    EXPECT_FALSE(again.document().readOnly());
    EXPECT_FALSE(again.holdsFileLock()) << "nothing to keep yet";
    again.takeImage(edits, QStringLiteral("edited"));
    EXPECT_TRUE(again.holdsFileLock());
    ASSERT_TRUE(again.save());
    EXPECT_FALSE(again.holdsFileLock());
    EXPECT_EQ(readFile(path), edits);
}

// A new user's first look: the empty window says what to do first; greyed actions say why; the
// texts are whole at the default size; the window's dialogs carry the program's name and no
// command-line words, and a No to "switch model?" is taken as said, not answered by a second box.
TEST(MainWindow, AnEmptyStartSaysWhatToDoAndItsDialogsSpeakTheWindowsLanguage) {
    QTemporaryDir dir;
    const QString gt10 =
        dir.filePath(QStringLiteral("a-backup-of-the-gt10-in-the-rehearsal-room.syx"));
    {
        SystemDocument doc(10, Sysex::defaultHeader(10));
        QString error;
        ASSERT_TRUE(doc.saveAs(gt10, DataFormat::Syx, &error)) << qPrintable(error);
    }
    MainWindow window(hostOptionsForTests(8), SystemDocument(8, Sysex::defaultHeader(8)));
    window.show();
    QApplication::processEvents();
    const auto* hint = window.findChild<QLabel*>(QStringLiteral("firstStartHint"));
    ASSERT_NE(hint, nullptr);
    EXPECT_TRUE(hint->isVisible());
    for (const char* words : {"MIDI ports", "Request", ".syx", "File &gt; Open"})
        EXPECT_TRUE(hint->text().contains(QLatin1String(words))) << words;

    int greyed = 0;
    for (const QAction* a : window.findChildren<QAction*>()) {
        if (a->isEnabled() || a->text().isEmpty() || a->menu()) continue;
        ++greyed;
        EXPECT_TRUE(a->toolTip().startsWith(QLatin1String("Not now: ")))
            << a->text().toStdString() << ": " << a->toolTip().toStdString();
    }
    EXPECT_GE(greyed, 5) << "without ports: Receive, Request, Send, Send Changes, Stop";

    // Every box the window shows is noted and answered No.
    BoxAnswerer answer(QMessageBox::No);
    EXPECT_FALSE(window.openFile(gt10));
    answer.stop();
    ASSERT_EQ(answer.asked(), 1) << answer.texts.join(QLatin1String(" | ")).toStdString();
    EXPECT_TRUE(answer.texts[0].contains(QLatin1String("Switch to the GT-10 and open it?")));
    EXPECT_EQ(answer.titles, QStringList{QStringLiteral("Ferrule")});
    EXPECT_FALSE(window.lastResult().contains(QLatin1String("--")))
        << qPrintable(window.lastResult());
    EXPECT_TRUE(window.lastResult().contains(QLatin1String("GT-10")));

    // The long texts are whole at the default size: the wrapped labels have the height their
    // text needs, the others the width.
    QApplication::processEvents();
    for (const QLabel* label : window.centralWidget()->findChildren<QLabel*>()) {
        if (!label->isVisible() || label->text().isEmpty()) continue;
        if (label->wordWrap())
            EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                << label->text().toStdString();
        else
            EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
    }
    EXPECT_TRUE(hint->isVisible()) << "nothing of its own yet";
    SystemDocument gt8(8, Sysex::defaultHeader(8));
    QString error;
    const QString own = dir.filePath(QStringLiteral("gt8.syx"));
    ASSERT_TRUE(gt8.saveAs(own, DataFormat::Syx, &error));
    answer.start();
    EXPECT_TRUE(window.openFile(own));
    answer.stop();
    EXPECT_FALSE(hint->isVisible()) << "the window holds a file now";
}

TEST(MainWindow, ASettingsTextOpensAsTheModelItNamesShowsItsWarningsAndSavesAsText) {
    QTemporaryDir dir;
    const Parameter* knob = nullptr;
    for (const Parameter& p : ParameterIndex::of(3).parameters())
        if (knob == nullptr && p.bytes == 1 && p.maximum < 127) knob = &p;
    ASSERT_NE(knob, nullptr);
    const QString text = dir.filePath(QStringLiteral("gt3.txt"));
    ASSERT_TRUE(writeFile(text, "# Model: GT-3\n" + knob->name().toUtf8() + " = 127\n"));
    MainWindow window(hostOptionsForTests(10), SystemDocument(10, Sysex::defaultHeader(10)));
    window.show();
    // No question: the text says which model it holds.
    BoxAnswerer watch(QMessageBox::NoButton);
    ASSERT_TRUE(window.openFile(text)) << qPrintable(window.lastResult());
    watch.stop();
    EXPECT_EQ(watch.asked(), 0);
    EXPECT_EQ(window.findChild<QComboBox*>(QStringLiteral("model"))->currentText(),
              QStringLiteral("GT-3"));
    EXPECT_TRUE(window.findChild<QLabel*>(QStringLiteral("summary"))
                    ->text()
                    .contains(QLatin1String("settings text")));
    EXPECT_EQ(window.statusBar()->currentMessage(),
              QStringLiteral("line 2: %1 = 127 is outside %2-%3; kept")
                  .arg(knob->name())
                  .arg(knob->minimum)
                  .arg(knob->maximum));

    // Saved as text under another name, with the value kept.
    const QString copy = dir.filePath(QStringLiteral("copy.txt"));
    ASSERT_TRUE(window.saveAs(copy));
    const QByteArray saved = readFile(copy);
    EXPECT_TRUE(saved.startsWith("# Ferrule system settings\n# Model: GT-3\n"));
    EXPECT_TRUE(saved.contains(knob->name().toUtf8() + " = 127\n")) << saved.constData();
}

// The loopback MIDI system in place of the MIDI module, with a device's ports "dev in" and
// "dev out".
class MainWindowPorts : public ::testing::Test {
protected:
    MainWindowPorts() { useMidiDriver(&midi_); }
    ~MainWindowPorts() override { useMidiDriver(nullptr); }
    void SetUp() override {
        QString error;
        ASSERT_TRUE(deviceIn_.openVirtual(MidiApi::Alsa, "dev", "dev in", &error) &&
                    deviceOut_.openVirtual(MidiApi::Alsa, "dev", "dev out", &error))
            << qPrintable(error);
    }

private:
    LoopbackDriver midi_;
    MidiInput deviceIn_;
    MidiOutput deviceOut_;
};

// Choosing ports, and choosing them again, closes the old ones on purpose: that is no loss, and
// the window must not report the ports as lost or as "open again".
TEST_F(MainWindowPorts, ChoosingPortsIsNeitherALossNorAReturn) {
    MainWindow window(hostOptionsForTests(8), SystemDocument(8, Sysex::defaultHeader(8)));
    for (int choice = 0; choice < 3; ++choice) {
        ASSERT_TRUE(window.setPorts(choice == 1 ? QString() : QStringLiteral("dev out"),
                                    QStringLiteral("dev in")))
            << qPrintable(window.portState());
        EXPECT_TRUE(window.device().linkProblem().isEmpty());
        EXPECT_FALSE(window.lastResult().contains(QLatin1String("again")))
            << choice << ": " << qPrintable(window.lastResult());
    }
}

// The window's first frame does not wait for the MIDI systems: it lists the ports once it has
// been painted, and opens the ports named on the command line then (and makes the MIDI
// monitor's panel). Until then the MIDI line
// says that the ports are being listed, and claims nothing else.
TEST_F(MainWindowPorts, ListsThePortsOnceShownAndOpensTheNamedOnes) {
    HostOptions o = hostOptionsForTests(8);
    o.midiApi = QStringLiteral("alsa");
    o.midiIn = QStringLiteral("dev out");
    o.midiOut = QStringLiteral("dev in");
    MainWindow window(o, SystemDocument(8, Sysex::defaultHeader(8)));
    auto* portLabel = window.findChild<QLabel*>(QStringLiteral("portState"));
    auto* inBox = window.findChild<QComboBox*>(QStringLiteral("midiIn"));
    QAction* receive = nullptr;
    for (QAction* a : window.findChildren<QAction*>())
        if (a->text() == QLatin1String("&Receive")) receive = a;
    ASSERT_NE(receive, nullptr);
    // What the first frame shows, seen as the window is painted.
    struct FirstPaint : QObject {
        std::function<void()> see;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint && see) std::exchange(see, nullptr)();
            return false;
        }
    } first;
    QString text, why;
    bool open = true;
    first.see = [&] {
        text = portLabel->text();
        why = receive->toolTip();
        open = window.device().hasInput() || window.device().hasOutput();
    };
    window.installEventFilter(&first);
    window.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.portsListed(); }, 20000));
    window.removeEventFilter(&first);
    EXPECT_EQ(text, QStringLiteral("listing the ports…"));
    EXPECT_EQ(why, QStringLiteral("Not now: the MIDI ports are being listed"));
    EXPECT_FALSE(open);
    ASSERT_TRUE(window.device().hasInput() && window.device().hasOutput())
        << qPrintable(window.portState());
    EXPECT_EQ(portLabel->text(), QStringLiteral("In: dev out  Out: dev in"));
    EXPECT_EQ(inBox->currentText(), QStringLiteral("dev out"));
    EXPECT_TRUE(receive->isEnabled()) << qPrintable(receive->toolTip());
    // The MIDI monitor, behind the History at first, has its panel by then.
    EXPECT_NE(window.monitor()->findChild<QTableView*>(), nullptr);
}
