#pragma once

#include <QByteArray>

namespace ferrule {

// The system data used when no file or device supplies it: 43,252 bytes built in code, so no
// binary asset is needed. Every byte 0, except the Harmonist user scales (every note a major
// third up), the Auto-Riff user phrases (an ascending run on each key's root) and a few system
// values away from zero, so that a first look shows the controls at work.
QByteArray makeDefaultImage();

} // namespace ferrule
