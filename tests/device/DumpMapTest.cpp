// The dump map and the assembler: a transmission read back through the map gives the image
// again, whatever the chunking, and nothing outside the map is ever written.

#include "device/DumpMap.h"
#include "device/DumpAssembler.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"

#include "ImageSpans.h"
#include "QtPrinters.h"

#include <gtest/gtest.h>

#include <random>

using namespace ferrule;

namespace {

// One address unit of the stream a transmission sends: its linear address and data byte.
struct Unit {
    int address;
    char data;
};

std::vector<Unit> unitsOf(const QByteArray& image, int model) {
    std::vector<Unit> units;
    for (const ScheduledMessage& m : DumpMap::of(model).transmission()) {
        if (m.start + m.length > kImageSize) continue;
        const QByteArray data = m.data(bytesOf(image));
        for (int i = 0; i < data.size(); ++i)
            units.push_back({linearAddress(m.address) + i, data[i]});
    }
    return units;
}

} // namespace

TEST(DumpMap, ATransmissionReadBackInAnyChunkingGivesTheSentBytesAndKeepsTheRest) {
    std::mt19937 random(20261123);
    for (int model : kModels) {
        SCOPED_TRACE(model);
        const DumpMap& map = DumpMap::of(model);
        for (int round = 0; round < 3; ++round) {
            const QByteArray source = randomImage(random);
            const QByteArray target = randomImage(random);
            // Which image bytes the transmission carries, from the schedule's messages.
            std::vector<bool> sent(kImageSize, false);
            for (const ScheduledMessage& m : map.transmission())
                for (int i = 0; i < m.length && m.start + i < kImageSize; ++i)
                    sent[std::size_t(m.start + i)] = true;

            // The stream by address, cut into random runs of neighbouring addresses: a block
            // as several messages, neighbouring blocks as one, nibble pairs split apart.
            std::vector<Unit> units = unitsOf(source, model);
            std::ranges::sort(units, {}, &Unit::address);
            DumpAssembler assembler(model, target);
            std::size_t i = 0;
            while (i < units.size()) {
                const std::size_t want = 1 + random() % 300;
                std::size_t j = i + 1;
                while (j < units.size() && j - i < want &&
                       units[j].address == units[j - 1].address + 1)
                    ++j;
                QByteArray data;
                for (std::size_t k = i; k < j; ++k)
                    data.append(units[k].data);
                ASSERT_TRUE(assembler.apply(packedAddress(units[i].address), data).ok());
                i = j;
            }
            ASSERT_TRUE(assembler.complete());
            EXPECT_TRUE(assembler.missing().empty());
            const QByteArray& result = assembler.image();
            int wrong = 0;
            for (int b = 0; b < kImageSize; ++b)
                wrong += result[b] != (sent[std::size_t(b)] ? source[b] : target[b]);
            EXPECT_EQ(wrong, 0);
        }
    }
}

TEST(DumpMap, KnowsWhatTheScheduleLeavesOutAndWhatLiesBeyondTheImage) {
    // GT-5: the byte at offset 70 of each user entry is never sent, so it keeps its value.
    const DumpMap& gt5 = DumpMap::of(5);
    for (int e = 0; e < 5; ++e) {
        const int index = 5537 + 132 * e + 70;
        for (const DumpMap::Block& b : gt5.blocks())
            EXPECT_FALSE(b.inImage && index >= b.start &&
                         index < b.start + (b.nibbles ? b.units / 2 : b.units))
                << index;
    }
    // GT-10: the last entry's parts 7-9 lie past the image end. Their addresses are known and
    // taken without writing anything.
    const DumpMap& gt10 = DumpMap::of(10);
    const int part7 = linearAddress(AddressAdd(0x30004000 + 0x10000 * 9, 0, 242));
    const auto beyond = gt10.locate(part7);
    ASSERT_TRUE(beyond.has_value());
    EXPECT_EQ(beyond->index, -1);
    const QByteArray image(kImageSize, char(5));
    DumpAssembler assembler(10, image);
    EXPECT_TRUE(assembler.apply(packedAddress(part7), QByteArray(242, char(9))).ok());
    EXPECT_EQ(assembler.image(), image);
    EXPECT_EQ(assembler.unitsReceived(), 0);
    // The sixth part of the last entry ends exactly at the image end.
    const auto last = gt10.locate(linearAddress(0x30090B71) + 241);
    ASSERT_TRUE(last.has_value());
    EXPECT_EQ(last->index, kImageSize - 1);
    // The map never overlaps itself, and the mapped ranges cover exactly the mapped units.
    for (int model : kModels) {
        const DumpMap& map = DumpMap::of(model);
        int covered = 0;
        for (std::size_t i = 1; i < map.blocks().size(); ++i)
            EXPECT_LE(map.blocks()[i - 1].end(), map.blocks()[i].address) << model;
        for (const DumpMap::Range& r : map.mappedRanges())
            covered += r.units;
        EXPECT_EQ(covered, map.mappedUnits()) << model;
    }
}

TEST(DumpMap, AMessageOutsideTheMapOrWithABadNibbleChangesNothing) {
    const QByteArray image(kImageSize, char(3));
    DumpAssembler assembler(8, image);
    // An address between two blocks, a block overrun by one byte, an address of another model.
    const DumpMap::Block first = DumpMap::of(8).blocks()[0];
    EXPECT_EQ(assembler.apply(packedAddress(first.address), QByteArray(first.units + 1, 1)).outcome,
              DumpAssembler::Outcome::UnknownAddress);
    EXPECT_EQ(assembler.apply(0x7F7F7F00, QByteArray(4, 1)).outcome,
              DumpAssembler::Outcome::UnknownAddress);
    // GT-8 field-major tables are sent as nibbles: a data byte above 0F is refused.
    const auto nibble = std::ranges::find_if(DumpMap::of(8).blocks(), &DumpMap::Block::nibbles);
    QByteArray data(nibble->units, char(1));
    data[3] = char(0x10);
    const DumpAssembler::Result bad = assembler.apply(packedAddress(nibble->address), data);
    EXPECT_EQ(bad.outcome, DumpAssembler::Outcome::BadNibble);
    EXPECT_EQ(bad.badOffset, 3);
    EXPECT_EQ(assembler.image(), image);
    EXPECT_EQ(assembler.unitsReceived(), 0);
    // A nibble pair split across two messages joins into one byte.
    assembler.apply(packedAddress(nibble->address), QByteArray(1, char(0xA)));
    assembler.apply(packedAddress(nibble->address + 1), QByteArray(1, char(0x5)));
    EXPECT_EQ(static_cast<unsigned char>(assembler.image()[nibble->start]), 0xA5);
    // What is missing is named by address.
    EXPECT_EQ(assembler.missing().front().address, DumpMap::of(8).blocks()[0].address);
}

TEST(DumpMap, RandomMidiInputChangesTheImageOnlyThroughGoodMessages) {
    // A bounded fuzz of what a MIDI input hands over: random messages, and good ones with one
    // byte changed. The image changes only when a message parses, its checksum holds and every
    // address it covers is mapped.
    std::mt19937 random(77);
    const QByteArray header = Sysex::defaultHeader(8);
    const QByteArray base(kImageSize, char(1));
    DumpAssembler assembler(8, base);
    const auto& blocks = DumpMap::of(8).blocks();
    for (int n = 0; n < 5000; ++n) {
        QByteArray message;
        if (n % 2) {
            const DumpMap::Block& b = blocks[random() % blocks.size()];
            QByteArray data(b.units, 0);
            for (auto& d : data)
                d = char(random() % (b.nibbles ? 16 : 128));
            message = Sysex::frame(header, packedAddress(b.address), data);
            message[qsizetype(random() % std::size_t(message.size()))] = char(random());
        } else {
            message.resize(qsizetype(random() % 40));
            for (auto& c : message)
                c = char(random());
        }
        const QByteArray before = assembler.image();
        const Sysex::Message m = Sysex::parse(message, header);
        const bool applied = m.ok() && assembler.apply(m.address, m.payload).ok();
        if (!applied) {
            ASSERT_EQ(assembler.image(), before) << message.toHex(' ').constData();
        }
        if (m.ok()) {
            const QByteArray body =
                message.mid(1 + header.size(), message.size() - header.size() - 3);
            ASSERT_EQ(Sysex::checksum(body), m.checksum);
        }
    }
}
