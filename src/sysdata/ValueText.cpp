#include "ValueText.h"

#include "HostLink.h"

namespace ferrule {

QString ValueText(const HostLink& host, int value, int format, int type) {
    return host.call("ValueText", {value, format, type}).toString();
}

} // namespace ferrule
