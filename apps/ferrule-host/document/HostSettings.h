#pragma once

#include <QString>

namespace ferrule {

// The key of ferrule-host's own settings (ports, recent files, the history's size), beside the
// editor's.
inline const QString kHostKey = QStringLiteral("SOFTWARE\\Quarrow\\Tonebench\\Host");

} // namespace ferrule
