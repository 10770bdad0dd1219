// Benchmarks of Ferrule, run with the offscreen platform: build/bin/ferrule_bench.

#include <QApplication>

#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

namespace {
// The offscreen platform cannot grab the mouse or raise windows; those notices are not faults.
void quietOffscreenNotices(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (message.startsWith(QLatin1String("This plugin does not support"))) return;
    fprintf(stderr, "%s\n", qPrintable(message));
    if (type == QtFatalMsg) abort();
}
} // namespace
#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir settingsRoot;
    qputenv("FERRULE_SETTINGS_ROOT", settingsRoot.path().toLocal8Bit());
    qInstallMessageHandler(quietOffscreenNotices);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
