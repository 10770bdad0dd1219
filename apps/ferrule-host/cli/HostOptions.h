#pragma once

#include "document/SessionOptions.h"

#include <QByteArray>
#include <QCommandLineOption>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace ferrule {

// The host's command line, parsed and checked. Bad input yields one line naming the problem.
struct HostOptions : SessionOptions {
    QString title;
    QString dataFile;
    QString screenshot;
    int page = -1;
    bool describe = false;
    bool transmit = false;
    bool listMidiPorts = false;
    QString syxFile;
    QByteArray requestHeader; // empty: the data-set header with command 11
    bool refuseUpdate = false;
    QString exportFile;
    bool receive = false;
    bool request = false;
    bool edit = false; // the editor at once on the data, without the main window
    QString mainScreenshot;
    // --transmit --verify: read back what was sent and compare it (needs --midi-in).
    bool verify = false;
    // A file named alone on the command line (as a desktop entry's %f passes it): the main
    // window opens it as File > Open does.
    QString openFile;

    // ---- the settings as text, and comparing them (--diff) ----
    // --model was given: a text file names its model, and the two must agree.
    bool modelGiven = false;
    // --diff FILE: compare the --data file, or the device's data (--receive, --request), with
    // FILE by parameter.
    QString diffFile;
    bool diffs() const { return !diffFile.isEmpty(); }
    // Takes the model a text file names; the default title follows it.
    void adoptModel(int model);

    // --history: list the history's snapshots and exit.
    bool history = false;

    // Runs that read the device.
    bool readsDevice() const { return receive || request; }
    // Runs that open the editor without a display.
    bool editorHeadless() const { return !screenshot.isEmpty() || describe || transmit; }
    bool headless() const {
        return editorHeadless() || !exportFile.isEmpty() || readsDevice() ||
               !mainScreenshot.isEmpty() || diffs();
    }
    // The librarian's main window, rather than the editor straight away.
    bool mainWindow() const { return !edit && !headless(); }
};

struct ParsedOptions {
    std::optional<HostOptions> options;
    QString error;   // set when the command line is bad (exit 2)
    QString message; // set for --help and --version (exit 0)
};

ParsedOptions parseHostOptions(const QStringList& arguments);

// One option of the command line, and what it asks of the run before the command line is
// parsed: whether it runs without a display, and whether it needs widgets (a window, even
// offscreen), needs none (the GUI is never started), or leaves that to the other options.
struct HostOption {
    enum Name {
        Verify,
        History,
        Model,
        Title,
        Data,
        Plugin,
        Screenshot,
        Page,
        Describe,
        Transmit,
        Syx,
        MidiOut,
        ListPorts,
        Gap,
        Header,
        Refuse,
        MidiApi,
        MidiIn,
        ExportSyx,
        Receive,
        Request,
        Timeout,
        RequestHeader,
        Edit,
        MainScreenshot,
        Diff
    };
    enum class Widgets { Either, Needed, None };
    Name name;
    QCommandLineOption option;
    bool headless;
    Widgets widgets;
};
// Every option, in the order of the help text.
const std::vector<HostOption>& hostOptionTable();

// True when the arguments ask for a run without a display.
bool wantsHeadless(int argc, char** argv);
// False when the arguments ask only for runs that open no window at all (export, receive,
// request, the port list): those need no GUI application.
bool wantsWidgets(int argc, char** argv);
// True when the arguments ask for the help or the version text, which is all such a run
// prints.
bool answersWithText(int argc, char** argv);

} // namespace ferrule
