#pragma once

#include "PageRow.h"
#include "device/ModelDescription.h"
#include "device/TransmissionSchedule.h"

#include <span>

namespace ferrule::PageCatalogue {

// A heading width that the builder takes from the model (the first heading of page 9).
inline constexpr int kModelWidth = -1;

// Where the shared layout of page 4 (MIDI), 8 (OD/DS) or 10 (Wah) starts for a model (the GT-6
// and GT-8 share them), from the model's description.
int modelBlock(int page, int model);

// The custom preamp base of page 9 for custom tone n (1-3) on a model, or -1 where there is
// none; on the GT-10 it lies in the block of system preamp n's current channel, as `image`
// holds it. The custom speaker's base likewise.
int customPreampBase(int model, int n, ImageBytes image);
int customSpeakerBase(int model, int n, ImageBytes image);
// The system preamp page 11 shows on the GT-10 first (0-2), from the "Preamp Mode" byte.
int systemPreampSelection(ImageBytes image);
// The system preamp k of a model (the GT-8's one, the GT-10's three; k is clamped to them).
const SystemPreampLayout& systemPreamp(int model, int k);
// Page 11's channel base: the current channel of system preamp k, as `image` holds it.
int systemPreampChannelBase(int model, int k, ImageBytes image);

// The addresses a page's rows are offset from (see Base), and the width of a heading that takes
// it from the model.
struct RowBases {
    int modelBlock = 0, customPreamp = 0, customSpeaker = 0, preampBlock = 0, preampSwitch = 0,
        preampChannel = 0, pedalPair = 0, pedalPairModes = 0, headingWidth = 0;
    int resolve(const Address& a) const;
};

// The bases of a page's rows on a model for one instance of its selector: custom tone n - 1
// (page 9), system preamp k (page 11: 0 on the GT-8, 0-2 on the GT-10), control pedal pair m
// (page 15); the bases that follow the image (a GT-10 custom tone's channel, a system preamp's
// channel) as `image` holds them. A page's absolute rows need none of them.
RowBases pageBases(int page, int model, int instance, ImageBytes image);

// The width of page 9's first heading: wider on the GT-10.
inline constexpr int preampHeadingWidth(int model) {
    return model == 10 ? 8895 : 7530;
}

std::span<const PageRow> systemPage(int model, bool page7); // pages 1, 2, 3 and 7
std::span<const PageRow> midiPage(int model);               // page 4
std::span<const PageRow> overdrivePage(int model);          // page 8
std::span<const PageRow> preampPage(int model);             // page 9
std::span<const PageRow> wahPage(int model);                // page 10
std::span<const PageRow> systemPreampHeadings();            // page 11
std::span<const PageRow> systemPreampShared();
std::span<const PageRow> systemPreampChannel();
std::span<const PageRow> inputPage();      // page 12
std::span<const PageRow> outputPage();     // page 13
std::span<const PageRow> expressionPage(); // page 14
std::span<const PageRow> ctlPedalRows();   // page 15
// Page 15's headings for the control pedal pair m (0: pedals 1 and 2, 1: pedals 3 and 4).
std::span<const PageRow> ctlPedalHeadings(int m);
// The heading and the view selector of the grid pages 5 (Harmonist) and 6 (Auto-Riff).
std::span<const PageRow> gridPage(int page);
// Whether page 9 shows custom speaker n (1-3) on a model: the GT-8 has two, the GT-10 three.
bool hasCustomSpeaker(int model, int n);

// What an expression pedal's function slider (page 14 of the GT-10, slider 0 or 2) makes of
// the Min and Max knobs of its column for a function value: their value-text format and
// maximum, -1 where it leaves them as placed; knobs -1 for another slider.
struct DependentRange {
    int knobs[2] = {-1, -1};
    int format = -1;
    int max = -1;
};
DependentRange dependentRange(int sliderIndex, int function);

// The caption of tab 0-12 (see kTabPages).
const char* tabCaption(int tab);

} // namespace ferrule::PageCatalogue
