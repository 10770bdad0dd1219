#include "sysdata/HostLink.h"
#include "TestHost.h"
#include "sysdata/FerruleError.h"
#include "sysdata/ValueText.h"

#include <gtest/gtest.h>

using namespace ferrule;

namespace {
std::string errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const FerruleError& e) {
        return e.what();
    }
    return {};
}
} // namespace

TEST(HostLink, ReadsPropertiesAndCallsMethodsByName) {
    TestHost host;
    host.image[42] = char(200);
    HostLink link;
    link.setHost(&host);
    EXPECT_EQ(link.property("FontName").toString(), QStringLiteral("DejaVu Serif"));
    EXPECT_TRUE(link.propertyBool("FontItalic"));
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
    // A value that does not convert.
    host.overrides.push_back({7, QStringLiteral("seven")});
    host.overrides.push_back({8, 256});
    host.overrides.push_back({9, -1});
    EXPECT_NE(errorOf([&] { link.sysData(7); }).find("SysData(7)"), std::string::npos);
    EXPECT_NE(errorOf([&] { link.sysData(8); }).find("SysData(8)"), std::string::npos);
    EXPECT_NE(errorOf([&] { link.sysData(9); }).find("SysData(9)"), std::string::npos);
    EXPECT_NE(errorOf([&] { link.call("SysData", {QStringLiteral("x")}); }).find("SysData"),
              std::string::npos);
}
