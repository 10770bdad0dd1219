#include "TransmissionSchedule.h"

#include <array>
#include <numeric>
#include <span>

namespace ferrule {

void SplitNibbles(QByteArray& destination, ImageBytes image, int start, int count) {
    for (int i = 0; i < count; ++i) {
        const int byte = image[std::size_t(start + i)];
        destination.append(char(byte >> 4));
        destination.append(char(byte & 15));
    }
}

QByteArray ScheduledMessage::data(ImageBytes image) const {
    QByteArray out;
    if (nibbles) {
        out.reserve(2 * length);
        SplitNibbles(out, image, start, length);
    } else {
        out.reserve(length);
        for (int i = 0; i < length; ++i)
            out.append(char(image[std::size_t(start + i)]));
    }
    return out;
}

namespace {

// How a row of a schedule makes the messages of its steps; k = step - first.
enum class Shape {
    // count messages i = 0..count-1: image from start + k × kStride + i × iStride, `length`
    // bytes; address base + kAddress × (k mod modulus) + kAddress2 × (k div modulus) + i ×
    // iAddress.
    Blocks,
    // As Blocks, but the address is AddressAdd(base, k, kAddress) (linear units).
    LinearBlocks,
    // One entry per step (entry k from start + k × kStride), one message per field i with the
    // lengths of `fields`, one after another; address base + k × kAddress + i × iAddress.
    EntryFields,
    // Field k of `count` entries (entry i from start + i × iStride), at the field's `offsets`;
    // address base + i × iAddress + k × kAddress.
    FieldOfEntries,
    // Field k of `count` entries stored field by field: field f starts at start + count ×
    // (sum of the lengths before f); entry i's copy at that start + i × length(k).
    FieldMajor,
};

struct Row {
    int first, last;
    Shape shape;
    int count;
    int start, kStride, iStride, length;
    int base, kAddress, kAddress2, modulus, iAddress;
    bool nibbles;
    std::span<const int> fields = {};
    std::span<const int> offsets = {};
};

constexpr Row block(int first, int last, int start, int length, int base, int kStride = 0,
                    int kAddress = 0, int modulus = 1, int kAddress2 = 0) {
    // With a modulus of 1, k mod 1 is 0 and k div 1 is k: kAddress2 carries the step.
    return {first,
            last,
            Shape::Blocks,
            1,
            start,
            kStride,
            0,
            length,
            base,
            modulus == 1 ? 0 : kAddress,
            modulus == 1 ? kAddress : kAddress2,
            modulus,
            0,
            false};
}
constexpr Row entries(int first, int last, int count, int start, int kStride, int iStride,
                      int length, int base, int kAddress, int iAddress) {
    return {first, last, Shape::Blocks, count, start,    kStride, iStride, length,
            base,  0,    kAddress,      1,     iAddress, false};
}

// GT-3.
constexpr int kGt3Fields[] = {10, 5, 9, 5, 12, 9, 19, 7, 6, 7, 6, 7, 15};
constexpr Row kGt3[] = {
    block(0, 0, 0, 2, 0x00000000),
    block(1, 1, 2, 5, 0x01000000),
    block(2, 2, 7, 7, 0x01020000),
    block(3, 3, 14, 10, 0x01030000),
    block(4, 19, 24, 64, 0x01031000, 64, 0x40, 2, 0x100),
    block(20, 48, 1048, 12, 0x01040000, 12, 0x100),
    block(49, 58, 1396, 192, 0x01050000, 192, 0x200),
    block(59, 59, 3316, 6, 0x02000000),
    {60, 63, Shape::EntryFields, 13, 3322, 117, 0, 0, 0x03000000, 0x10000, 0, 1, 0x100, true,
     kGt3Fields},
    entries(64, 67, 13, 3790, 143, 11, 11, 0x05000000, 0x10000, 0x100),
};

// GT-5. The fields of a user entry by offset and length; the byte at offset 70 is not sent.
constexpr int kGt5Offsets[] = {0, 7, 12, 21, 26, 35, 39, 48, 71, 84, 90, 95, 102, 108, 116};
constexpr int kGt5Lengths[] = {7, 5, 9, 5, 9, 4, 9, 22, 13, 6, 5, 7, 6, 8, 16};
constexpr Row kGt5[] = {
    block(0, 0, 4362, 3, 0x00000000),
    block(1, 1, 4365, 6, 0x01000000),
    block(2, 2, 4371, 5, 0x01010000),
    block(3, 3, 4376, 6, 0x01020000),
    block(4, 9, 4382, 128, 0x01021000, 128, 0x100),
    block(10, 11, 5150, 128, 0x01030000, 128, 0x100),
    block(12, 12, 5406, 92, 0x01030200),
    block(13, 13, 5498, 14, 0x01040000),
    block(14, 14, 5512, 20, 0x01050000),
    block(15, 15, 5532, 5, 0x02000000),
    {16, 30, Shape::FieldOfEntries, 5, 5537, 0, 132, 0, 0x03000000, 0x100, 0, 1, 0x10000, false,
     kGt5Lengths, kGt5Offsets},
    entries(31, 45, 5, 6197, 11, 165, 11, 0x05000000, 0x100, 0x10000),
};

// GT-6.
constexpr Row kGt6[] = {
    block(0, 0, 7022, 2, 0x00000000),
    block(1, 1, 7024, 1, 0x01000000),
    block(2, 2, 7025, 4, 0x02000000),
    block(3, 3, 7029, 10, 0x02010000),
    block(4, 4, 7039, 11, 0x02020000),
    block(5, 20, 7050, 64, 0x02021000, 64, 0x40, 2, 0x100),
    block(21, 49, 8074, 12, 0x02040000, 12, 0x100),
    block(50, 59, 8422, 192, 0x02050000, 192, 0x200),
    block(60, 62, 10342, 9, 0x02060000, 9, 0x100),
    block(63, 64, 10369, 5, 0x02070000, 5, 0x100),
    block(65, 67, 10379, 5, 0x02080000, 5, 0x100),
    block(68, 68, 10394, 6, 0x03000000),
};

// GT-8. Two field-major tables of user entries.
constexpr int kGt8Fields5[] = {5, 6, 7, 7, 5,  5,  3,  8, 8, 3, 4, 3, 4,  2, 7, 7, 7,
                               6, 8, 3, 8, 11, 12, 13, 5, 3, 6, 9, 9, 17, 7, 3, 4};
constexpr int kGt8Fields10[] = {7, 3, 3, 6, 17, 11, 24, 7, 8, 15};
constexpr Row kGt8[] = {
    block(0, 0, 10400, 2, 0x00000000),
    block(1, 1, 10402, 1, 0x01000000),
    block(2, 2, 10403, 6, 0x01000001),
    block(3, 3, 10409, 19, 0x01030000),
    block(4, 4, 10428, 12, 0x01040000),
    block(5, 20, 10440, 64, 0x01041000, 64, 0x40, 2, 0x100),
    block(21, 21, 11464, 1, 0x01050000),
    block(22, 22, 11465, 40, 0x01100000),
    block(23, 23, 11505, 6, 0x02000000),
    block(24, 52, 11511, 12, 0x03000000, 12, 0x100),
    block(53, 62, 11859, 192, 0x03010000, 192, 0x200),
    block(63, 65, 13779, 7, 0x03020000, 7, 0x100),
    block(66, 67, 13800, 5, 0x03030000, 5, 0x100),
    block(68, 70, 13810, 5, 0x03040000, 5, 0x100),
    block(71, 73, 13825, 5, 0x03050000, 5, 0x100),
    {74, 106, Shape::FieldMajor, 5, 13840, 0, 0, 0, 0x04000000, 0x100, 0, 1, 0x10000, true,
     kGt8Fields5},
    {107, 116, Shape::FieldMajor, 10, 14915, 0, 0, 0, 0x04004000, 0x200, 0, 1, 0x10000, true,
     kGt8Fields10},
    entries(117, 149, 5, 15925, 60, 12, 12, 0x06000000, 0x100, 0x10000),
    entries(150, 159, 10, 17905, 120, 12, 12, 0x06004000, 0x200, 0x10000),
};

// GT-10. Steps 9-108 send the ten parts of ten user entries (2293 bytes apart).
struct Part {
    int offset, length, base, count;
};
constexpr Part kGt10Parts[] = {
    {20922, 242, 0x30000000, 0},        {20922 + 242, 242, 0x30000000, 1},
    {20922 + 484, 242, 0x30000000, 2},  {20922 + 726, 242, 0x30000600, 0},
    {20922 + 968, 242, 0x30000600, 1},  {20922 + 1210, 241, 0x30000A00, 0},
    {20921 + 1452, 242, 0x30000B71, 0}, {20921 + 1694, 242, 0x30004000, 0},
    {20921 + 1936, 242, 0x30004000, 1}, {20921 + 2178, 84, 0x30004000, 2},
};
constexpr Row kGt10[] = {
    block(0, 0, 19105, 241, 0x00000000),
    block(1, 1, 19346, 141, 0x00000171),
    block(2, 2, 19487, 205, 0x00010000),
    block(3, 3, 19692, 77, 0x00010200),
    {4, 7, Shape::LinearBlocks, 1, 19769, 242, 0, 242, 0x00020000, 242, 0, 1, 0, false},
    {8, 8, Shape::LinearBlocks, 1, 20737, 0, 0, 184, AddressAdd(0x00020000, 4, 242), 0, 0, 1, 0,
     false},
};

std::span<const Row> rowsOf(int model) {
    switch (model) {
    case 3:
        return kGt3;
    case 5:
        return kGt5;
    case 6:
        return kGt6;
    case 8:
        return kGt8;
    case 10:
        return kGt10;
    default:
        return {};
    }
}

void appendRow(std::vector<ScheduledMessage>& out, const Row& r, int k) {
    switch (r.shape) {
    case Shape::Blocks:
        for (int i = 0; i < r.count; ++i)
            out.push_back({r.base + r.kAddress * (k % r.modulus) + r.kAddress2 * (k / r.modulus) +
                               i * r.iAddress,
                           r.start + k * r.kStride + i * r.iStride, r.length, r.nibbles});
        break;
    case Shape::LinearBlocks:
        out.push_back(
            {AddressAdd(r.base, k, r.kAddress), r.start + k * r.kStride, r.length, r.nibbles});
        break;
    case Shape::EntryFields: {
        int at = r.start + k * r.kStride;
        for (int i = 0; i < int(r.fields.size()); ++i) {
            out.push_back({r.base + k * r.kAddress + i * r.iAddress, at, r.fields[std::size_t(i)],
                           r.nibbles});
            at += r.fields[std::size_t(i)];
        }
        break;
    }
    case Shape::FieldOfEntries:
        for (int i = 0; i < r.count; ++i)
            out.push_back({r.base + i * r.iAddress + k * r.kAddress,
                           r.start + i * r.iStride + r.offsets[std::size_t(k)],
                           r.fields[std::size_t(k)], r.nibbles});
        break;
    case Shape::FieldMajor: {
        const int before = std::accumulate(r.fields.begin(), r.fields.begin() + k, 0);
        const int length = r.fields[std::size_t(k)];
        for (int i = 0; i < r.count; ++i)
            out.push_back({r.base + i * r.iAddress + k * r.kAddress,
                           r.start + r.count * before + i * length, length, r.nibbles});
        break;
    }
    }
}

} // namespace

namespace TransmissionSchedule {

int stepTotal(int model) {
    switch (model) {
    case 3:
        return 68;
    case 5:
        return 46;
    case 6:
        return 69;
    case 8:
        return 160;
    case 10:
        return 109;
    default:
        return 0;
    }
}

std::vector<ScheduledMessage> messages(int model, int step) {
    std::vector<ScheduledMessage> out;
    if (model == 10 && step >= 9 && step <= 108) {
        const int entry = (step - 9) / 10;
        const Part& part = kGt10Parts[(step - 9) % 10];
        out.push_back({AddressAdd(part.base + 0x10000 * entry, part.count, 242),
                       part.offset + 2293 * entry, part.length, false});
        return out;
    }
    for (const Row& r : rowsOf(model))
        if (step >= r.first && step <= r.last) appendRow(out, r, step - r.first);
    return out;
}

} // namespace TransmissionSchedule
} // namespace ferrule
