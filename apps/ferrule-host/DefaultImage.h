#pragma once

#include <QByteArray>

// The system data the host edits when no --data file is given: 43,252 bytes built in code, so
// no binary asset is needed. See the README for what it holds.
QByteArray makeDefaultImage();
