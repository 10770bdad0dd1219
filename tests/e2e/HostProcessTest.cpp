#include "HostFiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <gtest/gtest.h>

#include <unistd.h>

namespace {

class HostProcessTest : public HostFiles {};

} // namespace

TEST_F(HostProcessTest, ScreenshotOfEveryModel) {
    for (int model : {3, 5, 6, 8, 10}) {
        const QString png = path(QStringLiteral("gt%1.png").arg(model));
        const HostRun r = runHost({QStringLiteral("--model"), QString::number(model),
                                   QStringLiteral("--screenshot"), png},
                                  root());
        ASSERT_EQ(r.exitCode, 0) << r.err.constData();
        EXPECT_TRUE(r.out.contains(png.toLocal8Bit()));
        const QImage shot(png);
        ASSERT_FALSE(shot.isNull()) << model;
        EXPECT_EQ(shot.size(), QSize(612, 520));
        // The tab strip is dark and the first tab is the current one (light).
        EXPECT_LT(qGray(shot.pixel(shot.width() - 2, 90)), 80);
        EXPECT_GT(qGray(shot.pixel(10, 60)), 180) << "the System tab shows its current picture";
    }
    // The first start created the settings key, and closing stored the page.
    QFile ini(root() + QStringLiteral("/HKEY_LOCAL_MACHINE/SOFTWARE/Quarrow/Tonebench/Multi.ini"));
    ASSERT_TRUE(ini.open(QIODevice::ReadOnly));
    const QByteArray text = ini.readAll();
    EXPECT_TRUE(text.contains("SysLastDisp3=dword:1"));
    EXPECT_TRUE(text.contains("SysLastDisp10=dword:1"));
}

TEST_F(HostProcessTest, ScreenshotOfADataFileLeavesItUnchanged) {
    QByteArray data(43252, char(3));
    const QString file = path(QStringLiteral("sys.bin"));
    writeFile(file, data);
    const HostRun r =
        runHost({QStringLiteral("--data"), file, QStringLiteral("--model"), QStringLiteral("6"),
                 QStringLiteral("--title"), QStringLiteral("My GT"), QStringLiteral("--screenshot"),
                 path(QStringLiteral("a.png"))},
                root());
    ASSERT_EQ(r.exitCode, 0) << r.err.constData();
    EXPECT_EQ(readFile(file), data);
}

TEST_F(HostProcessTest, BadInputGetsOneClearLineAndExitTwo) {
    const QString wrongSize = path(QStringLiteral("short.bin"));
    writeFile(wrongSize, QByteArray(43251, char(1)));
    const QString tooLong = path(QStringLiteral("long.bin"));
    writeFile(tooLong, QByteArray(43253, char(1)));
    const QString notPlugin = path(QStringLiteral("libnot.so"));
    writeFile(notPlugin, "not a library");
    const QString png = path(QStringLiteral("never.png"));

    const struct {
        QStringList args;
        const char* says;
    } cases[] = {
        {{QStringLiteral("--data"), wrongSize}, "43252"},
        {{QStringLiteral("--data"), tooLong}, "43252"},
        {{QStringLiteral("--data"), path(QStringLiteral("missing.bin"))}, "does not exist"},
        {{QStringLiteral("--data"), dir.path()}, "folder"},
        {{QStringLiteral("--model"), QStringLiteral("7")}, "--model"},
        {{QStringLiteral("--model"), QStringLiteral("ten")}, "--model"},
        {{QStringLiteral("--plugin"), path(QStringLiteral("nowhere"))}, "does not exist"},
        {{QStringLiteral("--plugin"), notPlugin}, "not a plug-in"},
        {{QStringLiteral("--plugin"), dir.path()}, "no plug-in"},
        {{QStringLiteral("--bogus")}, "bogus"},
        // A file named alone opens in the main window, never in a headless run.
        {{wrongSize}, "give it as --data FILE"},
        {{wrongSize, tooLong}, "one file at a time"},
    };
    for (const auto& c : cases) {
        const QByteArray before = readFile(wrongSize);
        const HostRun r =
            runHost(c.args + QStringList{QStringLiteral("--screenshot"), png}, root());
        const QString joined = c.args.join(QLatin1Char(' '));
        EXPECT_EQ(r.exitCode, 2) << qPrintable(joined);
        ASSERT_EQ(r.errLines().size(), 1) << qPrintable(joined) << r.err.constData();
        EXPECT_TRUE(r.errLines().first().contains(QLatin1String(c.says))) << r.err.constData();
        EXPECT_FALSE(QFileInfo::exists(png)) << qPrintable(joined);
        EXPECT_EQ(readFile(wrongSize), before);
    }
}

TEST_F(HostProcessTest, AnUnreadableDataFileIsRefused) {
    if (geteuid() == 0) GTEST_SKIP() << "root reads every file";
    const QString file = path(QStringLiteral("locked.bin"));
    writeFile(file, QByteArray(43252, char(0)));
    QFile::setPermissions(file, QFileDevice::WriteOwner);
    const HostRun r = runHost({QStringLiteral("--data"), file, QStringLiteral("--screenshot"),
                               path(QStringLiteral("x.png"))},
                              root());
    EXPECT_EQ(r.exitCode, 2);
    ASSERT_EQ(r.errLines().size(), 1);
    EXPECT_TRUE(r.errLines().first().contains(QLatin1String("cannot be read")));
}

TEST_F(HostProcessTest, HelpAndVersion) {
    HostRun r = runHost({QStringLiteral("--help")}, root());
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_TRUE(r.out.contains("--screenshot"));
    EXPECT_TRUE(r.out.contains("--model"));
    r = runHost({QStringLiteral("--version")}, root());
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_TRUE(r.out.contains("4.2.0"));
}

// The program alone, without its windowed part beside it: the runs without a window work, a
// run that needs windows says in one line what is missing.
TEST_F(HostProcessTest, RunsWithoutAWindowNeedNotTheWindowedPart) {
    const QString program = root() + QStringLiteral("/alone/ferrule-host");
    ASSERT_TRUE(QDir().mkpath(QFileInfo(program).path()));
    ASSERT_TRUE(QFile::copy(QStringLiteral(FERRULE_HOST_BINARY), program));
    const QString syx = root() + QStringLiteral("/gt10.syx");
    HostRun r = runProgram(
        program, {QStringLiteral("--model"), QStringLiteral("10"), QStringLiteral("--export"), syx},
        root());
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    r = runProgram(program,
                   {QStringLiteral("--model"), QStringLiteral("10"), QStringLiteral("--data"), syx,
                    QStringLiteral("--diff"), syx},
                   root());
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    r = runProgram(program,
                   {QStringLiteral("--model"), QStringLiteral("10"), QStringLiteral("--screenshot"),
                    root() + QStringLiteral("/x.png")},
                   root());
    EXPECT_EQ(r.exitCode, 2);
    ASSERT_EQ(r.errLines().size(), 1) << r.err.toStdString();
    EXPECT_TRUE(r.errLines().first().startsWith(
        QLatin1String("ferrule-host: cannot load the windowed part: ")));
    EXPECT_FALSE(QFileInfo::exists(root() + QStringLiteral("/x.png")));
}
