// Set-up's copy of the host's 43,252 system data values, called by name: through ferrule-host's
// own host object (integer types: the resolved path) and through the test host (a QVariant
// result: the generic path with conversions).

#include "TestHost.h"
#include "device/DefaultImage.h"
#include "editor/SysForm.h"
#include "plugin/HostObject.h"
#include "sysdata/ModuleState.h"

#include <benchmark/benchmark.h>

template <class Host> static void copyThrough(benchmark::State& st, Host& host) {
    ferrule::ModuleState state;
    state.host.setHost(&host);
    ferrule::SysForm form(state);
    for (auto _ : st) {
        form.Setup();
        benchmark::DoNotOptimize(state.image.at(43251));
    }
    st.counters["calls"] = 43252;
}

static void BM_SetupCopy_HostApplication(benchmark::State& st) {
    ferrule::HostObject host(ferrule::makeDefaultImage());
    copyThrough(st, host);
}
BENCHMARK(BM_SetupCopy_HostApplication)->Unit(benchmark::kMillisecond);

static void BM_SetupCopy_VariantHost(benchmark::State& st) {
    TestHost host;
    host.fillPattern();
    copyThrough(st, host);
}
BENCHMARK(BM_SetupCopy_VariantHost)->Unit(benchmark::kMillisecond);
