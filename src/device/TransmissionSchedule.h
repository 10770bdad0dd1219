#pragma once

#include <QByteArray>

#include <cstdint>
#include <span>
#include <vector>

namespace ferrule {

// The system data image as bytes (SystemImage::bytes(), or a host's copy).
using ImageBytes = std::span<const std::uint8_t>;

// A device address: four 7-bit bytes packed into a 32-bit integer, most significant first.
// Arithmetic works on the linear value A × 2^21 + B × 2^14 + C × 2^7 + D.
constexpr int linearAddress(int packed) {
    return ((packed >> 24) & 0x7F) * (1 << 21) + ((packed >> 16) & 0x7F) * (1 << 14) +
           ((packed >> 8) & 0x7F) * (1 << 7) + (packed & 0x7F);
}
constexpr int packedAddress(int linear) {
    return (((linear >> 21) & 0x7F) << 24) | (((linear >> 14) & 0x7F) << 16) |
           (((linear >> 7) & 0x7F) << 8) | (linear & 0x7F);
}
// The packed address advanced by count × size linear units.
constexpr int AddressAdd(int address, int count, int size) {
    return packedAddress(linearAddress(address) + count * size);
}

// Each byte of image[start, start + count) as two data bytes, high nibble first, appended to
// `destination`.
void SplitNibbles(QByteArray& destination, ImageBytes image, int start, int count);

// One message of a transmission: its device address and the image bytes it carries.
struct ScheduledMessage {
    int address;
    int start;  // first image index
    int length; // image bytes
    bool nibbles;
    // Address units the message covers: its length, or twice that for nibbles.
    int units() const { return nibbles ? 2 * length : length; }
    // The data bytes: the image bytes, or each split into two nibbles. The caller makes sure
    // that [start, start + length) lies inside `image`.
    QByteArray data(ImageBytes image) const;
};

// The transmission schedules of the five models: step 0 (sent by the start) and the steps
// that each QueueEmpty performs.
namespace TransmissionSchedule {

// Steps of a model's transmission (68, 46, 69, 160, 109), or 0 for another model.
int stepTotal(int model);
// The messages of step s (0 .. total - 1) in order; empty past the last step.
std::vector<ScheduledMessage> messages(int model, int step);

} // namespace TransmissionSchedule
} // namespace ferrule
