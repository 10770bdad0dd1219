#include "HostFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <gtest/gtest.h>

#include <unistd.h>
#include <vector>

using HostProcessTest = HostFiles;

// A screenshot of every model, the GT-6's of a data file that it leaves as it was.
TEST_F(HostProcessTest, ScreenshotOfEveryModel) {
    const QByteArray data(43252, char(3));
    writeFile(path(QStringLiteral("sys.bin")), data);
    for (int model : {3, 5, 6, 8, 10}) {
        const QString png = path(QStringLiteral("gt%1.png").arg(model));
        QStringList args = {QStringLiteral("--model"), QString::number(model),
                            QStringLiteral("--screenshot"), png};
        if (model == 6)
            args << QStringLiteral("--data") << path(QStringLiteral("sys.bin"))
                 << QStringLiteral("--title") << QStringLiteral("My GT");
        const HostRun r = host(args);
        ASSERT_EQ(r.exitCode, 0) << r.err.constData();
        EXPECT_TRUE(r.out.contains(png.toLocal8Bit()));
        const QImage shot(png);
        ASSERT_FALSE(shot.isNull()) << model;
        EXPECT_EQ(shot.size(), QSize(612, 520));
        // The tab strip is dark and the first tab is the current one (light).
        EXPECT_LT(qGray(shot.pixel(shot.width() - 2, 90)), 80);
        EXPECT_GT(qGray(shot.pixel(10, 60)), 180) << "the System tab shows its current picture";
    }
    EXPECT_EQ(readFile(path(QStringLiteral("sys.bin"))), data);
    // The first start created the settings key, and closing stored the page.
    const QByteArray ini = readFile(
        root() + QStringLiteral("/HKEY_LOCAL_MACHINE/SOFTWARE/Quarrow/Tonebench/Multi.ini"));
    EXPECT_TRUE(ini.contains("SysLastDisp3=dword:1"));
    EXPECT_TRUE(ini.contains("SysLastDisp10=dword:1"));
}

TEST_F(HostProcessTest, BadInputGetsOneClearLineAndExitTwo) {
    const QString wrongSize = path(QStringLiteral("short.bin"));
    writeFile(wrongSize, QByteArray(43251, char(1)));
    const QString tooLong = path(QStringLiteral("long.bin"));
    writeFile(tooLong, QByteArray(43253, char(1)));
    const QString notPlugin = path(QStringLiteral("libnot.so"));
    writeFile(notPlugin, "not a library");
    const QString locked = path(QStringLiteral("locked.bin"));
    writeFile(locked, QByteArray(43252, char(0)));
    QFile::setPermissions(locked, QFileDevice::WriteOwner);
    const QString png = path(QStringLiteral("never.png"));

    struct Case {
        QStringList args;
        const char* says;
    };
    std::vector<Case> cases = {
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
    // Root reads every file.
    if (geteuid() != 0) cases.push_back({{QStringLiteral("--data"), locked}, "cannot be read"});
    for (const auto& c : cases) {
        const QByteArray before = readFile(wrongSize);
        const HostRun r = host(c.args + QStringList{QStringLiteral("--screenshot"), png});
        const QString joined = c.args.join(QLatin1Char(' '));
        EXPECT_EQ(r.exitCode, 2) << qPrintable(joined);
        ASSERT_EQ(r.errLines().size(), 1) << qPrintable(joined) << r.err.constData();
        EXPECT_TRUE(r.errLines().first().contains(QLatin1String(c.says))) << r.err.constData();
        EXPECT_FALSE(QFileInfo::exists(png)) << qPrintable(joined);
        EXPECT_EQ(readFile(wrongSize), before);
    }
}

TEST_F(HostProcessTest, HelpAndVersion) {
    HostRun r = host({QStringLiteral("--help")});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_TRUE(r.out.contains("--screenshot"));
    EXPECT_TRUE(r.out.contains("--model"));
    r = host({QStringLiteral("--version")});
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
