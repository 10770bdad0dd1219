#pragma once

#include <array>
#include <span>
#include <vector>

namespace ferrule {

// Each model's facts as data, in one place: where its data lies in the 43,252-byte system data
// image and the bases of its tables, the transmission schedule's rows, its double-byte
// parameters, its tabs and the pages they open, and the values of the embedded default image.
// The memory map, the schedule and its inverse, the default image, the editor's tabs and the
// page builder all derive from these rows.

inline constexpr int kImageSize = 43252;
inline constexpr int kModels[] = {3, 5, 6, 8, 10};

// Where each model's data starts in the image; a model's stretch ends where the next one's
// starts, the GT-10's at the image end.
inline constexpr int kGt3Start = 0;
inline constexpr int kGt5Start = 4362;
inline constexpr int kGt6Start = 7022;
inline constexpr int kGt8Start = 10400;
inline constexpr int kGt10Start = 19105;

struct ModelStretch {
    int start = -1; // first image index of the model's data
    int end = -1;   // one past the last
};

// Harmonist user scales (29 × 12 bytes) and Auto-Riff user phrases (10 × 12 keys × 16 steps).
inline constexpr int kScaleCount = 29;
inline constexpr int kScaleLength = 12;
inline constexpr int kPhraseCount = 10;
inline constexpr int kPhraseLength = 12 * 16;

// ---- the transmission schedule ----------------------------------------------------------------

// How a schedule row makes the messages of its steps; k = step - first, i = the message within
// the step.
enum class ScheduleShape {
    // `messages` messages: `length` image bytes from start + k × stepStride + i × messageStride,
    // at address + stepAddress × k + messageAddress × i; with stepsPerGroup, address +
    // stepAddress × (k mod stepsPerGroup) + groupAddress × (k div stepsPerGroup) + messageAddress
    // × i; with linearSteps, AddressAdd(address, k, stepAddress).
    Blocks,
    // One entry per step, from start + k × stepStride: one message per field, the fields'
    // lengths one after another; address + k × stepAddress + i × messageAddress.
    EntryFields,
    // Field k of `messages` entries (entry i from start + i × messageStride), at the field's
    // offset; address + i × messageAddress + k × stepAddress.
    FieldOfEntries,
    // Field k of `messages` entries stored field by field: field f starts at start + messages ×
    // (sum of the lengths before f); entry i's copy at that start + i × length of field k;
    // address + i × messageAddress + k × stepAddress.
    FieldMajor,
    // One part of an entry per step: entry e = k div (number of parts), part p = k mod (number
    // of parts); the part's bytes from its start + e × stepStride, at its address + e ×
    // stepAddress.
    EntryParts,
};

// One part of an entry that EntryParts rows send: its bytes for entry 0 and their address.
struct SchedulePart {
    int start = 0;
    int length = 0;
    int address = 0;
};

struct ScheduleRow {
    int first = 0; // steps first .. last
    int last = 0;
    ScheduleShape shape = ScheduleShape::Blocks;
    int messages = 1; // messages a step sends (entries for FieldOfEntries and FieldMajor)
    int start = 0;    // first image index
    int length = 0;   // image bytes of a message (Blocks)
    int stepStride = 0;
    int messageStride = 0;
    int address = 0; // packed device address of the first message
    int stepAddress = 0;
    int stepsPerGroup = 0;
    int groupAddress = 0;
    int messageAddress = 0;
    bool linearSteps = false;
    bool nibbles = false; // each image byte goes as two nibbles
    std::span<const int> fields = {};
    std::span<const int> offsets = {};
    std::span<const SchedulePart> parts = {};
};

// ---- the bases of the pages' tables -----------------------------------------------------------

// Page 9's custom tones n = 1-3 on the GT-6 and GT-8: the preamp's first byte (its type) and the
// speaker's, each tone a fixed step after the one before.
struct CustomToneLayout {
    int preamp = -1, preampStep = 0, speaker = -1, speakerStep = 0;
};

// A system preamp (page 11; on the GT-10 also the custom tones of page 9): its on/off byte, the
// settings its channels share, the channel byte (0 = A, 1 = B), and its channels' blocks,
// `channelStride` bytes apart from `channels`.
struct SystemPreampLayout {
    int onOff, shared, channelByte, channels, channelStride;
    constexpr int channel(int c) const { return channels + c * channelStride; }
};
// A GT-10 channel's custom preamp sits 17 bytes into its block, the speaker 7 bytes after that.
inline constexpr int kGt10CustomPreampInChannel = 17;
inline constexpr int kGt10CustomSpeakerAfterPreamp = 7;
// The GT-10's "Preamp Mode": Patch, System 1, 2 or 3.
inline constexpr int kGt10PreampMode = 19121;

// ---- tabs ---------------------------------------------------------------------------------------

// The editor's tabs, left to right as designed: System, MIDI, Harmonist, Auto-Riff, OD/DS,
// Preamp, Wah, Meter/EQ, Sys Preamp, Input, Output, EXP, CTL; and the page each opens.
inline constexpr int kTabCount = 13;
inline constexpr std::array<int, kTabCount> kTabPages = {1, 4,  5,  6,  8,  9, 10,
                                                         7, 11, 12, 13, 14, 15};
// The pages the System tab stands for when no tab of the model opens them.
inline constexpr int kSystemPages[] = {1, 2, 3, 7};
// A tab's left edge on a model (twips), or kHiddenTab for a tab the model does not show.
inline constexpr int kHiddenTab = -1;

struct ModelTabs {
    std::array<int, kTabCount> left{};
    std::array<bool, kTabCount> opens{}; // the tab opens its page on the model (else it is dead)
};

// ---- the description ----------------------------------------------------------------------------

struct DefaultValue {
    int index;
    int value;
};

struct ModelDescription {
    int model = 0;
    ModelStretch stretch = {};
    int scaleBase = -1;  // Harmonist user scales, or -1
    int phraseBase = -1; // Auto-Riff user phrases, or -1
    // Where the shared layouts of page 4 (MIDI), 8 (OD/DS) and 10 (Wah) start on the GT-6 and
    // GT-8.
    int midiBlock = 0;
    int overdriveBlock = 0;
    int wahBlock = 0;
    CustomToneLayout customTones = {};
    std::span<const SystemPreampLayout> systemPreamps = {};
    std::span<const ScheduleRow> schedule = {};
    std::span<const int> doubleBytes = {}; // parameters of two 7-bit bytes, ascending
    ModelTabs tabs = {};
    std::span<const DefaultValue> defaults = {}; // system values of the default image
};

// The five models' descriptions, in the order of kModels.
std::span<const ModelDescription> modelDescriptions();
// A model's description; one with model 0 and nothing in it for an unknown model.
const ModelDescription& describeModel(int model);

// The pages a model has: those its tabs open, in the tabs' order.
std::vector<int> pagesOf(int model);

// The tab that belongs to a page on a model: the tab that opens it there, else the System tab
// for a system page, else the tab that opens it on other models; -1 for a page without one.
int tabForPage(int page, int model);

} // namespace ferrule
