#pragma once

#include <QString>
#include <QStringList>

namespace ferrule {

// Finds the plug-in library whose metadata carries a key: in an explicit path (a file or a
// folder), else in the install location beside the host's own binary, then in the build tree.
struct LocatedPlugIn {
    QString file;
    QString error;
};

QStringList defaultPlugInFolders();
LocatedPlugIn locatePlugIn(const QString& key, const QString& explicitPath);

} // namespace ferrule
