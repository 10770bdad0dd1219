#pragma once

#include "HostOptions.h"

#include <QObject>

#include <memory>

namespace ferrule {

class BlockPipeline;
class MidiInput;
class MidiOutput;
class PacedOutput;
class PlugInEditor;
class SendVerifier;

// What the host does by itself once the editor window is up, for scripts and tests: open a
// page, render the editor to PNG, print its controls as JSON; then close it without keeping
// changes.
class HeadlessRun : public QObject {
    Q_OBJECT
public:
    HeadlessRun(const HostOptions& options, BlockPipeline& pipeline, PlugInEditor& editor);
    ~HeadlessRun() override;

    // --verify: where the transmission is read back from and asked on, and the image its
    // messages are laid over.
    void setReadBack(MidiInput* input, MidiOutput* output, const QByteArray& base);

    // Schedules the run for the moment the editor's modal loop starts (also opens --page).
    void arm();
    int status() const { return status_; }
    // The whole transmission left for the device (read back or not).
    bool transmitted() const { return transmitted_; }
    // It was read back, and the device holds every byte sent.
    bool verified() const;

private:
    void run();
    void reportTransmission();
    void close();
    // Presses and releases the transmit button, then waits for the end of the transmission.
    void transmit();
    void outputFailed();
    // Reads back what was sent, reports what differs, then closes the editor.
    void verify();
    void reportVerification();

    HostOptions options_;
    BlockPipeline& pipeline_;
    PlugInEditor& editor_;
    int status_ = 0;
    bool stopped_ = false;
    bool transmitted_ = false;
    MidiInput* readBackInput_ = nullptr;
    std::unique_ptr<PacedOutput> requests_;
    std::unique_ptr<SendVerifier> verifier_;
};

} // namespace ferrule
