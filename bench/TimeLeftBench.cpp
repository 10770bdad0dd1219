// How close the time left that the main window shows comes to the clock: a request and a send
// of the GT-8 against ferrule-device on a JACK server of its own (dummy driver). Each estimate
// from 10 % to 90 % done is set against the time the operation really took from then on; the
// counters are the worst and the mean error in per cent. A loaded machine makes them worse:
// read them with the machine's load beside them.

#include "HostOptionsForTests.h"
#include "JackServer.h"
#include "device/SysexCodec.h"
#include "ui/MainWindow.h"

#include <QElapsedTimer>
#include <QTest>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace ferrule;

static void BM_TimeLeftAgainstTheClock(benchmark::State& state) {
    const bool request = state.range(0) == 1;
    const int model = 8;
    JackServer jack;
    if (!jack.running()) {
        state.SkipWithError("the JACK server did not start");
        return;
    }
    qputenv("JACK_DEFAULT_SERVER",
            jack.env().value(QStringLiteral("JACK_DEFAULT_SERVER")).toUtf8());
    DeviceProcess device(jack, {QStringLiteral("--model"), QString::number(model)});
    HostOptions o = hostOptionsForTests(model);
    o.midiIn = o.midiOut = QStringLiteral("ferrule-device");
    MainWindow w(o, SystemDocument(model, Sysex::defaultHeader(model)));
    w.setAskSave([](const QString&) { return QMessageBox::Discard; });
    if (!device.ready() || !w.device().hasInput() || !w.device().hasOutput()) {
        state.SkipWithError("ferrule-device is not reachable");
        return;
    }
    double worst = 0, sum = 0;
    int count = 0;
    for (auto _ : state) {
        struct Sample {
            double share;
            qint64 atMs, estimateMs;
        };
        std::vector<Sample> samples;
        bool ended = false, ok = false;
        QElapsedTimer clock;
        clock.start();
        const auto progress = QObject::connect(
            &w.device(), &DeviceSession::progress, &w,
            [&](qint64 done, qint64 total, qint64 msLeft) {
                if (total > 0)
                    samples.push_back({double(done) / double(total), clock.elapsed(), msLeft});
            });
        const auto finished = QObject::connect(&w.device(), &DeviceSession::finished, &w,
                                               [&](bool success, const QString&) {
                                                   ended = true;
                                                   ok = success;
                                               });
        if (request)
            w.device().receive(w.document().image(), true);
        else
            w.device().send(w.document().image(), false);
        static_cast<void>(QTest::qWaitFor([&] { return ended; }, 120000));
        const qint64 endMs = clock.elapsed();
        QObject::disconnect(progress);
        QObject::disconnect(finished);
        if (!ok) {
            state.SkipWithError("the operation failed");
            return;
        }
        for (const Sample& s : samples) {
            if (s.share < 0.1 || s.share > 0.9) continue;
            const double real = double(endMs - s.atMs);
            const double error = std::abs(double(s.estimateMs) - real) / real;
            worst = std::max(worst, error);
            sum += error;
            ++count;
        }
    }
    state.counters["worst_error_pct"] = worst * 100;
    state.counters["mean_error_pct"] = count > 0 ? sum / count * 100 : 0.0;
    state.counters["estimates"] = count;
    state.SetLabel(request ? "GT-8 request" : "GT-8 send");
}
BENCHMARK(BM_TimeLeftAgainstTheClock)
    ->Arg(1)
    ->Arg(0)
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
