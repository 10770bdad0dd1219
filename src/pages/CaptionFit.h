#pragma once

namespace ferrule {

class ControlPools;

// Keeps a built page's texts apart where the fixed positions bring them together: an option
// title or item label that would run into the caption to its right or over its panel's frame
// is set closer, just enough to end short of it; value boxes less than 4 pixels apart are drawn a
// pixel narrower on each side. Texts with room are left exactly as they are.
void fitCaptions(ControlPools& pools);

} // namespace ferrule
