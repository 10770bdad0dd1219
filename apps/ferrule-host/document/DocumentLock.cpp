#include "DocumentLock.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QStandardPaths>
#include <QSysInfo>

#include <cerrno>
#include <csignal>
#include <map>
#include <memory>

namespace ferrule {

namespace {

// The lock files this process holds, and how many of its documents hold each: one process is
// one writer, however many windows it has on a file.
struct Held {
    std::unique_ptr<QLockFile> file;
    int users = 0;
};
std::map<QString, Held>& heldHere() {
    static std::map<QString, Held> held;
    return held;
}

} // namespace

DocumentLock::DocumentLock(const QString& documentPath) {
    setPath(documentPath);
}

DocumentLock::~DocumentLock() {
    unlock();
}

QString DocumentLock::lockPath(const QString& documentPath) {
    // The same file reached by two names is one file.
    const QFileInfo info(documentPath);
    const QString canonical = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    const QByteArray id =
        QCryptographicHash::hash(canonical.toUtf8(), QCryptographicHash::Sha1).toHex().left(20);
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) folder = QDir::tempPath();
    return folder + QStringLiteral("/ferrule-") + QString::fromLatin1(id) + QStringLiteral(".lock");
}

void DocumentLock::setPath(const QString& documentPath) {
    if (documentPath == path_) return;
    unlock();
    path_ = documentPath;
    lockFile_ = path_.isEmpty() ? QString() : lockPath(path_);
}

bool DocumentLock::lock() {
    if (held_) return true;
    if (lockFile_.isEmpty()) return false;
    Held& held = heldHere()[lockFile_];
    if (!held.file) {
        auto file = std::make_unique<QLockFile>(lockFile_);
        // Only a dead holder makes a lock stale, never its age: an edit may last all day.
        file->setStaleLockTime(0);
        if (!file->tryLock(0)) {
            heldHere().erase(lockFile_);
            return false;
        }
        held.file = std::move(file);
    }
    ++held.users;
    held_ = true;
    return true;
}

void DocumentLock::unlock() {
    if (!held_) return;
    held_ = false;
    auto it = heldHere().find(lockFile_);
    if (it != heldHere().end() && --it->second.users == 0) heldHere().erase(it); // unlocks it
}

qint64 DocumentLock::holder(const QString& documentPath) {
    QLockFile probe(lockPath(documentPath));
    qint64 pid = 0;
    QString host, app;
    if (!probe.getLockInfo(&pid, &host, &app) || pid <= 0) return 0;
    if (pid == QCoreApplication::applicationPid()) return 0;
    // A lock whose process has died holds nothing.
    if (host == QSysInfo::machineHostName() && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH)
        return 0;
    return pid;
}

} // namespace ferrule
