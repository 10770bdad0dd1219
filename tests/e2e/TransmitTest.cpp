// Whole transmissions through the real plug-in and ferrule-host, to a .syx file. That the
// plug-in sends the messages the schedule describes, framed and summed right, is the
// transmission's own test in-process; here the host's file must hold them exactly, as the .syx
// writer lays out the model's data.

#include "HostProcess.h"
#include "ImageFiles.h"
#include "ParameterLines.h"
#include "SmallDisk.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace ferrule;

TEST(Transmit, EveryModelThroughTheHostToASyxFile) {
    QTemporaryDir dir;
    const QByteArray image = randomImage(13);
    const QString data = dir.filePath(QStringLiteral("image.bin"));
    writeFile(data, image);
    // The five run side by side: each is paced by its wire time.
    const int models[] = {3, 5, 6, 8, 10};
    std::vector<std::unique_ptr<QProcess>> runs;
    for (int model : models) {
        auto p = std::make_unique<QProcess>();
        p->setProcessEnvironment(hostEnvironment(dir.path(), {}));
        p->start(QStringLiteral(FERRULE_HOST_BINARY),
                 {QStringLiteral("--model"), QString::number(model), QStringLiteral("--data"), data,
                  QStringLiteral("--transmit"), QStringLiteral("--gap"), QStringLiteral("0"),
                  QStringLiteral("--syx"), dir.filePath(QStringLiteral("gt%1.syx").arg(model))});
        runs.push_back(std::move(p));
    }
    for (std::size_t r = 0; r < runs.size(); ++r) {
        QProcess& p = *runs[r];
        const int model = models[r];
        ASSERT_TRUE(p.waitForFinished(60000)) << model;
        const QByteArray out = p.readAllStandardOutput();
        EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().constData();
        QFile syx(dir.filePath(QStringLiteral("gt%1.syx").arg(model)));
        ASSERT_TRUE(syx.open(QIODevice::ReadOnly));
        const QByteArray bytes = syx.readAll();
        EXPECT_EQ(bytes, SyxFile::write(bytesOf(image), model, Sysex::defaultHeader(model)))
            << model;
        EXPECT_EQ(bytes.mid(1, 4),
                  QByteArray::fromHex("7d100012").replace(2, 1, QByteArray(1, char(model))));
        EXPECT_TRUE(out.contains(QStringLiteral("sent %1 messages, %2 bytes")
                                     .arg(SyxFile::split(bytes).messages.size())
                                     .arg(bytes.size())
                                     .toLatin1()))
            << out.constData();
    }
    // The data file is left as it was: the transmissions closed without keeping changes.
    QFile f(data);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), image);
}

// A refused update and nowhere for the messages to go send nothing (exit 1); bad options are bad
// input (exit 2). Neither claims to have sent anything.
TEST(Transmit, ARefusedUpdateSendsNothingAndABadSyxPathIsBadInput) {
    QTemporaryDir dir;
    const QString syx = dir.filePath(QStringLiteral("none.syx"));
    const struct {
        QStringList args;
        int exitCode;
        const char* says;
    } cases[] = {
        {{QStringLiteral("--model"), QStringLiteral("8"), QStringLiteral("--refuse-update"),
          QStringLiteral("--syx"), syx},
         1,
         "did not start"},
        {{}, 1, "nothing would leave"},
        {{QStringLiteral("--syx"), dir.filePath(QStringLiteral("no/such/dir/x.syx"))}, 2, ".syx"},
        {{QStringLiteral("--gap"), QStringLiteral("-3")}, 2, "--gap"},
        {{QStringLiteral("--sysex-header"), QStringLiteral("F0")}, 2, "--sysex-header"},
    };
    for (const auto& c : cases) {
        const HostRun r = runHost(c.args + QStringList{QStringLiteral("--transmit")}, dir.path());
        EXPECT_EQ(r.exitCode, c.exitCode) << qPrintable(c.args.join(u' '));
        EXPECT_TRUE(r.err.contains(c.says)) << r.err.constData();
        EXPECT_FALSE(r.out.contains("sent")) << r.out.constData();
        EXPECT_TRUE(c.exitCode != 2 || r.errLines().size() == 1) << r.err.constData();
    }
    EXPECT_EQ(readFile(syx), QByteArray()) << "the refused update left an empty file";
    EXPECT_TRUE(QFile::exists(syx));
}

TEST(Transmit, AnOutputThatFailsMidWayEndsTheTransmissionWithAnHonestCount) {
    SmallDisk disk(8);
    if (!disk.available()) GTEST_SKIP() << "cannot mount a tmpfs here";
    QTemporaryDir dir;
    const QString syx = disk.path(QStringLiteral("out.syx"));
    const HostRun r =
        runHost({QStringLiteral("--model"), QStringLiteral("10"), QStringLiteral("--transmit"),
                 QStringLiteral("--gap"), QStringLiteral("0"), QStringLiteral("--syx"), syx},
                dir.path());
    // The failure ends the transmission with one error line and an honest count.
    EXPECT_EQ(r.exitCode, 1);
    ASSERT_EQ(r.errLines().filter(QStringLiteral("ferrule-host:")).size(), 1) << r.err.constData();
    const QString line = r.errLines().filter(QStringLiteral("ferrule-host:")).first();
    EXPECT_TRUE(line.contains("No space left on device")) << qPrintable(line);
    EXPECT_FALSE(r.out.contains("sent")) << "no claim of a complete transmission";
    // The count is honest: the file holds exactly that many whole messages.
    QFile f(syx);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray written = f.readAll();
    const SyxFile::Split pieces = SyxFile::split(written);
    EXPECT_TRUE(pieces.error.isEmpty()) << qPrintable(pieces.error);
    EXPECT_TRUE(line.contains(QStringLiteral("sent %1 messages (%2 bytes)")
                                  .arg(pieces.messages.size())
                                  .arg(written.size())))
        << qPrintable(line);
}
