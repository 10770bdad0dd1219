// A data file as the program opens it: a raw image of exactly 43,252 bytes or a .syx file,
// read from disk and checked whole. A raw image is taken byte for byte, and survives the trip
// through a .syx file; a file that is refused gets one line that names it.

#include "FuzzLaw.h"

#include "device/DefaultImage.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "device/SystemDataFile.h"
#include "device/SyxFile.h"

#include <QDir>
#include <QTemporaryFile>

#include <cstdint>
#include <span>

using namespace ferrule;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // One file for the whole run, removed at its end.
    static QTemporaryFile file(QDir::temp().filePath(QStringLiteral("ferrule-data-fuzz-XXXXXX")));
    static const bool opened = file.open();
    FERRULE_LAW(opened);
    static const QString path = file.fileName();
    static const QByteArray base = makeDefaultImage();
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    FERRULE_LAW(file.resize(0) && file.seek(0) && file.write(bytes) == bytes.size() &&
                file.flush());
    // The model matters to a .syx file only: a raw image is read once, and must then survive
    // a trip through every model's .syx file.
    const bool syx = SyxFile::looksLikeSyx(bytes);
    for (const int model : kModels) {
        if (!syx && model != kModels[0]) break;
        const QByteArray header = Sysex::defaultHeader(model);
        const SystemDataFile::Read read = SystemDataFile::read(path, model, header, base);
        if (!read.error.isEmpty()) {
            FERRULE_LAW(read.image.isEmpty());
            FERRULE_LAW(read.error.startsWith(QStringLiteral("data file \"%1\" ").arg(path)));
            FERRULE_LAW(!read.error.contains(QLatin1Char('\n')));
            continue;
        }
        FERRULE_LAW(read.image.size() == kImageSize && read.syx == syx);
        if (syx) {
            FERRULE_LAW(read.image == SyxFile::read(bytes, model, header, base).image);
            continue;
        }
        FERRULE_LAW(read.image == bytes);
        // Saved as .syx and opened again onto the same image, a raw image is unchanged.
        const ImageBytes image(reinterpret_cast<const std::uint8_t*>(read.image.constData()),
                               std::size_t(read.image.size()));
        for (const int to : kModels) {
            const QByteArray toHeader = Sysex::defaultHeader(to);
            const QByteArray file = SyxFile::write(image, to, toHeader);
            const SyxFile::Loaded again = SyxFile::read(file, to, toHeader, read.image);
            FERRULE_LAW(again.error.isEmpty() && again.image == read.image);
        }
    }
    return 0;
}
