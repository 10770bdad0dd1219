#include "ParameterEncoding.h"

#include <algorithm>

namespace ferrule {

bool IsDoubleByte(int memLoc, int model) {
    return std::ranges::binary_search(describeModel(model).doubleBytes, memLoc);
}

std::pair<int, int> splitDoubleByte(int value) {
    return {value / 128, value & 127};
}

int joinDoubleByte(int high, int low) {
    return high * 128 + low;
}

} // namespace ferrule
