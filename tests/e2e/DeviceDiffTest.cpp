// --diff against the device's own data: ferrule-host asks ferrule-device (over a JACK server of
// the test's own) and compares what it answers with a file, by parameter.

#include "HostProcess.h"
#include "ImageFiles.h"
#include "JackServer.h"
#include "ParameterLines.h"
#include "QtPrinters.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace ferrule;

// A read that fails ends the run with exit 3 before anything is compared or written, for --diff
// as for any read (DeviceRead).
TEST(DeviceDiff, TheDevicesDataAgainstAFileExitsZeroWhenAlikeOneWhenNotByParameter) {
    JackServer jack;
    ASSERT_TRUE(jack.running()) << qPrintable(jack.log());
    QTemporaryDir dir;
    const QString port = QStringLiteral("ferrule-device");
    const QStringList gt5 = {QStringLiteral("--model"), QStringLiteral("5")};
    const QByteArray image = randomImage(5);
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
}
