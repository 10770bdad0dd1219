#pragma once

#include <QString>

namespace ferrule {

// One writer per file: a lock that a ferrule-host holds on a data file while it has changes to
// it that are not saved yet, so that a second ferrule-host can tell and not overwrite them.
// The lock lives in the user's runtime folder, not beside the file; a lock whose process has
// died is taken over. Within one process the lock is shared: the process is one writer.
class DocumentLock {
public:
    explicit DocumentLock(const QString& documentPath = QString());
    ~DocumentLock();
    DocumentLock(const DocumentLock&) = delete;
    DocumentLock& operator=(const DocumentLock&) = delete;

    // The file the lock stands for; a new one releases the old lock.
    void setPath(const QString& documentPath);
    // Takes the lock; false when another process holds it.
    bool lock();
    void unlock();
    bool held() const { return held_; }

    // The process of another ferrule-host that holds the lock on `documentPath`, or 0 (none,
    // or this one).
    static qint64 holder(const QString& documentPath);

private:
    static QString lockPath(const QString& documentPath);

    QString path_;
    QString lockFile_;
    bool held_ = false;
};

} // namespace ferrule
