// Settings files as people write them: one value changes, every other byte stays.

#include "settings/IniFile.h"
#include "QtPrinters.h"
#include "settings/SettingsStore.h"

#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <random>
#include <sys/stat.h>

using namespace ferrule;

TEST(IniFile, AHandWrittenFileKeepsEveryByteButTheValueWritten) {
    const QByteArray handWritten = "; my settings\r\n"
                                   "Path=C:\\Users\\me\\tones\r\n"
                                   "List=a;b, c\r\n"
                                   "\r\n"
                                   "# older\r\n"
                                   "Spaced Key = dword:7\r\n"
                                   "[General]\r\n"
                                   "SysLastDisp10=dword:4\r\n"
                                   "[Other]\r\n"
                                   "SysLastDisp8=dword:9";
    IniFile ini(handWritten);
    EXPECT_EQ(*ini.value(QStringLiteral("path")), QStringLiteral("C:\\Users\\me\\tones"));
    EXPECT_EQ(*ini.value(QStringLiteral("List")), QStringLiteral("a;b, c"));
    EXPECT_EQ(*ini.value(QStringLiteral("Spaced Key")), QStringLiteral("dword:7"));
    EXPECT_EQ(*ini.value(QStringLiteral("Spaced%20Key")), QStringLiteral("dword:7"));
    EXPECT_FALSE(ini.value(QStringLiteral("SysLastDisp8"))) << "another section's value";

    EXPECT_FALSE(ini.setValue(QStringLiteral("SysLastDisp10"), QStringLiteral("dword:4")));
    EXPECT_EQ(ini.bytes(), handWritten) << "the same value writes nothing";
    EXPECT_TRUE(ini.setValue(QStringLiteral("SysLastDisp10"), QStringLiteral("dword:12")));
    QByteArray expected = handWritten;
    expected.replace("SysLastDisp10=dword:4", "SysLastDisp10=dword:12");
    EXPECT_EQ(ini.bytes(), expected);
    EXPECT_TRUE(ini.setValue(QStringLiteral("Spaced Key"), QStringLiteral("dword:8")));
    expected.replace("Spaced Key = dword:7", "Spaced Key = dword:8");
    EXPECT_EQ(ini.bytes(), expected);
    // A new value joins [General], with the file's own line ending.
    EXPECT_TRUE(ini.setValue(QStringLiteral("ColourSchemeX2"), QStringLiteral("dword:1")));
    expected.replace("SysLastDisp10=dword:12\r\n",
                     "SysLastDisp10=dword:12\r\nColourSchemeX2=dword:1\r\n");
    EXPECT_EQ(ini.bytes(), expected);

    // Through the store: a page change rewrites one line, and nothing when nothing changed.
    ASSERT_TRUE(RegCreateKey(RegRoot::LocalMachine, kEditorKey));
    const QString file = settingsFileFor(RegRoot::LocalMachine, kEditorKey);
    {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(handWritten);
    }
    struct stat before {};
    ::stat(QFile::encodeName(file).constData(), &before);
    EXPECT_TRUE(RegWrite(RegRoot::LocalMachine, kEditorKey, QStringLiteral("SysLastDisp10"), 4));
    struct stat after {};
    ::stat(QFile::encodeName(file).constData(), &after);
    EXPECT_EQ(before.st_ino, after.st_ino) << "an unchanged value does not touch the file";
    EXPECT_TRUE(RegWrite(RegRoot::LocalMachine, kEditorKey, QStringLiteral("SysLastDisp10"), 13));
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    QByteArray changed = handWritten;
    changed.replace("SysLastDisp10=dword:4", "SysLastDisp10=dword:13");
    EXPECT_EQ(f.readAll(), changed);
    QVariant path = QString();
    EXPECT_TRUE(RegRead(RegRoot::LocalMachine, kEditorKey, QStringLiteral("Path"), path));
    QFile::remove(file);
}

TEST(IniFile, WrittenValuesReadBackAndTheRestStaysOnRandomFiles) {
    // A bounded fuzz with laws: on any bytes, reading never fails hard; after a write the value
    // reads back exactly, and the file differs from before in at most one line (or one new one).
    std::mt19937 random(99);
    const char alphabet[] = "ab=;#[]\" \\\r\n%2GeneralK\xC3\xA9\x01";
    const QStringList names = {QStringLiteral("K"), QStringLiteral("a b"), QStringLiteral("Key=1"),
                               QStringLiteral("[x"), QStringLiteral("General")};
    const QStringList values = {QStringLiteral("dword:5"), QStringLiteral(" lead"),
                                QStringLiteral("a;b\"c\\d"), QStringLiteral("line\nbreak"),
                                QStringLiteral("sz:\u00e9")};
    for (int n = 0; n < 3000; ++n) {
        QByteArray bytes;
        const int length = int(random() % 120);
        for (int i = 0; i < length; ++i)
            bytes.append(alphabet[random() % (sizeof alphabet - 1)]);
        IniFile ini(bytes);
        ASSERT_EQ(ini.bytes(), bytes) << "reading alone changes nothing";
        const QString name = names[int(random() % names.size())];
        const QString value = values[int(random() % values.size())];
        ini.setValue(name, value);
        ASSERT_EQ(ini.value(name), value) << bytes.toHex().constData();
        const QList<QByteArray> was = bytes.split('\n');
        const QList<QByteArray> now = ini.bytes().split('\n');
        int kept = 0;
        for (const QByteArray& line : was)
            kept += now.contains(line) ? 1 : 0;
        ASSERT_GE(kept, was.size() - 1) << bytes.toHex().constData();
    }
}

TEST(IniFile, AValueAddedAfterALastLineEndingInACarriageReturnGetsALineOfItsOwn) {
    // Found by the fuzzer: a carriage return alone ends no line when the file is read again, so
    // the new value must not take it for its predecessor's line ending.
    for (const QByteArray& file : {QByteArray("MidiIn=abc\r"), QByteArray("a=1\r\nMidiIn=abc\r")}) {
        IniFile ini(file);
        ASSERT_EQ(ini.bytes(), file);
        ASSERT_TRUE(ini.setValue(QStringLiteral("MidiOut"), QStringLiteral("x")));
        const IniFile reread(ini.bytes());
        EXPECT_EQ(reread.value(QStringLiteral("MidiOut")), QStringLiteral("x"))
            << ini.bytes().toHex().constData();
        EXPECT_EQ(reread.value(QStringLiteral("MidiIn")), QStringLiteral("abc"))
            << ini.bytes().toHex().constData();
    }
}
