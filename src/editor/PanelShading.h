#pragma once

class QPainter;

namespace ferrule {

// Colours as 32-bit integers with red in bits 0-7, green in 8-15 and blue in 16-23.
int RedOf(int colour);
int GreenOf(int colour);
int BlueOf(int colour);
int RgbColour(int red, int green, int blue);

// colourA weighted by `amount` (per cent below 100, per mille from 100) against colourB; each
// channel rounded half to even after adding half the scale; 256 counts as 255.
int BlendColour(int colourA, int colourB, int amount);

// Fills the rectangle (twips) with a two-colour gradient. Direction 0: colour1 left, colour2
// right; 1: colour1 right; 2: colour1 top, colour2 bottom; 3: colour1 bottom. Any other
// direction draws nothing; returns whether it drew.
bool FillGradient(QPainter& painter, int left, int top, int right, int bottom, int colour1,
                  int colour2, int direction);

} // namespace ferrule
