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
    for (int model : ferrule::kModels)
        for (int page : ferrule::pagesOf(model))
            b->Args({model, page});
}
BENCHMARK(BM_ShowTabPainted)->Apply(pages)->UseManualTime()->Unit(benchmark::kMicrosecond);
