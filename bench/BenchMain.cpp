// Benchmarks of Ferrule, run with the offscreen platform: build/bin/ferrule_bench.

#include <QApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir settingsRoot;
    qputenv("FERRULE_SETTINGS_ROOT", settingsRoot.path().toLocal8Bit());
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
