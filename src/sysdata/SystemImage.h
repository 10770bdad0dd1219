#pragma once

#include "device/ModelMap.h"

#include <QByteArray>

#include <array>
#include <cstdint>

namespace ferrule {

// The plug-in's working copy of the device's system data: 43,252 bytes holding all five models
// side by side. Every access is bound-checked; a miss throws FerruleError.
class SystemImage {
public:
    static constexpr int kSize = kImageSize;

    SystemImage() { bytes_.fill(0); }

    int at(int index) const;
    void set(int index, int value);

    // A knob's or slider's value: one byte, or two 7-bit bytes where IsDoubleByte says so.
    int readParameter(int memLoc, int model) const;
    void writeParameter(int memLoc, int model, int value);

    const std::array<std::uint8_t, kSize>& bytes() const { return bytes_; }
    QByteArray toByteArray() const;
    void assign(const QByteArray& data);

    bool operator==(const SystemImage&) const = default;

private:
    static void check(int index);
    std::array<std::uint8_t, kSize> bytes_;
};

} // namespace ferrule
