// ShowTab for every page of every model: clearing the page area and laying the page out.

#include "TestHost.h"
#include "editor/SysForm.h"
#include "sysdata/ModuleState.h"

#include <benchmark/benchmark.h>

static void BM_ShowTab(benchmark::State& st) {
    const int model = int(st.range(0));
    const int page = int(st.range(1));
    TestHost host;
    host.fillPattern();
    ferrule::ModuleState state;
    state.host.setHost(&host);
    ferrule::SysForm form(state);
    form.Setup();
    form.Form_Load();
    form.SetFormat(model);
    form.show();
    for (auto _ : st) {
        form.ShowTab(0);
        form.ShowTab(page);
    }
}

static void pages(benchmark::internal::Benchmark* b) {
    const std::pair<int, std::vector<int>> all[] = {{3, {1, 4, 5, 6}},
                                                    {5, {1, 4, 5, 8, 9}},
                                                    {6, {1, 4, 5, 6, 8, 9, 10}},
                                                    {8, {1, 4, 5, 6, 7, 8, 9, 10, 11}},
                                                    {10, {1, 4, 9, 11, 12, 13, 14, 15}}};
    for (const auto& [model, list] : all)
        for (int page : list)
            b->Args({model, page});
}
BENCHMARK(BM_ShowTab)->Apply(pages)->Unit(benchmark::kMicrosecond);
