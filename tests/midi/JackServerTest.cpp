// The tests' own JACK servers and JACK's registry of servers, which has room for eight on the
// whole machine: a server killed with its entry left behind costs the next test nothing, and a
// full registry is said as such.

#include "JackServer.h"

#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstring>

namespace {

bool listed(const QString& name) {
    const auto entries = JackRegistry::read();
    return std::ranges::any_of(entries, [&](const auto& e) { return e.name == name; });
}

} // namespace

TEST(JackServer, AServerKilledLeavesItsEntryWhichTheNextServerTakesBack) {
    if (QStandardPaths::findExecutable(QStringLiteral("jackd")).isEmpty())
        GTEST_SKIP() << "needs jackd";
    JackServer killed;
    ASSERT_TRUE(killed.running()) << qPrintable(killed.log());
    ASSERT_TRUE(listed(killed.name()));
    ::kill(pid_t(killed.processId()), SIGKILL);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            const auto entries = JackRegistry::read();
            return std::ranges::any_of(
                entries, [&](const auto& e) { return e.name == killed.name() && !e.live; });
        },
        120000))
        << "a killed server leaves its entry";

    JackServer next;
    ASSERT_TRUE(next.running()) << qPrintable(next.log());
    EXPECT_FALSE(listed(killed.name())) << "the entry of the killed server is taken back";
    EXPECT_TRUE(QDir(QStringLiteral("/dev/shm"))
                    .entryList({QStringLiteral("jack_*%1_*").arg(killed.name())},
                               QDir::Files | QDir::System)
                    .isEmpty())
        << "and its files removed";
    next.stop();
    EXPECT_FALSE(listed(next.name())) << "a server that ends cleanly clears its entry";
}

TEST(JackServer, AFullRegistryIsNamedWithTheServersInItAndThoseThatAreGone) {
    // A registry as JACK lays it out: six words of header, then eight servers of 264 bytes.
    QByteArray image(24 + 8 * 264, '\0');
    const auto put = [&](int at, std::uint32_t v) { std::memcpy(image.data() + at, &v, 4); };
    put(0, 0x4a41434b);
    put(16, std::uint32_t(image.size()));
    const QByteArray uid = QByteArray::number(::getuid());
    for (int i = 0; i < 8; ++i) {
        // Even entries are this process (alive), odd ones a process id no process has.
        put(24 + i * 264, i % 2 == 0 ? std::uint32_t(::getpid()) : 0x3ffffff0u + std::uint32_t(i));
        const QByteArray name = "jack-" + uid + ":s" + QByteArray::number(i) + ':';
        std::memcpy(image.data() + 24 + i * 264 + 4, name.constData(), std::size_t(name.size()));
    }
    QTemporaryDir dir;
    QFile f(dir.filePath(QStringLiteral("jack-shm-registry")));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly) && f.write(image) == image.size());
    f.close();

    const auto entries = JackRegistry::read(f.fileName());
    ASSERT_EQ(entries.size(), 8u);
    EXPECT_EQ(entries[1].name, QStringLiteral("s1"));
    EXPECT_TRUE(entries[0].live);
    EXPECT_FALSE(entries[1].live);
    const QString message = JackRegistry::fullMessage(entries);
    EXPECT_TRUE(message.startsWith(
        QStringLiteral(
            "the JACK registry of servers is full (8 on this machine): s0 (pid %1), s1 (pid ")
            .arg(::getpid())))
        << qPrintable(message);
    EXPECT_TRUE(message.contains(QStringLiteral("; 4 left by servers that were killed")))
        << qPrintable(message);
    // One entry free: nothing to say.
    put(24 + 7 * 264, 0);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly) && f.write(image) == image.size());
    f.close();
    EXPECT_EQ(JackRegistry::read(f.fileName()).size(), 7u);
    EXPECT_TRUE(JackRegistry::fullMessage(JackRegistry::read(f.fileName())).isEmpty());
}
