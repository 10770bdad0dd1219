// The editor in a real X window (Xvfb), driven with xdotool as a person would: a tab, a knob
// drag, a switch, an option item, then OK. The data file must change by exactly those bytes. And
// a process killed after an edit: the next start recovers it.

#include "io/RecoveryJournal.h"

#include "XDisplay.h"

#include <QFile>
#include <QPoint>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

// A data file of zeros (an image of 43,252 bytes) in `dir`; empty when it cannot be written.
QString zeroImage(const QTemporaryDir& dir, const QString& name) {
    const QString path = dir.filePath(name);
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(QByteArray(43252, char(0))) != 43252) return {};
    return path;
}

// Every byte that differs, named.
void expectSameBytes(const QByteArray& after, const QByteArray& expected) {
    for (int i = 0; i < after.size(); ++i)
        if (after[i] != expected[i])
            ADD_FAILURE() << "byte " << i << " is " << int(after[i]) << ", expected "
                          << int(expected[i]);
}

} // namespace

TEST(RealWindow, EditsThroughTheMouseAndKeepsThemOnOk) {
    XDisplay display;
    if (!display.tools()) GTEST_SKIP() << "needs Xvfb and xdotool";
    ASSERT_TRUE(display.running()) << "Xvfb did not start";
    QTemporaryDir dir;
    const QString data = zeroImage(dir, QStringLiteral("d.bin"));
    ASSERT_FALSE(data.isEmpty());
    QProcess host;
    display.startHost(host,
                      {QStringLiteral("--edit"), QStringLiteral("--model"), QStringLiteral("8"),
                       QStringLiteral("--data"), data},
                      dir.path());
    const QString window = display.window(QStringLiteral("System: GT-8"), host);
    ASSERT_FALSE(window.isEmpty()) << "the editor window did not appear" << ended(host);
    const QPoint origin = display.origin(window);
    auto at = [&](int dx, int dy) {
        return QStringList{QStringLiteral("mousemove"), QString::number(origin.x() + dx),
                           QString::number(origin.y() + dy)};
    };
    // The server hands the window the events in order; the window handles each at once.
    auto act = [&](QStringList args) { display.xdotool(args); };
    act(at(120, 50) << QStringLiteral("click") << QStringLiteral("1"));     // the MIDI tab
    act(at(30, 185) << QStringLiteral("mousedown") << QStringLiteral("1")); // Rx channel knob
    act(at(42, 158));
    act(at(60, 170) << QStringLiteral("mouseup") << QStringLiteral("1"));
    act(at(40, 253) << QStringLiteral("click") << QStringLiteral("1")); // Omni mode
    act(at(186, 158));                                                  // hover "Progammable"
    act(at(188, 159) << QStringLiteral("click") << QStringLiteral("1"));
    act(at(586, 56) << QStringLiteral("click") << QStringLiteral("1")); // OK
    EXPECT_TRUE(host.waitForFinished(60000));
    EXPECT_EQ(host.exitCode(), 0) << host.readAllStandardError().constData();

    QFile f(data);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray after = f.readAll();
    ASSERT_EQ(after.size(), 43252);
    QByteArray expected(43252, char(0));
    expected[10428] = char(11); // Rx channel, dragged up past the top
    expected[10429] = char(1);  // Omni mode on
    expected[10438] = char(1);  // Map Select: Progammable
    expectSameBytes(after, expected);
}

TEST(RealWindow, TheMainWindowEditsSavesAndQuitsFromTheKeyboard) {
    XDisplay x;
    if (!x.tools()) GTEST_SKIP() << "needs Xvfb and xdotool";
    ASSERT_TRUE(x.running()) << "Xvfb did not start";
    QTemporaryDir dir;
    const QString data = zeroImage(dir, QStringLiteral("main.bin"));
    ASSERT_FALSE(data.isEmpty());
    QProcess host;
    x.startHost(host,
                {QStringLiteral("--model"), QStringLiteral("8"), QStringLiteral("--data"), data},
                dir.path());
    const QString main = x.window(QStringLiteral("main.bin"), host);
    ASSERT_FALSE(main.isEmpty()) << "the main window did not appear" << ended(host);
    // No window manager runs on the display: focus the window and type through XTEST.
    x.xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), main});
    x.xdotool({QStringLiteral("key"), QStringLiteral("ctrl+e")});
    const QString editor = x.window(QStringLiteral("System: GT-8"), host);
    ASSERT_FALSE(editor.isEmpty()) << "Edit did not open the editor" << ended(host);
    const QPoint e = x.origin(editor);
    auto clickAt = [&](int dx, int dy) {
        x.xdotool({QStringLiteral("mousemove"), QString::number(e.x() + dx),
                   QString::number(e.y() + dy), QStringLiteral("click"), QStringLiteral("1")});
    };
    clickAt(120, 50); // the MIDI tab
    clickAt(40, 253); // Omni mode
    clickAt(586, 56); // OK
    // The title gets its mark once the window has taken the edit.
    QString title;
    for (int i = 0; i < 600 && !title.contains(QLatin1Char('*')); ++i) {
        title = x.xdotool({QStringLiteral("getwindowname"), main});
        if (!title.contains(QLatin1Char('*'))) host.waitForFinished(50);
    }
    EXPECT_TRUE(title.contains(QLatin1Char('*'))) << qPrintable(title);
    x.xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), main});
    // Keys reach the window in the order they are sent: the save comes before the quit.
    x.xdotool({QStringLiteral("key"), QStringLiteral("ctrl+s")});
    x.xdotool({QStringLiteral("key"), QStringLiteral("ctrl+q")});
    EXPECT_TRUE(host.waitForFinished(60000));
    EXPECT_EQ(host.exitCode(), 0) << host.readAllStandardError().constData();

    QFile f(data);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray after = f.readAll();
    ASSERT_EQ(after.size(), 43252);
    int changed = 0;
    for (int i = 0; i < after.size(); ++i)
        changed += after[i] != 0;
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(after[10429], char(1)) << "Omni mode on, saved with Ctrl+S";
}

// The editor worked from the keyboard alone: it opens with the focus on the page's first control;
// Ctrl+PgDown goes to the MIDI page and lands on its first control, which is stepped up three
// times, one step undone; Shift+Tab goes back round to OK, which Space presses.
TEST(RealWindow, TheEditorWorksFromTheKeyboardAlone) {
    XDisplay x;
    if (!x.tools()) GTEST_SKIP() << "needs Xvfb and xdotool";
    ASSERT_TRUE(x.running()) << "Xvfb did not start";
    QTemporaryDir dir;
    const QString data = zeroImage(dir, QStringLiteral("keys.bin"));
    ASSERT_FALSE(data.isEmpty());
    QProcess host;
    x.startHost(host,
                {QStringLiteral("--edit"), QStringLiteral("--model"), QStringLiteral("8"),
                 QStringLiteral("--data"), data},
                dir.path());
    const QString editor = x.window(QStringLiteral("System: GT-8"), host);
    ASSERT_FALSE(editor.isEmpty()) << "the editor window did not appear" << ended(host);
    x.xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), editor});
    auto keys = [&](const QString& key, int times) {
        x.xdotool({QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("40"),
                   QStringLiteral("--repeat"), QString::number(times), key});
    };
    // On the GT-8 the MIDI tab is the fourth from the left.
    keys(QStringLiteral("ctrl+Next"), 3);
    keys(QStringLiteral("Up"), 3);
    keys(QStringLiteral("ctrl+z"), 1);
    keys(QStringLiteral("shift+Tab"), 1); // from the first control back round to OK
    keys(QStringLiteral("space"), 1);
    EXPECT_TRUE(host.waitForFinished(60000));
    EXPECT_EQ(host.exitCode(), 0) << host.readAllStandardError().constData();

    QFile f(data);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray after = f.readAll();
    ASSERT_EQ(after.size(), 43252);
    QByteArray expected(43252, char(0));
    expected[10428] = char(2); // Rx channel: three steps up, one undone
    expectSameBytes(after, expected);
}

namespace {

// The image in the one recovery journal of a run whose data folder is `dataHome`, once it
// differs from `from`; empty when `host` ended first or no such journal came within a minute.
QByteArray journaledEdit(const QString& dataHome, const QByteArray& from, QProcess& host) {
    const QDir folder(dataHome + QStringLiteral("/ferrule-host/recovery"));
    for (int i = 0; i < 1200 && host.state() != QProcess::NotRunning; ++i) {
        for (const QString& name : folder.entryList({QStringLiteral("*.journal")}, QDir::Files)) {
            QFile f(folder.filePath(name));
            const auto entry = f.open(QIODevice::ReadOnly)
                                   ? ferrule::RecoveryJournal::decode(f.readAll())
                                   : std::nullopt;
            if (entry && entry->image != from) return entry->image;
        }
        host.waitForFinished(50);
    }
    return {};
}

// A GT-8 editor on a file of zeros, opened at once (`--edit`) or from the main window, gets one
// value stepped up from the keyboard; once the edit is journaled the program is killed with
// SIGKILL, started again, and the question on that start is answered with Return (Recover is
// the default button). The test goes on from there with `host` running again.
class RealWindowJournal : public ::testing::Test {
protected:
    void killAndRecover(bool mainWindow) {
        if (!x.tools()) GTEST_SKIP() << "needs Xvfb and xdotool";
        ASSERT_TRUE(x.running()) << "Xvfb did not start";
        data = zeroImage(dir, QStringLiteral("crash.bin"));
        ASSERT_FALSE(data.isEmpty());
        QStringList args{QStringLiteral("--model"), QStringLiteral("8"), QStringLiteral("--data"),
                         data};
        if (!mainWindow) args.prepend(QStringLiteral("--edit"));
        x.startHost(host, args, dir.path());
        if (mainWindow) {
            const QString main = x.window(QStringLiteral("crash.bin"), host);
            ASSERT_FALSE(main.isEmpty()) << "the main window did not appear" << ended(host);
            x.xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), main});
            x.xdotool({QStringLiteral("key"), QStringLiteral("ctrl+e")});
        }
        const QString editor = x.window(QStringLiteral("System: GT-8"), host);
        ASSERT_FALSE(editor.isEmpty()) << "the editor did not appear" << ended(host);
        x.xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), editor});
        // From the System tab to the page's first control, and one step up: keys reach the
        // window in order, and nothing is rebuilt on the way.
        QStringList keys{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("40")};
        for (int i = 0; i < 18; ++i)
            keys << QStringLiteral("Tab");
        x.xdotool(keys << QStringLiteral("Up"));
        edit = journaledEdit(dir.path(), QByteArray(43252, char(0)), host);
        ASSERT_EQ(edit.size(), 43252) << "no journal of the edit" << ended(host);
        // One value, one step: a byte, or the two of a double-byte value.
        const auto stepped = std::count_if(edit.begin(), edit.end(), [](char b) { return b; });
        EXPECT_TRUE(stepped == 1 || stepped == 2) << stepped << " bytes journaled as changed";
        host.kill();
        host.waitForFinished();
        ASSERT_EQ(QFile(data).size(), 43252);

        x.startHost(host, args, dir.path());
        const QString question = x.window(QStringLiteral("Recover Changes"), host);
        ASSERT_FALSE(question.isEmpty()) << "no question on the next start" << ended(host);
        x.xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), question});
        x.xdotool({QStringLiteral("key"), QStringLiteral("Return")});
    }
    // The file, once the program has ended well, holds the edit.
    void expectTheEditSaved() {
        EXPECT_TRUE(host.waitForFinished(60000));
        EXPECT_EQ(host.exitCode(), 0) << host.readAllStandardError().constData();
        QFile f(data);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        expectSameBytes(f.readAll(), edit);
        EXPECT_TRUE(QDir(dir.filePath(QStringLiteral("ferrule-host/recovery")))
                        .entryList({QStringLiteral("*.journal")}, QDir::Files)
                        .isEmpty());
    }

    XDisplay x;
    QTemporaryDir dir;
    QString data;
    QProcess host;
    QByteArray edit;
};

} // namespace

// `--edit`: the question comes first, the editor opens on the recovered data, OK saves it.
TEST_F(RealWindowJournal, TheEditorOpensOnTheRecoveredDataAndOkSavesIt) {
    killAndRecover(false);
    if (HasFatalFailure() || IsSkipped()) return;
    const QString editor = x.window(QStringLiteral("System: GT-8"), host);
    ASSERT_FALSE(editor.isEmpty()) << "the editor did not open after Recover" << ended(host);
    const QPoint origin = x.origin(editor);
    x.xdotool({QStringLiteral("mousemove"), QString::number(origin.x() + 586),
               QString::number(origin.y() + 56), QStringLiteral("click"), QStringLiteral("1")});
    expectTheEditSaved();
}

// The main window, killed with its editor open before OK: the recovered data is marked changed
// and Ctrl+S saves it.
TEST_F(RealWindowJournal, TheMainWindowShowsTheRecoveredDataChangedAndSavesIt) {
    killAndRecover(true);
    if (HasFatalFailure() || IsSkipped()) return;
    const QString main = x.window(QStringLiteral("crash.bin"), host);
    QString title;
    for (int i = 0; i < 1200 && !title.contains(QLatin1Char('*')); ++i) {
        title = x.xdotool({QStringLiteral("getwindowname"), main});
        if (!title.contains(QLatin1Char('*'))) host.waitForFinished(50);
    }
    ASSERT_TRUE(title.contains(QLatin1Char('*'))) << qPrintable(title) << ended(host);
    x.xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), main});
    x.xdotool({QStringLiteral("key"), QStringLiteral("ctrl+s")});
    x.xdotool({QStringLiteral("key"), QStringLiteral("ctrl+q")});
    expectTheEditSaved();
}
