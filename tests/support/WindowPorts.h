#pragma once

#include "ui/MainWindow.h"

#include <QTest>

// Runs the event loop until the window has both its MIDI ports, or `timeoutMs` (a hang) has
// passed. A JACK client gives up on a request that its server has not answered within five
// seconds, which a loaded machine can take; the window then tries again by itself.
inline bool waitForPorts(ferrule::MainWindow& w, int timeoutMs = 120000) {
    return QTest::qWaitFor([&] { return w.device().hasInput() && w.device().hasOutput(); },
                           timeoutMs);
}
