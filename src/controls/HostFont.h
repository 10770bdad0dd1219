#pragma once

#include "sysdata/HostFontSettings.h"

class QWidget;
class QFont;

namespace ferrule {

// Applies the host font to a window, its labels and its command buttons: character set, name,
// italic, underline and strikethrough; the size and the weight stay as designed.
void ApplyHostFont(QWidget* window, const HostFontSettings& font);

// The control variant, run by a knob or slider when it is created: as above plus the size, on
// the control and its labels.
void ApplyHostFontToControl(QWidget* control, const HostFontSettings& font);

} // namespace ferrule
