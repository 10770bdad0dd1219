#pragma once

#include "PageRow.h"

#include <span>

namespace ferrule::PageCatalogue {

// A heading width that the builder takes from the model (the first heading of page 9).
inline constexpr int kModelWidth = -1;

// Where the shared layout of page 4 (MIDI), 8 (OD/DS) or 10 (Wah) starts for a model: the GT-6
// keeps it in its own place, the GT-8 and GT-10 in theirs.
int modelBlock(int page, int model);

// Page 9's custom tones n = 1-3 on the GT-6 and GT-8: the preamp's first byte (its type) and the
// speaker's, each tone a fixed step after the one before.
struct CustomToneLayout {
    int preamp, preampStep, speaker, speakerStep;
};
inline constexpr CustomToneLayout kGt6CustomTones{10342, 9, -1, 0};
inline constexpr CustomToneLayout kGt8CustomTones{13779, 7, 13800, 5};

// A system preamp (page 11; on the GT-10 also the custom tones of page 9): its on/off byte, the
// settings its channels share, the channel byte (0 = A, 1 = B), and its channels' blocks,
// `channelStride` bytes apart from `channels`. A GT-10 channel's custom preamp sits 17 bytes
// into its block, the speaker 7 bytes after that.
struct SystemPreampLayout {
    int onOff, shared, channelByte, channels, channelStride;
    constexpr int channel(int c) const { return channels + c * channelStride; }
};
inline constexpr SystemPreampLayout kGt8SystemPreamp{11465, 11467, 11468, 11471, 17};
inline constexpr SystemPreampLayout kGt10SystemPreamps[3] = {{19487, 19488, 19489, 19503, 32},
                                                             {19615, 19616, 19617, 19631, 32},
                                                             {19692, 19693, 19694, 19708, 32}};
inline constexpr int kGt10CustomPreampInChannel = 17;
inline constexpr int kGt10CustomSpeakerAfterPreamp = 7;
// The GT-10's "Preamp Mode": Patch, System 1, 2 or 3.
inline constexpr int kGt10PreampMode = 19121;
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

} // namespace ferrule::PageCatalogue
