#pragma once

#include <QString>

#include <functional>

namespace ferrule {

class SystemDocument;

// What the user chooses when a save has failed: try again, save somewhere else, or give up.
struct SaveChoice {
    enum Kind { Retry, Overwrite, SaveAs, Discard } kind = Discard;
    QString path; // for SaveAs
};
// Asked with the failure's one-line reason, and whether it is that the file changed on disk (then
// Overwrite is a choice, Retry is not); the document keeps its edits meanwhile.
using AskAfterFailedSave = std::function<SaveChoice(const QString& error, bool changedOnDisk)>;

// Saves the document to its file; when that fails, or the file changed on disk since it was read,
// or the document may only be read, asks until a save succeeds or the user gives up. Nothing is
// lost without the user's choice, neither the edits nor what another program wrote. True when
// the data is on the disk; otherwise `error` holds the last failure.
bool saveWithRecovery(SystemDocument& document, const AskAfterFailedSave& ask, QString* error);

} // namespace ferrule
