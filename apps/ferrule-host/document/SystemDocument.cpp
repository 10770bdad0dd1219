#include "SystemDocument.h"

#include "device/DefaultImage.h"
#include "device/SystemDataFile.h"
#include "device/SyxFile.h"
#include "io/AtomicFile.h"

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
