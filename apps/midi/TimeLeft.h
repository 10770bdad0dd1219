#pragma once

#include <QtGlobal>

#include <algorithm>

namespace ferrule {

// How long a long exchange with the device still takes. Each exchange (a message sent, or a
// request and its answer) costs its wire time plus something the wire time does not show: the
// device's time to answer, the MIDI system's cycles, a retry. That extra cost is measured on the
// exchanges done so far and expected again for each exchange to come.
struct TimeLeft {
    double doneWireMs = 0; // wire time of the exchanges done
    int doneExchanges = 0;
    double elapsedMs = 0;  // what they took
    double leftWireMs = 0; // wire time of the exchanges to come
    int leftExchanges = 0;

    qint64 ms() const {
        const double extra =
            doneExchanges > 0 ? std::max(0.0, elapsedMs - doneWireMs) / doneExchanges : 0.0;
        return qint64(leftWireMs + extra * leftExchanges + 0.5);
    }
};

} // namespace ferrule
