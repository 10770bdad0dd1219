#include "SystemDocument.h"

#include "device/DefaultImage.h"
#include "device/ModelMap.h"
#include "device/SyxFile.h"
#include "io/AtomicFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

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
    const auto fail = [&](const QString& why) {
        *error = QStringLiteral("data file \"%1\" %2").arg(path, why);
        return std::nullopt;
    };
    if (path.isEmpty()) {
        *error = QStringLiteral("the data file name is empty");
        return std::nullopt;
    }
    const QFileInfo info(path);
    if (!info.exists()) return fail(QStringLiteral("does not exist"));
    if (info.isDir()) return fail(QStringLiteral("is a folder, not a file"));
    // A FIFO or a device would block or never end: only regular files are read.
    if (!info.isFile()) return fail(QStringLiteral("is not a regular file"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot be read: %1").arg(file.errorString()));
    const qint64 limit = std::max<qint64>(kImageSize, SyxFile::kMaxSize);
    const QByteArray bytes = file.read(limit + 1);
    if (file.error() != QFileDevice::NoError)
        return fail(QStringLiteral("cannot be read: %1").arg(file.errorString()));

    SystemDocument doc(model, header);
    doc.path_ = path;
    if (SyxFile::looksLikeSyx(bytes)) {
        if (bytes.size() > SyxFile::kMaxSize)
            return fail(QStringLiteral("holds more than %1 bytes; a system dump is at most that")
                            .arg(SyxFile::kMaxSize));
        const SyxFile::Loaded loaded = SyxFile::read(bytes, model, header, doc.image_);
        if (!loaded.error.isEmpty()) return fail(QStringLiteral("is not usable: ") + loaded.error);
        doc.image_ = loaded.image;
        doc.format_ = DataFormat::Syx;
        return doc;
    }
    if (bytes.size() != kImageSize)
        return fail(
            QStringLiteral("holds %1 bytes; system data must be exactly 43252 bytes or a .syx "
                           "file")
                .arg(bytes.size() > limit ? QStringLiteral("more than %1").arg(limit)
                                          : QString::number(bytes.size())));
    doc.image_ = bytes;
    doc.format_ = DataFormat::Raw;
    return doc;
}

void SystemDocument::setImage(const QByteArray& image) {
    if (image == image_) return;
    image_ = image;
    modified_ = true;
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
    if (!AtomicFile::write(path_, encode(format_), error)) return false;
    modified_ = false;
    return true;
}

bool SystemDocument::saveAs(const QString& path, DataFormat format, QString* error) {
    if (!AtomicFile::write(path, encode(format), error)) return false;
    path_ = path;
    format_ = format;
    modified_ = false;
    return true;
}

} // namespace ferrule
