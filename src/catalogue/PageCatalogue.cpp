#include "PageCatalogue.h"

#include <algorithm>

// Every page of every model as rows of primitive calls, in call order. Positions are twips in
// the page area; ranges start at 0; addresses are image indexes, or offsets from a base that
// the builder computes (see Base).

namespace ferrule {
namespace {

constexpr Address ModelBlock{Base::ModelBlock, 0};
constexpr Address CustomPreamp{Base::CustomPreamp, 0};
constexpr Address CustomSpeaker{Base::CustomSpeaker, 0};
constexpr Address PreampBlock{Base::PreampBlock, 0};
constexpr Address PreampSwitch{Base::PreampSwitch, 0};
constexpr Address PreampChannel{Base::PreampChannel, 0};
constexpr Address PedalPair{Base::PedalPair, 0};
constexpr Address PedalPairModes{Base::PedalPairModes, 0};
// The first heading of page 9 takes its width from the model.
constexpr int kWidthW = PageCatalogue::kModelWidth;

// Page 1, GT-3.
constexpr PageRow kPage1Gt3[] = {
    heading(0, "Tuner", 2610, 2010, 150, 105),
    heading(1, "Output / Global", 6255, 2010, 2805, 105),
    heading(2, "System", 8910, 2010, 150, 2145),
    heading(3, "Manual", 6315, 2010, 150, 4185),
    knob(0, "Pitch", kGt3Start, 10, 175, 0, 120, 615),
    options(0, "Tuner out!Mute!Bypass", 1, 1290, 1215),
    slider(0, "Your setting", 2, 4, 93, 4, 2880, 435),
    knob(1, "Low EQ", 3, 40, 6, 1, 4425, 600),
    knob(2, "High EQ", 4, 40, 6, 2, 5520, 600),
    knob(3, "NS Threshold", 5, 40, 6, 3, 6615, 600),
    knob(4, "Reverb Level", 6, 100, 9, 4, 7710, 600),
    knob(5, "LCD Contrast", 7, 15, 5, 0, 120, 2640),
    options(1, "Dial Func!P.Num & Value!Value only", 8, 1260, 3255),
    slider(1, "Sub Ctl 1", 9, 2, 150, 2, 2610, 2460),
    slider(2, "Sub Ctl 2", 10, 2, 150, 2, 3810, 2460),
    options(2, "Patch Change!Switch now!Wait for num", 11, 5265, 3255),
    knob(6, "Bank extent", 12, 84, 18, 0, 6600, 2640),
    toggle(0, "Assign hold", 13, 7890, 3440),
    slider(3, "Pedal 1", 3316, 11, 155, 0, 60, 4500),
    slider(4, "Pedal 2", 3317, 11, 155, 0, 1050, 4500),
    slider(5, "Pedal 3", 3318, 11, 155, 0, 2040, 4500),
    slider(6, "Pedal 4", 3319, 11, 155, 0, 3030, 4500),
    slider(7, "Bank Down", 3320, 11, 155, 0, 4020, 4500),
    slider(8, "Bank Up", 3321, 11, 155, 0, 5010, 4500),
};

// Page 1, GT-5.
constexpr PageRow kPage1Gt5[] = {
    heading(0, "Tuner", 3690, 2010, 150, 105),
    heading(1, "Output / Global", 7425, 2010, 150, 2145),
    heading(2, "System", 5175, 2010, 3885, 105),
    heading(3, "Manual", 5295, 2010, 150, 4185),
    knob(0, "Pitch", kGt5Start, 10, 175, 0, 120, 600),
    slider(8, "String", 4363, 3, 176, 4, 1200, 420),
    options(0, "Tuner out!Mute!Bypass", 4364, 2700, 1200),
    slider(0, "Your setting", 4365, 4, 93, 4, 150, 2460),
    knob(1, "Low EQ", 4366, 40, 6, 1, 1545, 2640),
    knob(2, "High EQ", 4367, 40, 6, 2, 2640, 2640),
    knob(3, "NS Threshold", 4368, 40, 6, 3, 3735, 2640),
    knob(4, "Reverb Level", 4369, 100, 9, 4, 4830, 2640),
    slider(9, "SP on/off", 4370, 2, 177, 2, 5850, 2460),
    options(1, "Dial Func!Number & Value!Value only", 4371, 6480, 420),
    slider(1, "Exp/Ctl 1", 4372, 7, 151, 3, 3795, 420),
    slider(2, "Exp/Ctl 2", 4373, 7, 151, 3, 5020, 420),
    options(2, "Patch Change!Switch now!Wait for num", 4374, 6480, 1200),
    toggle(0, "Assign hold", 4375, 7890, 1365),
    slider(3, "Pedal 1", 5532, 13, 156, 0, 60, 4500),
    slider(4, "Pedal 2", 5533, 13, 156, 0, 1050, 4500),
    slider(5, "Pedal 3", 5534, 13, 156, 0, 2040, 4500),
    slider(6, "Pedal 4", 5535, 13, 156, 0, 3030, 4500),
    slider(7, "Pedal 5", 5536, 13, 156, 0, 4020, 4500),
};

// Page 1, GT-6.
constexpr PageRow kPage1Gt6[] = {
    heading(0, "Tuner", 2610, 2010, 150, 105),
    heading(1, "Output / Global", 6255, 2010, 2805, 105),
    heading(2, "System", 8910, 2010, 150, 2145),
    heading(3, "Manual", 6315, 2010, 150, 4185),
    knob(0, "Pitch", kGt6Start, 10, 175, 0, 120, 600),
    options(0, "Tuner out!Mute!Bypass", 7023, 1290, 1200),
    slider(0, "Output select", 7024, 7, 94, 4, 2880, 420),
    knob(1, "Low EQ", 7025, 40, 6, 1, 4425, 600),
    knob(2, "High EQ", 7026, 40, 6, 2, 5520, 600),
    knob(3, "NS Threshold", 7027, 40, 6, 3, 6615, 600),
    knob(4, "Reverb Level", 7028, 100, 9, 4, 7710, 600),
    knob(5, "LCD Contrast", 7029, 15, 5, 0, 120, 2640),
    knob(6, "Bank extent", 7030, 84, 18, 0, 1200, 2640),
    options(1, "Patch Change!Switch now!Wait for num", 7031, 2355, 2460),
    toggle(0, "Exp pedal hold", 7032, 7590, 2655),
    options(2, "Dial Func!P.Num & Value!Value only", 7033, 2355, 3255),
    options(3, "Knob mode!Immediate!Current", 7034, 3845, 2460),
    toggle(1, "Pedal Tuner SW", 7035, 7590, 3450),
    options(4, "Amp sw mode!Amp on/off!Toggle to knobs", 7036, 3840, 3255),
    slider(1, "Sub Ctl 1", 7037, 4, 152, 2, 5160, 2460),
    slider(2, "Sub Ctl 2", 7038, 4, 152, 2, 6240, 2460),
    slider(3, "Pedal 1", 10394, 10, 157, 0, 60, 4500),
    slider(4, "Pedal 2", 10395, 10, 157, 0, 1050, 4500),
    slider(5, "Pedal 3", 10396, 10, 157, 0, 2040, 4500),
    slider(6, "Pedal 4", 10397, 10, 157, 0, 3030, 4500),
    slider(7, "Bank Down", 10398, 10, 157, 0, 4020, 4500),
    slider(8, "Bank Up", 10399, 10, 157, 0, 5010, 4500),
};

// Page 1 (and 2, 3), GT-8.
constexpr PageRow kPage1Gt8[] = {
    heading(0, "Tuner", 2340, 2010, 1905, 4185),
    heading(1, "System", 8910, 2010, 150, 105),
    heading(2, "Output", 1725, 2010, 150, 4185),
    heading(3, "Pedal Function", 8910, 2010, 150, 2145),
    knob(0, "Pitch", kGt8Start, 10, 175, 0, 1845, 4680),
    options(0, "Tuner out!Mute!Bypass", 10401, 3015, 5280),
    slider(0, "Output select", 10402, 7, 181, 4, 255, 4500),
    knob(1, "LCD Contrast", 10409, 15, 5, 0, 150, 600),
    knob(2, "Bank extent", 10414, 84, 18, 0, 1350, 600),
    options(1, "Patch Change!Fast!Smooth", 10412, 2775, 390),
    options(2, "Preamp Mode!Patch!System", 10413, 2775, 1200),
    options(3, "Bank Change!Immediate!Wait for num", 10416, 4395, 390),
    options(4, "Dial Func!P.Num & Value!Value only", 10418, 4395, 1215),
    options(5, "Knob mode!Immediate!Current", 10419, 6015, 1215),
    toggle(0, "Exp pedal hold", 10417, 6015, 390),
    options(6, "Num pedal sw!Off!Tuner!Solo!Amp Ch.", 10420, 7635, 390),
    slider(1, "Ctl Pdl", 10422, 30, 182, 4, 255, 2460),
    slider(2, "Exp Sw", 10423, 30, 182, 4, 1695, 2460),
    slider(3, "Exp Pdl", 10424, 5, 183, 4, 3135, 2460),
    slider(4, "Sub Exp", 10425, 5, 183, 4, 4575, 2460, MinOne),
    slider(5, "Sub Ctl 1", 10426, 5, 182, 4, 6015, 2460),
    slider(6, "Sub Ctl 2", 10427, 5, 182, 4, 7455, 2460),
};

// Page 7, GT-8: meter, manual pedals, global, global EQ.
constexpr PageRow kPage7Gt8[] = {
    heading(0, "Meter", 1755, 2010, 7305, 2145),
    heading(1, "Manual", 8910, 2010, 150, 105),
    heading(2, "Global", 7125, 2010, 150, 2145),
    heading(3, "Global EQ", 5220, 2010, 150, 4185),
    slider(0, "Meter Point", 11464, 15, 184, 3, 7425, 2460),
    slider(1, "Pedal 1", 11505, 17, 180, 3, 225, 420),
    slider(2, "Pedal 2", 11506, 17, 180, 3, 1665, 420),
    slider(3, "Pedal 3", 11507, 17, 180, 3, 3105, 420),
    slider(4, "Pedal 4", 11508, 17, 180, 3, 4545, 420),
    slider(5, "Bank Down", 11509, 17, 180, 3, 5985, 420),
    slider(6, "Bank Up", 11510, 17, 180, 3, 7425, 420),
    knob(0, "Low EQ", 10403, 40, 6, 1, 150, 4680),
    knob(1, "Mid EQ", 10404, 40, 6, 2, 1350, 4680),
    slider(7, "Mid Freq", 10405, 27, 116, 2, 2535, 4500),
    knob(2, "High EQ", 10406, 40, 6, 3, 4035, 4680),
    knob(3, "NS Threshold", 10407, 40, 6, 3, 2850, 2640),
    knob(4, "Reverb Level", 10408, 100, 9, 4, 4350, 2640),
    knob(5, "Input Level", 10410, 40, 6, 2, 150, 2640),
    knob(6, "Input Presence", 10411, 40, 6, 2, 1350, 2640, 0, CaptionAbove),
    knob(7, "SPDIF Level", 10421, 100, 9, 4, 5550, 2640, 1),
};

// Page 1, GT-10.
constexpr PageRow kPage1Gt10[] = {
    heading(0, "Tuner", 2340, 2010, 150, 105),
    heading(1, "System", 6540, 2010, 2520, 105),
    heading(2, "System", 8910, 2010, 150, 2145),
    heading(3, "Manual", 6390, 2010, 150, 4185),
    heading(4, "Pedals", 2490, 2010, 6570, 4185),
    knob(0, "Pitch", 19153, 10, 175, 0, 120, 600),
    options(0, "Tuner out!Mute!Bypass", 19154, 1290, 1200),
    knob(1, "LCD Contrast", kGt10Start, 15, 5, 0, 2580, 600),
    knob(2, "Bank Low", 19124, 99, 18, 0, 3705, 600),
    knob(3, "Bank High", 19126, 99, 18, 0, 4710, 600),
    options(1, "Bank Change!Immediate!Wait for num", 19123, 6000, 600),
    options(2, "Patch Change!Immediate!Wait for num", 19122, 7500, 600),
    slider(7, "Knob 1", 19219, 64, 223, 4, 210, 2460),
    slider(8, "Knob 2", 19221, 64, 223, 4, 1530, 2460),
    slider(9, "Knob 3", 19223, 64, 223, 4, 2850, 2460),
    slider(10, "Knob 4", 19225, 64, 223, 4, 4170, 2460),
    options(3, "Dial Func!P.Num & Value!Value only", 19218, 6000, 2460),
    options(4, "USB Driver!Standard!Advanced", 19317, 7500, 2460),
    toggle(0, "USB Monitor", 19318, 7500, 3360),
    slider(1, "Pedal 1", 19441, 33, 209, 3, 60, 4500),
    slider(2, "Pedal 2", 19442, 33, 226, 3, 1080, 4500),
    slider(3, "Pedal 3", 19443, 33, 226, 3, 2100, 4500),
    slider(4, "Pedal 4", 19444, 33, 226, 3, 3120, 4500),
    slider(5, "Bank Down", 19446, 33, 226, 3, 4140, 4500),
    slider(6, "Bank Up", 19445, 33, 226, 3, 5160, 4500),
    slider(0, "Function", 19217, 5, 224, 4, 6600, 4500),
    toggle(1, "Indicate", 19129, 8060, 4500),
};

// Page 4 (MIDI), GT-3.
constexpr PageRow kPage4Gt3[] = {
    heading(0, "MIDI", 4515, 4395, 150, 105),
    knob(0, "Rx channel", 14, 15, 5, 0, 120, 600),
    toggle(0, "Omni mode", 15, 375, 1995),
    knob(1, "Tx channel", 16, 16, 153, 0, 1230, 600),
    toggle(1, "PC out", 17, 1485, 1995),
    knob(2, "EXP out", 18, 94, 154, 1, 120, 2910),
    knob(3, "CTL out", 19, 94, 154, 2, 1230, 2910),
    knob(4, "Sub CTL 1", 20, 94, 154, 3, 2340, 2910),
    knob(5, "Sub CTL 2", 21, 94, 154, 3, 3450, 2910),
    options(0, "Map Select!Fixed!Progammable", 22, 2715, 600),
};

// Page 4, GT-5: no channel rows.
constexpr PageRow kPage4Gt5[] = {
    heading(0, "MIDI", 6195, 2655, 150, 105),
    toggle(0, "PC out", 4376, 375, 1995),
    knob(0, "EXP out", 4377, 94, 154, 1, 120, 600),
    knob(1, "CTL out", 4378, 94, 154, 2, 1230, 600),
    knob(2, "EXP 1 out", 4379, 94, 154, 3, 2340, 600),
    knob(3, "EXP 2 out", 4380, 94, 154, 3, 3450, 600),
    options(0, "Map Select!Fixed!Progammable", 4381, 4680, 600),
};

// Page 4, GT-6 and GT-8 (B per model).
constexpr PageRow kPage4Gt6Gt8[] = {
    heading(0, "MIDI", 5670, 4380, 150, 105),
    knob(0, "Rx channel", ModelBlock, 15, 5, 0, 120, 600),
    toggle(0, "Omni mode", ModelBlock + 1, 375, 1995),
    knob(1, "Tx channel", ModelBlock + 2, 16, 153, 0, 1230, 600),
    options(1, "Sync clock!Auto!Internal", ModelBlock + 3, 2715, 1620),
    toggle(1, "PC out", ModelBlock + 4, 1485, 1995),
    knob(2, "EXP out", ModelBlock + 5, 94, 154, 1, 120, 2910),
    knob(3, "EXP SW out", ModelBlock + 6, 94, 154, 2, 1230, 2910),
    knob(4, "CTL out", ModelBlock + 7, 94, 154, 3, 2340, 2910),
    knob(5, "Sub CTL 1", ModelBlock + 8, 94, 154, 4, 3450, 2910),
    knob(6, "Sub CTL 2", ModelBlock + 9, 94, 154, 4, 4560, 2910),
    options(0, "Map Select!Fixed!Progammable", ModelBlock + 10, 2715, 600),
};

// Page 4, GT-10. "Device ID" takes knob 9, which no other row of the page uses.
constexpr PageRow kPage4Gt10[] = {
    heading(0, "MIDI", 7890, 4380, 150, 105),
    knob(0, "Rx channel", 19770, 15, 5, 0, 120, 600),
    toggle(0, "Omni mode", 19769, 375, 1995),
    knob(1, "Tx channel", 19771, 16, 153, 0, 1230, 600),
    knob(9, "Device ID", 19772, 31, 5, 0, 3960, 600),
    options(1, "Sync clock!Auto!Internal", 19773, 2715, 1620),
    toggle(1, "PC out", 19774, 1485, 1995),
    knob(2, "EXP out", 19775, 94, 154, 1, 120, 2910),
    knob(3, "EXP SW out", 19776, 94, 154, 2, 1230, 2910),
    knob(4, "CTL 1 out", 19777, 94, 154, 3, 2340, 2910),
    knob(5, "CTL 2 out", 19778, 94, 154, 3, 3450, 2910),
    knob(6, "EXP 2 out", 19779, 94, 154, 1, 4560, 2910),
    knob(7, "CTL 3 out", 19780, 94, 154, 4, 5670, 2910),
    knob(8, "CTL 4 out", 19781, 94, 154, 4, 6780, 2910),
    options(0, "Map Select!Fixed!Progammable", 10439, 2715, 600),
};

// Page 8 (custom overdrive/distortion), GT-6 and GT-8 (B per model); the third
// group only on GT-8.
constexpr PageRow kPage8Gt6Gt8[] = {
    heading(0, "Custom OD/DS 1", 5925, 2010, 150, 105),
    slider(0, "Type", ModelBlock, 7, 173, 3, 105, 420),
    knob(0, "Bottom", ModelBlock + 1, 10, 178, 0, 1500, 600),
    knob(1, "Top", ModelBlock + 2, 10, 178, 1, 2610, 600),
    knob(2, "Low", ModelBlock + 3, 10, 178, 2, 3720, 600),
    knob(3, "High", ModelBlock + 4, 10, 178, 3, 4830, 600),
    heading(1, "Custom OD/DS 2", 5925, 2010, 150, 2145),
    slider(1, "Type", ModelBlock + 5, 7, 173, 3, 105, 2460),
    knob(4, "Bottom", ModelBlock + 6, 10, 178, 0, 1500, 2640),
    knob(5, "Top", ModelBlock + 7, 10, 178, 1, 2610, 2640),
    knob(6, "Low", ModelBlock + 8, 10, 178, 2, 3720, 2640),
    knob(7, "High", ModelBlock + 9, 10, 178, 3, 4830, 2640),
    only(Gt8Only, heading(2, "Custom OD/DS 3", 5925, 2010, 150, 4185)),
    only(Gt8Only, slider(2, "Type", ModelBlock + 10, 7, 173, 3, 105, 4500)),
    only(Gt8Only, knob(8, "Bottom", ModelBlock + 11, 10, 178, 0, 1500, 4680)),
    only(Gt8Only, knob(9, "Top", ModelBlock + 12, 10, 178, 1, 2610, 4680)),
    only(Gt8Only, knob(10, "Low", ModelBlock + 13, 10, 178, 2, 3720, 4680)),
    only(Gt8Only, knob(11, "High", ModelBlock + 14, 10, 178, 3, 4830, 4680)),
};

// Page 8, GT-5.
constexpr PageRow kPage8Gt5[] = {
    heading(0, "Custom OD/DS 1", 8940, 2010, 150, 105),
    knob(0, "Bottom", 5498, 4, 158, 0, 1500, 600, 1),
    knob(1, "Attack", 5499, 4, 159, 1, 2610, 600, 1),
    knob(2, "Top", 5500, 7, 160, 3, 3720, 600, 1),
    slider(0, "Type", 5501, 3, 161, 3, 105, 420),
    knob(3, "Low", 5502, 8, 162, 1, 4830, 600, 1),
    knob(4, "Mid", 5503, 15, 163, 2, 5940, 600, 1),
    knob(5, "High", 5504, 13, 164, 3, 7050, 600, 1),
    heading(1, "Custom OD/DS 2", 8940, 2100, 150, 2145),
    knob(6, "Bottom", 5505, 4, 158, 0, 1500, 2640, 1),
    knob(7, "Attack", 5506, 4, 159, 1, 2610, 2640, 1),
    knob(8, "Top", 5507, 7, 160, 3, 3720, 2640, 1),
    slider(1, "Type", 5508, 3, 161, 3, 105, 2460),
    knob(9, "Low", 5509, 8, 162, 1, 4830, 2640, 1),
    knob(10, "Mid", 5510, 15, 163, 2, 5940, 2640, 1),
    knob(11, "High", 5511, 13, 164, 3, 7050, 2640, 1),
};

// Page 9 (custom preamp), GT-5.
constexpr PageRow kPage9Gt5[] = {
    heading(0, "Custom Preamp 1", 8940, 2010, 150, 105),
    knob(0, "Bottom", 5512, 4, 165, 0, 1305, 600),
    knob(1, "Top", 5513, 7, 166, 1, 2190, 600),
    knob(2, "Volume type", 5514, 4, 167, 2, 3075, 600),
    slider(0, "Tone", 5515, 6, 168, 4, 90, 420),
    options(0, "Clip type!Pre tone!Post tone", 5516, 4305, 330),
    knob(3, "Presence", 5517, 3, 169, 3, 5325, 600),
    options(1, "Gain!Low!High", 5518, 4305, 1215),
    knob(4, "Low", 5519, 6, 170, 0, 6210, 600),
    knob(5, "High", 5520, 8, 171, 1, 7095, 600),
    options(2, "Cabinet!Built-in!Stack", 5521, 8190, 600),
    heading(1, "Custom Preamp 2", 8940, 2010, 150, 2130),
    knob(6, "Bottom", 5522, 4, 165, 0, 1305, 2640),
    knob(7, "Top", 5523, 7, 166, 1, 2190, 2640),
    knob(8, "Volume type", 5524, 4, 167, 2, 3075, 2640),
    slider(1, "Tone", 5525, 6, 168, 4, 90, 2460),
    options(3, "Clip type!Pre tone!Post tone", 5526, 4305, 2370),
    knob(9, "Presence", 5527, 3, 169, 3, 5325, 2640),
    options(4, "Gain!Low!High", 5528, 4305, 3255),
    knob(10, "Low", 5529, 6, 170, 0, 6210, 2640),
    knob(11, "High", 5530, 8, 171, 1, 7095, 2640),
    options(5, "Cabinet!Built-in!Stack", 5531, 8190, 2640),
};

// Page 9, GT-6 (P for custom preamp n = PreampView + 1; the list is placed first). The
// headings take n after their caption.
constexpr PageRow kPage9Gt6[] = {
    selector("Edit Preamp!1!2!3", 3, 150, 4410),
    selector("Edit Preamp!1!2!3", 3, 150, 4410),
    heading(0, "Custom Preamp ", 5925, 4110, 150, 105),
    slider(0, "Type", CustomPreamp, 6, 172, 3, 105, 420),
    knob(0, "Bottom", CustomPreamp + 1, 10, 178, 0, 1500, 600),
    knob(1, "Edge", CustomPreamp + 2, 10, 178, 1, 2610, 600),
    knob(2, "Bass", CustomPreamp + 3, 10, 178, 2, 3720, 600),
    knob(3, "Treble", CustomPreamp + 4, 10, 178, 3, 4830, 600),
    knob(4, "Preamp Low", CustomPreamp + 5, 10, 178, 2, 1500, 2640),
    knob(5, "Preamp High", CustomPreamp + 6, 10, 178, 3, 2610, 2640),
    knob(6, "Spkr Low", CustomPreamp + 7, 10, 178, 2, 3720, 2640),
    knob(7, "Spkr High", CustomPreamp + 8, 10, 178, 3, 4830, 2640),
};

// Page 9, GT-8 and GT-10 (P and S per model and custom tone; W per model); "Preamp Mode"
// only on GT-10.
constexpr PageRow kPage9Gt8Gt10[] = {
    selector("Edit Preamp/Speaker!1!2!3", 3, 150, 4410),
    heading(0, "Custom Preamp ", kWidthW, 2010, 150, 105),
    only(Gt10Only,
         options(8, "Preamp Mode!Patch!System 1!System 2!System 3", kGt10PreampMode, 7800, 600)),
    slider(0, "Type", CustomPreamp, 6, 172, 4, 210, 420),
    knob(0, "Bottom", CustomPreamp + 1, 10, 178, 0, 1590, 600),
    knob(1, "Edge", CustomPreamp + 2, 10, 178, 1, 2550, 600),
    knob(2, "Bass", CustomPreamp + 3, 10, 178, 2, 3510, 600),
    knob(3, "Treble", CustomPreamp + 4, 10, 178, 3, 4470, 600),
    knob(4, "Low", CustomPreamp + 5, 10, 178, 2, 5430, 600),
    knob(5, "High", CustomPreamp + 6, 10, 178, 3, 6390, 600),
    heading(1, "Custom Speaker ", 6060, 2010, 150, 2145),
    slider(1, "Type", CustomSpeaker, 10, 16, 0, 210, 2460),
    knob(6, "Low", CustomSpeaker + 1, 20, 15, 2, 1590, 2640),
    knob(7, "High", CustomSpeaker + 2, 20, 15, 3, 2550, 2640),
    options(6, "Number!x1!x2!x4!x8", CustomSpeaker + 3, 3870, 2640),
    options(0, "Cabinet type!Open!Closed", CustomSpeaker + 4, 4830, 2640),
};

// Page 10 (custom wah), GT-6 and GT-8 (B per model).
constexpr PageRow kPage10[] = {
    heading(0, "Custom WAH 1", 5925, 2010, 150, 105),
    slider(0, "Type", ModelBlock, 4, 174, 4, 105, 420),
    knob(0, "Q", ModelBlock + 1, 10, 178, 0, 1500, 600),
    knob(1, "Range Low", ModelBlock + 2, 10, 178, 1, 2610, 600),
    knob(2, "Range High", ModelBlock + 3, 10, 178, 2, 3720, 600),
    knob(3, "Presence", ModelBlock + 4, 10, 178, 3, 4830, 600),
    heading(1, "Custom WAH 2", 5925, 2010, 150, 2130),
    slider(1, "Type", ModelBlock + 5, 4, 174, 4, 105, 2460),
    knob(4, "Q", ModelBlock + 6, 10, 178, 0, 1500, 2640),
    knob(5, "Range Low", ModelBlock + 7, 10, 178, 1, 2610, 2640),
    knob(6, "Range High", ModelBlock + 8, 10, 178, 2, 3720, 2640),
    knob(7, "Presence", ModelBlock + 9, 10, 178, 3, 4830, 2640),
    heading(2, "Custom WAH 3", 5925, 2010, 150, 4185),
    slider(2, "Type", ModelBlock + 10, 4, 174, 4, 105, 4500),
    knob(8, "Q", ModelBlock + 11, 10, 178, 0, 1500, 4680),
    knob(9, "Range Low", ModelBlock + 12, 10, 178, 1, 2610, 4680),
    knob(10, "Range High", ModelBlock + 13, 10, 178, 2, 3720, 4680),
    knob(11, "Presence", ModelBlock + 14, 10, 178, 3, 4830, 4680),
};

// Page 11 (system preamp), GT-8 and GT-10: headings.
constexpr PageRow kPage11Headings[] = {
    heading(0, "System Preamp", 8910, 2010, 150, 105),
    heading(1, "", 8910, 2010, 150, 2145),
    heading(2, "Channel", 1755, 2010, 150, 4185),
    heading(3, "Solo", 4440, 2010, 1935, 4185),
};

// Page 11: the rows of the system preamp block C and its on/off switch.
constexpr PageRow kPage11Shared[] = {
    toggle(2, "On/Off", PreampSwitch, 240, 5280),
    options(6, "Mode!Single!Dual Mono!Dual L/R!Dynamic", PreampBlock, 240, 2460),
    options(1, " !Channel A!Channel B", PreampBlock + 1, 240, 4290),
    knob(0, "Dynamic Sens", PreampBlock + 2, 100, 0, 2, 1605, 2640),
    knob(1, "Delay", PreampBlock + 3, 50, 10, 4, 2655, 2640),
};

// Page 12 (input levels and global EQ), GT-10.
constexpr PageRow kPage12[] = {
    heading(0, "Input Levels", 8910, 2010, 150, 105),
    heading(1, "Global EQ", 5730, 2010, 150, 2145),
    knob(0, "Level 1", 19169, 40, 6, 0, 120, 600),
    knob(1, "Presence", 19170, 40, 6, 0, 1020, 600),
    knob(2, "Level 2", 19171, 40, 6, 1, 2070, 600),
    knob(3, "Presence", 19172, 40, 6, 1, 2970, 600),
    knob(4, "Level 3", 19173, 40, 6, 2, 4020, 600),
    knob(5, "Presence", 19174, 40, 6, 2, 4920, 600),
    knob(6, "USB Level", 19175, 40, 6, 3, 5970, 600),
    knob(7, "Presence", 19176, 40, 6, 3, 6870, 600),
    options(6, "Input!1!2!3!USB", 19182, 8130, 600),
    knob(8, "Low EQ", 19177, 24, 17, 3, 150, 2640),
    knob(9, "Mid EQ", 19178, 24, 17, 3, 1350, 2640),
    knob(10, "Mid Q", 19179, 5, 83, 4, 2250, 2640),
    slider(0, "Mid Freq", 19180, 27, 116, 2, 3150, 2460),
    knob(11, "High EQ", 19181, 24, 17, 3, 4605, 2640),
};

// Page 13 (output and phrase loop), GT-10.
constexpr PageRow kPage13[] = {
    heading(0, "Output", 8910, 2010, 150, 105),
    heading(1, "Phrase Loop", 6540, 2010, 150, 2145),
    slider(0, "Output select", 19184, 7, 181, 4, 360, 420),
    options(0, "Mode!Patch!System", 19183, 1890, 420),
    knob(0, "Digital Level", 19139, 100, 9, 0, 2880, 600),
    knob(1, "USB Mix Level", 19140, 100, 9, 0, 4080, 600),
    options(1, "Main out level!-10dBu!+4dBu", 19187, 5310, 600),
    knob(2, "NS Threshold", 19185, 40, 6, 4, 6510, 600),
    knob(3, "Reverb Level", 19186, 100, 9, 2, 7620, 600),
    knob(4, "Play Level", 19205, 120, 0, 3, 480, 2640),
    options(2, "Mode!Performance!Patch Edit", 19201, 1890, 2640),
    options(3, "Record!Mono!Stereo", 19202, 3600, 2640),
    options(4, "Pedal!Clear!Mute+Clear", 19206, 5310, 2640),
    toggle(0, "Pedal", 19203, 5310, 3420),
};

// Page 14 (expression pedals), GT-10. Each column: on/off, Function +1, Min +3, Max +5,
// Mode +7, PDL Low +8, PDL High +9 from 19249, 19265 and 19313.
constexpr PageRow kPage14[] = {
    heading(0, "EXP Pedal", 7980, 2010, 150, 105),
    heading(1, "EXP Pedal Switch", 7980, 2010, 150, 2145),
    heading(2, "EXP Pedal 2 (external)", 7980, 2010, 150, 4185),
    slider(0, "Function", 19250, 6, 208, 4, 210, 420),
    knob(0, "Min", 19252, 1, 0, 1, 1590, 600),
    knob(1, "Max", 19254, 1, 0, 1, 2490, 600),
    dependentRanges(0),
    knob(2, "PDL Low", 19257, 127, 0, 2, 3690, 600),
    knob(3, "PDL High", 19258, 127, 0, 2, 4590, 600),
    options(0, "Mode!Momentary!Toggle", 19256, 5940, 600),
    options(3, " !Patch!System", 19227, 5940, 1245),
    toggle(0, "On/Off", 19249, 7240, 600),
    slider(1, "Function", 19266, 6, 209, 4, 210, 2460),
    knob(4, "Min", 19268, 1, 30, 1, 1590, 2640),
    knob(5, "Max", 19270, 1, 30, 1, 2490, 2640),
    knob(6, "PDL Low", 19273, 1, 0, 2, 3690, 2640),
    knob(7, "PDL High", 19274, 1, 0, 2, 4590, 2640),
    options(1, "Mode!Momentary!Toggle", 19272, 5940, 2640),
    options(4, " !Patch!System", 19228, 5940, 3285),
    toggle(1, "On/Off", 19265, 7240, 2640),
    slider(2, "Function", 19314, 6, 225, 4, 210, 4500),
    knob(8, "Min", 19316, 100, 0, 1, 1590, 4680),
    knob(9, "Max", 19318, 100, 0, 1, 2490, 4680),
    dependentRanges(2),
    knob(10, "PDL Low", 19321, 127, 0, 2, 3690, 4680),
    knob(11, "PDL High", 19322, 127, 0, 2, 4590, 4680),
    options(2, "Mode!Momentary!Toggle", 19320, 5940, 4680),
    options(5, " !Patch!System", 19231, 5940, 5325),
    toggle(2, "On/Off", 19313, 7240, 4680),
    toggle(3, "Hold", 19128, 7240, 1245),
};

// The channel rows of page 11, from the channel base X.
constexpr PageRow kSystemPreampRows[] = {
    slider(0, "Preamp Type", PreampChannel, 48, 134, 4, 240, 435),
    knob(2, "Gain", PreampChannel + 1, 120, 0, 3, 1620, 600),
    knob(3, "Bass", PreampChannel + 2, 100, 0, 0, 2640, 600),
    knob(4, "Middle", PreampChannel + 3, 100, 0, 2, 3660, 600),
    knob(5, "Treble", PreampChannel + 4, 100, 0, 3, 4680, 600),
    knob(6, "Presence", PreampChannel + 5, 100, 0, 4, 5700, 600),
    knob(7, "Level", PreampChannel + 6, 100, 0, 1, 6720, 600),
    toggle(0, "Bright", PreampChannel + 7, 7965, 360),
    options(7, "Gain!Low!Middle!High", PreampChannel + 8, 7965, 990),
    slider(1, "Spkr Type", PreampChannel + 11, 4, 135, 3, 3810, 2460),
    slider(2, "Mic Type", PreampChannel + 12, 4, 136, 3, 5265, 2460),
    options(0, "Mic Dis!Off Mic!On Mic", PreampChannel + 13, 7965, 2640),
    knob(9, "Mic Pos", PreampChannel + 14, 10, 25, 2, 6720, 2640),
    toggle(1, "Solo", PreampChannel + 9, 2125, 4680),
    knob(8, "Solo Level", PreampChannel + 10, 100, 0, 1, 2930, 4680),
    knob(10, "Mic Level", PreampChannel + 15, 100, 0, 1, 3950, 4680),
    knob(11, "Direct Level", PreampChannel + 16, 100, 0, 1, 4970, 4680),
};

// The control pedal rows of page 15, for the pair m (Q = 48 × m, M3 = 3 × m).
constexpr PageRow kCtlPedalRows[] = {
    slider(0, "Function", PedalPair + 19282, 6, 209, 4, 210, 420),
    knob(0, "Min", PedalPair + 19284, 1, 30, 1, 1590, 600),
    knob(1, "Max", PedalPair + 19286, 1, 30, 1, 2490, 600),
    knob(2, "PDL Low", PedalPair + 19289, 127, 0, 2, 3690, 600),
    knob(3, "PDL High", PedalPair + 19290, 127, 0, 2, 4590, 600),
    options(0, "Mode!Momentary!Toggle", PedalPair + 19288, 5940, 600),
    options(1, " !Patch!System", PedalPairModes + 19229, 5940, 1245),
    toggle(0, "On/Off", PedalPair + 19281, 7240, 600),
    slider(1, "Function", PedalPair + 19298, 6, 209, 4, 210, 2460),
    knob(4, "Min", PedalPair + 19300, 1, 30, 1, 1590, 2640),
    knob(5, "Max", PedalPair + 19302, 1, 30, 1, 2490, 2640),
    knob(6, "PDL Low", PedalPair + 19305, 127, 0, 2, 3690, 2640),
    knob(7, "PDL High", PedalPair + 19306, 127, 0, 2, 4590, 2640),
    options(2, "Mode!Momentary!Toggle", PedalPair + 19304, 5940, 2640),
    options(3, " !Patch!System", PedalPairModes + 19230, 5940, 3285),
    toggle(1, "On/Off", PedalPair + 19297, 7240, 2640),
};

// Page 15's headings, for the pairs 1-2 and 3-4.
constexpr PageRow kCtlPedalHeadings[2][2] = {
    {heading(0, "CTL Pedal 1", 7980, 2010, 150, 105),
     heading(1, "CTL Pedal 2", 7980, 2010, 150, 2145)},
    {heading(0, "CTL Pedal 3", 7980, 2010, 150, 105),
     heading(1, "CTL Pedal 4", 7980, 2010, 150, 2145)},
};

// Pages 5 and 6: the heading over the grid and the selector of the scales or phrases it shows.
constexpr PageRow kPage5[] = {
    heading(0, "Harmonist", 8910, 5325, 135, 105),
    selector("Edit Scale!1-16!14-29", 2, 150, 5430),
};
constexpr PageRow kPage6[] = {
    heading(0, "Auto-Riff", 8910, 5325, 135, 105),
    selector("Edit Phrase!1!2!3!4!5!6!7!8!9!10", 10, 150, 5430),
};

constexpr const char* kTabCaptions[kTabCount] = {
    "System",   "MIDI",       "Harmonist", "Auto-Riff", "OD/DS", "Preamp", "Wah",
    "Meter/EQ", "Sys Preamp", "Input",     "Output",    "EXP",   "CTL"};

} // namespace

namespace PageCatalogue {

std::span<const PageRow> ctlPedalHeadings(int m) {
    return kCtlPedalHeadings[std::clamp(m, 0, 1)];
}

std::span<const PageRow> gridPage(int page) {
    if (page == 5) return kPage5;
    if (page == 6) return kPage6;
    return {};
}

bool hasCustomSpeaker(int model, int n) {
    return (model == 8 && n <= 2) || model == 10;
}

DependentRange dependentRange(int sliderIndex, int function) {
    if (sliderIndex == 0) {
        if (function == 2 || function == 4) return {{0, 1}, 1, 48};
        return {{0, 1}, 0, 100};
    }
    if (sliderIndex == 2) {
        if (function == 0 || function == 1) return {{8, 9}, 0, -1};
        if (function == 2) return {{8, 9}, 9, -1};
        return {{8, 9}, -1, -1};
    }
    return {};
}

const char* tabCaption(int tab) {
    return tab >= 0 && tab < kTabCount ? kTabCaptions[tab] : "";
}

std::span<const PageRow> systemPage(int model, bool page7) {
    switch (model) {
    case 3:
        return kPage1Gt3;
    case 5:
        return kPage1Gt5;
    case 6:
        return kPage1Gt6;
    case 8:
        return page7 ? std::span<const PageRow>(kPage7Gt8) : std::span<const PageRow>(kPage1Gt8);
    case 10:
        return kPage1Gt10;
    default:
        return {};
    }
}

std::span<const PageRow> midiPage(int model) {
    switch (model) {
    case 3:
        return kPage4Gt3;
    case 5:
        return kPage4Gt5;
    case 6:
    case 8:
        return kPage4Gt6Gt8;
    case 10:
        return kPage4Gt10;
    default:
        return {};
    }
}

std::span<const PageRow> overdrivePage(int model) {
    switch (model) {
    case 5:
        return kPage8Gt5;
    case 6:
    case 8:
        return kPage8Gt6Gt8;
    default:
        return {};
    }
}

std::span<const PageRow> preampPage(int model) {
    switch (model) {
    case 5:
        return kPage9Gt5;
    case 6:
        return kPage9Gt6;
    case 8:
    case 10:
        return kPage9Gt8Gt10;
    default:
        return {};
    }
}

std::span<const PageRow> wahPage(int model) {
    return model == 6 || model == 8 ? std::span<const PageRow>(kPage10)
                                    : std::span<const PageRow>();
}

std::span<const PageRow> systemPreampHeadings() {
    return kPage11Headings;
}
std::span<const PageRow> systemPreampShared() {
    return kPage11Shared;
}
std::span<const PageRow> systemPreampChannel() {
    return kSystemPreampRows;
}
std::span<const PageRow> inputPage() {
    return kPage12;
}
std::span<const PageRow> outputPage() {
    return kPage13;
}
std::span<const PageRow> expressionPage() {
    return kPage14;
}
std::span<const PageRow> ctlPedalRows() {
    return kCtlPedalRows;
}

} // namespace PageCatalogue
int PageCatalogue::modelBlock(int page, int model) {
    const ModelDescription& d = describeModel(model);
    switch (page) {
    case 4:
        return d.midiBlock;
    case 8:
        return d.overdriveBlock;
    case 10:
        return d.wahBlock;
    default:
        return 0;
    }
}

int PageCatalogue::customPreampBase(int model, int n, ImageBytes image) {
    const CustomToneLayout& tones = describeModel(model).customTones;
    if (model == 10) {
        // The custom preamp lies in the block of system preamp n's current channel.
        const SystemPreampLayout& preamp = systemPreamp(model, n - 1);
        const int channel = image[std::size_t(preamp.channelByte)] == 0 ? 0 : 1;
        return preamp.channel(channel) + kGt10CustomPreampInChannel;
    }
    return tones.preamp < 0 ? -1 : tones.preamp + tones.preampStep * (n - 1);
}

int PageCatalogue::customSpeakerBase(int model, int n, ImageBytes image) {
    if (model == 10) return customPreampBase(model, n, image) + kGt10CustomSpeakerAfterPreamp;
    const CustomToneLayout& tones = describeModel(model).customTones;
    return tones.speaker < 0 ? -1 : tones.speaker + tones.speakerStep * (n - 1);
}

int PageCatalogue::systemPreampSelection(ImageBytes image) {
    switch (image[std::size_t(kGt10PreampMode)]) {
    case 2:
        return 1;
    case 3:
        return 2;
    default:
        return 0; // Patch, System 1, and values the editor cannot set
    }
}

const SystemPreampLayout& PageCatalogue::systemPreamp(int model, int k) {
    const auto preamps = describeModel(model).systemPreamps;
    return preamps[std::size_t(std::clamp(k, 0, int(preamps.size()) - 1))];
}

int PageCatalogue::systemPreampChannelBase(int model, int k, ImageBytes image) {
    const SystemPreampLayout& preamp = systemPreamp(model, k);
    return preamp.channel(image[std::size_t(preamp.channelByte)]);
}

int PageCatalogue::RowBases::resolve(const Address& a) const {
    switch (a.base) {
    case Base::None:
        return a.offset;
    case Base::ModelBlock:
        return modelBlock + a.offset;
    case Base::CustomPreamp:
        return customPreamp + a.offset;
    case Base::CustomSpeaker:
        return customSpeaker + a.offset;
    case Base::PreampBlock:
        return preampBlock + a.offset;
    case Base::PreampSwitch:
        return preampSwitch + a.offset;
    case Base::PreampChannel:
        return preampChannel + a.offset;
    case Base::PedalPair:
        return pedalPair + a.offset;
    case Base::PedalPairModes:
        return pedalPairModes + a.offset;
    }
    return a.offset;
}

PageCatalogue::RowBases PageCatalogue::pageBases(int page, int model, int instance,
                                                 ImageBytes image) {
    RowBases bases;
    switch (page) {
    case 4:
    case 8:
    case 10:
        bases.modelBlock = modelBlock(page, model);
        break;
    case 9:
        bases.customPreamp = customPreampBase(model, instance + 1, image);
        bases.customSpeaker = customSpeakerBase(model, instance + 1, image);
        bases.headingWidth = preampHeadingWidth(model);
        break;
    case 11:
        if (describeModel(model).systemPreamps.empty()) break;
        bases.preampSwitch = systemPreamp(model, instance).onOff;
        bases.preampBlock = systemPreamp(model, instance).shared;
        bases.preampChannel = systemPreampChannelBase(model, instance, image);
        break;
    case 15:
        // A control pedal pair's settings lie 48 bytes after the pair before, its Patch/System
        // bytes 3 bytes after.
        bases.pedalPair = 48 * instance;
        bases.pedalPairModes = 3 * instance;
        break;
    default:
        break;
    }
    return bases;
}

} // namespace ferrule
