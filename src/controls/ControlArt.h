#pragma once

#include <QImage>
#include <QPixmap>

namespace ferrule {

// The pictures of the knob, the slider, the option glyphs and the on/off switch, drawn in code.
// Masked pictures come in pairs for the AND/OR technique: the mask is black where the picture
// is and white elsewhere; the picture is black outside its shape. Each is drawn once per pixel
// ratio it is asked for (`ratio`, the screen's device pixel ratio), in logical pixels.
namespace ControlArt {

inline constexpr int kKnobColours = 5;

// The knob, 51 × 48 pixels: 0 mauve, 1 rose-red, 2 green, 3 blue, 4 grey.
const QPixmap& knobImage(int colour, qreal ratio = 1.0);
const QPixmap& knobMask(qreal ratio = 1.0);
// The slider's track (20 × 61 pixels) and its mask; the thumb (16 × 9 pixels).
const QPixmap& trackImage(qreal ratio = 1.0);
const QPixmap& trackMask(qreal ratio = 1.0);
const QPixmap& thumbImage(qreal ratio = 1.0);
// The option glyphs, 13 × 13 pixels, at the indexes the groups use: 0 not selected, 1 selected,
// 2 selected while disabled, 4 hovered, 5 hovered and selected, 8 pressed, 9 pressed and
// selected. Other indexes give an empty picture.
const QPixmap& checkImage(int index, qreal ratio = 1.0);
// The on/off switch: index 10 off, 11 on.
const QPixmap& onOffImage(int index, qreal ratio = 1.0);

} // namespace ControlArt
} // namespace ferrule
