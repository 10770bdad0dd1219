#include "AtomicFile.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ferrule::AtomicFile {

namespace {

QString systemReason(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

QString tempPrefix(const QFileInfo& target) {
    return QStringLiteral(".") + target.fileName() + QStringLiteral(".ferrule-");
}

void removeStaleTemps(const QFileInfo& target) {
    const QDir dir = target.absoluteDir();
    const QStringList stale =
        dir.entryList({tempPrefix(target) + QLatin1Char('*')}, QDir::Files | QDir::Hidden);
    for (const QString& name : stale)
        ::unlink(QFile::encodeName(dir.filePath(name)).constData());
}

// Flushes a file or a folder to the disk.
void syncPath(const QString& path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

} // namespace

int writeAll(int fd, const QByteArray& bytes) {
    const char* p = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t n = ::write(fd, p, std::size_t(left));
        if (n < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        p += n;
        left -= n;
    }
    return 0;
}

bool writable(const QString& path, QString* error) {
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        if (error) *error = QStringLiteral("\"%1\" is not a regular file").arg(path);
        return false;
    }
    const QByteArray folder = QFile::encodeName(info.absolutePath());
    if (::access(folder.constData(), W_OK | X_OK) != 0) {
        if (error)
            *error = QStringLiteral("the folder of \"%1\" cannot be written: %2")
                         .arg(path, systemReason(errno));
        return false;
    }
    return true;
}

void flushToDisk(const QString& path) {
    const QFileInfo target(path);
    syncPath(target.absoluteFilePath());
    syncPath(target.absolutePath());
}

bool write(const QString& path, const QByteArray& bytes, QString* error, Flush flush) {
    const QFileInfo target(path);
    const auto fail = [&](int code) {
        if (error)
            *error =
                QStringLiteral("\"%1\" could not be written: %2").arg(path, systemReason(code));
        return false;
    };
    if (!writable(path, error)) return false;
    removeStaleTemps(target);
    QByteArray temp =
        QFile::encodeName(target.absoluteDir().filePath(tempPrefix(target))) + "XXXXXX";
    const int fd = ::mkstemp(temp.data());
    if (fd < 0) return fail(errno);
    // The new file keeps the old one's permissions; a new file gets the usual ones.
    struct stat old {};
    const mode_t mode = ::stat(QFile::encodeName(path).constData(), &old) == 0
                            ? (old.st_mode & 07777)
                            : mode_t(0666 & ~[] {
                                  const mode_t m = ::umask(0);
                                  ::umask(m);
                                  return m;
                              }());
    ::fchmod(fd, mode);
    if (const int written = writeAll(fd, bytes);
        written != 0 || (flush == Flush::Disk && ::fsync(fd) != 0)) {
        const int code = written != 0 ? written : errno;
        ::close(fd);
        ::unlink(temp.constData());
        return fail(code);
    }
    if (::close(fd) != 0) {
        const int code = errno;
        ::unlink(temp.constData());
        return fail(code);
    }
    if (::rename(temp.constData(), QFile::encodeName(target.absoluteFilePath()).constData()) != 0) {
        const int code = errno;
        ::unlink(temp.constData());
        return fail(code);
    }
    // The rename is durable once the folder is on the disk too.
    if (flush == Flush::Disk) syncPath(target.absolutePath());
    return true;
}

} // namespace ferrule::AtomicFile
