#include "SysexJoiner.h"

#include <cstring>

namespace ferrule {

SysexJoiner::SysexJoiner(Receiver receiver, void* context)
    : receiver_(receiver)
    , context_(context)
    , sysex_(kLongestSysex) {}

void SysexJoiner::take(const unsigned char* bytes, std::size_t size) {
    // Clock, time code and active sensing are of no use here.
    if (bytes[0] == 0xF8 || bytes[0] == 0xF1 || bytes[0] == 0xFE) return;
    if (bytes[0] >= 0xF8) {
        receiver_(bytes, size, context_);
        return;
    }
    if (bytes[0] == 0xF0) {
        inSysex_ = true;
        sysexSize_ = 0;
    } else if (!inSysex_ || (bytes[0] >= 0x80 && bytes[0] != 0xF7)) {
        // Not the rest of a system-exclusive message: one started earlier is abandoned.
        inSysex_ = false;
        receiver_(bytes, size, context_);
        return;
    }
    // A system-exclusive message, or a further piece of one (the last may be its F7 alone).
    if (sysexSize_ + size > sysex_.size()) {
        inSysex_ = false;
        return;
    }
    std::memcpy(sysex_.data() + sysexSize_, bytes, size);
    sysexSize_ += size;
    if (bytes[size - 1] == 0xF7) {
        inSysex_ = false;
        receiver_(sysex_.data(), sysexSize_, context_);
    }
}

} // namespace ferrule
