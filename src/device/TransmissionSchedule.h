#pragma once

#include "DeviceAddress.h"

#include <QByteArray>

#include <cstdint>
#include <span>
#include <vector>

namespace ferrule {

// The system data image as bytes (SystemImage::bytes(), or a host's copy).
using ImageBytes = std::span<const std::uint8_t>;

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

// The transmission schedules of the five models, expanded from their descriptions' rows: step 0
// (sent by the start) and the steps that each QueueEmpty performs.
namespace TransmissionSchedule {

// Steps of a model's transmission (68, 46, 69, 160, 109), or 0 for another model.
int stepTotal(int model);
// The messages of step s (0 .. total - 1) in order; empty past the last step.
std::vector<ScheduledMessage> messages(int model, int step);

} // namespace TransmissionSchedule
} // namespace ferrule
