#include "MidiApi.h"

namespace ferrule {

QString midiApiName(MidiApi api) {
    return api == MidiApi::Alsa ? QStringLiteral("alsa") : QStringLiteral("jack");
}

std::optional<MidiApi> midiApiFromName(const QString& name) {
    for (MidiApi api : kMidiApis)
        if (name.compare(midiApiName(api), Qt::CaseInsensitive) == 0) return api;
    return std::nullopt;
}

int choosePort(const QStringList& ports, const QString& nameOrNumber) {
    bool isNumber = false;
    const int number = nameOrNumber.toInt(&isNumber);
    if (isNumber) return number >= 0 && number < ports.size() ? number : -1;
    for (int i = 0; i < ports.size(); ++i)
        if (ports[i].contains(nameOrNumber, Qt::CaseInsensitive)) return i;
    return -1;
}

} // namespace ferrule
