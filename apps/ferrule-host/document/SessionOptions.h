#pragma once

#include "device/SysexCodec.h"

#include <QByteArray>
#include <QString>

namespace ferrule {

// What a session with the device and the plug-in is set up with: the model, the plug-in, the
// MIDI ports, the data-set header and the pacing. The command line fills them in; the main
// window needs no more of it.
struct SessionOptions {
    int model = 10;
    QString pluginPath;
    QString midiApi; // empty: the first compiled API whose MIDI system runs
    QString midiIn;
    QString midiOut;
    int gapMs = 20;
    QByteArray sysexHeader; // empty: the default header
    int timeoutS = -1;      // -1: 60 s before the first message, 10 s once data flows

    // The data-set header in use for a model (by default the options' model).
    QByteArray dataSetHeader(int forModel = 0) const {
        return Sysex::headerOr(sysexHeader, forModel != 0 ? forModel : model);
    }
};

} // namespace ferrule
