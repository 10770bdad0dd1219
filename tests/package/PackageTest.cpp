// The Debian package that scripts/package.sh builds, unpacked into a folder of the test's own
// (dpkg-deb -x) and used from there as an installed copy is: its programs run and take the
// plug-in they came with, its desktop entry opens a .syx file in the main window, and its bash
// completion offers each program's own options.

#include "HostProcess.h"
#include "XDisplay.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMimeDatabase>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The value of a key in a desktop entry.
QString entryValue(const QByteArray& entry, const QString& key) {
    for (const QString& line : QString::fromUtf8(entry).split(QLatin1Char('\n')))
        if (line.startsWith(key + QLatin1Char('='))) return line.mid(key.size() + 1);
    return {};
}

class PackageTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        root_ = new QTemporaryDir;
        problem_ = unpack();
    }
    static void TearDownTestSuite() {
        delete root_;
        root_ = nullptr;
    }
    // No package, or an old one, is a failure that says what to do.
    void SetUp() override { ASSERT_TRUE(problem_.isEmpty()) << qPrintable(problem_); }

    // A path under the unpacked package's usr folder.
    static QString unpacked(const QString& path) {
        return root_->filePath(QStringLiteral("usr/") + path);
    }
    QString path(const QString& name) const { return dir_.filePath(name); }
    QString settings() const { return dir_.filePath(QStringLiteral("settings")); }

    QTemporaryDir dir_;

private:
    static QString unpack() {
        const QString deb = QStringLiteral(FERRULE_PACKAGE_FILE);
        const QFileInfo package(deb);
        if (!package.exists())
            return QStringLiteral("there is no package %1: scripts/package.sh builds it "
                                  "(scripts/test.sh runs it before the tests)")
                .arg(deb);
        for (const QString& built :
             {QStringLiteral(FERRULE_HOST_BINARY), QStringLiteral(FERRULE_PLUGIN_FILE)})
            if (package.lastModified() < QFileInfo(built).lastModified())
                return QStringLiteral("%1 is older than %2: run scripts/package.sh again")
                    .arg(deb, built);
        QProcess dpkg;
        dpkg.start(QStringLiteral("dpkg-deb"), {QStringLiteral("-x"), deb, root_->path()});
        if (!dpkg.waitForFinished(60000) || dpkg.exitStatus() != QProcess::NormalExit ||
            dpkg.exitCode() != 0)
            return QStringLiteral("dpkg-deb -x %1 failed: %2")
                .arg(deb, QString::fromLocal8Bit(dpkg.readAllStandardError()));
        return {};
    }

    static inline QTemporaryDir* root_ = nullptr;
    static inline QString problem_;
};

} // namespace

TEST_F(PackageTest, TheUnpackedHostExportsAndRendersAsTheBuildDoes) {
    const QString host = unpacked(QStringLiteral("bin/ferrule-host"));
    for (int model : {3, 5, 6, 8, 10}) {
        SCOPED_TRACE(model);
        const QStringList args{QStringLiteral("--model"), QString::number(model),
                               QStringLiteral("--export")};
        const QString ours = path(QStringLiteral("package-%1.syx").arg(model));
        const QString built = path(QStringLiteral("build-%1.syx").arg(model));
        const HostRun r = runProgram(host, args + QStringList{ours}, settings());
        ASSERT_EQ(r.exitCode, 0) << r.err.constData();
        ASSERT_EQ(runHost(args + QStringList{built}, settings()).exitCode, 0);
        EXPECT_GT(readAll(ours).size(), 1000);
        EXPECT_EQ(readAll(ours), readAll(built));
    }

    // glibc names every library it loads: the host must load the package's plug-in.
    QProcessEnvironment trace;
    trace.insert(QStringLiteral("LD_DEBUG"), QStringLiteral("files"));
    const QStringList args{QStringLiteral("--model"), QStringLiteral("8"),
                           QStringLiteral("--screenshot")};
    const QString ours = path(QStringLiteral("package.png"));
    const QString built = path(QStringLiteral("build.png"));
    const HostRun r = runProgram(host, args + QStringList{ours}, settings(), 60000, trace);
    ASSERT_EQ(r.exitCode, 0) << r.err.right(3000).constData();
    const QString plugIn = unpacked(QStringLiteral(FERRULE_PLUGIN_INSTALL_DIR "/libFerrule.so"));
    EXPECT_TRUE(r.err.contains("file=" + plugIn.toLocal8Bit() + " "))
        << "the host did not load " << qPrintable(plugIn);
    EXPECT_FALSE(r.err.contains(FERRULE_PLUGIN_FILE)) << "the host loaded the build's plug-in";
    ASSERT_EQ(runHost(args + QStringList{built}, settings()).exitCode, 0);
    const QImage shot(ours);
    ASSERT_FALSE(shot.isNull());
    EXPECT_EQ(shot.size(), QSize(612, 520));
    EXPECT_EQ(shot, QImage(built)) << "the package's editor looks otherwise than the build's";
}

TEST_F(PackageTest, ItsDesktopEntryOpensASyxFileInTheMainWindow) {
    const QByteArray entry =
        readAll(unpacked(QStringLiteral("share/applications/" FERRULE_APP_ID ".desktop")));
    ASSERT_FALSE(entry.isEmpty());

    // The icon the entry names, drawn at each size the package has, is a picture of that size.
    const QString icon = entryValue(entry, QStringLiteral("Icon"));
    int sizes = 0;
    for (QDirIterator it(unpacked(QStringLiteral("share/icons/hicolor")), {icon + ".png"},
                         QDir::Files, QDirIterator::Subdirectories);
         it.hasNext();) {
        const QString png = it.next();
        const int size = QFileInfo(png)
                             .dir()
                             .path()
                             .section(QLatin1Char('/'), -2, -2)
                             .section(QLatin1Char('x'), 0, 0)
                             .toInt();
        EXPECT_EQ(QImage(png).size(), QSize(size, size)) << qPrintable(png);
        ++sizes;
    }
    EXPECT_GE(sizes, 6);
    EXPECT_TRUE(QFileInfo::exists(
        unpacked(QStringLiteral("share/icons/hicolor/scalable/apps/%1.svg").arg(icon))));

    // With the package's MIME type known, a .syx file is of a type the entry opens.
    qputenv("XDG_DATA_DIRS", (unpacked(QStringLiteral("share")) + ":/usr/share").toLocal8Bit());
    const QString type =
        QMimeDatabase()
            .mimeTypeForFile(path(QStringLiteral("any.syx")), QMimeDatabase::MatchExtension)
            .name();
    EXPECT_TRUE(
        entryValue(entry, QStringLiteral("MimeType")).split(QLatin1Char(';')).contains(type))
        << qPrintable(type);

    // A GT-8 .syx file opened as a file manager opens it: the entry's command with %f, the
    // program found on the package's PATH. The window comes up on the file, as GT-8 data.
    const QString file = path(QStringLiteral("gt8.syx"));
    ASSERT_EQ(
        runHost({QStringLiteral("--model"), QStringLiteral("8"), QStringLiteral("--export"), file},
                settings())
            .exitCode,
        0);
    QStringList command = entryValue(entry, QStringLiteral("Exec")).split(QLatin1Char(' '));
    ASSERT_TRUE(command.contains(QStringLiteral("%f"))) << qPrintable(command.join(' '));
    command.replace(command.indexOf(QStringLiteral("%f")), file);
    const QString program =
        QStandardPaths::findExecutable(command.takeFirst(), {unpacked(QStringLiteral("bin"))});
    ASSERT_FALSE(program.isEmpty());
    XDisplay x;
    if (!x.tools()) GTEST_SKIP() << "needs Xvfb and xdotool";
    ASSERT_TRUE(x.running()) << "Xvfb did not start";
    QProcess host;
    x.start(host, program, command, settings());
    const QString window = x.window(QStringLiteral("gt8.syx - GT-8 - ferrule-host"), host);
    EXPECT_FALSE(window.isEmpty()) << "no main window on gt8.syx as GT-8 data" << ended(host);
    host.kill();
    host.waitForFinished();
}

TEST_F(PackageTest, ItsBashCompletionOffersEachProgramsOwnOptions) {
    const QString bashCompletion = QStringLiteral("/usr/share/bash-completion/bash_completion");
    ASSERT_TRUE(QFileInfo::exists(bashCompletion))
        << "needs bash-completion (scripts/package.sh installs it)";
    // What a Tab offers after each command line, the last word being the one completed.
    const QString script = QStringLiteral(R"(
source "$1"
source "$2"
offers() {
    COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMP_LINE="$*"; COMP_POINT=${#COMP_LINE}
    COMPREPLY=()
    _ferrule "$1" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    echo "${COMPREPLY[*]}"
}
offers ferrule-host --mo
offers ferrule-host --model ''
offers ferrule-host --midi-api ''
offers ferrule-host --export ''
offers ferrule-host --title ''
offers ferrule-host ''
offers ferrule-device --dump
offers ferrule-device ''
)");
    QDir(dir_.path()).mkdir(QStringLiteral("files"));
    QFile(path(QStringLiteral("files/gt8.syx"))).open(QIODevice::WriteOnly);
    QFile(path(QStringLiteral("files/notes.txt"))).open(QIODevice::WriteOnly);
    QProcess bash;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("PATH"), unpacked(QStringLiteral("bin")) + QLatin1Char(':') +
                                           env.value(QStringLiteral("PATH")));
    bash.setProcessEnvironment(env);
    bash.setWorkingDirectory(path(QStringLiteral("files")));
    bash.start(QStringLiteral("bash"),
               {QStringLiteral("-c"), script, QStringLiteral("bash"), bashCompletion,
                unpacked(QStringLiteral("share/bash-completion/completions/ferrule-host"))});
    ASSERT_TRUE(bash.waitForFinished(60000));
    EXPECT_EQ(QString::fromUtf8(bash.readAllStandardOutput()).split(QLatin1Char('\n')),
              (QStringList{QStringLiteral("--model"), QStringLiteral("3 5 6 8 10"),
                           QStringLiteral("alsa jack"), QStringLiteral("gt8.syx notes.txt"),
                           QString(), QStringLiteral("gt8.syx notes.txt"),
                           QStringLiteral("--dump-after"), QString(), QString()}))
        << bash.readAllStandardError().constData();
}
