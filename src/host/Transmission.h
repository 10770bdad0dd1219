#pragma once

#include <QString>

namespace ferrule {

struct ModuleState;
class SysForm;

// Sends the current model's system data to the device through the host's MIDISendEx, one step
// per QueueEmpty, and shows the progress on the editor window.
class Transmission {
public:
    Transmission(ModuleState& state, SysForm& form);

    // Step 0, after the host's update check; false when nothing was started.
    bool StartTransmission();
    // The step the transmission step names, or the end.
    void SendNextBlock();

    // p = step × 100; p / total + 0.5 rounded half to even, then "%".
    static QString progressText(int step, int total);

private:
    void sendStep(int step);

    ModuleState& state_;
    SysForm& form_;
};

} // namespace ferrule
