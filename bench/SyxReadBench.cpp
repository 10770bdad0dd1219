// Reading a model's whole .syx file into the system data image, in process: the check of every
// message and the way back through the dump map (the GT-8's dump is 604 messages).

#include "device/DefaultImage.h"
#include "device/DumpMap.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"

#include <benchmark/benchmark.h>

#include <random>

static void BM_ReadSyx(benchmark::State& st) {
    const int model = int(st.range(0));
    QByteArray image = ferrule::makeDefaultImage();
    std::mt19937 random(7);
    for (auto& b : image)
        b = char(random() & 0x7F);
    const QByteArray header = ferrule::Sysex::defaultHeader(model);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(image.constData());
    const QByteArray syx = ferrule::SyxFile::write(
        ferrule::ImageBytes(bytes, std::size_t(image.size())), model, header);
    const QByteArray base = ferrule::makeDefaultImage();
    for (auto _ : st) {
        const ferrule::SyxFile::Loaded loaded = ferrule::SyxFile::read(syx, model, header, base);
        if (!loaded.error.isEmpty()) st.SkipWithError(qPrintable(loaded.error));
        benchmark::DoNotOptimize(loaded.image.constData());
    }
    st.counters["messages"] = double(ferrule::DumpMap::of(model).transmission().size());
    st.counters["file_bytes"] = double(syx.size());
}
BENCHMARK(BM_ReadSyx)->Arg(3)->Arg(5)->Arg(6)->Arg(8)->Arg(10)->Unit(benchmark::kMillisecond);
