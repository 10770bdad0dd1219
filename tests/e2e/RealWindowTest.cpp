// The editor in a real X window (Xvfb), driven with xdotool as a person would: a tab, a knob
// drag, a switch, an option item, then OK. The data file must change by exactly those bytes. And
// a process killed after an edit: the next start recovers it.

#include "io/RecoveryJournal.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QPoint>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

QString run(const QString& program, const QStringList& args, const QString& display) {
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), display);
    p.setProcessEnvironment(env);
    p.start(program, args);
    p.waitForFinished(10000);
    return QString::fromLocal8Bit(p.readAllStandardOutput()).trimmed();
}

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

// How a program that should still run has ended, for a failure's message.
std::string ended(QProcess& host) {
    if (host.state() != QProcess::NotRunning) return " (it still runs)";
    return QStringLiteral(" (it ended with %1: %2)")
        .arg(host.exitStatus() == QProcess::NormalExit ? QString::number(host.exitCode())
                                                       : QStringLiteral("a crash"),
             QString::fromLocal8Bit(host.readAllStandardError()).right(2000))
        .toStdString();
}

// An X display of the test's own (Xvfb), and xdotool on it.
class XDisplay {
public:
    XDisplay() {
        xvfb_ = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
        xdotool_ = QStandardPaths::findExecutable(QStringLiteral("xdotool"));
        if (xvfb_.isEmpty() || xdotool_.isEmpty()) return;
        // Xvfb picks a free display itself and says which once it accepts clients: tests that
        // start at the same moment can never pick the same one.
        // An X server resets when its last client leaves, and refuses connections meanwhile;
        // every xdotool call is a client that leaves, so a program starting at that moment
        // could not connect. -noreset keeps the server as it is.
        server_.start(xvfb_, {QStringLiteral("-displayfd"), QStringLiteral("1"),
                              QStringLiteral("-noreset"), QStringLiteral("-screen"),
                              QStringLiteral("0"), QStringLiteral("1280x800x24")});
        QByteArray said;
        while (!said.contains('\n') && server_.waitForReadyRead(30000))
            said += server_.readAllStandardOutput();
        bool isNumber = false;
        const int number = said.trimmed().toInt(&isNumber);
        running_ = isNumber;
        name_ = QStringLiteral(":%1").arg(number);
    }
    ~XDisplay() {
        server_.terminate();
        server_.waitForFinished(3000);
    }
    bool tools() const { return !xvfb_.isEmpty() && !xdotool_.isEmpty(); }
    bool running() const { return running_; }
    const QString& name() const { return name_; }
    QString xdotool(const QStringList& args) const { return run(xdotool_, args, name_); }
    // The first window whose name matches, and then a moment for it to settle where it is
    // shown. A loaded machine (a sanitizer build beside other tests) can take many seconds to
    // start a program, so this waits as long as `host` runs, up to a minute.
    QString window(const QString& pattern, QProcess& host) const {
        QString id;
        for (int i = 0; i < 1200 && id.isEmpty() && host.state() != QProcess::NotRunning; ++i) {
            id = xdotool({QStringLiteral("search"), QStringLiteral("--name"), pattern})
                     .section(QLatin1Char('\n'), 0, 0);
            // Waiting on the program also notices at once when it has ended.
            if (id.isEmpty()) host.waitForFinished(50);
        }
        QThread::msleep(300);
        return id;
    }
    // Where a window's top left corner is on the screen.
    QPoint origin(const QString& window) const {
        QPoint at;
        for (const QString& line :
             xdotool({QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), window})
                 .split(QLatin1Char('\n'))) {
            if (line.startsWith(QLatin1String("X="))) at.setX(line.mid(2).toInt());
            if (line.startsWith(QLatin1String("Y="))) at.setY(line.mid(2).toInt());
        }
        return at;
    }
    // Starts ferrule-host on this display with a private settings root, also its data folder.
    void startHost(QProcess& host, const QStringList& args, const QString& settings) const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DISPLAY"), name_);
        env.remove(QStringLiteral("QT_QPA_PLATFORM"));
        env.insert(QStringLiteral("FERRULE_SETTINGS_ROOT"), settings);
        env.insert(QStringLiteral("XDG_DATA_HOME"), settings);
        env.insert(QStringLiteral("LSAN_OPTIONS"),
                   QStringLiteral("suppressions=" FERRULE_X11_LEAK_SUPPRESSIONS));
        host.setProcessEnvironment(env);
        host.start(QStringLiteral(FERRULE_HOST_BINARY), args);
    }

private:
    QString xvfb_, xdotool_, name_;
    QProcess server_;
    bool running_ = false;
};

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
    auto act = [&](QStringList args) {
        display.xdotool(args);
        QThread::msleep(250);
    };
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
        QThread::msleep(150);
    };
    clickAt(120, 50); // the MIDI tab
    clickAt(40, 253); // Omni mode
    clickAt(586, 56); // OK
    // The title gets its mark once the window has taken the edit.
    QString title;
    for (int i = 0; i < 600 && !title.contains(QLatin1Char('*')); ++i) {
        title = x.xdotool({QStringLiteral("getwindowname"), main});
        if (!title.contains(QLatin1Char('*'))) QThread::msleep(50);
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

// The editor worked from the keyboard alone: Tab to the MIDI tab and press it, Tab on to the
// page's first control, step it up three times, undo one step, Shift+Tab back to OK and press it.
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
        QThread::msleep(150);
    };
    // The System tab has the focus; on the GT-8 the MIDI tab is the fourth from the left.
    keys(QStringLiteral("Tab"), 3);
    keys(QStringLiteral("space"), 1);
    // The rest of the tabs (5), the model buttons (5) and the commands (4), then the page.
    keys(QStringLiteral("Tab"), 15);
    keys(QStringLiteral("Up"), 3);
    keys(QStringLiteral("ctrl+z"), 1);
    keys(QStringLiteral("shift+Tab"), 1); // back to OK
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
