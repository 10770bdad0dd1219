#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

// The host's command line, parsed and checked. Bad input yields one line naming the problem.
struct HostOptions {
    int model = 10;
    QString title;
    QString dataFile;
    QString pluginPath;
    QString screenshot;
    int page = -1;
    bool describe = false;
    bool transmit = false;
    bool listMidiPorts = false;
    QString syxFile;
    QString midiOut;
    int gapMs = 20;
    QByteArray sysexHeader; // empty: the default header
    bool refuseUpdate = false;

    bool headless() const { return !screenshot.isEmpty() || describe || transmit; }
};

struct ParsedOptions {
    std::optional<HostOptions> options;
    QString error;   // set when the command line is bad (exit 2)
    QString message; // set for --help and --version (exit 0)
};

ParsedOptions parseHostOptions(const QStringList& arguments);

// True when the arguments ask for a run without a display.
bool wantsHeadless(int argc, char** argv);
