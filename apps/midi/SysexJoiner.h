#pragma once

#include <cstddef>
#include <vector>

namespace ferrule {

// Puts together the messages of an input that arrives in events, as JACK delivers them: a
// system-exclusive message may come in several events, the first starting with F0, the others
// carrying its further bytes, the last ending with F7 (which may stand alone). Clock, time code
// and active sensing are dropped; other messages pass as they come, and a status byte abandons
// a system-exclusive message under way. Runs on the MIDI system's thread: it neither waits nor
// allocates.
class SysexJoiner {
public:
    // Where each complete message goes: copy it and return.
    using Receiver = void (*)(const unsigned char* bytes, std::size_t size, void* context);
    // The longest system-exclusive message put together; longer ones are dropped.
    static constexpr std::size_t kLongestSysex = 1 << 16;

    SysexJoiner(Receiver receiver, void* context);

    // One event of `size` > 0 bytes.
    void take(const unsigned char* bytes, std::size_t size);

private:
    Receiver receiver_;
    void* context_;
    std::vector<unsigned char> sysex_;
    std::size_t sysexSize_ = 0;
    bool inSysex_ = false;
};

} // namespace ferrule
