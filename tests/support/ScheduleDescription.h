#pragma once

// The messages a whole transmission must send, written out step by step from the models'
// schedule tables, independently of the plug-in's own schedule rows.

#include <gtest/gtest.h>

#include <vector>

namespace schedule {

// What a transmission must send, written out step by step from the models' tables.
struct Expected {
    int step;
    int address;
    int start;
    int length;
    bool nibbles;
};

inline int pack(int a, int b, int c, int d) {
    return (a << 24) | (b << 16) | (c << 8) | d;
}
inline int addLinear(int packed, int units) {
    int lin = ((packed >> 24) & 127) * 2097152 + ((packed >> 16) & 127) * 16384 +
              ((packed >> 8) & 127) * 128 + (packed & 127);
    lin += units;
    return pack((lin >> 21) & 127, (lin >> 14) & 127, (lin >> 7) & 127, lin & 127);
}

inline std::vector<Expected> describe(int model) {
    std::vector<Expected> e;
    auto one = [&](int s, int addr, int from, int to) {
        e.push_back({s, addr, from, to - from + 1, false});
    };
    switch (model) {
    case 3: {
        one(0, 0, 0, 1);
        one(1, 0x01000000, 2, 6);
        one(2, 0x01020000, 7, 13);
        one(3, 0x01030000, 14, 23);
        for (int s = 4; s <= 19; ++s)
            e.push_back({s, 0x01031000 + 0x40 * ((s - 4) % 2) + 0x100 * ((s - 4) / 2),
                         24 + 64 * (s - 4), 64, false});
        for (int s = 20; s <= 48; ++s)
            e.push_back({s, 0x01040000 + 0x100 * (s - 20), 1048 + 12 * (s - 20), 12, false});
        for (int s = 49; s <= 58; ++s)
            e.push_back({s, 0x01050000 + 0x200 * (s - 49), 1396 + 192 * (s - 49), 192, false});
        one(59, 0x02000000, 3316, 3321);
        const int lengths[] = {10, 5, 9, 5, 12, 9, 19, 7, 6, 7, 6, 7, 15};
        for (int s = 60; s <= 63; ++s) {
            int at = 3322 + 117 * (s - 60);
            for (int f = 0; f < 13; ++f) {
                e.push_back({s, 0x03000000 + 0x10000 * (s - 60) + 0x100 * f, at, lengths[f], true});
                at += lengths[f];
            }
        }
        for (int s = 64; s <= 67; ++s)
            for (int c = 0; c < 13; ++c)
                e.push_back({s, 0x05000000 + 0x10000 * (s - 64) + 0x100 * c,
                             3790 + 143 * (s - 64) + 11 * c, 11, false});
        break;
    }
    case 5: {
        one(0, 0, 4362, 4364);
        one(1, 0x01000000, 4365, 4370);
        one(2, 0x01010000, 4371, 4375);
        one(3, 0x01020000, 4376, 4381);
        for (int s = 4; s <= 9; ++s)
            e.push_back({s, 0x01021000 + 0x100 * (s - 4), 4382 + 128 * (s - 4), 128, false});
        for (int s = 10; s <= 11; ++s)
            e.push_back({s, 0x01030000 + 0x100 * (s - 10), 5150 + 128 * (s - 10), 128, false});
        one(12, 0x01030200, 5406, 5497);
        one(13, 0x01040000, 5498, 5511);
        one(14, 0x01050000, 5512, 5531);
        one(15, 0x02000000, 5532, 5536);
        const int fields[15][2] = {{0, 7},  {7, 5},  {12, 9},  {21, 5},  {26, 9},
                                   {35, 4}, {39, 9}, {48, 22}, {71, 13}, {84, 6},
                                   {90, 5}, {95, 7}, {102, 6}, {108, 8}, {116, 16}};
        for (int s = 16; s <= 30; ++s)
            for (int en = 0; en < 5; ++en)
                e.push_back({s, 0x03000000 + 0x10000 * en + 0x100 * (s - 16),
                             5537 + 132 * en + fields[s - 16][0], fields[s - 16][1], false});
        for (int s = 31; s <= 45; ++s)
            for (int en = 0; en < 5; ++en)
                e.push_back({s, 0x05000000 + 0x10000 * en + 0x100 * (s - 31),
                             6197 + 165 * en + 11 * (s - 31), 11, false});
        break;
    }
    case 6: {
        one(0, 0, 7022, 7023);
        one(1, 0x01000000, 7024, 7024);
        one(2, 0x02000000, 7025, 7028);
        one(3, 0x02010000, 7029, 7038);
        one(4, 0x02020000, 7039, 7049);
        for (int s = 5; s <= 20; ++s)
            e.push_back({s, 0x02021000 + 0x40 * ((s - 5) % 2) + 0x100 * ((s - 5) / 2),
                         7050 + 64 * (s - 5), 64, false});
        for (int s = 21; s <= 49; ++s)
            e.push_back({s, 0x02040000 + 0x100 * (s - 21), 8074 + 12 * (s - 21), 12, false});
        for (int s = 50; s <= 59; ++s)
            e.push_back({s, 0x02050000 + 0x200 * (s - 50), 8422 + 192 * (s - 50), 192, false});
        for (int s = 60; s <= 62; ++s)
            e.push_back({s, 0x02060000 + 0x100 * (s - 60), 10342 + 9 * (s - 60), 9, false});
        for (int s = 63; s <= 64; ++s)
            e.push_back({s, 0x02070000 + 0x100 * (s - 63), 10369 + 5 * (s - 63), 5, false});
        for (int s = 65; s <= 67; ++s)
            e.push_back({s, 0x02080000 + 0x100 * (s - 65), 10379 + 5 * (s - 65), 5, false});
        one(68, 0x03000000, 10394, 10399);
        break;
    }
    case 8: {
        one(0, 0, 10400, 10401);
        one(1, 0x01000000, 10402, 10402);
        one(2, 0x01000001, 10403, 10408);
        one(3, 0x01030000, 10409, 10427);
        one(4, 0x01040000, 10428, 10439);
        for (int s = 5; s <= 20; ++s)
            e.push_back({s, 0x01041000 + 0x40 * ((s - 5) % 2) + 0x100 * ((s - 5) / 2),
                         10440 + 64 * (s - 5), 64, false});
        one(21, 0x01050000, 11464, 11464);
        one(22, 0x01100000, 11465, 11504);
        one(23, 0x02000000, 11505, 11510);
        for (int s = 24; s <= 52; ++s)
            e.push_back({s, 0x03000000 + 0x100 * (s - 24), 11511 + 12 * (s - 24), 12, false});
        for (int s = 53; s <= 62; ++s)
            e.push_back({s, 0x03010000 + 0x200 * (s - 53), 11859 + 192 * (s - 53), 192, false});
        for (int s = 63; s <= 65; ++s)
            e.push_back({s, 0x03020000 + 0x100 * (s - 63), 13779 + 7 * (s - 63), 7, false});
        for (int s = 66; s <= 67; ++s)
            e.push_back({s, 0x03030000 + 0x100 * (s - 66), 13800 + 5 * (s - 66), 5, false});
        for (int s = 68; s <= 70; ++s)
            e.push_back({s, 0x03040000 + 0x100 * (s - 68), 13810 + 5 * (s - 68), 5, false});
        for (int s = 71; s <= 73; ++s)
            e.push_back({s, 0x03050000 + 0x100 * (s - 71), 13825 + 5 * (s - 71), 5, false});
        const std::vector<int> five = {5, 6, 7, 7, 5,  5,  3,  8, 8, 3, 4, 3, 4,  2, 7, 7, 7,
                                       6, 8, 3, 8, 11, 12, 13, 5, 3, 6, 9, 9, 17, 7, 3, 4};
        int fieldStart = 13840;
        for (int f = 0; f < 33; ++f) {
            for (int en = 0; en < 5; ++en)
                e.push_back({74 + f, 0x04000000 + 0x10000 * en + 0x100 * f,
                             fieldStart + en * five[f], five[f], true});
            fieldStart += 5 * five[f];
        }
        EXPECT_EQ(fieldStart, 14915) << "the second table follows the first";
        const std::vector<int> ten = {7, 3, 3, 6, 17, 11, 24, 7, 8, 15};
        fieldStart = 14915;
        for (int f = 0; f < 10; ++f) {
            for (int en = 0; en < 10; ++en)
                e.push_back({107 + f, 0x04004000 + 0x10000 * en + 0x200 * f,
                             fieldStart + en * ten[f], ten[f], true});
            fieldStart += 10 * ten[f];
        }
        for (int s = 117; s <= 149; ++s)
            for (int en = 0; en < 5; ++en)
                e.push_back({s, 0x06000000 + 0x100 * (s - 117) + 0x10000 * en,
                             15925 + 60 * (s - 117) + 12 * en, 12, false});
        for (int s = 150; s <= 159; ++s)
            for (int en = 0; en < 10; ++en)
                e.push_back({s, 0x06000000 + 0x200 * (s - 118) + 0x10000 * en,
                             17905 + 120 * (s - 150) + 12 * en, 12, false});
        break;
    }
    case 10: {
        e.push_back({0, 0, 19105, 241, false});
        e.push_back({1, 0x00000171, 19346, 141, false});
        e.push_back({2, 0x00010000, 19487, 205, false});
        e.push_back({3, 0x00010200, 19692, 77, false});
        for (int s = 4; s <= 7; ++s)
            e.push_back(
                {s, addLinear(0x00020000, 242 * (s - 4)), 19769 + 242 * (s - 4), 242, false});
        e.push_back({8, addLinear(0x00020000, 4 * 242), 20737, 184, false});
        for (int s = 9; s <= 108; ++s) {
            const int p = (s - 9) / 10, k = (s - 9) % 10, b = 2293 * p;
            const int entry = 0x10000 * p;
            if (k <= 2)
                e.push_back(
                    {s, addLinear(0x30000000 + entry, 242 * k), 20922 + b + 242 * k, 242, false});
            else if (k <= 4)
                e.push_back({s, addLinear(0x30000600 + entry, 242 * (k - 3)), 20922 + b + 242 * k,
                             242, false});
            else if (k == 5)
                e.push_back({s, 0x30000A00 + entry, 20922 + b + 1210, 241, false});
            else if (k == 6)
                e.push_back({s, 0x30000B71 + entry, 20921 + b + 1452, 242, false});
            else if (k <= 8)
                e.push_back({s, addLinear(0x30004000 + entry, 242 * (k - 7)), 20921 + b + 242 * k,
                             242, false});
            else
                e.push_back(
                    {s, addLinear(0x30004000 + entry, 2 * 242), 20921 + b + 2178, 84, false});
        }
        break;
    }
    default:
        break;
    }
    return e;
}

} // namespace schedule
