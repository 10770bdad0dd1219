#pragma once

#include <span>

namespace ferrule {

// The device's memory map as the system data image holds it: 43,252 bytes with the five models'
// data side by side, each in its own stretch. The one place these facts live.
inline constexpr int kImageSize = 43252;
inline constexpr int kModels[] = {3, 5, 6, 8, 10};

struct ModelStretch {
    int start = -1; // first image index of the model's data
    int end = -1;   // one past the last
};

bool isKnownModel(int model);
// The model's stretch of the image; {-1, -1} for an unknown model.
ModelStretch modelStretch(int model);
int modelStretchStart(int model);

// Where the Harmonist user scales (29 × 12 bytes) and the Auto-Riff user phrases (10 × 12 keys ×
// 16 steps) of a model lie in the image, or -1 for a model without them.
int harmonistScaleBase(int model);
int autoRiffPhraseBase(int model);
inline constexpr int kScaleCount = 29;
inline constexpr int kScaleLength = 12;
inline constexpr int kPhraseCount = 10;
inline constexpr int kPhraseLength = 12 * 16;

} // namespace ferrule
