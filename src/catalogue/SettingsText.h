#pragma once

#include "device/TransmissionSchedule.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace ferrule {

// The system settings as text a person can read, edit, mail and compare: a comment header that
// names the model, then one line per setting whose value differs from the embedded default
// image, grouped by page,
//
//     # Model: GT-10
//     # System
//     System / Tuner / Pitch = 442
//
// and one "Address N = value" line per image byte that the transmission sends, that no
// control edits and that differs from the default. Reading starts from the default image of
// the model the header names and applies the lines, so image → text → image gives back every
// byte the transmission sends.
namespace SettingsText {

// The comment line that names the model; the model number follows it.
inline constexpr char kModelLine[] = "# Model: GT-";

QString write(int model, ImageBytes image);

struct Read {
    int model = 0;
    QByteArray image;     // empty when `error` is set
    QStringList warnings; // "line 7: ... = 120 is outside 0-100; kept"
    QString error;        // one line: "line 7: unknown setting ..."
};
// Reads a text whole; on the first fault, `error` names its line and nothing else is set.
Read read(QStringView text);
// The model the text's model line names, or 0 when it names none that is known.
int modelOf(QStringView text);

} // namespace SettingsText
} // namespace ferrule
