#include "ParameterEncoding.h"

#include <algorithm>
#include <array>

namespace ferrule {

bool IsDoubleByte(int memLoc, int model) {
    if (model != 10) return false;
    static constexpr std::array<int, 27> addresses = {
        19124, 19126,               // bank range
        19219, 19221, 19223, 19225, // front-panel knob assignments
        19250, 19252, 19254, 19266, 19268, 19270, 19282, 19284, 19286, 19298, 19300,
        19302, 19314, 19316, 19318, 19330, 19332, 19334, 19346, 19348, 19350, // pedals
    };
    return std::ranges::binary_search(addresses, memLoc);
}

std::pair<int, int> splitDoubleByte(int value) {
    return {value / 128, value & 127};
}

int joinDoubleByte(int high, int low) {
    return high * 128 + low;
}

} // namespace ferrule
