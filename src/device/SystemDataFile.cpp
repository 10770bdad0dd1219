#include "SystemDataFile.h"

#include "DumpMap.h"
#include "ModelMap.h"
#include "SyxFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace ferrule::SystemDataFile {

Bytes readRegularFile(const QString& path, qint64 limit) {
    Bytes out;
    const auto fail = [&](const QString& why) {
        out.error = QStringLiteral("data file \"%1\" %2").arg(path, why);
        return out;
    };
    if (path.isEmpty()) {
        out.error = QStringLiteral("the data file name is empty");
        return out;
    }
    const QFileInfo info(path);
    if (!info.exists()) return fail(QStringLiteral("does not exist"));
    if (info.isDir()) return fail(QStringLiteral("is a folder, not a file"));
    if (!info.isFile()) return fail(QStringLiteral("is not a regular file"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot be read: %1").arg(file.errorString()));
    // Room for what the file holds and one byte more, not for the whole limit: a buffer of
    // megabytes at every open costs more than the reading.
    out.bytes = file.read(std::min(file.size(), limit) + 1);
    if (file.error() != QFileDevice::NoError) {
        out.bytes.clear();
        return fail(QStringLiteral("cannot be read: %1").arg(file.errorString()));
    }
    return out;
}

Read read(const QString& path, int model, const QByteArray& header, const QByteArray& base) {
    Read out;
    const auto fail = [&](const QString& why) {
        out.error = QStringLiteral("data file \"%1\" %2").arg(path, why);
        return out;
    };
    const qint64 limit = std::max<qint64>(kImageSize, SyxFile::kMaxSize);
    const Bytes file = readRegularFile(path, limit);
    if (!file.error.isEmpty()) {
        out.error = file.error;
        return out;
    }
    const QByteArray& bytes = file.bytes;

    if (SyxFile::looksLikeSyx(bytes)) {
        if (bytes.size() > SyxFile::kMaxSize)
            return fail(QStringLiteral("holds more than %1 bytes; a system dump is at most that")
                            .arg(SyxFile::kMaxSize));
        const SyxFile::Loaded loaded = SyxFile::read(bytes, model, header, base);
        if (!loaded.error.isEmpty()) return fail(QStringLiteral("is not usable: ") + loaded.error);
        out.image = loaded.image;
        out.syx = true;
        return out;
    }
    if (bytes.size() != kImageSize)
        return fail(
            QStringLiteral("holds %1 bytes; system data must be exactly 43252 bytes or a .syx "
                           "file")
                .arg(bytes.size() > limit ? QStringLiteral("more than %1").arg(limit)
                                          : QString::number(bytes.size())));
    // Every byte a message carries whole must be one it can carry, or the data could be
    // neither sent nor saved as .syx.
    const ImageBytes image(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                           std::size_t(bytes.size()));
    for (const int m : kModels)
        if (const int bad = DumpMap::of(m).firstUncarriableByte(image); bad >= 0)
            return fail(QStringLiteral("is not usable: byte %1 is 0x%2; GT-%3 system data are "
                                       "7-bit values (0-127)")
                            .arg(bad)
                            .arg(QString::number(uchar(bytes[bad]), 16).toUpper())
                            .arg(m));
    out.image = bytes;
    return out;
}

} // namespace ferrule::SystemDataFile
