#include "EditorSession.h"
#include "PlugInFixture.h"
#include "TestHost.h"
#include "editor/ImageButton.h"
#include "settings/SettingsStore.h"
#include "sysdata/FerruleError.h"
#include "sysdata/ModuleState.h"

#include <QFile>
#include <QScreen>
#include <gtest/gtest.h>

using namespace ferrule;

using PlugInTest = PlugInFixture;

TEST(PlugInVersion, PacksMajorMinorAndRevisionAndRefusesAMinorThatOverflows) {
    EXPECT_EQ(PlugIn::versionNumber(1, 127, 3), 65536 + 127 * 256 + 3);
    EXPECT_THROW(PlugIn::versionNumber(4, 128, 0), FerruleError) << "minor × 256 overflows 16 bits";
}

TEST_F(PlugInTest, InterfaceReadsTheHostFontAndFailsNamingAMissingMember) {
    const HostFontSettings& font = plugIn.state().font;
    EXPECT_EQ(font.family, 1);
    EXPECT_EQ(font.name, QStringLiteral("DejaVu Serif"));
    EXPECT_TRUE(font.italic);
    EXPECT_TRUE(font.bold);
    EXPECT_FLOAT_EQ(font.size, 11.5F);

    PlugIn other;
    HostWithoutStrikethrough lacking;
    EXPECT_NE(errorOf([&] { other.Interface(&lacking); }).find("FontStrikethrough"),
              std::string::npos);
    // The same error reaches a host that sets the member by name.
    EXPECT_NE(errorOf([&] {
                  other.setProperty("Interface", QVariant::fromValue<QObject*>(&lacking));
              }).find("FontStrikethrough"),
              std::string::npos);
}

TEST_F(PlugInTest, OwnerMustBeAWindow) {
    QWidget window;
    EXPECT_NO_THROW(plugIn.Owner(&window));
    EXPECT_EQ(plugIn.ownerWindow(), &window);
    QObject notAWindow;
    EXPECT_NE(errorOf([&] { plugIn.Owner(&notAWindow); }).find("Owner"), std::string::npos);
    EXPECT_EQ(plugIn.ownerWindow(), &window) << "a failed Owner keeps the previous window";
}

TEST_F(PlugInTest, SetupCopiesTheHostImageByteForByte) {
    plugIn.Title(QStringLiteral("GT-6"));
    ASSERT_NE(plugIn.editor(), nullptr);
    EXPECT_EQ(host.reads, 43252);
    EXPECT_EQ(plugIn.state().image.toByteArray(), host.image);
    EXPECT_EQ(plugIn.editor()->windowTitle(), QStringLiteral("System: GT-6"));
    // A second Title does not set up again.
    plugIn.Title(QStringLiteral("X"));
    EXPECT_EQ(host.reads, 43252);
}

TEST_F(PlugInTest, AHostValueOutsideAByteStopsSetupWithAnError) {
    for (const QVariant& bad : {QVariant(256), QVariant(-1), QVariant(QStringLiteral("loud"))}) {
        TestHost badHost;
        badHost.overrides.push_back({1234, bad});
        PlugIn p;
        p.Interface(&badHost);
        const std::string error = errorOf([&] { p.Format(8); });
        EXPECT_NE(error.find("SysData(1234)"), std::string::npos) << error;
        // By name, the host sees the error of the member it called.
        PlugIn q;
        q.Interface(&badHost);
        EXPECT_NE(errorOf([&] { q.setProperty("Format", 8); }).find("SysData(1234)"),
                  std::string::npos);
    }
}

TEST_F(PlugInTest, StartWithoutFormatLaysOutTheGt10) {
    bool seen = false;
    whileEditorOpen(plugIn, [&](SysForm& form) {
        seen = true;
        EXPECT_EQ(form.model(), 10);
        EXPECT_EQ(form.windowTitle(), QStringLiteral("System: GT-10"));
        EXPECT_EQ(form.currentPage(), 1);
    });
    EXPECT_TRUE(seen);
    EXPECT_EQ(plugIn.format(), 10);
}

TEST_F(PlugInTest, StoredLastPageOutsideZeroToTenOpensPageOne) {
    const struct {
        QVariant stored;
        int expected;
    } cases[] = {{11, 1}, {-1, 1}, {0, 0}, {4, 4}, {10, 10}, {QVariant(), 1}};
    plugIn.Format(6);
    for (const auto& c : cases) {
        if (c.stored.isValid()) {
            ASSERT_TRUE(RegWrite(RegRoot::LocalMachine, kEditorKey, QStringLiteral("SysLastDisp6"),
                                 c.stored));
        } else {
            QFile::remove(settingsFileFor(RegRoot::LocalMachine, kEditorKey));
            RegCreateKey(RegRoot::LocalMachine, kEditorKey);
        }
        int opened = -99;
        whileEditorOpen(plugIn, [&](SysForm& form) { opened = form.currentPage(); });
        EXPECT_EQ(opened, c.expected) << c.stored.toString().toStdString();
    }
}

TEST_F(PlugInTest, ClosingStoresThePageUnderTheModel) {
    plugIn.Format(6);
    whileEditorOpen(plugIn, [](SysForm& form) { form.ShowTab(9); });
    QVariant stored = 0;
    ASSERT_TRUE(RegRead(RegRoot::LocalMachine, kEditorKey, QStringLiteral("SysLastDisp6"), stored));
    EXPECT_EQ(stored.toInt(), 9);
    // The next Start opens that page again, rebuilding it in the reloaded window.
    int opened = -1;
    whileEditorOpen(plugIn, [&](SysForm& form) { opened = form.currentPage(); });
    EXPECT_EQ(opened, 9);
}

TEST_F(PlugInTest, CenterKeepsTheWindowOnTheScreen) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    plugIn.Format(10);
    SysForm* form = plugIn.editor();
    const int w = form->width() * 15;
    const int h = form->height() * 15;
    const int sw = screen.width() * 15;
    const int sh = screen.height() * 15;

    plugIn.Center(qint16(sw / 2), qint16(sh / 2));
    EXPECT_EQ(form->x(), (sw / 2 - w / 2) / 15);
    EXPECT_EQ(form->y(), (sh / 2 - h / 2) / 15);

    plugIn.Center(qint16(sw - 30), qint16(sh - 30)); // near the bottom-right corner
    EXPECT_EQ(form->x() * 15, sw - w);
    EXPECT_EQ(form->y() * 15, sh - h);

    plugIn.Center(10, 10); // near the top-left corner
    EXPECT_EQ(form->x(), 0);
    EXPECT_EQ(form->y(), 0);

    EXPECT_TRUE(
        QMetaObject::invokeMethod(&plugIn, "Center", Q_ARG(qint16, 300), Q_ARG(qint16, 300)));
}

TEST_F(PlugInTest, QuitReleasesTheWindowAndTheHost) {
    QWidget owner;
    plugIn.Owner(&owner);
    plugIn.Format(3);
    plugIn.Quit();
    EXPECT_EQ(plugIn.editor(), nullptr);
    EXPECT_EQ(plugIn.hostObject(), nullptr);
    EXPECT_EQ(plugIn.ownerWindow(), nullptr);
}
