// Edit… in the main window: from the click to the editor's first painted frame, the plug-in
// already loaded (after the first opening). Each iteration closes the editor as soon as it has
// painted, and counts the paint events it received.

#include "device/SysexCodec.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMetaObject>
#include <QTimer>
#include <QWidget>

#include <benchmark/benchmark.h>

namespace {

// Catches the editor's first paint, notes the time and closes it without keeping changes.
class FirstPaint : public QObject {
public:
    QElapsedTimer clock;
    double ms = -1;
    int paints = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Paint || !watched->isWidgetType()) return false;
        auto* w = static_cast<QWidget*>(watched);
        if (w->window()->objectName() != QLatin1String("SysForm")) return false;
        ++paints;
        if (ms < 0) {
            ms = double(clock.nsecsElapsed()) / 1e6;
            QTimer::singleShot(0, w->window(),
                               [win = w->window()] { QMetaObject::invokeMethod(win, "reject"); });
        }
        return false;
    }
};

} // namespace

static void BM_MainWindowEditOpens(benchmark::State& st) {
    const int model = int(st.range(0));
    ferrule::SessionOptions options;
    options.model = model;
    options.pluginPath = QStringLiteral(FERRULE_PLUGIN_FILE);
    options.midiApi = QStringLiteral("jack");
    ferrule::MainWindow window(
        options, ferrule::SystemDocument(model, ferrule::Sysex::defaultHeader(model)));
    window.show();
    QApplication::processEvents();
    FirstPaint probe;
    qApp->installEventFilter(&probe);
    probe.clock.start();
    window.edit(); // loads the plug-in once; not counted
    int paints = 0;
    for (auto _ : st) {
        probe.ms = -1;
        probe.paints = 0;
        probe.clock.restart();
        window.edit();
        if (probe.ms < 0) {
            st.SkipWithError("the editor did not paint");
            break;
        }
        st.SetIterationTime(probe.ms / 1000.0);
        paints += probe.paints;
    }
    qApp->removeEventFilter(&probe);
    st.counters["paints"] = benchmark::Counter(paints, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_MainWindowEditOpens)
    ->Arg(8)
    ->Arg(10)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(30);
