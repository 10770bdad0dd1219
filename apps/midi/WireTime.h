#pragma once

#include <QtGlobal>

namespace ferrule {

// A MIDI cable carries 31,250 bits a second, ten bits a byte (start, eight data, stop).
inline constexpr double kMidiBytesPerSecond = 3125.0;

inline double wireTimeMs(qint64 bytes) {
    return double(bytes) * 1000.0 / kMidiBytesPerSecond;
}
inline qint64 wireTimeNs(qint64 bytes) {
    return bytes * qint64(1000000000) / qint64(kMidiBytesPerSecond);
}

} // namespace ferrule
