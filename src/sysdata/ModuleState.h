#pragma once

#include "HostFontSettings.h"
#include "HostLink.h"
#include "SystemImage.h"

#include <QPointer>
#include <QStringList>

#include <cmath>

namespace ferrule {

// The state one loaded plug-in shares between its parts: the host, the device model, the system
// data image, the transmission step, the host font, the note names and the angle constants.
struct ModuleState {
    HostLink host;
    QPointer<QObject> owner;
    int model = 0;
    SystemImage image;
    int transmissionStep = 0;
    int transmissionTotal = 0;
    HostFontSettings font;
    QStringList noteNames{"C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"};
    double halfPi = 2.0 * std::atan(1.0);
    double twoPi = 4.0 * halfPi;
};

} // namespace ferrule
