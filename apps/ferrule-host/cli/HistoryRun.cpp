#include "HistoryRun.h"

#include <cstdio>

namespace ferrule {

int runHistory() {
    for (const Snapshot& s : History().snapshots())
        std::printf("%s\tGT-%d\t%s\t%s\t%s\n", qPrintable(s.localTime()), s.model,
                    qPrintable(Snapshot::kindName(s.kind)), qPrintable(s.portText()),
                    qPrintable(s.path));
    return 0;
}

void keepInHistory(Snapshot::Kind kind, int model, const QByteArray& image,
                   const QByteArray& header, QStringList ports) {
    ports.removeAll(QString());
    ports.removeDuplicates();
    QString error;
    History history;
    if (!history.record(kind, model, image, header, ports, &error) && !error.isEmpty())
        std::fprintf(stderr, "ferrule-host: warning: not kept in the history: %s\n",
                     qPrintable(error));
}

} // namespace ferrule
