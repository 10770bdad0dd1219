#pragma once

#include "DumpMap.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <vector>

namespace ferrule {

// Puts the data of data-set messages into a system data image through a model's dump map, and
// keeps count of which mapped address units have arrived. A message is checked whole before any
// byte of it is written: every address it covers must be known to the map, and a nibble must be
// 0-15. Addresses known to lie beyond the image are accepted and ignored.
class DumpAssembler {
public:
    enum class Outcome { Applied, UnknownAddress, BadNibble };
    struct Result {
        Outcome outcome = Outcome::Applied;
        int unitsApplied = 0; // units that landed in the image (new or repeated)
        int badOffset = -1;   // offset of the first offending data byte
        bool ok() const { return outcome == Outcome::Applied; }
    };

    // `image` is the starting image (43,252 bytes): bytes no message carries keep its values.
    DumpAssembler(int model, QByteArray image);

    Result apply(int packedAddress, QByteArrayView data);

    const QByteArray& image() const { return image_; }
    int model() const { return map_.model(); }
    const DumpMap& map() const { return map_; }
    int unitsReceived() const { return received_; }
    int unitsExpected() const { return map_.mappedUnits(); }
    bool complete() const { return received_ == map_.mappedUnits(); }
    // Whether every mapped unit in [linear, linear + units) has arrived.
    bool receivedIn(int linear, int units) const;
    // The mapped address ranges that have not arrived, by linear address, joined where they
    // adjoin.
    std::vector<DumpMap::Range> missing() const;
    // "01 02 03 04-01 02 03 10, …" for the first few missing ranges.
    QString missingText(int maxRanges = 4) const;
    // A line for a rejected message: what is wrong with it.
    QString describe(const Result& result, int packedAddress, int dataSize) const;

private:
    const DumpMap& map_;
    QByteArray image_;
    std::vector<bool> covered_;
    int received_ = 0;
};

// Four address bytes as hex, for messages: "01 02 03 04".
QString addressText(int packed);

} // namespace ferrule
