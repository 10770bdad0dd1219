#include "MidiApi.h"

namespace ferrule {

QString midiApiName(MidiApi api) {
    return api == MidiApi::Alsa ? QStringLiteral("alsa") : QStringLiteral("jack");
}

std::optional<MidiApi> midiApiFromName(const QString& name) {
    if (name.compare(QLatin1String("alsa"), Qt::CaseInsensitive) == 0) return MidiApi::Alsa;
    if (name.compare(QLatin1String("jack"), Qt::CaseInsensitive) == 0) return MidiApi::Jack;
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
