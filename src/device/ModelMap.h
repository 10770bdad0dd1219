#pragma once

#include "ModelDescription.h"

#include <utility>

namespace ferrule {

// The device's memory map as the system data image holds it: 43,252 bytes with the five models'
// data side by side, each in its own stretch (from the models' descriptions).

bool isKnownModel(int model);
// The model's stretch of the image; {-1, -1} for an unknown model.
ModelStretch modelStretch(int model);
int modelStretchStart(int model);

// Where the Harmonist user scales (29 × 12 bytes) and the Auto-Riff user phrases (10 × 12 keys ×
// 16 steps) of a model lie in the image, or -1 for a model without them.
int harmonistScaleBase(int model);
int autoRiffPhraseBase(int model);

// True exactly when the parameter at `memLoc` occupies two 7-bit bytes: model 10 only, for the
// bank range, the front-panel knob assignments and the pedal function/minimum/maximum triples.
bool IsDoubleByte(int memLoc, int model);

// A 14-bit value as two 7-bit digits, high digit first, and back.
constexpr std::pair<int, int> splitDoubleByte(int value) {
    return {value / 128, value & 127};
}
constexpr int joinDoubleByte(int high, int low) {
    return high * 128 + low;
}

} // namespace ferrule
