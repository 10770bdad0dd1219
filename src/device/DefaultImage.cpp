#include "DefaultImage.h"

#include "ModelDescription.h"

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
    for (const ModelDescription& model : modelDescriptions()) {
        if (model.scaleBase >= 0) fillScales(image, model.scaleBase);
        if (model.phraseBase >= 0) fillPhrases(image, model.phraseBase);
        // A few system values away from zero so that a first look shows the controls at work.
        for (const DefaultValue& v : model.defaults)
            image[v.index] = char(v.value);
    }
    return image;
}

} // namespace ferrule
