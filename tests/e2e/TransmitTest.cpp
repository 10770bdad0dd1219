// Whole transmissions through the real plug-in and ferrule-host, read back from the .syx file
// with a reader of its own: framing, checksums, addresses and data.

#include "HostProcess.h"
#include "SmallDisk.h"
#include "device/SyxFile.h"
#include "device/TransmissionSchedule.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

struct SysexMessage {
    QByteArray header;
    int address = 0;
    QByteArray data;
    int checksum = 0;
};

// Splits a .syx stream into messages; fails the test on anything that is not F0 … F7.
std::vector<SysexMessage> readSyx(const QByteArray& bytes, int headerLength) {
    std::vector<SysexMessage> out;
    qsizetype i = 0;
    while (i < bytes.size()) {
        EXPECT_EQ(static_cast<unsigned char>(bytes[i]), 0xF0) << "message start at " << i;
        const qsizetype end = bytes.indexOf(char(0xF7), i);
        EXPECT_GT(end, i);
        if (end < 0) break;
        const QByteArray m = bytes.mid(i + 1, end - i - 1);
        SysexMessage s;
        s.header = m.left(headerLength);
        const QByteArray a = m.mid(headerLength, 4);
        s.address = (a[0] << 24) | (a[1] << 16) | (a[2] << 8) | a[3];
        s.data = m.mid(headerLength + 4, m.size() - headerLength - 5);
        s.checksum = static_cast<unsigned char>(m.back());
        for (char b : m)
            EXPECT_LT(static_cast<unsigned char>(b), 0x80) << "every byte inside is 7-bit";
        out.push_back(s);
        i = end + 1;
    }
    return out;
}

QByteArray pattern() {
    QByteArray image(43252, char(0));
    for (int i = 0; i < image.size(); ++i)
        image[i] = char((i * 13 + i / 97) % 128);
    return image;
}

} // namespace

TEST(Transmit, EveryModelThroughTheHostToASyxFile) {
    QTemporaryDir dir;
    const QByteArray image = pattern();
    const QString data = dir.filePath(QStringLiteral("image.bin"));
    {
        QFile f(data);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(image);
    }
    // The five run side by side: each is paced by its wire time.
    const int models[] = {3, 5, 6, 8, 10};
    std::vector<std::unique_ptr<QProcess>> runs;
    for (int model : models) {
        auto p = std::make_unique<QProcess>();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("FERRULE_SETTINGS_ROOT"), dir.path());
        p->setProcessEnvironment(env);
        p->start(QStringLiteral(FERRULE_HOST_BINARY),
                 {QStringLiteral("--model"), QString::number(model), QStringLiteral("--data"), data,
                  QStringLiteral("--transmit"), QStringLiteral("--gap"), QStringLiteral("0"),
                  QStringLiteral("--syx"), dir.filePath(QStringLiteral("gt%1.syx").arg(model))});
        runs.push_back(std::move(p));
    }
    for (std::size_t r = 0; r < runs.size(); ++r) {
        QProcess& p = *runs[r];
        ASSERT_TRUE(p.waitForFinished(60000)) << models[r];
        const QByteArray out = p.readAllStandardOutput();
        EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().constData();
        const int model = models[r];

        QFile syx(dir.filePath(QStringLiteral("gt%1.syx").arg(model)));
        ASSERT_TRUE(syx.open(QIODevice::ReadOnly));
        const QByteArray bytes = syx.readAll();
        const std::vector<SysexMessage> messages = readSyx(bytes, 4);

        // What the schedule sends of the image: the GT-10's blocks past its end are not sent.
        std::vector<ferrule::ScheduledMessage> want;
        for (int s = 0; s < ferrule::TransmissionSchedule::stepTotal(model); ++s)
            for (const ferrule::ScheduledMessage& m :
                 ferrule::TransmissionSchedule::messages(model, s))
                if (m.start + m.length <= 43252) want.push_back(m);
        ASSERT_EQ(messages.size(), want.size()) << model;
        EXPECT_TRUE(out.contains(QStringLiteral("sent %1 messages, %2 bytes")
                                     .arg(want.size())
                                     .arg(bytes.size())
                                     .toLatin1()))
            << out.constData();
        for (std::size_t i = 0; i < want.size(); ++i) {
            const SysexMessage& m = messages[i];
            EXPECT_EQ(m.header,
                      QByteArray::fromHex("7d1000").replace(2, 1, QByteArray(1, char(model))) +
                          char(0x12));
            EXPECT_EQ(m.address, want[i].address) << model << " #" << i;
            QByteArray expected;
            for (int k = 0; k < want[i].length; ++k) {
                const auto b = static_cast<unsigned char>(image[want[i].start + k]);
                if (want[i].nibbles) {
                    expected.append(char(b >> 4));
                    expected.append(char(b & 15));
                } else {
                    expected.append(char(b));
                }
            }
            EXPECT_EQ(m.data, expected) << model << " #" << i;
            int sum = m.checksum;
            for (int k = 0; k < 4; ++k)
                sum += (m.address >> (8 * k)) & 0x7F;
            for (char b : m.data)
                sum += static_cast<unsigned char>(b);
            EXPECT_EQ(sum % 128, 0) << "checksum of " << model << " #" << i;
        }
    }
    // The data file is left as it was: the transmissions closed without keeping changes.
    QFile f(data);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), image);
}

TEST(Transmit, ARefusedUpdateSendsNothingAndABadSyxPathIsBadInput) {
    QTemporaryDir dir;
    const QString syx = dir.filePath(QStringLiteral("none.syx"));
    HostRun r =
        runHost({QStringLiteral("--model"), QStringLiteral("8"), QStringLiteral("--transmit"),
                 QStringLiteral("--refuse-update"), QStringLiteral("--syx"), syx},
                dir.path());
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.contains("did not start"));
    QFile f(syx);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.size(), 0);

    // With nowhere for the messages to go, nothing pretends to send.
    r = runHost({QStringLiteral("--transmit")}, dir.path());
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.contains("nothing would leave")) << r.err.constData();
    EXPECT_FALSE(r.out.contains("sent"));

    r = runHost({QStringLiteral("--transmit"), QStringLiteral("--syx"),
                 dir.filePath(QStringLiteral("no/such/dir/x.syx"))},
                dir.path());
    EXPECT_EQ(r.exitCode, 2);
    ASSERT_EQ(r.errLines().size(), 1);
    EXPECT_TRUE(r.errLines().first().contains(QLatin1String(".syx")));
    r = runHost({QStringLiteral("--gap"), QStringLiteral("-3"), QStringLiteral("--transmit")},
                dir.path());
    EXPECT_EQ(r.exitCode, 2);
    r = runHost(
        {QStringLiteral("--sysex-header"), QStringLiteral("F0"), QStringLiteral("--transmit")},
        dir.path());
    EXPECT_EQ(r.exitCode, 2);
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
    const ferrule::SyxFile::Split pieces = ferrule::SyxFile::split(written);
    EXPECT_TRUE(pieces.error.isEmpty()) << qPrintable(pieces.error);
    EXPECT_TRUE(line.contains(QStringLiteral("sent %1 messages (%2 bytes)")
                                  .arg(pieces.messages.size())
                                  .arg(written.size())))
        << qPrintable(line);
}
