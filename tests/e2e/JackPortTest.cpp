// The transport's JACK ports on a JACK server of the test's own: what leaves an output arrives
// whole and in order, a system-exclusive message sent in pieces arrives as one, a port closed
// while messages are under way goes away cleanly, again and again, and an output whose server
// has stopped says so instead of taking messages nobody will send.

#include "JackServer.h"
#include "MidiInput.h"
#include "MidiOutput.h"

#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <random>

using namespace ferrule;

namespace {

QByteArray sysex(int dataBytes, std::mt19937& random) {
    QByteArray m(1, char(0xF0));
    for (int i = 0; i < dataBytes; ++i)
        m += char(random() & 0x7F);
    return m + char(0xF7);
}

// Runs the event loop until `input` has received `count` messages in all, or time runs out.
QList<QByteArray> receive(MidiInput& input, int count, int timeoutMs = 120000) {
    QList<QByteArray> got;
    QObject::connect(&input, &MidiInput::messageReceived, [&](const QByteArray& m) { got << m; });
    QSignalSpy spy(&input, &MidiInput::messageReceived);
    while (got.size() < count && spy.wait(timeoutMs)) {
    }
    input.disconnect();
    return got;
}

} // namespace

TEST(JackPort, MessagesArriveWholeAndInOrderPortsCloseCleanlyAndAStoppedServerIsReported) {
    JackServer jack;
    ASSERT_TRUE(jack.running()) << qPrintable(jack.log());
    qputenv("JACK_DEFAULT_SERVER",
            jack.env().value(QStringLiteral("JACK_DEFAULT_SERVER")).toUtf8());
    QString error;
    MidiInput input;
    ASSERT_TRUE(input.openVirtual(MidiApi::Jack, QStringLiteral("ferrule-test"),
                                  QStringLiteral("ferrule-test in"), &error))
        << qPrintable(error);
    std::mt19937 random(7);

    // Outputs closed at once after queueing a burst, many times: nothing may crash, and
    // whatever arrives is whole.
    for (int round = 0; round < 25; ++round) {
        MidiOutput output;
        ASSERT_TRUE(output.open(MidiApi::Jack, QStringLiteral("ferrule-test-out"),
                                QStringLiteral("ferrule-test in"), &error))
            << qPrintable(error);
        for (int i = 0; i < 40; ++i)
            ASSERT_TRUE(output.send(sysex(int(random() % 300), random), &error))
                << qPrintable(error);
    }
    QCoreApplication::processEvents();
    for (const QByteArray& m : receive(input, 1 << 20, 300))
        EXPECT_TRUE(m.startsWith(char(0xF0)) && m.endsWith(char(0xF7))) << m.size();

    // Then an output that stays: every message arrives, whole and in order. Clock ticks are
    // left out, and a message sent in three pieces arrives as one.
    MidiOutput output;
    ASSERT_TRUE(output.open(MidiApi::Jack, QStringLiteral("ferrule-test-out"),
                            QStringLiteral("ferrule-test in"), &error))
        << qPrintable(error);
    QList<QByteArray> sent;
    // More than one cycle's buffer holds.
    for (int i = 0; i < 150; ++i) {
        const QByteArray m = sysex(int(random() % 500), random);
        sent << m;
        ASSERT_TRUE(output.send(m, &error)) << qPrintable(error);
        ASSERT_TRUE(output.send(QByteArray(1, char(0xF8)), &error));
    }
    const QByteArray whole = sysex(150, random);
    for (const QByteArray& piece : {whole.left(1), whole.mid(1, 70), whole.mid(71)})
        ASSERT_TRUE(output.send(piece, &error));
    sent << whole;
    const QList<QByteArray> got = receive(input, int(sent.size()));
    ASSERT_EQ(got.size(), sent.size());
    for (int i = 0; i < got.size(); ++i)
        ASSERT_EQ(got[i], sent[i]) << "message " << i;
    EXPECT_EQ(input.dropped(), 0u);

    // The server stops: the output refuses the next messages and says why.
    jack.stop();
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return !output.send(QByteArray(1, char(0xF8)), &error); }, 120000));
    EXPECT_EQ(error, QStringLiteral("the JACK server has stopped"));
}
