#pragma once

#include <QString>

namespace ferrule {

// The name the host's own windows and dialogs carry. (The editor's message boxes keep the title
// the plug-in gives them.)
inline QString programName() {
    return QStringLiteral("Ferrule");
}

} // namespace ferrule
