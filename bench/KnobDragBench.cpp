// A knob against a QDial and a slider against a QSlider, as a user drags them: each pair sits
// in one exposed window, every mouse move goes through the event loop, and the time includes
// the repaint it causes (paint events are counted). Argument 1: like the editor's controls, which
// show their value, the Qt side shows its value in a QLabel kept up to date from valueChanged;
// argument 0: the bare Qt widget. The sliders are dragged from the middle to where each reaches
// its top value and back. Both sides alternate move by move in the
// same run; the counters give each side's time per move, their ratio, and paints per move.

#include "controls/RKnob.h"
#include "controls/VSlider.h"

#include "PaintCounter.h"

#include <QApplication>
#include <QDial>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QSlider>
#include <QTest>
#include <QVBoxLayout>
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

void mouse(QWidget* w, QEvent::Type type, QPointF at, Qt::MouseButtons held) {
    QMouseEvent e(type, at, w->mapToGlobal(at),
                  type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, {});
    QApplication::sendEvent(w, &e);
}

// Points on a circle around `centre`, back and forth over the upper 260°.
std::vector<QPointF> arc(QPointF centre, double radius) {
    std::vector<QPointF> points;
    for (int i = 0; i <= 260; i += 2) {
        const double a = (140.0 + i) * M_PI / 180.0;
        points.emplace_back(centre.x() + radius * std::cos(a), centre.y() + radius * std::sin(a));
    }
    const auto forward = points;
    points.insert(points.end(), forward.rbegin(), forward.rend());
    return points;
}

// Points up and down a vertical line.
std::vector<QPointF> line(double x, double top, double bottom) {
    std::vector<QPointF> points;
    for (double y = bottom; y >= top; y -= 1.0)
        points.emplace_back(x, y);
    const auto forward = points;
    points.insert(points.end(), forward.rbegin(), forward.rend());
    return points;
}

// The first y, pixel by pixel up from `from`, at which a drag of the control's thumb reaches its
// top value; the control is left as it was.
double topStop(QWidget* w, double x, double from) {
    auto value = [w] {
        return w->property(w->inherits("QAbstractSlider") ? "value" : "Value").toInt();
    };
    const int before = value();
    mouse(w, QEvent::MouseButtonPress, {x, from}, Qt::LeftButton);
    double y = from;
    while (y > 0 && value() < 100) {
        y -= 1.0;
        mouse(w, QEvent::MouseMove, {x, y}, Qt::LeftButton);
    }
    mouse(w, QEvent::MouseMove, {x, from}, Qt::LeftButton);
    mouse(w, QEvent::MouseButtonRelease, {x, from}, Qt::NoButton);
    w->setProperty(w->inherits("QAbstractSlider") ? "value" : "Value", before);
    return y;
}

// Drags `ours` and `theirs` move for move; each move is timed until its paint has happened.
void race(benchmark::State& st, QWidget* ours, const std::vector<QPointF>& ourPath,
          QAbstractSlider* theirs, const std::vector<QPointF>& theirPath, bool theirLabel) {
    QWidget window;
    auto* layout = new QHBoxLayout(&window);
    layout->addWidget(ours);
    auto* column = new QVBoxLayout;
    column->addWidget(theirs);
    auto* valueLabel = new QLabel(QString::number(theirs->value()), &window);
    valueLabel->setAlignment(Qt::AlignCenter);
    valueLabel->setMinimumWidth(40);
    if (theirLabel) {
        QObject::connect(theirs, &QAbstractSlider::valueChanged, valueLabel,
                         qOverload<int>(&QLabel::setNum));
        column->addWidget(valueLabel);
    } else {
        valueLabel->hide();
    }
    layout->addLayout(column);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window)) {
        st.SkipWithError("the window was not exposed");
        return;
    }
    QApplication::processEvents();
    PaintCounter ourPaints, theirPaints;
    ours->installEventFilter(&ourPaints);
    theirs->installEventFilter(&theirPaints);
    valueLabel->installEventFilter(&theirPaints);
    mouse(ours, QEvent::MouseButtonPress, ourPath.front(), Qt::LeftButton);
    mouse(theirs, QEvent::MouseButtonPress, theirPath.front(), Qt::LeftButton);
    QApplication::processEvents();
    ourPaints.paints = theirPaints.paints = 0;
    QElapsedTimer clock;
    qint64 ourNs = 0, theirNs = 0;
    std::size_t i = 0;
    for (auto _ : st) {
        clock.start();
        mouse(ours, QEvent::MouseMove, ourPath[i % ourPath.size()], Qt::LeftButton);
        QApplication::processEvents();
        const qint64 a = clock.nsecsElapsed();
        clock.start();
        mouse(theirs, QEvent::MouseMove, theirPath[i % theirPath.size()], Qt::LeftButton);
        QApplication::processEvents();
        const qint64 b = clock.nsecsElapsed();
        ourNs += a;
        theirNs += b;
        st.SetIterationTime(double(a) / 1e9);
        ++i;
    }
    mouse(ours, QEvent::MouseButtonRelease, ourPath.front(), Qt::NoButton);
    mouse(theirs, QEvent::MouseButtonRelease, theirPath.front(), Qt::NoButton);
    const double n = double(i);
    st.counters["ours_us"] = double(ourNs) / n / 1e3;
    st.counters["qt_us"] = double(theirNs) / n / 1e3;
    st.counters["ratio"] = double(ourNs) / double(theirNs);
    st.counters["ours_paints_per_move"] = ourPaints.paints / n;
    st.counters["qt_paints_per_move"] = theirPaints.paints / n;
    layout->removeWidget(ours);
    column->removeWidget(theirs);
    ours->setParent(nullptr);
    theirs->setParent(nullptr);
}

} // namespace

static void BM_KnobVsQDial(benchmark::State& st) {
    ferrule::RKnob knob;
    knob.setMax(100);
    knob.setValue(50);
    QDial dial;
    dial.setRange(0, 100);
    dial.setValue(50);
    dial.setFixedSize(51, 68);
    race(st, &knob, arc(QPointF(25, 25), 18), &dial, arc(QPointF(25, 34), 18), st.range(0) != 0);
}
BENCHMARK(BM_KnobVsQDial)
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(20000);

static void BM_SliderVsQSlider(benchmark::State& st) {
    ferrule::VSlider slider;
    slider.setEnabledInput(true); // as the page primitives leave a placed slider
    slider.setMax(100);
    slider.setValue(50);
    QSlider qslider(Qt::Vertical);
    qslider.setRange(0, 100);
    qslider.setValue(50);
    qslider.setFixedSize(86, 80);
    // Both thumbs are grabbed where they sit, in the middle, and dragged up to where each reaches
    // its top value and back: the same gesture over the same values, with no moves past the
    // end on either side.
    qslider.ensurePolished();
    const double thumbY = std::floor((slider.thumbTop() + 60) / 15.0);
    const double qThumbY = 40;
    const double top = topStop(&slider, 645 / 15.0, thumbY);
    const double qTop = topStop(&qslider, 43, qThumbY);
    race(st, &slider, line(645 / 15.0, top, thumbY), &qslider, line(43, qTop, qThumbY),
         st.range(0) != 0);
    st.counters["ours_moves"] = thumbY - top;
    st.counters["qt_moves"] = qThumbY - qTop;
}
BENCHMARK(BM_SliderVsQSlider)
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(20000);
