#include "StepText.h"

namespace ferrule {

const QStringList& noteNames() {
    static const QStringList names{"C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"};
    return names;
}

QString keyName(int row) {
    static const char* const names[12] = {"C",     "C#/Db", "D",     "D#/Eb", "E",     "F",
                                          "F#/Gb", "G",     "G#/Ab", "A",     "A#/Bb", "B"};
    return row >= 0 && row < 12 ? QString::fromLatin1(names[row]) : QString();
}

QString StepText(int code, int rowNote) {
    if (code == 49) return QStringLiteral("repeat");
    if (code == 50) return QStringLiteral("end");
    if (code < 0 || code > 48) return {};
    QString before;
    QString after;
    if (code == 0) {
        before = QStringLiteral("-");
        after = QStringLiteral(" vv");
    } else if (code <= 12) {
        before = QStringLiteral("-");
        after = QStringLiteral(" v");
    } else if (code <= 23) {
        before = QStringLiteral("-");
    } else if (code == 24) {
        before = QStringLiteral(" ");
    } else if (code <= 35) {
        before = QStringLiteral("+");
    } else if (code <= 47) {
        before = QStringLiteral("+");
        after = QStringLiteral(" ^");
    } else {
        before = QStringLiteral("+");
        after = QStringLiteral(" ^^");
    }
    return before + noteNames()[((code + rowNote) % 12 + 12) % 12] + after;
}

} // namespace ferrule
