#pragma once

#include <QObject>
#include <QString>

namespace ferrule {

struct ModuleState;

// Sends the current model's system data to the device through the host's MIDISendEx, one step
// per QueueEmpty. It reports its progress and its end; the window decides how to show them.
class Transmission : public QObject {
    Q_OBJECT
public:
    explicit Transmission(ModuleState& state, QObject* parent = nullptr);

    // Step 0, after the host's update check; false when nothing was started.
    bool StartTransmission();
    // The step the transmission step names, or the end.
    void SendNextBlock();
    // Stops at once: no further step is sent. The end is reported at the next QueueEmpty.
    void stop();
    bool running() const;

    // p = step × 100; p / total + 0.5 rounded half to even, then "%".
    static QString progressText(int step, int total);

signals:
    // The progress after a step was sent, as the text to show.
    void progressed(const QString& text);
    // The last step was sent, or a stopped transmission saw its next QueueEmpty.
    void ended();

private:
    void sendStep(int step);

    ModuleState& state_;
};

} // namespace ferrule
