#pragma once

#include "HostOptions.h"

#include <QObject>

class QWidget;

// What the host does by itself once the editor window is up, for scripts and tests: open a
// page, render the editor to PNG, print its controls as JSON; then close it without keeping
// changes.
class HeadlessRun : public QObject {
    Q_OBJECT
public:
    explicit HeadlessRun(const HostOptions& options);

    // Schedules the run for the moment the editor's modal loop starts (also opens --page).
    void arm();
    int status() const { return status_; }

private:
    void run();
    static QWidget* findEditor();

    HostOptions options_;
    int status_ = 0;
};
