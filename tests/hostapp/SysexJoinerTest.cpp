// The MIDI input's events put together into messages, as JACK may cut a dump.

#include "SysexJoiner.h"
#include "device/SysexCodec.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <vector>

using namespace ferrule;

namespace {

std::vector<QByteArray> joined(const std::vector<QByteArray>& events) {
    std::vector<QByteArray> out;
    SysexJoiner joiner(
        [](const unsigned char* bytes, std::size_t size, void* context) {
            static_cast<std::vector<QByteArray>*>(context)->emplace_back(
                reinterpret_cast<const char*>(bytes), qsizetype(size));
        },
        &out);
    for (const QByteArray& e : events)
        joiner.take(reinterpret_cast<const unsigned char*>(e.constData()), std::size_t(e.size()));
    return out;
}

} // namespace

TEST(SysexJoiner, AMessageCutAnywhereIsPutTogetherWhole) {
    // Found by the fuzzer: the last piece may be the F7 alone.
    const QByteArray message = Sysex::frame(Sysex::defaultHeader(8), 0x01020304, "\x05\x06\x07");
    const QByteArray note("\x90\x40\x7F", 3);
    for (qsizetype cut = 1; cut < message.size(); ++cut) {
        const std::vector<QByteArray> events = {message.left(cut), message.mid(cut), note};
        EXPECT_EQ(joined(events), (std::vector<QByteArray>{message, note})) << "cut at " << cut;
    }
    // A status byte abandons the message under way; the next one is whole again.
    EXPECT_EQ(joined({message.left(5), note, message}), (std::vector<QByteArray>{note, message}));
}
