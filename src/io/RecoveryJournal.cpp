#include "RecoveryJournal.h"

#include "AtomicFile.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QStandardPaths>

namespace ferrule {

namespace {

constexpr char kMagic[] = "Ferrule recovery journal 1\n";
constexpr int kMagicSize = int(sizeof(kMagic)) - 1;
constexpr QCryptographicHash::Algorithm kCheck = QCryptographicHash::Sha256;
constexpr int kCheckSize = 32;

} // namespace

RecoveryJournal::RecoveryJournal(QString folder)
    : folder_(std::move(folder)) {}

QString RecoveryJournal::defaultFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
           QStringLiteral("/recovery");
}

QString RecoveryJournal::canonical(const QString& path) {
    const QFileInfo info(path);
    const QString real = info.canonicalFilePath();
    return real.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : real;
}

QString RecoveryJournal::fileFor(const QString& documentPath, int model) const {
    const QString name =
        documentPath.isEmpty()
            ? QStringLiteral("untitled-gt%1").arg(model)
            : QString::fromLatin1(QCryptographicHash::hash(canonical(documentPath).toUtf8(), kCheck)
                                      .toHex()
                                      .left(32));
    return QDir(folder_).filePath(name + QStringLiteral(".journal"));
}

QByteArray RecoveryJournal::encode(const JournalEntry& entry) {
    QByteArray bytes(kMagic, kMagicSize);
    {
        QDataStream out(&bytes, QIODevice::Append);
        out.setVersion(QDataStream::Qt_6_0);
        out << entry.path << qint32(entry.model) << qint32(entry.form) << entry.written
            << entry.diskSize << entry.diskModified << entry.diskHash << entry.image;
    }
    return bytes + QCryptographicHash::hash(bytes, kCheck);
}

std::optional<JournalEntry> RecoveryJournal::decode(const QByteArray& bytes) {
    // Only bytes this class wrote, whole, are read any further.
    if (bytes.size() < kMagicSize + kCheckSize || !bytes.startsWith(QByteArray(kMagic, kMagicSize)))
        return std::nullopt;
    const QByteArray body = bytes.left(bytes.size() - kCheckSize);
    if (QCryptographicHash::hash(body, kCheck) != bytes.right(kCheckSize)) return std::nullopt;
    JournalEntry entry;
    qint32 model = 0, form = 0;
    QDataStream in(body.mid(kMagicSize));
    in.setVersion(QDataStream::Qt_6_0);
    in >> entry.path >> model >> form >> entry.written >> entry.diskSize >> entry.diskModified >>
        entry.diskHash >> entry.image;
    if (in.status() != QDataStream::Ok || !in.atEnd()) return std::nullopt;
    entry.model = model;
    entry.form = form;
    return entry;
}

bool RecoveryJournal::write(const JournalEntry& entry, QString* error) const {
    if (!QDir().mkpath(folder_)) {
        *error = QStringLiteral("the folder \"%1\" cannot be made").arg(folder_);
        return false;
    }
    JournalEntry kept = entry;
    if (!kept.path.isEmpty()) kept.path = canonical(kept.path);
    // Whole in the system's cache is enough for any death of the process; the disk follows.
    return AtomicFile::write(fileFor(entry.path, entry.model), encode(kept), error,
                             AtomicFile::Flush::Cache);
}

std::optional<JournalEntry> RecoveryJournal::read(const QString& documentPath, int model) const {
    QFile file(fileFor(documentPath, model));
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    std::optional<JournalEntry> entry = decode(file.read(64 << 20));
    // The name is a hash: the entry itself says whose it is.
    if (!entry || (documentPath.isEmpty() ? !entry->path.isEmpty() || entry->model != model
                                          : entry->path != canonical(documentPath)))
        return std::nullopt;
    return entry;
}

void RecoveryJournal::remove(const QString& documentPath, int model) const {
    QFile::remove(fileFor(documentPath, model));
}

} // namespace ferrule
