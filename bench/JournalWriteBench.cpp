// One recovery journal write, as the window makes it after each gesture: the document's entry
// with its 43,252-byte image, encoded, written beside the last one and renamed over it. And
// what a worker does after it: the journal and its folder flushed to the disk. The journal
// folder is the benchmark's data folder (its private settings root); run it where that is on the
// same file system as the user's data folder.

#include "device/SysexCodec.h"
#include "document/DocumentJournal.h"
#include "document/SystemDocument.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QThreadPool>
#include <benchmark/benchmark.h>

// Arg 0: the window's write; arg 1: that and the worker's flush to the disk after it.
static void BM_JournalWrite(benchmark::State& st) {
    QTemporaryDir dir;
    const int model = 10;
    ferrule::SystemDocument saved(model, ferrule::Sysex::defaultHeader(model));
    QString error;
    if (!saved.saveAs(dir.filePath(QStringLiteral("data.syx")), ferrule::DataFormat::Syx, &error)) {
        st.SkipWithError(qPrintable(error));
        return;
    }
    ferrule::DocumentJournal journal;
    QByteArray image = saved.image();
    int step = 0;
    const bool toDisk = st.range(0) == 1;
    for (auto _ : st) {
        // Each write a new gesture's state: the same bytes again would be skipped.
        image[10500] = char(++step & 0x7F);
        journal.keep(saved, image);
        journal.flush();
        // Gestures come far apart next to this: the worker is done with one before the next.
        if (!toDisk) st.PauseTiming();
        QThreadPool::globalInstance()->waitForDone();
        if (!toDisk) st.ResumeTiming();
    }
    st.counters["journal_bytes"] =
        double(QFileInfo(journal.journal().fileFor(saved.path(), model)).size());
    journal.drop();
}
BENCHMARK(BM_JournalWrite)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->MinTime(2.0);
