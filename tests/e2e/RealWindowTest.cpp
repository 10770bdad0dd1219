// The editor in a real X window (Xvfb), driven with xdotool as a person would: a tab, a knob
// drag, a switch, an option item, then OK. The data file must change by exactly those bytes. And
// a process killed after an edit: the next start recovers it.

#include "io/RecoveryJournal.h"

#include "XDisplay.h"

#include <QDir>
#include <QFile>
#include <QPoint>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr int kImageSize = 43252;

// ferrule-host on a GT-8 data file of zeros under Xvfb, and the keys and clicks a person gives it.
class RealWindow : public ::testing::Test {
protected:
    void SetUp() override {
        if (!x.tools()) GTEST_SKIP() << "needs Xvfb and xdotool";
        ASSERT_TRUE(x.running()) << "Xvfb did not start";
        QFile f(data);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly) &&
                    f.write(QByteArray(kImageSize, char(0))) == kImageSize);
    }
    void start(const QStringList& args) {
        x.startHost(host,
                    QStringList{QStringLiteral("--model"), QStringLiteral("8"),
                                QStringLiteral("--data"), data} +
                        args,
                    dir.path());
    }
    // The window whose name holds `title`, once it is shown; empty (a failure) when it never is.
    QString window(const QString& title) {
        const QString id = x.window(title, host);
        EXPECT_FALSE(id.isEmpty()) << qPrintable(title) << " did not appear" << ended(host);
        return id;
    }
    // No window manager runs on the display: the window is focused, and the keys typed through
    // XTEST reach it in the order they are given.
    void type(const QString& window, const QStringList& keys) {
        x.xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), window});
        x.xdotool(
            QStringList{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("40")} +
            keys);
    }
    // Mouse steps at points of `window`: each {dx, dy} and what to do there ("click", "mousedown",
    // "mouseup" with button 1, or nothing but moving there).
    void mouse(const QString& window, const QList<std::tuple<int, int, const char*>>& steps) {
        const QPoint origin = x.origin(window);
        for (const auto& [dx, dy, what] : steps) {
            QStringList args{QStringLiteral("mousemove"), QString::number(origin.x() + dx),
                             QString::number(origin.y() + dy)};
            if (*what) args << QLatin1String(what) << QStringLiteral("1");
            x.xdotool(args);
        }
    }
    // The title gets its mark once the window holds changes.
    void waitForTheChangedMark(const QString& window) {
        QString title;
        for (int i = 0; i < 1200 && !title.contains(QLatin1Char('*')); ++i) {
            title = x.xdotool({QStringLiteral("getwindowname"), window});
            if (!title.contains(QLatin1Char('*'))) host.waitForFinished(50);
        }
        ASSERT_TRUE(title.contains(QLatin1Char('*'))) << qPrintable(title) << ended(host);
    }
    // Once the program has ended well, the data file holds `expected`: every byte that differs
    // is named.
    void expectSaved(const QByteArray& expected) {
        EXPECT_TRUE(host.waitForFinished(60000));
        EXPECT_EQ(host.exitCode(), 0) << host.readAllStandardError().constData();
        QFile f(data);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        const QByteArray after = f.readAll();
        ASSERT_EQ(after.size(), kImageSize);
        for (int i = 0; i < after.size(); ++i)
            if (after[i] != expected[i])
                ADD_FAILURE() << "byte " << i << " is " << int(after[i]) << ", expected "
                              << int(expected[i]);
    }

    XDisplay x;
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("crash.bin"));
    QProcess host;
    QByteArray expected = QByteArray(kImageSize, char(0));
};

} // namespace

TEST_F(RealWindow, EditsThroughTheMouseAndKeepsThemOnOk) {
    start({QStringLiteral("--edit")});
    const QString editor = window(QStringLiteral("System: GT-8"));
    ASSERT_FALSE(editor.isEmpty());
    // The server hands the window the events in order; the window handles each at once.
    mouse(editor, {{120, 50, "click"},     // the MIDI tab
                   {30, 185, "mousedown"}, // Rx channel knob
                   {42, 158, ""},
                   {60, 170, "mouseup"},
                   {40, 253, "click"}, // Omni mode
                   {186, 158, ""},     // hover "Progammable"
                   {188, 159, "click"},
                   {586, 56, "click"}}); // OK
    expected[10428] = char(11);          // Rx channel, dragged up past the top
    expected[10429] = char(1);           // Omni mode on
    expected[10438] = char(1);           // Map Select: Progammable
    expectSaved(expected);
}

// The editor worked from the keyboard alone: it opens with the focus on the page's first control;
// Ctrl+PgDown goes to the MIDI page (the GT-8's fourth tab) and lands on its first control, which
// is stepped up three times, one step undone; Shift+Tab goes back round to OK, which Space presses.
TEST_F(RealWindow, TheEditorWorksFromTheKeyboardAlone) {
    start({QStringLiteral("--edit")});
    const QString editor = window(QStringLiteral("System: GT-8"));
    ASSERT_FALSE(editor.isEmpty());
    type(editor,
         {QStringLiteral("ctrl+Next"), QStringLiteral("ctrl+Next"), QStringLiteral("ctrl+Next"),
          QStringLiteral("Up"), QStringLiteral("Up"), QStringLiteral("Up"),
          QStringLiteral("ctrl+z"), QStringLiteral("shift+Tab"), QStringLiteral("space")});
    expected[10428] = char(2); // Rx channel: three steps up, one undone
    expectSaved(expected);
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

// A GT-8 editor on a file of zeros, opened at once (`--edit`) or from the main window with
// Ctrl+E, gets one value stepped up from the keyboard; once the edit is journaled the program is
// killed with SIGKILL, started again, and the question on that start is answered with Return
// (Recover is the default button). The test goes on from there with `host` running again, and
// ends with the journal gone.
class RealWindowJournal : public RealWindow {
protected:
    void killAndRecover(bool mainWindow) {
        const QStringList args = mainWindow ? QStringList() : QStringList{QStringLiteral("--edit")};
        start(args);
        if (mainWindow) {
            const QString main = window(QStringLiteral("crash.bin"));
            ASSERT_FALSE(main.isEmpty());
            type(main, {QStringLiteral("ctrl+e")});
        }
        const QString editor = window(QStringLiteral("System: GT-8"));
        ASSERT_FALSE(editor.isEmpty());
        // From the System tab to the page's first control, and one step up: keys reach the
        // window in order, and nothing is rebuilt on the way.
        QStringList keys(18, QStringLiteral("Tab"));
        type(editor, keys << QStringLiteral("Up"));
        expected = journaledEdit(dir.path(), QByteArray(kImageSize, char(0)), host);
        ASSERT_EQ(expected.size(), kImageSize) << "no journal of the edit" << ended(host);
        // One value, one step: a byte, or the two of a double-byte value.
        const auto stepped =
            std::count_if(expected.begin(), expected.end(), [](char b) { return b; });
        EXPECT_TRUE(stepped == 1 || stepped == 2) << stepped << " bytes journaled as changed";
        host.kill();
        host.waitForFinished();
        ASSERT_EQ(QFile(data).size(), kImageSize);

        start(args);
        const QString question = window(QStringLiteral("Recover Changes"));
        ASSERT_FALSE(question.isEmpty()) << "no question on the next start";
        type(question, {QStringLiteral("Return")});
    }
    void TearDown() override {
        EXPECT_TRUE(QDir(dir.filePath(QStringLiteral("ferrule-host/recovery")))
                        .entryList({QStringLiteral("*.journal")}, QDir::Files)
                        .isEmpty());
    }
};

} // namespace

// `--edit`: the question comes first, the editor opens on the recovered data, OK saves it.
TEST_F(RealWindowJournal, TheEditorOpensOnTheRecoveredDataAndOkSavesIt) {
    ASSERT_NO_FATAL_FAILURE(killAndRecover(false));
    const QString editor = window(QStringLiteral("System: GT-8"));
    ASSERT_FALSE(editor.isEmpty()) << "the editor did not open after Recover";
    mouse(editor, {{586, 56, "click"}}); // OK
    expectSaved(expected);
}

// The main window, killed with its editor open before OK: the recovered data is marked changed,
// and Ctrl+S saves it before Ctrl+Q quits.
TEST_F(RealWindowJournal, TheMainWindowShowsTheRecoveredDataChangedAndSavesIt) {
    ASSERT_NO_FATAL_FAILURE(killAndRecover(true));
    const QString main = window(QStringLiteral("crash.bin"));
    ASSERT_NO_FATAL_FAILURE(waitForTheChangedMark(main));
    type(main, {QStringLiteral("ctrl+s"), QStringLiteral("ctrl+q")});
    expectSaved(expected);
}
