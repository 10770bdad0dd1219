#pragma once

#include "HostOptions.h"

#include <QObject>

class BlockPipeline;
class QWidget;
namespace ferrule {
class PlugInInterface;
}

// What the host does by itself once the editor window is up, for scripts and tests: open a
// page, render the editor to PNG, print its controls as JSON; then close it without keeping
// changes.
class HeadlessRun : public QObject {
    Q_OBJECT
public:
    HeadlessRun(const HostOptions& options, BlockPipeline& pipeline,
                ferrule::PlugInInterface* plugIn);

    // Schedules the run for the moment the editor's modal loop starts (also opens --page).
    void arm();
    int status() const { return status_; }

private slots:
    void transmissionStopped();

private:
    void run();
    void reportTransmission();
    void close(QWidget* editor);
    // Presses and releases the transmit button, then waits for the end of the transmission.
    void transmit(QWidget* editor);
    void outputFailed();

    HostOptions options_;
    BlockPipeline& pipeline_;
    ferrule::PlugInInterface* plugIn_;
    QWidget* editor_ = nullptr;
    int status_ = 0;
};
