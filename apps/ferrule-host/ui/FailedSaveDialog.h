#pragma once

#include "document/SaveRecovery.h"

class QWidget;

namespace ferrule {

// The question after a failed save, in a message box: Retry, Save As… (a file dialog) or
// Discard. The edits stay in the document until the user chooses.
SaveChoice askAfterFailedSave(const QString& error, bool changedOnDisk, QWidget* parent = nullptr);

} // namespace ferrule
