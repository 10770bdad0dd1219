// A settings text as the host opens it (--data FILE.txt, Open…): read from disk, for the model
// its model line names or, when it names none, the model the host runs for (the first byte picks
// it). A text that opens reads the same with its lines in another order, saved again and opened
// again it gives the same image, and the bytes of that image the device is sent arrive
// unchanged; a text that is refused gets one line that names the file and, for a fault in the
// text, a line the text has; nothing throws.

#include "FuzzLaw.h"

#include "SystemDocument.h"
#include "catalogue/ParameterIndex.h"
#include "catalogue/SettingsText.h"
#include "device/DefaultImage.h"
#include "device/DumpMap.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdint>
#include <exception>

using namespace ferrule;

namespace {

// "line N: …" with N a line of a text of `lines` lines (1 for an empty text).
bool namesALine(const QString& message, qsizetype lines) {
    static const QRegularExpression re(QStringLiteral("^line (\\d+): \\S"));
    const QRegularExpressionMatch m = re.match(message);
    if (!m.hasMatch()) return false;
    const qsizetype n = m.captured(1).toLongLong();
    return n >= 1 && n <= std::max<qsizetype>(lines, 1);
}

void check(const QByteArray& bytes, int hostModel, const QString& path) {
    QFile file(path);
    FERRULE_LAW(file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                file.write(bytes) == bytes.size());
    file.close();
    // The text's lines as the reader counts them: pieces between line ends.
    const qsizetype lines = bytes.count('\n') + (bytes.endsWith('\n') ? 0 : 1);

    const int named = SystemDocument::textModel(path);
    const int model = named != 0 ? named : hostModel;
    const QByteArray header = Sysex::defaultHeader(model);
    QString error;
    const std::optional<SystemDocument> doc = SystemDocument::open(path, model, header, &error);
    if (!doc) {
        FERRULE_LAW(!error.contains(QLatin1Char('\n')));
        const QString file = QStringLiteral("data file \"%1\" ").arg(path);
        FERRULE_LAW(error.startsWith(file));
        // The model line is found the same way before and while reading, so the only refusal
        // is a fault in the text.
        const QString unusable = file + QStringLiteral("is not usable: ");
        FERRULE_LAW(error.startsWith(unusable));
        FERRULE_LAW(namesALine(error.mid(unusable.size()), lines));
        return;
    }
    // What opens names its model where the host looks for it before opening.
    FERRULE_LAW(named == model && doc->model() == model);
    FERRULE_LAW(doc->image().size() == kImageSize && doc->format() == DataFormat::Text);
    for (const QString& warning : doc->warnings()) {
        FERRULE_LAW(!warning.contains(QLatin1Char('\n')));
        FERRULE_LAW(namesALine(warning, lines));
    }

    // The order of the lines does not matter: the model line first, then the others upside
    // down, the text reads the same.
    QList<QByteArray> rest = bytes.split('\n');
    const auto modelLine = std::ranges::find_if(rest, [](const QByteArray& line) {
        return SettingsText::modelOf(QString::fromUtf8(line)) != 0;
    });
    FERRULE_LAW(modelLine != rest.end());
    QByteArray reordered = *modelLine;
    rest.erase(modelLine);
    std::ranges::reverse(rest);
    for (const QByteArray& line : rest)
        reordered += '\n' + line;
    const SettingsText::Read upsideDown = SettingsText::read(QString::fromUtf8(reordered));
    FERRULE_LAW(upsideDown.error.isEmpty() && upsideDown.image == doc->image());
    FERRULE_LAW(upsideDown.warnings.size() == doc->warnings().size());

    // Saved as the host saves it, the text opens again onto the same image.
    SystemDocument saved = *doc;
    FERRULE_LAW(saved.save(&error));
    const std::optional<SystemDocument> again = SystemDocument::open(path, model, header, &error);
    FERRULE_LAW(again && again->image() == doc->image());

    // The image can be sent, and every byte the transmission sends arrives as it is. (A byte a
    // control edits need not be one the device is sent: the GT-10's "Map Select".)
    const ImageBytes image(reinterpret_cast<const std::uint8_t*>(doc->image().constData()),
                           std::size_t(doc->image().size()));
    FERRULE_LAW(DumpMap::of(model).firstUncarriableByte(image) == -1);
    static const QByteArray base = makeDefaultImage();
    const SyxFile::Loaded received =
        SyxFile::read(doc->encode(DataFormat::Syx), model, header, base);
    FERRULE_LAW(received.error.isEmpty());
    for (const int i : ParameterIndex::of(model).sentBytes())
        FERRULE_LAW(received.image[i] == doc->image()[i]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // One folder for the whole run, removed at its end.
    static QTemporaryDir dir(QDir::temp().filePath(QStringLiteral("ferrule-text-fuzz-XXXXXX")));
    FERRULE_LAW(dir.isValid());
    static const QString path = dir.filePath(QStringLiteral("settings.txt"));
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const int hostModel = kModels[size == 0 ? 0 : data[0] % std::size(kModels)];
    try {
        check(bytes, hostModel, path);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "threw: %s\n", e.what());
        FERRULE_LAW(!"the text's reader throws");
    } catch (...) {
        FERRULE_LAW(!"the text's reader throws");
    }
    return 0;
}
