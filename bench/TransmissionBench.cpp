// The CPU cost of a whole GT-10 transmission through the plug-in and the host's framing, with
// no output and no pacing: start as the transmit command does, then QueueEmpty until the end.

#include "device/DefaultImage.h"
#include "device/SysexCodec.h"
#include "editor/SysForm.h"
#include "host/PlugIn.h"
#include "plugin/HostObject.h"
#include "sysdata/ModuleState.h"

#include <benchmark/benchmark.h>

static void BM_Gt10TransmissionCpu(benchmark::State& st) {
    ferrule::HostObject host(ferrule::makeDefaultImage());
    ferrule::PlugIn plugIn;
    plugIn.Interface(&host);
    plugIn.Format(10);
    int messages = 0;
    qint64 bytes = 0;
    host.setBlockSink([&](int address, const QByteArray& data, int model) {
        const QByteArray m =
            ferrule::Sysex::frame(ferrule::Sysex::defaultHeader(model), address, data);
        bytes += m.size();
        ++messages;
        benchmark::DoNotOptimize(m.data());
    });
    for (auto _ : st) {
        plugIn.editor()->ToggleTransmission();
        while (plugIn.state().transmissionStep != 0)
            plugIn.QueueEmpty();
    }
    st.counters["messages"] = benchmark::Counter(messages, benchmark::Counter::kAvgIterations);
    st.counters["bytes"] = benchmark::Counter(double(bytes), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_Gt10TransmissionCpu)->Unit(benchmark::kMillisecond);
