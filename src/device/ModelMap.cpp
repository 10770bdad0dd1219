#include "ModelMap.h"

#include <algorithm>

namespace ferrule {

namespace {

struct ModelRow {
    int model;
    ModelStretch stretch;
    int scaleBase;
    int phraseBase;
};

constexpr ModelRow kRows[] = {
    {3, {0, 4362}, 1048, 1396},        {5, {4362, 7022}, 5150, -1},
    {6, {7022, 10400}, 8074, 8422},    {8, {10400, 19105}, 11511, 11859},
    {10, {19105, kImageSize}, -1, -1},
};

const ModelRow* rowOf(int model) {
    const auto* it = std::ranges::find(kRows, model, &ModelRow::model);
    return it == std::end(kRows) ? nullptr : it;
}

} // namespace

bool isKnownModel(int model) {
    return rowOf(model) != nullptr;
}

ModelStretch modelStretch(int model) {
    const ModelRow* row = rowOf(model);
    return row ? row->stretch : ModelStretch{};
}

int modelStretchStart(int model) {
    return modelStretch(model).start;
}

int harmonistScaleBase(int model) {
    const ModelRow* row = rowOf(model);
    return row ? row->scaleBase : -1;
}

int autoRiffPhraseBase(int model) {
    const ModelRow* row = rowOf(model);
    return row ? row->phraseBase : -1;
}

} // namespace ferrule
