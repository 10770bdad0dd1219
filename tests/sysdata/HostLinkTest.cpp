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
// A host whose SysData has plain integer types, as ferrule-host's has: the resolved path. It
// records the indexes it is asked for.
class IntHost : public QObject {
    Q_OBJECT
public:
    std::vector<int> data = std::vector<int>(16, 0);
    mutable std::vector<int> asked;
    Q_INVOKABLE int SysData(int index) const {
        asked.push_back(index);
        return data.at(std::size_t(index));
    }
    Q_INVOKABLE void SysData(int index, int value) { data.at(std::size_t(index)) = value; }
};
// The same members inherited by a class with invokable methods of its own: a resolved call
// must be made through the class that declares SysData, with its index there.
class DerivedIntHost : public IntHost {
    Q_OBJECT
public:
    Q_INVOKABLE int Other(int) const { return -1; }
    Q_INVOKABLE int Another(int) const { return -2; }
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

namespace {
// Whole-image reads and the first difference ask the host once per index, in ascending order,
// and no further than the answer needs; a value that is not a byte is named with its index.
template <typename Host> void checkWholeImageCalls(Host& host) {
    HostLink link;
    link.setHost(&host);
    std::vector<int> ascending(host.data.size());
    for (std::size_t i = 0; i < host.data.size(); ++i) {
        host.data[i] = int((i * 37 + 5) % 256);
        ascending[i] = int(i);
    }
    std::vector<std::uint8_t> bytes(host.data.size());
    link.readSysData(bytes);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), host.data.begin()));
    EXPECT_EQ(host.asked, ascending);

    host.asked.clear();
    EXPECT_EQ(link.firstSysDataDifference(bytes), -1);
    EXPECT_EQ(host.asked, ascending);
    host.asked.clear();
    host.data[9] ^= 1;
    EXPECT_EQ(link.firstSysDataDifference(bytes), 9);
    EXPECT_EQ(host.asked, std::vector<int>(ascending.begin(), ascending.begin() + 10));

    host.data[12] = 256;
    EXPECT_NE(errorOf([&] { link.readSysData(bytes); }).find("SysData(12)"), std::string::npos);
    EXPECT_EQ(bytes[11], host.data[11]) << "the bytes before the fault are read";
}
} // namespace

TEST(HostLink, WholeImageReadsAskEachIndexOnceInOrder) {
    IntHost plain;
    checkWholeImageCalls(plain);
    DerivedIntHost derived;
    checkWholeImageCalls(derived);
    // A host whose SysData returns a variant goes through the call by name, with the same law.
    TestHost variant;
    variant.fillPattern();
    HostLink link;
    link.setHost(&variant);
    std::vector<std::uint8_t> bytes(64);
    link.readSysData(bytes);
    for (int i = 0; i < 64; ++i)
        ASSERT_EQ(bytes[std::size_t(i)], std::uint8_t(variant.image[i])) << i;
    EXPECT_EQ(variant.reads, 64);
    variant.overrides.push_back({40, int(bytes[40] ^ 1)});
    EXPECT_EQ(link.firstSysDataDifference(bytes), 40);
    variant.overrides.push_back({20, 300});
    EXPECT_NE(errorOf([&] { link.readSysData(bytes); }).find("SysData(20)"), std::string::npos);
}

#include "HostLinkTest.moc"
