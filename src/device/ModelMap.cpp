#include "ModelMap.h"

#include <algorithm>

namespace ferrule {

bool isKnownModel(int model) {
    return describeModel(model).model != 0;
}

ModelStretch modelStretch(int model) {
    return describeModel(model).stretch;
}

int modelStretchStart(int model) {
    return modelStretch(model).start;
}

int harmonistScaleBase(int model) {
    return describeModel(model).scaleBase;
}

int autoRiffPhraseBase(int model) {
    return describeModel(model).phraseBase;
}

bool IsDoubleByte(int memLoc, int model) {
    return std::ranges::binary_search(describeModel(model).doubleBytes, memLoc);
}

} // namespace ferrule
