#include "DumpMap.h"

#include "ModelMap.h"

#include <algorithm>
#include <array>

namespace ferrule {

DumpMap::DumpMap(int model)
    : model_(model) {
    const int steps = TransmissionSchedule::stepTotal(model);
    for (int s = 0; s < steps; ++s)
        for (const ScheduledMessage& m : TransmissionSchedule::messages(model, s))
            transmission_.push_back(m);
    for (const ScheduledMessage& m : transmission_) {
        const bool inImage = m.start >= 0 && m.start + m.length <= kImageSize;
        blocks_.push_back({linearAddress(m.address), m.units(), m.start, m.nibbles, inImage, -1});
    }
    std::ranges::sort(blocks_, {}, &Block::address);
    for (Block& b : blocks_)
        if (b.inImage) {
            b.mappedOffset = mappedUnits_;
            mappedUnits_ += b.units;
        }
}

const DumpMap& DumpMap::of(int model) {
    static const std::array<DumpMap, 6> maps = {DumpMap(3), DumpMap(5),  DumpMap(6),
                                                DumpMap(8), DumpMap(10), DumpMap(0)};
    for (const DumpMap& m : maps)
        if (m.model_ == model) return m;
    return maps.back();
}

const DumpMap::Block* DumpMap::blockAt(int linear) const {
    // The last block that starts at or before the address.
    auto it = std::ranges::upper_bound(blocks_, linear, {}, &Block::address);
    if (it == blocks_.begin()) return nullptr;
    --it;
    return linear < it->end() ? &*it : nullptr;
}

std::optional<DumpMap::Target> DumpMap::locate(int linear) const {
    const Block* b = blockAt(linear);
    if (!b) return std::nullopt;
    if (!b->inImage) return Target{};
    const int u = linear - b->address;
    Target t;
    t.unit = b->mappedOffset + u;
    if (b->nibbles) {
        t.index = b->start + u / 2;
        t.part = u % 2 == 0 ? Part::HighNibble : Part::LowNibble;
    } else {
        t.index = b->start + u;
    }
    return t;
}

std::vector<DumpMap::Range> DumpMap::mappedRanges() const {
    std::vector<Range> ranges;
    for (const Block& b : blocks_) {
        if (!b.inImage) continue;
        if (!ranges.empty() && ranges.back().end() == b.address)
            ranges.back().units += b.units;
        else
            ranges.push_back({b.address, b.units});
    }
    return ranges;
}

int DumpMap::firstUncarriableByte(ImageBytes image) const {
    int first = -1;
    for (const Block& b : blocks_) {
        if (!b.inImage || b.nibbles) continue;
        for (int i = b.start; i < b.start + b.units && (first < 0 || i < first); ++i)
            if (image[std::size_t(i)] > 0x7F) first = i;
    }
    return first;
}

} // namespace ferrule
