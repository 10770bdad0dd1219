// .syx files as the program reads them: cut into messages, checked for each model, and put into
// the image. A file that loads, written back and read again, gives the same image, and the file
// written from it again gives the same bytes.

#include "FuzzLaw.h"

#include "device/DefaultImage.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"

#include <cstdint>
#include <span>

using namespace ferrule;

namespace {

ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
}

void checkSplit(QByteArrayView file) {
    const SyxFile::Split split = SyxFile::split(file);
    qsizetype next = 0;
    for (const SyxFile::Piece& p : split.messages) {
        FERRULE_LAW(p.offset >= next && p.offset + p.bytes.size() <= file.size());
        FERRULE_LAW(p.bytes.data() == file.data() + p.offset);
        FERRULE_LAW(p.bytes.size() >= 2 && uchar(p.bytes.front()) == 0xF0 &&
                    uchar(p.bytes.back()) == 0xF7);
        next = p.offset + p.bytes.size();
    }
    // A file without a fault is its messages, nothing between them.
    if (split.error.isEmpty()) FERRULE_LAW(next == file.size());
    FERRULE_LAW(!split.error.contains(QLatin1Char('\n')));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView file(data, qsizetype(size));
    if (file.size() > SyxFile::kMaxSize) return -1; // refused unread by the program
    static const QByteArray base = makeDefaultImage();
    checkSplit(file);
    for (const int model : kModels) {
        const QByteArray header = Sysex::defaultHeader(model);
        const SyxFile::Loaded loaded = SyxFile::read(file, model, header, base);
        if (!loaded.error.isEmpty()) {
            FERRULE_LAW(loaded.image.isEmpty());
            FERRULE_LAW(!loaded.error.contains(QLatin1Char('\n')));
            continue;
        }
        FERRULE_LAW(loaded.image.size() == kImageSize);
        FERRULE_LAW(loaded.unitsReceived <= loaded.unitsExpected);
        const QByteArray written = SyxFile::write(bytesOf(loaded.image), model, header);
        const SyxFile::Loaded again = SyxFile::read(written, model, header, loaded.image);
        FERRULE_LAW(again.error.isEmpty());
        FERRULE_LAW(again.image == loaded.image);
        FERRULE_LAW(again.unitsReceived == again.unitsExpected);
        // Read onto a blank image: the written file carries every byte that is ever written.
        static const QByteArray blank(kImageSize, '\0');
        const SyxFile::Loaded onBlank = SyxFile::read(written, model, header, blank);
        FERRULE_LAW(onBlank.error.isEmpty());
        FERRULE_LAW(SyxFile::write(bytesOf(onBlank.image), model, header) == written);
    }
    return 0;
}
