#pragma once

#include "AfterFirstPaint.h"

#include <QLineEdit>

namespace ferrule {

// Gives a line edit its clear button once the box has first been painted. Looking up the
// button's icon in the desktop's icon theme costs more than the rest of the main window's
// start; done after the first paint, the window reaches the screen first. The button shows only
// when there is text, so nobody sees the difference.
inline void addLateClearButton(QLineEdit* box) {
    AfterFirstPaint::call(box, [box] { box->setClearButtonEnabled(true); });
}

} // namespace ferrule
