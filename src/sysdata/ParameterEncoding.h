#pragma once

#include <cstdint>
#include <utility>

namespace ferrule {

// Device model numbers and the start of each model's stretch of the system data image.
inline constexpr int kModels[] = {3, 5, 6, 8, 10};
bool isKnownModel(int model);
int modelStretchStart(int model);

// True exactly when the parameter at `memLoc` occupies two 7-bit bytes: model 10 only, for the
// bank range, the front-panel knob assignments and the pedal function/minimum/maximum triples.
bool IsDoubleByte(int memLoc, int model);

// A 14-bit value as two 7-bit digits, high digit first, and back.
std::pair<int, int> splitDoubleByte(int value);
int joinDoubleByte(int high, int low);

} // namespace ferrule
