#pragma once

#include "device/TransmissionSchedule.h"

#include <QString>
#include <QStringView>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace ferrule {

// One setting that a control of the editor edits, by name: where it sits (page, heading,
// caption, and which of many it is where one control edits many), its bytes in the image, its
// range and how its values read.
struct Parameter {
    QString page;     // the caption of the tab the page sits under
    QString heading;  // the heading the control sits under; may be empty
    QString caption;  // the control's caption
    QString instance; // which of many ("Custom Tone 2", "Scale 7 / C#"...); empty when one
    int address = 0;  // first image byte
    int bytes = 1;    // 1, or 2 for a value of two 7-bit digits, high first
    int minimum = 0, maximum = 0;
    int format = -1; // value-text format of a knob or slider, -1 otherwise

    // "Page / Heading / Caption [instance]", without the parts that are empty; unique within
    // the model.
    QString name() const;
    int value(ImageBytes image) const;
    // Stores a value the bytes can hold (see canHold).
    void store(std::span<std::uint8_t> image, int value) const;
    // What the bytes can store: 0-127, or 0-16383 for two.
    bool canHold(int value) const;
    // The value as the editor names it: an option's name, a switch's state, a grid cell's
    // text; knobs and sliders show the plain number.
    QString valueText(int value) const;
    // The value a text names (a plain number is always understood); nullopt when none.
    std::optional<int> parseValue(QStringView text) const;

    // How the value texts are made (an option list, a switch, a grid row's note...); private
    // to the index.
    struct Texts;
    std::shared_ptr<const Texts> texts;
};

// Every parameter of a model, derived from the page catalogue and the selectors' and grids'
// instances.
class ParameterIndex {
public:
    // Built once per model, then shared.
    static const ParameterIndex& of(int model);
    // A new index of a model (what `of` builds once).
    static ParameterIndex build(int model);

    int model() const { return model_; }
    // In the tabs' order, then in reading order within a page.
    std::span<const Parameter> parameters() const { return parameters_; }
    const Parameter* find(QStringView name) const;
    // The parameter one of whose bytes `imageIndex` is, or nullptr.
    const Parameter* covering(int imageIndex) const;
    // The bytes the transmission sends that no control edits, ascending.
    std::span<const int> uncoveredBytes() const { return uncovered_; }
    // The bytes that two parameters edit, ascending: where the pages of a model bind two
    // different controls to one byte (the GT-10's "USB Driver" and "USB Monitor" on the System
    // page lie in the "Min" and "Max" of "EXP Pedal 2 (external)"). covering() names the first
    // in the index's order.
    std::span<const int> sharedBytes() const { return shared_; }
    // The bytes the transmission sends, ascending.
    std::span<const int> sentBytes() const { return sent_; }

private:
    int model_ = 0;
    std::vector<Parameter> parameters_;
    std::vector<int> uncovered_;
    std::vector<std::pair<std::uint64_t, int>> byName_; // name's hash → parameter, sorted
    std::vector<int> shared_;
    std::vector<int> sent_;             // the bytes the transmission sends, ascending
    std::vector<std::int16_t> byIndex_; // image index - stretch start → parameter, or -1
    int start_ = 0;
};

// A difference between two images of a model over the bytes the transmission sends: a
// parameter (a two-byte one once), or a byte no parameter covers (parameter nullptr).
struct ParameterDifference {
    const Parameter* parameter = nullptr;
    int address = 0;
    int a = 0, b = 0;
};

// What differs, parameters in the index's order, then uncovered bytes.
std::vector<ParameterDifference> compareImages(int model, ImageBytes a, ImageBytes b);
// "Page / Heading / Caption [instance]: <a> -> <b>", the values as text; "Address N: a -> b"
// for an uncovered byte.
QString differenceLine(const ParameterDifference& d);

} // namespace ferrule
