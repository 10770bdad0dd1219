#include "MidiApi.h"

#include "JackMidiPort.h"
#include "QuietStderr.h"

#include <RtMidi.h>

#include <memory>

namespace ferrule {

namespace {

template <typename Port> QStringList portNames(Port& port) {
    QStringList names;
    for (unsigned i = 0; i < port.getPortCount(); ++i)
        names << QString::fromStdString(port.getPortName(i));
    return names;
}

} // namespace

QString midiApiName(MidiApi api) {
    return api == MidiApi::Alsa ? QStringLiteral("alsa") : QStringLiteral("jack");
}

std::optional<MidiApi> midiApiFromName(const QString& name) {
    if (name.compare(QLatin1String("alsa"), Qt::CaseInsensitive) == 0) return MidiApi::Alsa;
    if (name.compare(QLatin1String("jack"), Qt::CaseInsensitive) == 0) return MidiApi::Jack;
    return std::nullopt;
}

QList<MidiApi> compiledMidiApis() {
    std::vector<RtMidi::Api> apis;
    RtMidi::getCompiledApi(apis);
    QList<MidiApi> out;
    if (std::find(apis.begin(), apis.end(), RtMidi::LINUX_ALSA) != apis.end()) out << MidiApi::Alsa;
    // JACK is reached through our own client.
    out << MidiApi::Jack;
    return out;
}

bool midiSystemRuns(MidiApi api, QString* why) {
    if (api == MidiApi::Jack) return JackMidiPort::serverRuns(why);
    try {
        QuietStderr quiet;
        RtMidiIn probe(RtMidi::LINUX_ALSA, "ferrule-probe");
        return true;
    } catch (const RtMidiError&) {
        if (why) *why = QStringLiteral("no ALSA sequencer (/dev/snd/seq)");
        return false;
    }
}

std::optional<MidiApi> defaultMidiApi(QString* why) {
    QStringList reasons;
    for (MidiApi api : compiledMidiApis()) {
        QString reason;
        if (midiSystemRuns(api, &reason)) return api;
        reasons << reason;
    }
    if (why)
        *why = QStringLiteral("no MIDI system runs: %1").arg(reasons.join(QStringLiteral(", ")));
    return std::nullopt;
}

MidiPortList listMidiPorts(MidiApi api, const QString& clientName) {
    MidiPortList list;
    if (api == MidiApi::Jack) {
        // Listing opens a client, which says by itself when no server runs.
        const JackMidiPort::Ports ports = JackMidiPort::list(clientName, &list.error);
        list.inputs = ports.outputs;
        list.outputs = ports.inputs;
        return list;
    }
    if (!midiSystemRuns(api, &list.error)) return list;
    try {
        QuietStderr quiet;
        RtMidiIn in(RtMidi::LINUX_ALSA, clientName.toStdString());
        RtMidiOut out(RtMidi::LINUX_ALSA, clientName.toStdString());
        list.inputs = portNames(in);
        list.outputs = portNames(out);
    } catch (const RtMidiError& e) {
        list.error = QString::fromStdString(e.getMessage());
    }
    return list;
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
