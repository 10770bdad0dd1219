#include "SaveRecovery.h"

#include "SystemDocument.h"

namespace ferrule {

bool saveWithRecovery(SystemDocument& document, const AskAfterFailedSave& ask, QString* error) {
    bool overwrite = false;
    for (;;) {
        const QString conflict = overwrite ? QString() : document.changedOnDisk();
        if (document.readOnly()) {
            *error =
                QStringLiteral("the file is open with unsaved changes in another ferrule-host; "
                               "save it under another name");
        } else if (!conflict.isEmpty()) {
            *error = conflict;
        } else if (document.save(error)) {
            return true;
        }
        if (!ask) return false;
        const SaveChoice choice = ask(*error, !conflict.isEmpty() && !document.readOnly());
        switch (choice.kind) {
        case SaveChoice::Retry:
            break;
        case SaveChoice::Overwrite:
            overwrite = true;
            break;
        case SaveChoice::SaveAs:
            if (document.saveAs(choice.path, SystemDocument::formatForName(choice.path), error))
                return true;
            break;
        case SaveChoice::Discard:
            return false;
        }
    }
}

} // namespace ferrule
