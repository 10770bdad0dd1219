// The MIDI ports and what is built on them, over the loopback driver: pacing, request and
// answer, receive in any chunking, read-back after a send, and the failures; no MIDI system.
#include "DeviceSimulator.h"
#include "LoopbackDriver.h"
#include "MidiInput.h"
#include "MidiModule.h"
#include "MidiOutput.h"
#include "PacedOutput.h"
#include "WireTime.h"
#include "device/DefaultImage.h"
#include "device/DeviceAddress.h"
#include "device/DumpMap.h"
#include "device/ModelDescription.h"
#include "device/SysexCodec.h"
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

// The loopback driver in place of the MIDI module for one test, cutting every message into
// events of random sizes.
class Loopback : public ::testing::Test {
protected:
    Loopback() {
        midi.setPieces([this](std::size_t left) {
            return std::uniform_int_distribution<std::size_t>(1, left)(random);
        });
        useMidiDriver(&midi);
    }
    ~Loopback() override { useMidiDriver(nullptr); }

    std::mt19937 random{20};
    LoopbackDriver midi;
};

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
        options.model = model;
        options.header = Sysex::defaultHeader(model);
        options.requestHeader = Sysex::requestHeaderFor(options.header);
        device = std::make_unique<DeviceSimulator>(options, held);
        QString error;
        EXPECT_TRUE(device->open(MidiApi::Alsa, "dev", &error) &&
                    in.open(MidiApi::Alsa, "host", "dev out", &error) &&
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

// Sends the first mapped block of the model with new values and reads it back.
SendVerifier::Outcome sendAndVerify(DeviceLink& link, SendVerifier& verifier) {
    const DumpMap::Block& block = link.map.blocks().front();
    QByteArray data(block.units, '\0');
    for (int i = 0; i < data.size(); ++i)
        data[i] =
            char((link.device->image()[block.start + (block.nibbles ? i / 2 : i)] + 3 + i) & 0x0F);
    const QByteArray message =
        Sysex::frame(Sysex::defaultHeader(link.map.model()), packedAddress(block.address), data);
    link.requests.enqueue(message);
    verifier.sent(message);
    if (!QTest::qWaitFor([&] { return link.device->taken() + link.device->rejected() == 1; },
                         kWaitMs))
        return SendVerifier::Outcome::Running;
    QSignalSpy finished(&verifier, &SendVerifier::finished);
    verifier.start(link.in, link.requests);
    if (!finished.wait(kWaitMs)) return SendVerifier::Outcome::Running;
    return verifier.outcome();
}

TEST_P(LoopbackModels, ReadBackAfterASendSaysVerifiedDiffersOrNoAnswer) {
    const int model = GetParam();
    const auto verify = [&](DeviceSimulator::Options options) {
        DeviceLink link(model, options);
        SendVerifier verifier(model, Sysex::defaultHeader(model),
                              Sysex::requestHeaderFor(Sysex::defaultHeader(model)), link.base);
        return std::pair{sendAndVerify(link, verifier), verifier.differingBytes()};
    };
    EXPECT_EQ(verify({}).first, SendVerifier::Outcome::Verified);
    DeviceSimulator::Options keeps;
    keeps.keepByte = DumpMap::of(model).blocks().front().start;
    const auto [outcome, differing] = verify(keeps);
    EXPECT_EQ(outcome, SendVerifier::Outcome::Differs);
    EXPECT_EQ(differing, std::vector{keeps.keepByte});
    DeviceSimulator::Options silent;
    silent.stopAfter = 0;
    EXPECT_EQ(verify(silent).first, SendVerifier::Outcome::NoAnswer);
}

INSTANTIATE_TEST_SUITE_P(Models, LoopbackModels, ::testing::ValuesIn(kModels));

} // namespace
