#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

namespace ferrule {

// What a recovery journal keeps of a document with unsaved changes: which file it is (empty for
// a document not saved to a file yet), its model and form, when the journal was written, the
// file's state on disk when it was read (size, time, content hash), and the image with the
// changes.
struct JournalEntry {
    QString path;
    int model = 0;
    int form = 0;
    QDateTime written;
    qint64 diskSize = -1;
    QDateTime diskModified;
    QByteArray diskHash;
    QByteArray image;
};

// The journals of unsaved documents, one file each in a folder: a document with a file is known
// by its file's canonical path, one without by its model. A journal is replaced all at once, so
// a process that dies while writing leaves the previous one whole; a write returns once the
// journal is in the system's cache (AtomicFile::flushToDisk takes it to the disk). A file there
// that is damaged, foreign or of another document reads as no journal, and is left where it is.
class RecoveryJournal {
public:
    explicit RecoveryJournal(QString folder = defaultFolder());
    // The user's data folder + "/recovery".
    static QString defaultFolder();
    const QString& folder() const { return folder_; }

    // The journal file of a document.
    QString fileFor(const QString& documentPath, int model) const;
    bool write(const JournalEntry& entry, QString* error) const;
    std::optional<JournalEntry> read(const QString& documentPath, int model) const;
    void remove(const QString& documentPath, int model) const;

    static QByteArray encode(const JournalEntry& entry);
    static std::optional<JournalEntry> decode(const QByteArray& bytes);

private:
    static QString canonical(const QString& path);

    QString folder_;
};

} // namespace ferrule
