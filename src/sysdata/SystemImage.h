#pragma once

#include "device/ModelMap.h"

#include <QByteArray>

#include <array>
#include <cstdint>
#include <functional>
#include <span>

namespace ferrule {

// One byte of the image and the value it takes.
struct ByteWrite {
    int index;
    std::uint8_t value;
};

// The plug-in's working copy of the device's system data: 43,252 bytes holding all five models
// side by side. Every access is bound-checked; a miss throws FerruleError. Whoever shows the
// bytes can listen for changes: each write that changes a byte reports the range it touched,
// once per call.
class SystemImage {
public:
    static constexpr int kSize = kImageSize;
    // The first index and the count of a changed range.
    using ChangeListener = std::function<void(int first, int count)>;

    SystemImage() { bytes_.fill(0); }
    // A copy takes the bytes, not the listener.
    SystemImage(const SystemImage& other)
        : bytes_(other.bytes_) {}
    SystemImage& operator=(const SystemImage&) = delete;

    void setChangeListener(ChangeListener listener) { listener_ = std::move(listener); }

    int at(int index) const;
    void set(int index, int value);

    // A knob's or slider's value: one byte, or two 7-bit bytes where IsDoubleByte says so.
    int readParameter(int memLoc, int model) const;
    void writeParameter(int memLoc, int model, int value);

    const std::array<std::uint8_t, kSize>& bytes() const { return bytes_; }
    QByteArray toByteArray() const;
    // Replaces every byte; reports one range that covers those that changed.
    void assign(std::span<const std::uint8_t> data);
    void assign(const QByteArray& data);
    void assign(const SystemImage& other) { assign(other.bytes_); }
    // Writes every byte of `writes` and reports one range that covers those that changed.
    void apply(std::span<const ByteWrite> writes);

    bool operator==(const SystemImage& other) const { return bytes_ == other.bytes_; }

private:
    static void check(int index);
    static void checkByte(int index, int value);
    void changed(int first, int last) const;
    std::array<std::uint8_t, kSize> bytes_;
    ChangeListener listener_;
};

} // namespace ferrule
