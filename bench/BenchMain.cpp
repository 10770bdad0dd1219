// Benchmarks of Ferrule, run on the offscreen platform: build/bin/ferrule_bench.

#include "OffscreenApp.h"

#include <QApplication>
#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    QTemporaryDir settingsRoot;
    prepareOffscreenApp(settingsRoot);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
