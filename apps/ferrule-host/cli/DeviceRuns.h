#pragma once

#include "HostOptions.h"
#include "MidiApi.h"

#include <optional>

namespace ferrule {

class SystemDocument;

// Exit codes of the host: 2 for bad input, 3 when the MIDI side fails or the device does not
// deliver (a port that is not there, no MIDI system, an incomplete dump), 4 when a verified
// send finds the device holding something else.
inline constexpr int kExitBadInput = 2;
inline constexpr int kExitDevice = 3;
// --transmit --verify: the device holds other values than were sent.
inline constexpr int kExitNotVerified = 4;

// Prints one "ferrule-host: …" line on stderr and returns the code.
int fail(int code, const QString& line);
// Prints what reading the document's file noticed but kept, one "ferrule-host: …" line each.
void printWarnings(const SystemDocument& document);

// The MIDI API the options name, or the default one; nullopt with `why` when none runs.
std::optional<MidiApi> chosenMidiApi(const HostOptions& options, QString* why);

// --list-midi-ports: the input and output ports of every compiled API (or the chosen one).
int runListPorts(const HostOptions& options);
// --export alone: the document's model as the transmission's messages (or as settings text,
// for a name ending in .txt), at once.
int runExport(const HostOptions& options, const SystemDocument& document);
// --receive and --request: read the device into the document and save it to --export and/or
// --data; with --diff, compare it with that file. Nothing is written unless every mapped byte
// arrived.
int runReadDevice(const HostOptions& options, SystemDocument& document);

} // namespace ferrule
