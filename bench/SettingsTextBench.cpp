// The settings text of a model, in process: writing it from an image in which every byte is
// random (so nearly every parameter differs from the default and has its line: the longest
// text there is), and reading it back into an image.

#include "catalogue/ParameterIndex.h"
#include "catalogue/SettingsText.h"
#include "device/DefaultImage.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

QByteArray randomImage() {
    QByteArray image = ferrule::makeDefaultImage();
    std::mt19937 random(11);
    for (auto& b : image)
        b = char(random() & 0x7F);
    return image;
}

ferrule::ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
}

} // namespace

static void BM_SettingsTextWrite(benchmark::State& st) {
    const int model = int(st.range(0));
    const QByteArray image = randomImage();
    ferrule::ParameterIndex::of(model); // built once per process, as in the host
    qsizetype length = 0;
    for (auto _ : st) {
        const QString text = ferrule::SettingsText::write(model, bytesOf(image));
        length = text.size();
        benchmark::DoNotOptimize(text.constData());
    }
    st.counters["chars"] = double(length);
}
BENCHMARK(BM_SettingsTextWrite)->Arg(10)->Arg(8)->Unit(benchmark::kMillisecond);

static void BM_SettingsTextRead(benchmark::State& st) {
    const int model = int(st.range(0));
    const QString text = ferrule::SettingsText::write(model, bytesOf(randomImage()));
    ferrule::SettingsText::read(text); // the name tables, built once per process
    for (auto _ : st) {
        const ferrule::SettingsText::Read read = ferrule::SettingsText::read(text);
        if (!read.error.isEmpty()) st.SkipWithError(qPrintable(read.error));
        benchmark::DoNotOptimize(read.image.constData());
    }
    st.counters["lines"] = double(text.count(QLatin1Char('\n')));
}
BENCHMARK(BM_SettingsTextRead)->Arg(10)->Arg(8)->Unit(benchmark::kMillisecond);
