// A keystroke in the settings view's filter box over every parameter of the GT-10, and of the
// GT-8 (the model with the most), as the user sees it:
// the main window is shown and exposed, and each key (typing "level" letter by letter, then
// erasing it) is timed until the tree has been painted through the event loop. Paint events per
// keystroke are counted, and how many parameters the tree shows after it.

#include "HostOptionsForTests.h"
#include "catalogue/ParameterIndex.h"
#include "device/SysexCodec.h"
#include "document/SettingsFilter.h"
#include "ui/MainWindow.h"
#include "ui/SettingsView.h"

#include "PaintCounter.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTest>
#include <QTreeView>

#include <benchmark/benchmark.h>

using namespace ferrule;

static void BM_SettingsFilterKeystrokePainted(benchmark::State& st) {
    const int model = int(st.range(0));
    MainWindow window(hostOptionsForTests(model),
                      SystemDocument(model, Sysex::defaultHeader(model)));
    window.show();
    if (!QTest::qWaitForWindowExposed(&window)) {
        st.SkipWithError("the window was not exposed");
        return;
    }
    SettingsView& view = *window.settingsView();
    view.filterBox()->setFocus();
    QApplication::processEvents();
    PaintCounter counter;
    view.tree()->viewport()->installEventFilter(&counter);
    const QString word = QStringLiteral("level");
    QElapsedTimer clock;
    int key = 0, painted = 0;
    for (auto _ : st) {
        const int at = key++ % (2 * int(word.size()));
        const int before = counter.paints;
        clock.start();
        if (at < word.size())
            QTest::keyClick(view.filterBox(), word[at].toLatin1());
        else
            QTest::keyClick(view.filterBox(), Qt::Key_Backspace);
        QApplication::processEvents();
        st.SetIterationTime(double(clock.nsecsElapsed()) / 1e9);
        painted += counter.paints > before ? 1 : 0;
    }
    st.counters["painted_keystrokes"] = painted;
    st.counters["parameters"] = double(ParameterIndex::of(model).parameters().size());
}
BENCHMARK(BM_SettingsFilterKeystrokePainted)
    ->Arg(10)
    ->Arg(8)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
