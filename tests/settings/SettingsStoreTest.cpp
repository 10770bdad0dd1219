#include "settings/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {
const QString kKey = QStringLiteral("SOFTWARE\\Quarrow\\Tonebench\\Multi");
const QString kOtherKey = QStringLiteral("SOFTWARE\\Quarrow\\Tonebench\\Missing");
} // namespace

TEST(SettingsStore, AMissingKeyReadsNothingAndIsNeverCreated) {
    QVariant asInt = 55;
    EXPECT_FALSE(RegRead(RegRoot::LocalMachine, kOtherKey, QStringLiteral("SysLastDisp3"), asInt));
    EXPECT_EQ(asInt.typeId(), QMetaType::Int);
    EXPECT_EQ(asInt.toInt(), 0);
    QVariant asString = QStringLiteral("keep?");
    EXPECT_FALSE(RegRead(RegRoot::LocalMachine, kOtherKey, QStringLiteral("Name"), asString));
    EXPECT_EQ(asString.typeId(), QMetaType::QString);
    EXPECT_TRUE(asString.toString().isEmpty());

    EXPECT_FALSE(RegWrite(RegRoot::LocalMachine, kOtherKey, QStringLiteral("SysLastDisp3"), 4));
    const QFileInfo file(settingsFileFor(RegRoot::LocalMachine, kOtherKey));
    EXPECT_FALSE(file.exists());
    EXPECT_FALSE(QDir(file.absolutePath()).exists() &&
                 QDir(file.absolutePath()).entryList(QDir::Files).contains(file.fileName()));
}

TEST(SettingsStore, ValuesRoundTripWithTheirType) {
    ASSERT_TRUE(RegCreateKey(RegRoot::LocalMachine, kKey));
    const std::pair<const char*, QVariant> values[] = {
        {"SysLastDisp6", 266}, {"Neg", -1}, {"Text", QStringLiteral("a b=c;d")}};
    for (const auto& [name, value] : values) {
        EXPECT_TRUE(RegWrite(RegRoot::LocalMachine, kKey, QLatin1String(name), value));
        QVariant back(value.metaType()); // the type the caller asks for
        EXPECT_TRUE(RegRead(RegRoot::LocalMachine, kKey, QLatin1String(name), back));
        EXPECT_EQ(back, value) << name;
        EXPECT_EQ(back.typeId(), value.typeId()) << name;
    }
    QVariant s = QString();
    EXPECT_TRUE(
        RegWrite(RegRoot::LocalMachine, kKey, QStringLiteral("Bin"), QStringLiteral("xyz"), true));
    EXPECT_TRUE(RegRead(RegRoot::LocalMachine, kKey, QStringLiteral("Bin"), s));
    EXPECT_EQ(s.toString(), QStringLiteral("xyz"));

    // An unknown name in an existing key fails and leaves the caller's default to apply.
    QVariant v = 12;
    EXPECT_FALSE(RegRead(RegRoot::LocalMachine, kKey, QStringLiteral("ColourSchemeX2"), v));
    EXPECT_EQ(v.toInt(), 0);
    // Another root is another key.
    EXPECT_FALSE(RegRead(RegRoot::CurrentUser, kKey, QStringLiteral("SysLastDisp6"), v));
    QFile::remove(settingsFileFor(RegRoot::LocalMachine, kKey));
}

TEST(SettingsStore, ExpandableStringsTakeTheEnvironment) {
    ASSERT_TRUE(RegCreateKey(RegRoot::LocalMachine, kKey));
    qputenv("FERRULE_TEST_VAR", "expanded");
    QFile f(settingsFileFor(RegRoot::LocalMachine, kKey));
    ASSERT_TRUE(f.open(QIODevice::Append));
    f.write("[General]\nPath=\"expand_sz:%FERRULE_TEST_VAR%/x %UNSET_FERRULE_VAR%\"\n");
    f.close();
    QVariant s = QString();
    EXPECT_TRUE(RegRead(RegRoot::LocalMachine, kKey, QStringLiteral("Path"), s));
    EXPECT_EQ(s.toString(), QStringLiteral("expanded/x %UNSET_FERRULE_VAR%"));
    QFile::remove(settingsFileFor(RegRoot::LocalMachine, kKey));
}
