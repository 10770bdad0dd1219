#pragma once

#include "ui/MidiMonitor.h"

// How many data-set messages the MIDI monitor has seen leave.
inline int dataSetsOut(ferrule::MidiMonitorModel* m) {
    using ferrule::MidiMonitorModel;
    int n = 0;
    for (int row = 0; row < m->rowCount(); ++row)
        if (m->data(m->index(row, MidiMonitorModel::Direction), Qt::DisplayRole) == "out" &&
            m->data(m->index(row, MidiMonitorModel::Command), Qt::DisplayRole) == "data set")
            ++n;
    return n;
}
