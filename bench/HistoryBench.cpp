// The history at its default size of 200 GT-10 snapshots: listing it (the window's start and
// every new snapshot read the folder), and recording one more, which also compares it with the
// newest of its model and drops the oldest. The folder is a temporary one on the benchmark's
// file system.

#include "device/DefaultImage.h"
#include "device/SysexCodec.h"
#include "document/History.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

// Records the next state: one that differs from the one before it in two bytes.
bool recordNext(ferrule::History& history, QByteArray& image, int& step, benchmark::State& st) {
    image[30000] = char(++step & 0x7F);
    image[30001] = char((step >> 7) & 0x7F);
    QString error;
    if (history.record(ferrule::Snapshot::Kind::Sent, 10, image, ferrule::Sysex::defaultHeader(10),
                       {QStringLiteral("GT-10 MIDI 1")}, &error))
        return true;
    st.SkipWithError(qPrintable(error.isEmpty() ? QStringLiteral("not stored") : error));
    return false;
}

} // namespace

// Arg 0: list the snapshots; arg 1: record one more.
static void BM_History(benchmark::State& st) {
    QTemporaryDir dir;
    ferrule::History history(dir.filePath(QStringLiteral("history")),
                             ferrule::History::kDefaultLimit);
    QByteArray image = ferrule::makeDefaultImage();
    int step = 0;
    for (int i = 0; i < history.limit(); ++i)
        if (!recordNext(history, image, step, st)) return;
    const bool record = st.range(0) == 1;
    for (auto _ : st) {
        if (!record)
            benchmark::DoNotOptimize(history.snapshots());
        else if (!recordNext(history, image, step, st))
            return;
    }
    st.counters["snapshots"] = double(history.snapshots().size());
}
BENCHMARK(BM_History)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->MinTime(1.0);
