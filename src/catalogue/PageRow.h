#pragma once

#include <cstdint>

namespace ferrule {

// Where a row's image address starts: an absolute index, or an offset from a base that the
// page computes when it is built (per model, per custom tone, per channel, per pedal pair).
enum class Base : std::uint8_t {
    None,           // absolute index
    ModelBlock,     // the model's block of a shared layout (pages 4, 8, 10)
    CustomPreamp,   // custom preamp n (page 9)
    CustomSpeaker,  // custom speaker n (page 9)
    PreampBlock,    // system preamp settings shared by its channels (page 11)
    PreampSwitch,   // system preamp on/off (page 11)
    PreampChannel,  // system preamp channel (page 11)
    PedalPair,      // control pedal pair: 48 × m (page 15)
    PedalPairModes, // control pedal pair's Patch/System bytes: 3 × m (page 15)
};

struct Address {
    Base base = Base::None;
    int offset = 0;
    constexpr Address() = default;
    constexpr Address(int absolute) // NOLINT: an absolute index reads as a plain number in tables
        : offset(absolute) {}
    constexpr Address(Base b, int o)
        : base(b)
        , offset(o) {}
    constexpr Address operator+(int o) const { return {base, offset + o}; }
};

enum class Control : std::uint8_t { Heading, Knob, Slider, Options, Switch, List, DependentRanges };

// Row flags.
enum : std::uint8_t {
    CaptionAbove = 1, // knob caption 195 twips higher
    MinOne = 2,       // slider Min set to 1 right after placement
    Gt8Only = 4,
    Gt10Only = 8,
};

// One primitive call of a page, in call order.
struct PageRow {
    Control control;
    int index;           // pool index; group number for option groups
    const char* caption; // caption or option list
    Address address;
    int max;    // knob or slider range; list item count
    int format; // value-text format
    int colour; // knob colour
    int labelWidth;
    int x, y;
    int width, height; // heading frame
    std::uint8_t flags;
};

constexpr PageRow heading(int i, const char* caption, int w, int h, int x, int y) {
    return {Control::Heading, i, caption, {}, 0, 0, 0, 0, x, y, w, h, 0};
}
constexpr PageRow knob(int i, const char* caption, Address a, int max, int format, int colour,
                       int x, int y, int labelWidth = 0, std::uint8_t flags = 0) {
    return {Control::Knob, i, caption, a, max, format, colour, labelWidth, x, y, 0, 0, flags};
}
constexpr PageRow slider(int i, const char* caption, Address a, int max, int format, int labelWidth,
                         int x, int y, std::uint8_t flags = 0) {
    return {Control::Slider, i, caption, a, max, format, 0, labelWidth, x, y, 0, 0, flags};
}
constexpr PageRow options(int group, const char* list, Address a, int x, int y,
                          std::uint8_t flags = 0) {
    return {Control::Options, group, list, a, 0, 0, 0, 0, x, y, 0, 0, flags};
}
constexpr PageRow toggle(int i, const char* caption, Address a, int x, int y) {
    return {Control::Switch, i, caption, a, 0, 0, 0, 0, x, y, 0, 0, 0};
}
constexpr PageRow selector(const char* list, int count, int x, int y) {
    return {Control::List, 0, list, {}, count, 0, 0, 0, x, y, 0, 0, 0};
}
// Adapts the Min/Max knobs of an expression-pedal column to its function slider.
constexpr PageRow dependentRanges(int sliderIndex) {
    return {Control::DependentRanges, sliderIndex, "", {}, 0, 0, 0, 0, 0, 0, 0, 0, 0};
}
// Whether a row is placed on a model (rows flagged for one model are left out on the others).
constexpr bool onModel(const PageRow& row, int model) {
    return !((row.flags & Gt8Only) && model != 8) && !((row.flags & Gt10Only) && model != 10);
}

constexpr PageRow only(std::uint8_t flag, PageRow row) {
    row.flags |= flag;
    return row;
}

} // namespace ferrule
