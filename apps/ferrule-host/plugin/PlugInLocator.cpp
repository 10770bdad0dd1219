#include "PlugInLocator.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>

namespace ferrule {

namespace {

bool carriesKey(const QString& file, const QString& key) {
    QPluginLoader loader(file);
    const QJsonObject meta = loader.metaData().value(QStringLiteral("MetaData")).toObject();
    return meta.value(QStringLiteral("Keys")).toArray().contains(key);
}

QString findIn(const QString& folder, const QString& key) {
    const QDir dir(folder);
    for (const QFileInfo& f : dir.entryInfoList(QDir::Files)) {
        if (QLibrary::isLibrary(f.fileName()) && carriesKey(f.absoluteFilePath(), key))
            return f.absoluteFilePath();
    }
    return {};
}

} // namespace

// The install location comes first: an installed or unpacked host takes the plug-in it came
// with even on a machine that also holds the build tree it was built in.
QStringList defaultPlugInFolders() {
    const QString appDir = QCoreApplication::applicationDirPath();
    return {QDir::cleanPath(QDir(appDir).filePath(QStringLiteral(FERRULE_PLUGIN_RELDIR))),
            QStringLiteral(FERRULE_BUILD_PLUGIN_DIR)};
}

LocatedPlugIn locatePlugIn(const QString& key, const QString& explicitPath) {
    if (!explicitPath.isEmpty()) {
        const QFileInfo info(explicitPath);
        if (!info.exists())
            return {{}, QStringLiteral("plug-in \"%1\" does not exist").arg(explicitPath)};
        if (info.isDir()) {
            const QString found = findIn(info.absoluteFilePath(), key);
            if (found.isEmpty())
                return {
                    {},
                    QStringLiteral("no plug-in with the key %1 in \"%2\"").arg(key, explicitPath)};
            return {found, {}};
        }
        if (!carriesKey(info.absoluteFilePath(), key))
            return {
                {},
                QStringLiteral("\"%1\" is not a plug-in with the key %2").arg(explicitPath, key)};
        return {info.absoluteFilePath(), {}};
    }
    for (const QString& folder : defaultPlugInFolders()) {
        const QString found = findIn(folder, key);
        if (!found.isEmpty()) return {found, {}};
    }
    return {{},
            QStringLiteral("the plug-in %1 was not found (looked in %2)")
                .arg(key, defaultPlugInFolders().join(QStringLiteral(", ")))};
}

} // namespace ferrule
