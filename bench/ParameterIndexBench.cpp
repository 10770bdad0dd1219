// Building a model's parameter index from the page catalogue, and comparing two images of the
// GT-10 by parameter, in process.

#include "catalogue/ParameterIndex.h"
#include "device/ModelDescription.h"

#include <benchmark/benchmark.h>

#include <random>

static void BM_BuildParameterIndex(benchmark::State& st) {
    const int model = int(st.range(0));
    std::size_t parameters = 0;
    for (auto _ : st) {
        const ferrule::ParameterIndex index = ferrule::ParameterIndex::build(model);
        parameters = index.parameters().size();
        benchmark::DoNotOptimize(index.parameters().data());
    }
    st.counters["parameters"] = double(parameters);
}
BENCHMARK(BM_BuildParameterIndex)
    ->Arg(3)
    ->Arg(5)
    ->Arg(6)
    ->Arg(8)
    ->Arg(10)
    ->Unit(benchmark::kMicrosecond);

// Two random GT-10 images that differ in about one sent byte in fifty.
static void BM_CompareImages(benchmark::State& st) {
    const int model = int(st.range(0));
    std::mt19937 random(11);
    std::vector<std::uint8_t> a(static_cast<std::size_t>(ferrule::kImageSize));
    for (auto& x : a)
        x = std::uint8_t(random() % 128);
    std::vector<std::uint8_t> b = a;
    for (auto& x : b)
        if (random() % 50 == 0) x = std::uint8_t((x + 1) % 128);
    ferrule::ParameterIndex::of(model); // built once, as the application does
    std::size_t differences = 0;
    for (auto _ : st) {
        const auto found = ferrule::compareImages(model, a, b);
        differences = found.size();
        benchmark::DoNotOptimize(found.data());
    }
    st.counters["differences"] = double(differences);
}
BENCHMARK(BM_CompareImages)->Arg(10)->Unit(benchmark::kMicrosecond);
