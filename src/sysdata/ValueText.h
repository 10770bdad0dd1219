#pragma once

#include <QString>

namespace ferrule {

class HostLink;

// The text a knob or slider shows for a value: asked of the host's ValueText(value, format,
// type) and returned unchanged. A failing host call throws FerruleError.
QString ValueText(const HostLink& host, int value, int format, int type);

} // namespace ferrule
