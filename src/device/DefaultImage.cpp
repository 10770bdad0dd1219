#include "DefaultImage.h"

#include "ModelMap.h"

namespace ferrule {

namespace {

// Harmonist user scales: 29 scales of 12 bytes; every note harmonised a major third up (28).
void fillScales(QByteArray& image, int base) {
    for (int i = 0; i < kScaleCount * kScaleLength; ++i)
        image[base + i] = char(28);
}

// Auto-Riff user phrases: 10 phrases of 12 keys × 16 steps. Each key plays an ascending run on
// its own root (code 24 = the key's note) and ends after step 8.
void fillPhrases(QByteArray& image, int base) {
    static constexpr char run[16] = {24, 28, 31, 36, 31, 28, 24, 19,
                                     50, 50, 50, 50, 50, 50, 50, 50};
    for (int phrase = 0; phrase < kPhraseCount; ++phrase)
        for (int key = 0; key < 12; ++key)
            for (int step = 0; step < 16; ++step)
                image[base + phrase * kPhraseLength + key * 16 + step] = run[step];
}

} // namespace

QByteArray makeDefaultImage() {
    QByteArray image(kImageSize, char(0));
    for (int model : kModels) {
        if (harmonistScaleBase(model) >= 0) fillScales(image, harmonistScaleBase(model));
        if (autoRiffPhraseBase(model) >= 0) fillPhrases(image, autoRiffPhraseBase(model));
    }
    // A few system values away from zero so that a first look shows the controls at work: tuner
    // pitch, equaliser levels at their middle, reverb level and LCD contrast.
    const struct {
        int index;
        int value;
    } values[] = {
        {0, 5},      {3, 20},     {4, 20},     {5, 20},     {6, 50},     {7, 8},    // GT-3
        {4362, 5},   {4366, 20},  {4367, 20},  {4368, 20},  {4369, 50},             // GT-5
        {7022, 5},   {7025, 20},  {7026, 20},  {7027, 20},  {7028, 50},  {7029, 8}, // GT-6
        {10400, 5},  {10403, 20}, {10404, 20}, {10406, 20}, {10407, 20}, {10408, 50},
        {10409, 8}, // GT-8
        {19105, 8},  {19153, 5},  {19127, 99}, {19169, 20}, {19171, 20}, {19173, 20},
        {19175, 20}, {19177, 12}, {19178, 12}, {19181, 12}, // GT-10
    };
    for (const auto& v : values)
        image[v.index] = char(v.value);
    return image;
}

} // namespace ferrule
