// A knob drag against a QDial driven the same way: per mouse move, the new value and a
// synchronous repaint. Both get the same sweep of positions around their centre.

#include "controls/RKnob.h"

#include <QApplication>
#include <QDial>
#include <QMouseEvent>
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

// Points on a circle around `centre`, sweeping back and forth over the upper 260°.
std::vector<QPointF> sweep(QPointF centre, double radius) {
    std::vector<QPointF> points;
    for (int i = 0; i <= 260; i += 2) {
        const double a = (140.0 + i) * M_PI / 180.0;
        points.emplace_back(centre.x() + radius * std::cos(a), centre.y() + radius * std::sin(a));
    }
    const auto forward = points;
    points.insert(points.end(), forward.rbegin(), forward.rend());
    return points;
}

void drag(QWidget* w, const std::vector<QPointF>& points, benchmark::State& st) {
    const QPointF start = points.front();
    QMouseEvent press(QEvent::MouseButtonPress, start, w->mapToGlobal(start), Qt::LeftButton,
                      Qt::LeftButton, {});
    QApplication::sendEvent(w, &press);
    std::size_t i = 0;
    for (auto _ : st) {
        const QPointF p = points[i++ % points.size()];
        QMouseEvent move(QEvent::MouseMove, p, w->mapToGlobal(p), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(w, &move);
        w->repaint();
    }
    QMouseEvent release(QEvent::MouseButtonRelease, start, w->mapToGlobal(start), Qt::LeftButton,
                        Qt::NoButton, {});
    QApplication::sendEvent(w, &release);
}

} // namespace

static void BM_KnobDragMove(benchmark::State& st) {
    ferrule::RKnob knob;
    knob.setMax(100);
    knob.setValue(50);
    knob.show();
    int changes = 0;
    QObject::connect(&knob, &ferrule::RKnob::Change, [&changes](int) { ++changes; });
    drag(&knob, sweep(QPointF(25, 25), 18), st);
    st.counters["changes"] = changes;
}
BENCHMARK(BM_KnobDragMove);

static void BM_QDialDragMove(benchmark::State& st) {
    QDial dial;
    dial.setRange(0, 100);
    dial.setValue(50);
    dial.resize(51, 68);
    dial.show();
    int changes = 0;
    QObject::connect(&dial, &QDial::valueChanged, [&changes](int) { ++changes; });
    drag(&dial, sweep(QPointF(25, 34), 18), st);
    st.counters["changes"] = changes;
}
BENCHMARK(BM_QDialDragMove);
