#include "sysdata/HostLink.h"
#include "PlugInFixture.h"
#include "TestHost.h"
#include "sysdata/FerruleError.h"
#include "sysdata/ValueText.h"

#include <gtest/gtest.h>

using namespace ferrule;

TEST(HostLink, ReadsPropertiesAndCallsMethodsByName) {
    TestHost host;
    host.image[42] = char(200);
    HostLink link;
    link.setHost(&host);
    EXPECT_TRUE(link.propertyBool("FontItalic")); // the font's values, PlugInTest's
    EXPECT_EQ(link.sysData(42), 200);
    // Overloads are told apart by their argument count.
    link.call("SysData", {42, 17});
    EXPECT_EQ(host.image[42], char(17));
    host.valueTextPrefix = QStringLiteral("v");
    EXPECT_EQ(ValueText(link, 5, 175, 8), QStringLiteral("v5/175/8"));
}

TEST(HostLink, ErrorsNameTheMember) {
    TestHost host;
    HostLink link;
    EXPECT_NE(errorOf([&] { link.property("FontName"); }).find("FontName"), std::string::npos);
    link.setHost(&host);
    EXPECT_NE(errorOf([&] { link.property("NoSuchThing"); }).find("NoSuchThing"),
              std::string::npos);
    EXPECT_NE(errorOf([&] { link.call("Missing", {1}); }).find("Missing"), std::string::npos);
    EXPECT_NE(errorOf([&] {
                  link.call("ValueText", {1, 2});
              }).find("ValueText"),
              std::string::npos)
        << "a call with the wrong number of arguments finds no member";
    EXPECT_NE(errorOf([&] { link.call("SysData", {QStringLiteral("x")}); }).find("SysData"),
              std::string::npos);
}

namespace {
// A host whose SysData has plain integer types, as ferrule-host's has: the resolved path.
class IntHost : public QObject {
    Q_OBJECT
public:
    std::vector<int> data = std::vector<int>(16, 0);
    Q_INVOKABLE int SysData(int index) const { return data.at(std::size_t(index)); }
    Q_INVOKABLE void SysData(int index, int value) { data.at(std::size_t(index)) = value; }
};
class NoSysDataHost : public QObject {
    Q_OBJECT
};
} // namespace

TEST(HostLink, TheResolvedSysDataPathBehavesAsTheCallByName) {
    IntHost host;
    HostLink link;
    link.setHost(&host);
    host.data[3] = 255;
    host.data[4] = 256;
    EXPECT_EQ(link.sysData(3), 255);
    EXPECT_NE(errorOf([&] { link.sysData(4); }).find("SysData(4)"), std::string::npos);
    link.setSysData(5, 77);
    EXPECT_EQ(host.data[5], 77);
    // Another host: the resolution starts again, and a missing member is named.
    NoSysDataHost other;
    link.setHost(&other);
    EXPECT_NE(errorOf([&] { link.sysData(0); }).find("SysData"), std::string::npos);
    EXPECT_NE(errorOf([&] { link.setSysData(0, 1); }).find("SysData"), std::string::npos);
    link.setHost(&host);
    EXPECT_EQ(link.sysData(5), 77);
}

#include "HostLinkTest.moc"
