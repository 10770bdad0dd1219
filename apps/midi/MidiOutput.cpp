#include "MidiOutput.h"

namespace ferrule {

bool MidiOutput::send(const QByteArray& message, QString* error) {
    // A message that would reach nobody is refused, so that nothing is counted as sent that
    // did not leave towards the device.
    if (!linked(error)) return false;
    return port()->send(message, error);
}

} // namespace ferrule
