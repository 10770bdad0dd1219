// --diff against the device's own data: ferrule-host asks ferrule-device (over a JACK server of
// the test's own) and compares what it answers with a file, by parameter.

#include "HostProcess.h"
#include "JackServer.h"
#include "QtPrinters.h"
#include "catalogue/ParameterIndex.h"
#include "device/DefaultImage.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <random>

using namespace ferrule;

namespace {

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
}

} // namespace

TEST(DeviceDiff, TheDevicesDataAgainstAFileExitsZeroWhenAlikeOneWhenNotThreeWhenItFails) {
    JackServer jack;
    ASSERT_TRUE(jack.running()) << qPrintable(jack.log());
    QTemporaryDir dir;
    const QString port = QStringLiteral("ferrule-device");
    const QStringList gt5 = {QStringLiteral("--model"), QStringLiteral("5")};
    std::mt19937 random(5);
    QByteArray image = makeDefaultImage();
    for (auto& b : image)
        b = char(random() & 0x7F);
    const QString same = dir.filePath(QStringLiteral("same.bin"));
    writeFile(same, image);
    // The file differs from the device in one parameter.
    const Parameter& changed = ParameterIndex::of(5).parameters()[3];
    const int onDevice = changed.value(bytesOf(image));
    const int inFile = onDevice == changed.minimum ? changed.maximum : changed.minimum;
    QByteArray other = image;
    changed.store({reinterpret_cast<std::uint8_t*>(other.data()), std::size_t(other.size())},
                  inFile);
    const QString otherFile = dir.filePath(QStringLiteral("other.txt"));
    const QString request = QStringLiteral("--request");
    const QStringList ask = gt5 + QStringList{request,
                                              QStringLiteral("--midi-in"),
                                              port,
                                              QStringLiteral("--midi-out"),
                                              port,
                                              QStringLiteral("--timeout"),
                                              QStringLiteral("2"),
                                              QStringLiteral("--diff")};
    {
        // The file in the text form, written by the host itself.
        writeFile(dir.filePath(QStringLiteral("other.bin")), other);
        const HostRun r = runHost(gt5 + QStringList{QStringLiteral("--data"),
                                                    dir.filePath(QStringLiteral("other.bin")),
                                                    QStringLiteral("--export"), otherFile},
                                  dir.path());
        ASSERT_EQ(r.exitCode, 0) << r.err.constData();
    }
    {
        DeviceProcess device(jack, gt5 + QStringList{QStringLiteral("--data"), same});
        ASSERT_TRUE(device.ready()) << device.output().constData();
        HostRun r = runHost(ask + QStringList{same}, dir.path(), 120000, jack.env());
        EXPECT_EQ(r.exitCode, 0) << r.err.constData() << r.out.constData();
        EXPECT_TRUE(r.out.isEmpty()) << r.out.constData();

        r = runHost(ask + QStringList{otherFile}, dir.path(), 120000, jack.env());
        EXPECT_EQ(r.exitCode, 1) << r.err.constData();
        EXPECT_EQ(QString::fromUtf8(r.out),
                  QStringLiteral("%1: %2 -> %3\n")
                      .arg(changed.name(), changed.valueText(onDevice), changed.valueText(inFile)));
    }
    {
        // A device that falls silent part way: exit 3, and no comparison.
        DeviceProcess device(jack, gt5 + QStringList{QStringLiteral("--data"), same,
                                                     QStringLiteral("--stop-after"),
                                                     QStringLiteral("3")});
        ASSERT_TRUE(device.ready()) << device.output().constData();
        const HostRun r = runHost(ask + QStringList{same}, dir.path(), 120000, jack.env());
        EXPECT_EQ(r.exitCode, 3) << r.err.constData();
        EXPECT_TRUE(r.out.isEmpty()) << r.out.constData();
    }
}
