#include "ModelDescription.h"

#include "DeviceAddress.h"

#include <algorithm>
#include <initializer_list>

namespace ferrule {
namespace {

using enum ScheduleShape;

// The tabs that open their page, as a row of flags.
constexpr std::array<bool, kTabCount> opening(std::initializer_list<int> tabs) {
    std::array<bool, kTabCount> opens{};
    for (int t : tabs)
        opens[std::size_t(t)] = true;
    return opens;
}
constexpr int H = kHiddenTab;
// Tabs 0-6 in a row from the left, the rest hidden: the GT-3, GT-5 and GT-6.
constexpr std::array<int, kTabCount> kFirstSevenTabs = {60, 555, 1050, 1545, 2040, 2535, 3030,
                                                        H,  H,   H,    H,    H,    H};

namespace gt3 {
constexpr int kScales = 1048;
constexpr int kPhrases = 1396;
constexpr int kFields[] = {10, 5, 9, 5, 12, 9, 19, 7, 6, 7, 6, 7, 15};
// clang-format off
constexpr ScheduleRow kSchedule[] = {
    {.first = 0, .last = 0, .start = kGt3Start, .length = 2, .address = 0x00000000},
    {.first = 1, .last = 1, .start = 2, .length = 5, .address = 0x01000000},
    {.first = 2, .last = 2, .start = 7, .length = 7, .address = 0x01020000},
    {.first = 3, .last = 3, .start = 14, .length = 10, .address = 0x01030000},
    {.first = 4, .last = 19, .start = 24, .length = 64, .stepStride = 64, .address = 0x01031000,
     .stepAddress = 0x40, .stepsPerGroup = 2, .groupAddress = 0x100},
    {.first = 20, .last = 48, .start = kScales, .length = kScaleLength, .stepStride = kScaleLength,
     .address = 0x01040000, .stepAddress = 0x100},
    {.first = 49, .last = 58, .start = kPhrases, .length = kPhraseLength,
     .stepStride = kPhraseLength, .address = 0x01050000, .stepAddress = 0x200},
    {.first = 59, .last = 59, .start = 3316, .length = 6, .address = 0x02000000},
    {.first = 60, .last = 63, .shape = EntryFields, .start = 3322, .stepStride = 117,
     .address = 0x03000000, .stepAddress = 0x10000, .messageAddress = 0x100, .nibbles = true,
     .fields = kFields},
    {.first = 64, .last = 67, .messages = 13, .start = 3790, .length = 11, .stepStride = 143,
     .messageStride = 11, .address = 0x05000000, .stepAddress = 0x10000, .messageAddress = 0x100},
};
// clang-format on
constexpr DefaultValue kDefaults[] = {{kGt3Start, 5}, {3, 20}, {4, 20}, {5, 20}, {6, 50}, {7, 8}};
} // namespace gt3

namespace gt5 {
constexpr int kScales = 5150;
// The fields of a user entry by offset and length; the byte at offset 70 is not sent.
constexpr int kOffsets[] = {0, 7, 12, 21, 26, 35, 39, 48, 71, 84, 90, 95, 102, 108, 116};
constexpr int kLengths[] = {7, 5, 9, 5, 9, 4, 9, 22, 13, 6, 5, 7, 6, 8, 16};
// clang-format off
constexpr ScheduleRow kSchedule[] = {
    {.first = 0, .last = 0, .start = kGt5Start, .length = 3, .address = 0x00000000},
    {.first = 1, .last = 1, .start = 4365, .length = 6, .address = 0x01000000},
    {.first = 2, .last = 2, .start = 4371, .length = 5, .address = 0x01010000},
    {.first = 3, .last = 3, .start = 4376, .length = 6, .address = 0x01020000},
    {.first = 4, .last = 9, .start = 4382, .length = 128, .stepStride = 128, .address = 0x01021000,
     .stepAddress = 0x100},
    {.first = 10, .last = 11, .start = kScales, .length = 128, .stepStride = 128,
     .address = 0x01030000, .stepAddress = 0x100},
    {.first = 12, .last = 12, .start = 5406, .length = 92, .address = 0x01030200},
    {.first = 13, .last = 13, .start = 5498, .length = 14, .address = 0x01040000},
    {.first = 14, .last = 14, .start = 5512, .length = 20, .address = 0x01050000},
    {.first = 15, .last = 15, .start = 5532, .length = 5, .address = 0x02000000},
    {.first = 16, .last = 30, .shape = FieldOfEntries, .messages = 5, .start = 5537,
     .messageStride = 132, .address = 0x03000000, .stepAddress = 0x100, .messageAddress = 0x10000,
     .fields = kLengths, .offsets = kOffsets},
    {.first = 31, .last = 45, .messages = 5, .start = 6197, .length = 11, .stepStride = 11,
     .messageStride = 165, .address = 0x05000000, .stepAddress = 0x100, .messageAddress = 0x10000},
};
// clang-format on
constexpr DefaultValue kDefaults[] = {
    {kGt5Start, 5}, {4366, 20}, {4367, 20}, {4368, 20}, {4369, 50}};
} // namespace gt5

namespace gt6 {
constexpr int kMidi = 7039;
constexpr int kScales = 8074;
constexpr int kPhrases = 8422;
constexpr CustomToneLayout kCustomTones{.preamp = 10342, .preampStep = 9};
constexpr int kOverdrive = 10369;
constexpr int kWah = 10379;
// clang-format off
constexpr ScheduleRow kSchedule[] = {
    {.first = 0, .last = 0, .start = kGt6Start, .length = 2, .address = 0x00000000},
    {.first = 1, .last = 1, .start = 7024, .length = 1, .address = 0x01000000},
    {.first = 2, .last = 2, .start = 7025, .length = 4, .address = 0x02000000},
    {.first = 3, .last = 3, .start = 7029, .length = 10, .address = 0x02010000},
    {.first = 4, .last = 4, .start = kMidi, .length = 11, .address = 0x02020000},
    {.first = 5, .last = 20, .start = 7050, .length = 64, .stepStride = 64, .address = 0x02021000,
     .stepAddress = 0x40, .stepsPerGroup = 2, .groupAddress = 0x100},
    {.first = 21, .last = 49, .start = kScales, .length = kScaleLength, .stepStride = kScaleLength,
     .address = 0x02040000, .stepAddress = 0x100},
    {.first = 50, .last = 59, .start = kPhrases, .length = kPhraseLength,
     .stepStride = kPhraseLength, .address = 0x02050000, .stepAddress = 0x200},
    {.first = 60, .last = 62, .start = kCustomTones.preamp, .length = kCustomTones.preampStep,
     .stepStride = kCustomTones.preampStep, .address = 0x02060000, .stepAddress = 0x100},
    {.first = 63, .last = 64, .start = kOverdrive, .length = 5, .stepStride = 5,
     .address = 0x02070000, .stepAddress = 0x100},
    {.first = 65, .last = 67, .start = kWah, .length = 5, .stepStride = 5, .address = 0x02080000,
     .stepAddress = 0x100},
    {.first = 68, .last = 68, .start = 10394, .length = 6, .address = 0x03000000},
};
// clang-format on
constexpr DefaultValue kDefaults[] = {{kGt6Start, 5}, {7025, 20}, {7026, 20},
                                      {7027, 20},     {7028, 50}, {7029, 8}};
} // namespace gt6

namespace gt8 {
constexpr int kMidi = 10428;
constexpr SystemPreampLayout kSystemPreamps[] = {{11465, 11467, 11468, 11471, 17}};
constexpr int kScales = 11511;
constexpr int kPhrases = 11859;
constexpr CustomToneLayout kCustomTones{13779, 7, 13800, 5};
constexpr int kOverdrive = 13810;
constexpr int kWah = 13825;
// Two field-major tables of user entries.
constexpr int kFields5[] = {5, 6, 7, 7, 5,  5,  3,  8, 8, 3, 4, 3, 4,  2, 7, 7, 7,
                            6, 8, 3, 8, 11, 12, 13, 5, 3, 6, 9, 9, 17, 7, 3, 4};
constexpr int kFields10[] = {7, 3, 3, 6, 17, 11, 24, 7, 8, 15};
// clang-format off
constexpr ScheduleRow kSchedule[] = {
    {.first = 0, .last = 0, .start = kGt8Start, .length = 2, .address = 0x00000000},
    {.first = 1, .last = 1, .start = 10402, .length = 1, .address = 0x01000000},
    {.first = 2, .last = 2, .start = 10403, .length = 6, .address = 0x01000001},
    {.first = 3, .last = 3, .start = 10409, .length = 19, .address = 0x01030000},
    {.first = 4, .last = 4, .start = kMidi, .length = 12, .address = 0x01040000},
    {.first = 5, .last = 20, .start = 10440, .length = 64, .stepStride = 64, .address = 0x01041000,
     .stepAddress = 0x40, .stepsPerGroup = 2, .groupAddress = 0x100},
    {.first = 21, .last = 21, .start = 11464, .length = 1, .address = 0x01050000},
    {.first = 22, .last = 22, .start = kSystemPreamps[0].onOff, .length = 40,
     .address = 0x01100000},
    {.first = 23, .last = 23, .start = 11505, .length = 6, .address = 0x02000000},
    {.first = 24, .last = 52, .start = kScales, .length = kScaleLength, .stepStride = kScaleLength,
     .address = 0x03000000, .stepAddress = 0x100},
    {.first = 53, .last = 62, .start = kPhrases, .length = kPhraseLength,
     .stepStride = kPhraseLength, .address = 0x03010000, .stepAddress = 0x200},
    {.first = 63, .last = 65, .start = kCustomTones.preamp, .length = kCustomTones.preampStep,
     .stepStride = kCustomTones.preampStep, .address = 0x03020000, .stepAddress = 0x100},
    {.first = 66, .last = 67, .start = kCustomTones.speaker, .length = kCustomTones.speakerStep,
     .stepStride = kCustomTones.speakerStep, .address = 0x03030000, .stepAddress = 0x100},
    {.first = 68, .last = 70, .start = kOverdrive, .length = 5, .stepStride = 5,
     .address = 0x03040000, .stepAddress = 0x100},
    {.first = 71, .last = 73, .start = kWah, .length = 5, .stepStride = 5, .address = 0x03050000,
     .stepAddress = 0x100},
    {.first = 74, .last = 106, .shape = FieldMajor, .messages = 5, .start = 13840,
     .address = 0x04000000, .stepAddress = 0x100, .messageAddress = 0x10000, .nibbles = true,
     .fields = kFields5},
    {.first = 107, .last = 116, .shape = FieldMajor, .messages = 10, .start = 14915,
     .address = 0x04004000, .stepAddress = 0x200, .messageAddress = 0x10000, .nibbles = true,
     .fields = kFields10},
    {.first = 117, .last = 149, .messages = 5, .start = 15925, .length = 12, .stepStride = 60,
     .messageStride = 12, .address = 0x06000000, .stepAddress = 0x100, .messageAddress = 0x10000},
    {.first = 150, .last = 159, .messages = 10, .start = 17905, .length = 12, .stepStride = 120,
     .messageStride = 12, .address = 0x06004000, .stepAddress = 0x200, .messageAddress = 0x10000},
};
// clang-format on
// "Sub Exp" (10425) has no 0: its range starts at 1.
constexpr DefaultValue kDefaults[] = {{kGt8Start, 5}, {10403, 20}, {10404, 20}, {10406, 20},
                                      {10407, 20},    {10408, 50}, {10409, 8},  {10425, 1}};
} // namespace gt8

namespace gt10 {
constexpr SystemPreampLayout kSystemPreamps[] = {{19487, 19488, 19489, 19503, 32},
                                                 {19615, 19616, 19617, 19631, 32},
                                                 {19692, 19693, 19694, 19708, 32}};
// The parts of a user entry (2293 bytes apart): parts 5 and 6 join seamlessly, part 5 one byte
// short of 242 and part 6 one byte earlier.
constexpr SchedulePart kEntryParts[] = {
    {20922, 242, 0x30000000},
    {20922 + 242, 242, AddressAdd(0x30000000, 1, 242)},
    {20922 + 484, 242, AddressAdd(0x30000000, 2, 242)},
    {20922 + 726, 242, 0x30000600},
    {20922 + 968, 242, AddressAdd(0x30000600, 1, 242)},
    {20922 + 1210, 241, 0x30000A00},
    {20921 + 1452, 242, 0x30000B71},
    {20921 + 1694, 242, 0x30004000},
    {20921 + 1936, 242, AddressAdd(0x30004000, 1, 242)},
    {20921 + 2178, 84, AddressAdd(0x30004000, 2, 242)},
};
// clang-format off
constexpr ScheduleRow kSchedule[] = {
    {.first = 0, .last = 0, .start = kGt10Start, .length = 241, .address = 0x00000000},
    {.first = 1, .last = 1, .start = 19346, .length = 141, .address = 0x00000171},
    {.first = 2, .last = 2, .start = kSystemPreamps[0].onOff, .length = 205, .address = 0x00010000},
    {.first = 3, .last = 3, .start = kSystemPreamps[2].onOff, .length = 77, .address = 0x00010200},
    {.first = 4, .last = 7, .start = 19769, .length = 242, .stepStride = 242,
     .address = 0x00020000, .stepAddress = 242, .linearSteps = true},
    {.first = 8, .last = 8, .start = 20737, .length = 184, .address = AddressAdd(0x00020000, 4,
     242)},
    {.first = 9, .last = 108, .shape = EntryParts, .stepStride = 2293, .stepAddress = 0x10000,
     .parts = kEntryParts},
};
// clang-format on
constexpr int kDoubleBytes[] = {
    19124, 19126,               // bank range
    19219, 19221, 19223, 19225, // front-panel knob assignments
    19250, 19252, 19254, 19266, 19268, 19270, 19282, 19284, 19286, 19298, 19300,
    19302, 19314, 19316, 19318, 19330, 19332, 19334, 19346, 19348, 19350, // pedals
};
constexpr DefaultValue kDefaults[] = {
    {kGt10Start, 8}, {19153, 5},  {19127, 99}, {19169, 20}, {19171, 20},
    {19173, 20},     {19175, 20}, {19177, 12}, {19178, 12}, {19181, 12},
};
} // namespace gt10

constexpr ModelDescription kDescriptions[] = {
    {.model = 3,
     .stretch = {kGt3Start, kGt5Start},
     .scaleBase = gt3::kScales,
     .phraseBase = gt3::kPhrases,
     .schedule = gt3::kSchedule,
     .tabs = {kFirstSevenTabs, opening({0, 1, 2, 3})},
     .defaults = gt3::kDefaults},
    {.model = 5,
     .stretch = {kGt5Start, kGt6Start},
     .scaleBase = gt5::kScales,
     .schedule = gt5::kSchedule,
     .tabs = {kFirstSevenTabs, opening({0, 1, 2, 4, 5})},
     .defaults = gt5::kDefaults},
    {.model = 6,
     .stretch = {kGt6Start, kGt8Start},
     .scaleBase = gt6::kScales,
     .phraseBase = gt6::kPhrases,
     .midiBlock = gt6::kMidi,
     .overdriveBlock = gt6::kOverdrive,
     .wahBlock = gt6::kWah,
     .customTones = gt6::kCustomTones,
     .schedule = gt6::kSchedule,
     .tabs = {kFirstSevenTabs, opening({0, 1, 2, 3, 4, 5, 6})},
     .defaults = gt6::kDefaults},
    {.model = 8,
     .stretch = {kGt8Start, kGt10Start},
     .scaleBase = gt8::kScales,
     .phraseBase = gt8::kPhrases,
     .midiBlock = gt8::kMidi,
     .overdriveBlock = gt8::kOverdrive,
     .wahBlock = gt8::kWah,
     .customTones = gt8::kCustomTones,
     .systemPreamps = gt8::kSystemPreamps,
     .schedule = gt8::kSchedule,
     .tabs = {{60, 1545, 2040, 2535, 3030, 3525, 4020, 555, 1050, H, H, H, H},
              opening({0, 1, 2, 3, 4, 5, 6, 7, 8})},
     .defaults = gt8::kDefaults},
    {.model = 10,
     .stretch = {kGt10Start, kImageSize},
     .systemPreamps = gt10::kSystemPreamps,
     .schedule = gt10::kSchedule,
     .doubleBytes = gt10::kDoubleBytes,
     .tabs = {{60, 555, H, H, H, 1545, H, H, 1050, 2040, 2535, 3030, 3525},
              opening({0, 1, 5, 8, 9, 10, 11, 12})},
     .defaults = gt10::kDefaults},
};

constexpr ModelDescription kUnknown{};

} // namespace

std::span<const ModelDescription> modelDescriptions() {
    return kDescriptions;
}

const ModelDescription& describeModel(int model) {
    const auto* it = std::ranges::find(kDescriptions, model, &ModelDescription::model);
    return it == std::end(kDescriptions) ? kUnknown : *it;
}

std::vector<int> pagesOf(int model) {
    std::vector<int> pages;
    const ModelTabs& tabs = describeModel(model).tabs;
    for (int t = 0; t < kTabCount; ++t)
        if (tabs.opens[std::size_t(t)]) pages.push_back(kTabPages[std::size_t(t)]);
    return pages;
}

int tabForPage(int page, int model) {
    const ModelTabs& tabs = describeModel(model).tabs;
    for (int t = 0; t < kTabCount; ++t)
        if (kTabPages[std::size_t(t)] == page && tabs.opens[std::size_t(t)]) return t;
    if (std::ranges::find(kSystemPages, page) != std::end(kSystemPages)) return 0;
    const auto* it = std::ranges::find(kTabPages, page);
    return it == kTabPages.end() ? -1 : int(it - kTabPages.begin());
}

} // namespace ferrule
