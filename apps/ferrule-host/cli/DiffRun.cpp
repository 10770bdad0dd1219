#include "DiffRun.h"

#include "DeviceRuns.h"
#include "catalogue/ParameterIndex.h"
#include "document/SystemDocument.h"

#include <QFileInfo>

#include <cstdio>

namespace ferrule {

namespace {

ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
}

QString nameOf(const SystemDocument& d) {
    return d.path().isEmpty() ? QStringLiteral("the device's data")
                              : QFileInfo(d.path()).fileName();
}

} // namespace

std::optional<SystemDocument> openDiffFile(const HostOptions& options, int model, QString* error) {
    std::optional<SystemDocument> other =
        SystemDocument::open(options.diffFile, model, options.dataSetHeader(model), error);
    if (other) printWarnings(*other);
    return other;
}

int printDifferences(const SystemDocument& a, const SystemDocument& b) {
    const std::vector<ParameterDifference> differences =
        compareImages(a.model(), bytesOf(a.image()), bytesOf(b.image()));
    // One write for the whole list: a GT-10 whose every byte differs has 23,000 lines. The
    // lines are encoded one by one, so that the list is never held twice.
    QByteArray bytes;
    bytes.reserve(qsizetype(differences.size()) * 32);
    for (const ParameterDifference& d : differences) {
        bytes += differenceLine(d).toLocal8Bit();
        bytes += '\n';
    }
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    std::fflush(stdout);
    if (differences.empty()) {
        std::fprintf(stderr, "ferrule-host: %s and %s hold the same GT-%d settings\n",
                     qPrintable(nameOf(a)), qPrintable(nameOf(b)), a.model());
        return 0;
    }
    std::fprintf(stderr, "ferrule-host: %zu difference%s between %s and %s\n", differences.size(),
                 differences.size() == 1 ? "" : "s", qPrintable(nameOf(a)), qPrintable(nameOf(b)));
    return kExitDiffers;
}

int runDiff(const HostOptions& options, const SystemDocument& document) {
    QString error;
    const std::optional<SystemDocument> other = openDiffFile(options, document.model(), &error);
    if (!other) return fail(kExitBadInput, error);
    return printDifferences(document, *other);
}

} // namespace ferrule
