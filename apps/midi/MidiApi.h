#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace ferrule {

// The MIDI systems Ferrule reaches: ALSA through RtMidi, JACK through a client of its own.
enum class MidiApi { Alsa, Jack };
// Every MIDI system Ferrule reaches, whether this build can use it or not.
inline constexpr MidiApi kMidiApis[]{MidiApi::Alsa, MidiApi::Jack};

QString midiApiName(MidiApi api);
std::optional<MidiApi> midiApiFromName(const QString& name);
// The APIs this build can use, in order of preference (ALSA first, when RtMidi has it).
QList<MidiApi> compiledMidiApis();
// Whether the API's MIDI system runs now (an ALSA sequencer, a JACK server), without starting
// one; `why` says what is missing when it does not.
bool midiSystemRuns(MidiApi api, QString* why = nullptr);
// The API to use when none is asked for: the first compiled one whose MIDI system runs. Without
// one, nullopt and `why` says so.
std::optional<MidiApi> defaultMidiApi(QString* why);

struct MidiPortList {
    QStringList inputs;
    QStringList outputs;
    QString error; // the MIDI system does not run
};
MidiPortList listMidiPorts(MidiApi api, const QString& clientName);

// Picks a port by number or by part of its name (case-insensitive); -1 when none matches.
int choosePort(const QStringList& ports, const QString& nameOrNumber);

} // namespace ferrule
