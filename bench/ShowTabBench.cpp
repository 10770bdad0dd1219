// ShowTab for every page of every model as the user sees it: the editor is shown and exposed,
// and each switch (away to the empty page, then to the page) is timed until the page has been
// painted through the event loop. Paint events per switch are counted.

#include "TestHost.h"
#include "editor/SysForm.h"
#include "sysdata/ModuleState.h"

#include "PaintCounter.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>

#include <benchmark/benchmark.h>

namespace {} // namespace

static void BM_ShowTabPainted(benchmark::State& st) {
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
    if (!QTest::qWaitForWindowExposed(&form)) {
        st.SkipWithError("the editor was not exposed");
        return;
    }
    PaintCounter counter;
    qApp->installEventFilter(&counter);
    QElapsedTimer clock;
    int switches = 0;
    for (auto _ : st) {
        form.ShowTab(0);
        QApplication::processEvents();
        const int before = counter.paints;
        clock.start();
        form.ShowTab(page);
        QApplication::processEvents();
        st.SetIterationTime(double(clock.nsecsElapsed()) / 1e9);
        switches += counter.paints - before > 0 ? 1 : 0;
        st.counters["paints"] = double(counter.paints - before);
    }
    qApp->removeEventFilter(&counter);
    st.counters["painted_switches"] = switches;
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
BENCHMARK(BM_ShowTabPainted)->Apply(pages)->UseManualTime()->Unit(benchmark::kMicrosecond);
