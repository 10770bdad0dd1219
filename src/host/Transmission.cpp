#include "Transmission.h"

#include "device/TransmissionSchedule.h"
#include "sysdata/ModuleState.h"

#include <cmath>

namespace ferrule {

Transmission::Transmission(ModuleState& state, QObject* parent)
    : QObject(parent)
    , state_(state) {}

void Transmission::stop() {
    state_.transmissionStep = 0;
}

bool Transmission::running() const {
    return state_.transmissionStep != 0;
}

QString Transmission::progressText(int step, int total) {
    const int p = step * 100;
    const double percent = double(p) / total + 0.5;
    return QString::number(int(std::nearbyint(percent))) + QLatin1Char('%');
}

void Transmission::sendStep(int step) {
    for (const ScheduledMessage& m : TransmissionSchedule::messages(state_.model, step)) {
        // A block that would reach past the image is not sent, nor any part of it.
        if (m.start < 0 || m.start + m.length > SystemImage::kSize) continue;
        state_.host.call("MIDISendEx", {m.address, m.data(state_.image.bytes()), state_.model});
    }
}

bool Transmission::StartTransmission() {
    if (state_.transmissionStep != 0) return false;
    if (!state_.host.propertyBool("GTUpdate")) {
        state_.host.call("SetGTUpdate", {true, state_.model});
        const bool accepted = state_.host.propertyBool("GTUpdate");
        state_.host.call("SetGTUpdate", {false, state_.model});
        if (!accepted) return false;
    }
    const int total = TransmissionSchedule::stepTotal(state_.model);
    if (total == 0) return false;
    sendStep(0);
    state_.transmissionTotal = total;
    state_.transmissionStep = 1;
    emit progressed(progressText(1, total));
    return true;
}

void Transmission::SendNextBlock() {
    const int s = state_.transmissionStep;
    if (s != 0 && s < state_.transmissionTotal) {
        // An error here leaves the step as it was, so the next QueueEmpty repeats it.
        sendStep(s);
        state_.transmissionStep = s + 1;
    } else {
        state_.transmissionStep = 0;
    }
    if (state_.transmissionStep == 0)
        emit ended();
    else
        emit progressed(progressText(state_.transmissionStep, state_.transmissionTotal));
}

} // namespace ferrule
