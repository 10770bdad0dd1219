// What the undo history adds to a knob drag in the editor: whole drags (press, 60 moves round
// the arc, release), each move through the event loop until painted, on the GT-10's first page
// with the binding writing the image. Drags with the history recording and with it off
// alternate in one run; the counters give each side's time per drag and their ratio.

#include "TestHost.h"
#include "controls/RKnob.h"
#include "editor/EditHistory.h"
#include "editor/SysForm.h"
#include "pages/ControlPools.h"
#include "sysdata/ModuleState.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QTest>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

void mouse(QWidget* w, QEvent::Type type, QPointF at) {
    QMouseEvent e(type, at, w->mapToGlobal(at),
                  type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                  type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
    QApplication::sendEvent(w, &e);
}

qint64 drag(ferrule::RKnob* knob, bool back) {
    QElapsedTimer clock;
    clock.start();
    const QPointF centre(25.0, 25.0);
    auto at = [&](int i) {
        const double a = (140.0 + (back ? 60 - i : i) * 260.0 / 60) * M_PI / 180.0;
        return QPointF(centre.x() + 20 * std::cos(a), centre.y() + 20 * std::sin(a));
    };
    mouse(knob, QEvent::MouseButtonPress, at(0));
    QApplication::processEvents();
    for (int i = 1; i <= 60; ++i) {
        mouse(knob, QEvent::MouseMove, at(i));
        QApplication::processEvents();
    }
    mouse(knob, QEvent::MouseButtonRelease, at(60));
    QApplication::processEvents();
    return clock.nsecsElapsed();
}

} // namespace

static void BM_KnobDragWithUndo(benchmark::State& st) {
    TestHost host;
    host.fillPattern();
    ferrule::ModuleState state;
    state.host.setHost(&host);
    ferrule::SysForm form(state);
    form.setErrorReporter([](const QString&) {});
    form.Setup();
    form.Form_Load();
    form.SetFormat(10);
    form.ShowTab(1);
    form.show();
    if (!QTest::qWaitForWindowExposed(&form)) {
        st.SkipWithError("the editor was not exposed");
        return;
    }
    ferrule::RKnob* knob = form.pools().knobs[1];
    qint64 with = 0, without = 0;
    int drags = 0;
    for (auto _ : st) {
        // Up the arc and back down, so that every drag changes the value.
        form.history().setRecording(true);
        const qint64 a = drag(knob, false) + drag(knob, true);
        form.history().setRecording(false);
        const qint64 b = drag(knob, false) + drag(knob, true);
        with += a;
        without += b;
        drags += 2;
        st.SetIterationTime(double(a) / 2e9);
    }
    st.counters["with_us_per_drag"] = double(with) / drags / 1e3;
    st.counters["without_us_per_drag"] = double(without) / drags / 1e3;
    st.counters["ratio"] = double(with) / double(without);
    st.counters["steps"] = form.history().steps();
}
BENCHMARK(BM_KnobDragWithUndo)->Iterations(300)->UseManualTime()->Unit(benchmark::kMicrosecond);
