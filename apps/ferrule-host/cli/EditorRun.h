#pragma once

#include "cli/HostOptions.h"
#include "document/DocumentJournal.h"
#include "document/SaveRecovery.h"

namespace ferrule {

class SystemDocument;

// What a run with a display asks the user: whether to recover changes an earlier run left
// unsaved, and what to do when the data file cannot be saved. Runs without a display ask none.
struct EditorQuestions {
    DocumentJournal::Ask recover;
    AskAfterFailedSave afterFailedSave;
};

// Loads the plug-in and runs its editor on the document as the host contract defines: Interface,
// Owner, Title, Format, Center, Start, Quit. Blocks go to the chosen MIDI output and/or .syx file.
// When the editor closes keeping its changes, the document takes them and a document with a file
// is saved. Returns the process's exit code.
int runEditor(const HostOptions& options, SystemDocument& document, const EditorQuestions& ask);

} // namespace ferrule
