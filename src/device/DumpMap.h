#pragma once

#include "TransmissionSchedule.h"

#include <optional>
#include <span>
#include <vector>

namespace ferrule {

// A model's address space as the transmission schedule sends it, and the way back: for each
// address unit, the image byte (or half of it) it carries. Derived from the schedule rows, so
// the two cannot disagree. A device may chunk a dump differently from the schedule (one block as
// two messages, neighbouring blocks as one, a nibble pair split across messages): the map works
// unit by unit, so any chunking of the same addresses lands in the same image bytes.
class DumpMap {
public:
    // One message of the schedule, placed in the address space.
    struct Block {
        int address = 0; // linear
        int units = 0;   // address units: image bytes, or twice that for nibbles
        int start = 0;   // first image index
        bool nibbles = false;
        bool inImage = true;   // false for the GT-10 parts that lie beyond the image end
        int mappedOffset = -1; // position of its first unit among the mapped units, or -1
        int end() const { return address + units; }
    };

    enum class Part { Whole, HighNibble, LowNibble };
    struct Target {
        int index = -1; // image index, or -1 for a known address beyond the image
        Part part = Part::Whole;
        int unit = -1; // number of the unit among the mapped units, or -1
    };

    // An address range: linear start and units.
    struct Range {
        int address = 0;
        int units = 0;
        int end() const { return address + units; }
    };

    // The map of a model (3, 5, 6, 8, 10), built once; an empty map for any other number.
    static const DumpMap& of(int model);

    int model() const { return model_; }
    // Every message of a whole transmission, in the order the transmission sends them.
    const std::vector<ScheduledMessage>& transmission() const { return transmission_; }
    // The blocks by address.
    std::span<const Block> blocks() const { return blocks_; }
    // Address units that land in the image (what a complete dump must carry).
    int mappedUnits() const { return mappedUnits_; }

    // Where the unit at a linear address belongs; nullopt for an address the model does not know.
    std::optional<Target> locate(int linear) const;
    // The block that holds the linear address, or nullptr.
    const Block* blockAt(int linear) const;
    // The in-image blocks joined where their addresses adjoin: the fewest requests that ask for
    // exactly the mapped addresses.
    std::vector<Range> mappedRanges() const;
    // The first image index whose byte a message carries whole and which is above 7F (a status
    // byte, which no message can carry), or -1.
    int firstUncarriableByte(ImageBytes image) const;

private:
    explicit DumpMap(int model);

    int model_ = 0;
    std::vector<ScheduledMessage> transmission_;
    std::vector<Block> blocks_;
    int mappedUnits_ = 0;
};

} // namespace ferrule
