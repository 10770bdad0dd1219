#pragma once

#include <QString>
#include <QVariant>

namespace ferrule {

// A persistent key/value store with the semantics of the host's registry key. Each key is one
// INI file under a settings root (the environment variable FERRULE_SETTINGS_ROOT moves it); a
// value keeps its type: a 32-bit integer or a string.
enum class RegRoot { LocalMachine, CurrentUser };

inline const QString kEditorKey = QStringLiteral("SOFTWARE\\Quarrow\\Tonebench\\Multi");
// The editor's value of the page it showed last on a model, under kEditorKey; it starts on that
// page when it is 0 to kLastPageKept, else on page 1.
inline QString lastPageValue(int model) {
    return QStringLiteral("SysLastDisp%1").arg(model);
}
inline constexpr int kLastPageKept = 10;

// Reads valueName into result. result's current type says what the caller expects; on failure
// an integer result becomes 0, a string result the empty string, and false is returned.
bool RegRead(RegRoot root, const QString& key, const QString& valueName, QVariant& result);

// Writes an integer or string value; asBinary stores a string as binary data. Never creates the
// key: returns false when it does not exist.
bool RegWrite(RegRoot root, const QString& key, const QString& valueName, const QVariant& value,
              bool asBinary = false);

// For the host only: creates the key if it does not exist. Returns true when it exists after.
bool RegCreateKey(RegRoot root, const QString& key);

// The file that holds a key (for diagnostics and tests).
QString settingsFileFor(RegRoot root, const QString& key);

// The page the editor starts on for a model: the one stored under lastPageValue, or page 1.
int readLastPage(int model);
// Stores the page the editor showed last on a model; false when the key does not exist.
bool writeLastPage(int model, int page);

} // namespace ferrule
