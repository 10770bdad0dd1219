#pragma once

#include "device/ModelMap.h"

#include <cstdint>
#include <utility>

namespace ferrule {

// True exactly when the parameter at `memLoc` occupies two 7-bit bytes: model 10 only, for the
// bank range, the front-panel knob assignments and the pedal function/minimum/maximum triples.
bool IsDoubleByte(int memLoc, int model);

// A 14-bit value as two 7-bit digits, high digit first, and back.
std::pair<int, int> splitDoubleByte(int value);
int joinDoubleByte(int high, int low);

} // namespace ferrule
