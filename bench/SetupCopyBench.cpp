// Set-up's copy of the host's 43,252 system data values through calls by name.

#include "TestHost.h"
#include "editor/SysForm.h"
#include "sysdata/ModuleState.h"

#include <benchmark/benchmark.h>

static void BM_SetupCopiesSystemDataByName(benchmark::State& st) {
    TestHost host;
    host.fillPattern();
    ferrule::ModuleState state;
    state.host.setHost(&host);
    ferrule::SysForm form(state);
    for (auto _ : st) {
        form.Setup();
        benchmark::DoNotOptimize(state.image.at(43251));
    }
    st.counters["calls"] = 43252;
}
BENCHMARK(BM_SetupCopiesSystemDataByName)->Unit(benchmark::kMillisecond);
