#pragma once

#include <QByteArray>
#include <QString>

namespace ferrule {

// Replaces a file's contents all at once: the bytes go to a temporary file beside it, which is
// flushed to the disk and renamed over the target; then the folder is flushed too. On failure
// the old file is untouched, the temporary file is removed and `error` names the system's
// reason ("No space left on device"). Temporary files that an earlier crash left beside the
// target are removed first.
namespace AtomicFile {

// How far a write has gone when it returns: to the disk, or only to the system's cache, which
// any death of the process leaves whole but a power cut may not.
enum class Flush { Disk, Cache };
bool write(const QString& path, const QByteArray& bytes, QString* error, Flush flush = Flush::Disk);
// Puts a file written to the cache on the disk, with its folder.
void flushToDisk(const QString& path);
// Writes all of `bytes` to a file descriptor, through short writes and interruptions; 0, or the
// errno of the failure.
int writeAll(int fd, const QByteArray& bytes);
// Whether a file could be written at `path` now (the folder exists and is writable, and the file,
// if it exists, is a regular file); `error` says why not.
bool writable(const QString& path, QString* error);

} // namespace AtomicFile
} // namespace ferrule
