#include "SystemDocument.h"

#include "device/DefaultImage.h"
#include "device/SystemDataFile.h"
#include "device/SyxFile.h"
#include "io/AtomicFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

namespace ferrule {

SystemDocument::SystemDocument(int model, QByteArray header)
    : model_(model)
    , header_(std::move(header))
    , image_(makeDefaultImage()) {}

DataFormat SystemDocument::formatForName(const QString& path) {
    return path.endsWith(QStringLiteral(".syx"), Qt::CaseInsensitive) ? DataFormat::Syx
                                                                      : DataFormat::Raw;
}

std::optional<SystemDocument> SystemDocument::open(const QString& path, int model,
                                                   const QByteArray& header, QString* error) {
    SystemDocument doc(model, header);
    const SystemDataFile::Read read = SystemDataFile::read(path, model, header, doc.image_);
    if (!read.error.isEmpty()) {
        *error = read.error;
        return std::nullopt;
    }
    doc.path_ = path;
    doc.image_ = read.image;
    doc.format_ = read.syx ? DataFormat::Syx : DataFormat::Raw;
    QFile file(path);
    doc.disk_ = diskState(path, file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
    return doc;
}

QByteArray SystemDocument::hashOf(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

SystemDocument::DiskState SystemDocument::diskState(const QString& path, const QByteArray& bytes) {
    const QFileInfo info(path);
    return {info.size(), info.lastModified(), hashOf(bytes)};
}

QString SystemDocument::changedOnDisk() const {
    if (path_.isEmpty() || disk_.size < 0) return {};
    const QFileInfo info(path_);
    // A file that is gone holds nothing a save could overwrite.
    if (!info.exists()) return {};
    if (info.size() == disk_.size && info.lastModified() == disk_.modified) return {};
    QFile file(path_);
    if (file.open(QIODevice::ReadOnly) && hashOf(file.readAll()) == disk_.hash) return {};
    return QStringLiteral("%1 was changed on disk after it was read here (%2); saving would "
                          "replace those changes")
        .arg(info.fileName(), info.lastModified().toString(QStringLiteral("HH:mm:ss")));
}

void SystemDocument::setImage(const QByteArray& image) {
    if (image == image_) return;
    image_ = image;
    modified_ = true;
}

void SystemDocument::recover(const QByteArray& image, const DiskState& disk) {
    image_ = image;
    modified_ = true;
    if (!path_.isEmpty()) disk_ = disk;
}

QByteArray SystemDocument::encode(DataFormat format) const {
    if (format == DataFormat::Raw) return image_;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(image_.constData());
    return SyxFile::write(ImageBytes(bytes, std::size_t(image_.size())), model_, header_);
}

bool SystemDocument::save(QString* error) {
    if (path_.isEmpty()) {
        *error = QStringLiteral("the document has no file yet");
        return false;
    }
    const QByteArray bytes = encode(format_);
    if (!AtomicFile::write(path_, bytes, error)) return false;
    disk_ = diskState(path_, bytes);
    modified_ = false;
    return true;
}

bool SystemDocument::saveAs(const QString& path, DataFormat format, QString* error) {
    const QByteArray bytes = encode(format);
    if (!AtomicFile::write(path, bytes, error)) return false;
    path_ = path;
    format_ = format;
    disk_ = diskState(path_, bytes);
    readOnly_ = false;
    modified_ = false;
    return true;
}

} // namespace ferrule
