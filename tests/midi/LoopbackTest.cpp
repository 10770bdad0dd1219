// The MIDI ports and what is built on them, over the loopback driver: pacing, request and
// answer, receive in any chunking, read-back after a send, and the failures; no MIDI system.
#include "LoopbackMidi.h"
#include "MidiInput.h"
#include "MidiOutput.h"
#include "PacedOutput.h"
#include "ParameterLines.h"
#include "WireTime.h"
#include "device/DefaultImage.h"
#include "device/DeviceAddress.h"
#include "device/DumpMap.h"
#include "device/ModelDescription.h"
#include "device/SysexCodec.h"
#include "device/TransmissionSchedule.h"
#include "transport/DumpReceiver.h"
#include "transport/SendVerifier.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <random>

using namespace ferrule;

namespace {

constexpr int kWaitMs = 30000;

QByteArray sysex(int size, std::mt19937& random) {
    QByteArray m(size, '\0');
    for (char& c : m)
        c = char(random() & 0x7F);
    m.front() = char(0xF0);
    m.back() = char(0xF7);
    return m;
}

using Loopback = LoopbackMidi;

// A host's output paced to a device's input.
struct PacedLink {
    PacedLink() {
        QString error;
        EXPECT_TRUE(deviceIn.openVirtual(MidiApi::Alsa, "dev", "dev in", &error) &&
                    hostOut.open(MidiApi::Alsa, "host", "dev in", &error))
            << error.toStdString();
    }
    MidiInput deviceIn;
    MidiOutput hostOut;
    PacedOutput paced{[this](const QByteArray& m, QString* why) { return hostOut.send(m, why); }};
};

TEST_F(Loopback, PacedMessagesArriveWholeInOrderNeverBeforeTheirWireTime) {
    PacedLink link;
    QList<QByteArray> sent, received;
    QList<qint64> leftNs;
    QObject::connect(&link.paced, &PacedOutput::messageSent,
                     [&](const QByteArray&) { leftNs << link.paced.nowNs(); });
    QObject::connect(&link.deviceIn, &MidiInput::messageReceived,
                     [&](const QByteArray& m) { received << m; });
    const qint64 startNs = link.paced.nowNs();
    for (int i = 0; i < 24; ++i) {
        sent << sysex(std::uniform_int_distribution(3, 200)(random), random);
        link.paced.enqueue(sent.back());
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return received.size() == sent.size(); }, kWaitMs));
    EXPECT_EQ(received, sent);
    qint64 wire = 0;
    for (int i = 0; i < sent.size(); ++i) {
        wire += wireTimeNs(sent[i].size());
        EXPECT_GE(leftNs[i] - startNs, wire) << "message " << i << " left early";
    }
}

TEST_F(Loopback, APortThatFailsMidSendStopsTheOutputAndSaysHowFarItGot) {
    PacedLink link;
    QSignalSpy failed(&link.paced, &PacedOutput::failed);
    midi.breakAfter(3, "the port dev in is gone");
    for (int i = 0; i < 8; ++i)
        link.paced.enqueue(sysex(20, random));
    ASSERT_TRUE(failed.wait(kWaitMs));
    EXPECT_EQ(failed.at(0).at(0).toString(), "the port dev in is gone");
    EXPECT_EQ(link.paced.sentMessages(), 3);
    EXPECT_EQ(midi.sent().size(), 3);
    EXPECT_TRUE(link.paced.idle());
}

// A simulated device of a model, whose every mapped byte differs from the host's image, joined
// to the host's ports.
struct DeviceLink {
    DeviceLink(int model, DeviceSimulator::Options options)
        : map(DumpMap::of(model)) {
        base = makeDefaultImage();
        QByteArray held = base;
        for (const DumpMap::Range& range : map.mappedRanges())
            for (int a = range.address; a < range.end(); ++a)
                if (const auto t = map.locate(a); t && t->index >= 0)
                    held[t->index] = char((base[t->index] + 1) & 0x0F);
        device = simulatedDevice(model, held, options);
        QString error;
        EXPECT_TRUE(in.open(MidiApi::Alsa, "host", "dev out", &error) &&
                    out.open(MidiApi::Alsa, "host", "dev in", &error))
            << error.toStdString();
    }
    DumpReceiver::Options readOptions(std::vector<DumpMap::Range> ranges, int retries) const {
        DumpReceiver::Options o;
        o.model = map.model();
        o.header = Sysex::defaultHeader(o.model);
        o.requestHeader = Sysex::requestHeaderFor(o.header);
        o.request = true;
        o.retries = retries;
        o.ranges = std::move(ranges);
        return o;
    }
    // Whether `image` holds the device's byte at every mapped address of `ranges`.
    bool holdsDevice(const QByteArray& image, const std::vector<DumpMap::Range>& ranges) const {
        for (const DumpMap::Range& range : ranges)
            for (int a = range.address; a < range.end(); ++a)
                if (const auto t = map.locate(a);
                    t && t->index >= 0 && image[t->index] != device->image()[t->index])
                    return false;
        return true;
    }

    const DumpMap& map;
    QByteArray base;
    std::unique_ptr<DeviceSimulator> device;
    MidiInput in;
    MidiOutput out;
    PacedOutput requests{[this](const QByteArray& m, QString* why) { return out.send(m, why); }};
};

// Runs a read to its end; whether it succeeded.
bool read(DumpReceiver& receiver) {
    QSignalSpy finished(&receiver, &DumpReceiver::finished);
    receiver.start();
    return finished.wait(kWaitMs) && finished.at(0).at(0).toBool();
}

class LoopbackModels : public Loopback, public ::testing::WithParamInterface<int> {};

TEST_P(LoopbackModels, RequestedRangesArriveInAnyChunking) {
    const std::vector<DumpMap::Range> all = DumpMap::of(GetParam()).mappedRanges();
    for (const std::vector<DumpMap::Range>& ranges :
         {all, std::vector{all.front()}, std::vector{all.back()}}) {
        DeviceLink link(GetParam(), {});
        DumpReceiver receiver(link.readOptions(ranges, 0), link.base, link.in, &link.requests);
        EXPECT_TRUE(read(receiver)) << receiver.error().toStdString();
        EXPECT_TRUE(link.holdsDevice(receiver.assembler().image(), ranges));
        EXPECT_EQ(receiver.requestsSent(), int(ranges.size()));
    }
}

TEST_P(LoopbackModels, ALostAnswerIsAskedForAgain) {
    DeviceLink link(GetParam(), {});
    const std::vector<DumpMap::Range> first{link.map.mappedRanges().front()};
    midi.loseMessage(2); // the first answer to the first request
    DumpReceiver receiver(link.readOptions(first, 1), link.base, link.in, &link.requests);
    EXPECT_TRUE(read(receiver)) << receiver.error().toStdString();
    EXPECT_TRUE(link.holdsDevice(receiver.assembler().image(), first));
    EXPECT_EQ(receiver.requestsSent(), 2);
}

TEST_P(LoopbackModels, ASilentDeviceIsAskedAgainThenReported) {
    DeviceSimulator::Options silent;
    silent.stopAfter = 0;
    DeviceLink link(GetParam(), silent);
    DumpReceiver receiver(link.readOptions({link.map.mappedRanges().front()}, 1), link.base,
                          link.in, &link.requests);
    EXPECT_FALSE(read(receiver));
    EXPECT_EQ(receiver.requestsSent(), 2);
    EXPECT_TRUE(receiver.error().startsWith("no answer for ")) << receiver.error().toStdString();
}

TEST_F(Loopback, AnswersWithBadChecksumsAreCountedAndNothingOfThemIsTaken) {
    DeviceSimulator::Options corrupt;
    corrupt.corruptChecksums = true;
    DeviceLink link(6, corrupt);
    DumpReceiver receiver(link.readOptions({link.map.mappedRanges().front()}, 1), link.base,
                          link.in, &link.requests);
    EXPECT_FALSE(read(receiver));
    EXPECT_TRUE(receiver.error().startsWith("no answer for ")) << receiver.error().toStdString();
    EXPECT_TRUE(receiver.error().endsWith(" message(s) with a bad checksum)"))
        << receiver.error().toStdString();
    EXPECT_EQ(receiver.assembler().image(), link.base);
}

// What a read-back after a send found, and what the device holds otherwise than was sent, by
// parameter.
struct ReadBack {
    SendVerifier::Outcome outcome = SendVerifier::Outcome::Running;
    QString error;
    std::vector<int> differing;
    QStringList lines, heldOtherwise;
};

// The first of three neighbouring messages from the middle of the model's transmission.
std::size_t middleMessages(int model) {
    const std::vector<ScheduledMessage>& all = DumpMap::of(model).transmission();
    std::size_t first = all.size() / 2;
    while (all[first + 2].start + all[first + 2].length > kImageSize)
        --first;
    return first;
}

// Sends the three middle messages, every byte changed from what the device holds, and reads
// them back.
ReadBack sendAndVerify(int model, DeviceSimulator::Options options) {
    DeviceLink link(model, options);
    const std::vector<ScheduledMessage>& all = link.map.transmission();
    const std::size_t first = middleMessages(model);
    const QByteArray before = link.device->image();
    const QByteArray header = Sysex::defaultHeader(model);
    SendVerifier verifier(model, header, Sysex::requestHeaderFor(header), before);
    QByteArray image = before;
    for (std::size_t n = first; n < first + 3; ++n) {
        const ScheduledMessage& m = all[n];
        for (int i = m.start; i < m.start + m.length; ++i)
            image[i] = char((image[i] + 3) & 0x0F);
        const QByteArray message =
            Sysex::frame(header, m.address,
                         m.data({reinterpret_cast<const std::uint8_t*>(image.constData()),
                                 std::size_t(image.size())}));
        link.requests.enqueue(message);
        verifier.sent(message);
    }
    ReadBack r;
    if (!QTest::qWaitFor(
            [&] {
                return link.device->taken() + link.device->rejected() + link.device->dropped() == 3;
            },
            kWaitMs))
        return r;
    QSignalSpy finished(&verifier, &SendVerifier::finished);
    verifier.start(link.in, link.requests);
    if (!finished.wait(kWaitMs)) return r;
    return {verifier.outcome(), verifier.error(), verifier.differingBytes(),
            verifier.differenceLines(),
            differenceLines(model, verifier.sentImage(), link.device->image())};
}

TEST_P(LoopbackModels, ReadBackAfterASendSaysVerifiedOrListsWhatTheDeviceHoldsOtherwise) {
    const int model = GetParam();
    EXPECT_EQ(sendAndVerify(model, {}).outcome, SendVerifier::Outcome::Verified);

    // A byte the device keeps: that byte, and its one parameter.
    const ScheduledMessage& middle = DumpMap::of(model).transmission()[middleMessages(model) + 1];
    DeviceSimulator::Options keeps;
    keeps.keepByte = middle.start;
    ReadBack r = sendAndVerify(model, keeps);
    EXPECT_EQ(r.outcome, SendVerifier::Outcome::Differs);
    EXPECT_EQ(r.differing, std::vector{keeps.keepByte});
    EXPECT_EQ(r.lines.size(), 1) << qPrintable(r.lines.join('\n'));
    EXPECT_EQ(r.lines, r.heldOtherwise);

    // A message lost on the way: exactly the settings it carried.
    DeviceSimulator::Options drops;
    drops.dropMessage = 2;
    r = sendAndVerify(model, drops);
    EXPECT_EQ(r.outcome, SendVerifier::Outcome::Differs);
    ASSERT_FALSE(r.differing.empty());
    for (int i : r.differing)
        EXPECT_TRUE(i >= middle.start && i < middle.start + middle.length) << i;
    EXPECT_FALSE(r.lines.isEmpty());
    EXPECT_EQ(r.lines, r.heldOtherwise);

    DeviceSimulator::Options silent;
    silent.stopAfter = 0;
    r = sendAndVerify(model, silent);
    EXPECT_EQ(r.outcome, SendVerifier::Outcome::NoAnswer);
    EXPECT_TRUE(r.error.startsWith("no answer for the GT-")) << qPrintable(r.error);
}

INSTANTIATE_TEST_SUITE_P(Models, LoopbackModels, ::testing::ValuesIn(kModels));

} // namespace
