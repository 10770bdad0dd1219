#pragma once

#include <QString>
#include <QStringList>

namespace ferrule {

// The text of a grid cell for a value code relative to its row's note: codes 0-48 name the note
// code - 24 semitones from the row note with a sign and octave marks ("-D vv", " C", "+E ^"),
// 49 is "repeat", 50 "end", anything else empty. Note names use flats.
QString StepText(int code, int rowNote);
const QStringList& noteNames();
// The heading of grid row 0-11: the key or scale note it stands for ("C", "C#/Db"...).
QString keyName(int row);

} // namespace ferrule
