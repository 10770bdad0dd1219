#include "DumpAssembler.h"

#include <QStringList>

namespace ferrule {

QString addressText(int packed) {
    return QStringLiteral("%1 %2 %3 %4")
        .arg((packed >> 24) & 0x7F, 2, 16, QLatin1Char('0'))
        .arg((packed >> 16) & 0x7F, 2, 16, QLatin1Char('0'))
        .arg((packed >> 8) & 0x7F, 2, 16, QLatin1Char('0'))
        .arg(packed & 0x7F, 2, 16, QLatin1Char('0'))
        .toUpper();
}

DumpAssembler::DumpAssembler(int model, QByteArray image)
    : map_(DumpMap::of(model))
    , image_(std::move(image))
    , covered_(std::size_t(map_.mappedUnits()), false) {}

DumpAssembler::Result DumpAssembler::apply(int packedAddress, QByteArrayView data) {
    const int start = linearAddress(packedAddress);
    Result r;
    // Check the whole message first.
    for (qsizetype i = 0; i < data.size(); ++i) {
        const auto target = map_.locate(start + int(i));
        if (!target) {
            r.outcome = Outcome::UnknownAddress;
            r.badOffset = int(i);
            return r;
        }
        if (target->part != DumpMap::Part::Whole && static_cast<unsigned char>(data[i]) > 15) {
            r.outcome = Outcome::BadNibble;
            r.badOffset = int(i);
            return r;
        }
    }
    for (qsizetype i = 0; i < data.size(); ++i) {
        const DumpMap::Target t = *map_.locate(start + int(i));
        if (t.index < 0) continue;
        const int value = static_cast<unsigned char>(data[i]);
        auto& byte = reinterpret_cast<unsigned char&>(image_[t.index]);
        switch (t.part) {
        case DumpMap::Part::Whole:
            byte = static_cast<unsigned char>(value);
            break;
        case DumpMap::Part::HighNibble:
            byte = static_cast<unsigned char>((byte & 0x0F) | (value << 4));
            break;
        case DumpMap::Part::LowNibble:
            byte = static_cast<unsigned char>((byte & 0xF0) | value);
            break;
        }
        if (!covered_[std::size_t(t.unit)]) {
            covered_[std::size_t(t.unit)] = true;
            ++received_;
        }
        ++r.unitsApplied;
    }
    return r;
}

bool DumpAssembler::receivedIn(int linear, int units) const {
    for (int a = linear; a < linear + units; ++a) {
        const auto t = map_.locate(a);
        if (t && t->unit >= 0 && !covered_[std::size_t(t->unit)]) return false;
    }
    return true;
}

std::vector<DumpMap::Range> DumpAssembler::missing() const {
    std::vector<DumpMap::Range> ranges;
    for (const DumpMap::Block& b : map_.blocks()) {
        if (!b.inImage) continue;
        for (int u = 0; u < b.units; ++u) {
            if (covered_[std::size_t(b.mappedOffset + u)]) continue;
            const int address = b.address + u;
            if (!ranges.empty() && ranges.back().end() == address)
                ++ranges.back().units;
            else
                ranges.push_back({address, 1});
        }
    }
    return ranges;
}

QString DumpAssembler::missingText(int maxRanges) const {
    const auto ranges = missing();
    QStringList parts;
    for (int i = 0; i < int(ranges.size()) && i < maxRanges; ++i) {
        const auto& r = ranges[std::size_t(i)];
        parts << (r.units == 1 ? addressText(packedAddress(r.address))
                               : addressText(packedAddress(r.address)) + QLatin1Char('-') +
                                     addressText(packedAddress(r.end() - 1)));
    }
    QString text = parts.join(QStringLiteral(", "));
    if (int(ranges.size()) > maxRanges)
        text += QStringLiteral(" and %1 more range(s)").arg(int(ranges.size()) - maxRanges);
    return text;
}

QString DumpAssembler::describe(const Result& r, int packedAddress, int dataSize) const {
    switch (r.outcome) {
    case Outcome::Applied:
        return {};
    case Outcome::UnknownAddress:
        return QStringLiteral("address %1 (%2 data bytes) reaches outside the GT-%3 map at data "
                              "byte %4")
            .arg(addressText(packedAddress))
            .arg(dataSize)
            .arg(model())
            .arg(r.badOffset);
    case Outcome::BadNibble:
        return QStringLiteral("address %1: data byte %2 should be a nibble 0-F")
            .arg(addressText(packedAddress))
            .arg(r.badOffset);
    }
    return {};
}

} // namespace ferrule
