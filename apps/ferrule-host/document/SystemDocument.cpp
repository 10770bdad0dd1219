#include "SystemDocument.h"

#include "catalogue/SettingsText.h"
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

namespace {

// A settings text is a few hundred kilobytes at most; anything far larger is not one.
constexpr qint64 kMaxTextSize = 4 << 20;

SystemDataFile::Bytes readText(const QString& path) {
    SystemDataFile::Bytes file = SystemDataFile::readRegularFile(path, kMaxTextSize);
    if (file.error.isEmpty() && file.bytes.size() > kMaxTextSize) {
        file.error = QStringLiteral("data file \"%1\" holds more than %2 bytes; a settings "
                                    "text is far smaller")
                         .arg(path)
                         .arg(kMaxTextSize);
        file.bytes.clear();
    }
    return file;
}

} // namespace

DataFormat SystemDocument::formatForName(const QString& path) {
    if (path.endsWith(QStringLiteral(".syx"), Qt::CaseInsensitive)) return DataFormat::Syx;
    if (path.endsWith(QStringLiteral(".txt"), Qt::CaseInsensitive)) return DataFormat::Text;
    return DataFormat::Raw;
}

int SystemDocument::textModel(const QString& path) {
    if (formatForName(path) != DataFormat::Text) return 0;
    const SystemDataFile::Bytes file = readText(path);
    return file.error.isEmpty() ? SettingsText::modelOf(QString::fromUtf8(file.bytes)) : 0;
}

std::optional<SystemDocument> SystemDocument::open(const QString& path, int model,
                                                   const QByteArray& header, QString* error) {
    SystemDocument doc(model, header);
    if (formatForName(path) == DataFormat::Text) {
        const SystemDataFile::Bytes file = readText(path);
        if (!file.error.isEmpty()) {
            *error = file.error;
            return std::nullopt;
        }
        const SettingsText::Read read = SettingsText::read(QString::fromUtf8(file.bytes));
        if (!read.error.isEmpty()) {
            *error = QStringLiteral("data file \"%1\" is not usable: %2").arg(path, read.error);
            return std::nullopt;
        }
        if (read.model != model) {
            *error = QStringLiteral("data file \"%1\" holds GT-%2 system data, not GT-%3 (open it "
                                    "with --model %2)")
                         .arg(path)
                         .arg(read.model)
                         .arg(model);
            return std::nullopt;
        }
        doc.image_ = read.image;
        doc.warnings_ = read.warnings;
        doc.format_ = DataFormat::Text;
    } else {
        const SystemDataFile::Read read = SystemDataFile::read(path, model, header, doc.image_);
        if (!read.error.isEmpty()) {
            *error = read.error;
            return std::nullopt;
        }
        doc.image_ = read.image;
        doc.format_ = read.syx ? DataFormat::Syx : DataFormat::Raw;
    }
    doc.path_ = path;
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
    const ImageBytes bytes(reinterpret_cast<const std::uint8_t*>(image_.constData()),
                           std::size_t(image_.size()));
    if (format == DataFormat::Text) return SettingsText::write(model_, bytes).toUtf8();
    return SyxFile::write(bytes, model_, header_);
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
