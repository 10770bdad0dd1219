#pragma once

#include "HostOptions.h"

#include <optional>

namespace ferrule {

class SystemDocument;

// --diff's exit code when something differs (0 when nothing does).
inline constexpr int kExitDiffers = 1;

// --diff's other side, read as --data is (raw, .syx or settings text) for `model`; nullopt and
// `error` (one line) when it cannot be used.
std::optional<SystemDocument> openDiffFile(const HostOptions& options, int model, QString* error);
// Prints one line per parameter (or byte no control edits) that differs between `a` and `b`
// on stdout, and a count on stderr; 0 when nothing differs, kExitDiffers when something does.
int printDifferences(const SystemDocument& a, const SystemDocument& b);
// --data A --diff B.
int runDiff(const HostOptions& options, const SystemDocument& document);

} // namespace ferrule
