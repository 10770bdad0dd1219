#include "SaveRecovery.h"

#include "SystemDocument.h"

namespace ferrule {

bool saveWithRecovery(SystemDocument& document, const AskAfterFailedSave& ask, QString* error) {
    if (document.save(error)) return true;
    while (ask) {
        const SaveChoice choice = ask(*error);
        switch (choice.kind) {
        case SaveChoice::Retry:
            if (document.save(error)) return true;
            break;
        case SaveChoice::SaveAs:
            if (document.saveAs(choice.path, SystemDocument::formatForName(choice.path), error))
                return true;
            break;
        case SaveChoice::Discard:
            return false;
        }
    }
    return false;
}

} // namespace ferrule
