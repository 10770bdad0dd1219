#include "SystemImage.h"

#include "FerruleError.h"
#include "ParameterEncoding.h"

#include <algorithm>

namespace ferrule {

void SystemImage::check(int index) {
    if (index < 0 || index >= kSize)
        throw FerruleError(
            QStringLiteral("system data index %1 is outside 0-%2").arg(index).arg(kSize - 1));
}

int SystemImage::at(int index) const {
    check(index);
    return bytes_[std::size_t(index)];
}

void SystemImage::changed(int first, int last) const {
    if (listener_ && first <= last) listener_(first, last - first + 1);
}

void SystemImage::checkByte(int index, int value) {
    check(index);
    if (value < 0 || value > 255)
        throw FerruleError(QStringLiteral("value %1 for system data index %2 is not a byte")
                               .arg(value)
                               .arg(index));
}

void SystemImage::set(int index, int value) {
    checkByte(index, value);
    std::uint8_t& byte = bytes_[std::size_t(index)];
    if (byte == value) return;
    byte = std::uint8_t(value);
    changed(index, index);
}

int SystemImage::readParameter(int memLoc, int model) const {
    if (IsDoubleByte(memLoc, model)) return joinDoubleByte(at(memLoc), at(memLoc + 1));
    return at(memLoc);
}

void SystemImage::writeParameter(int memLoc, int model, int value) {
    if (IsDoubleByte(memLoc, model)) {
        check(memLoc + 1);
        const auto [high, low] = splitDoubleByte(value);
        checkByte(memLoc, high);
        checkByte(memLoc + 1, low);
        const ByteWrite writes[] = {{memLoc, std::uint8_t(high)}, {memLoc + 1, std::uint8_t(low)}};
        apply(writes);
    } else {
        set(memLoc, value);
    }
}

QByteArray SystemImage::toByteArray() const {
    return QByteArray(reinterpret_cast<const char*>(bytes_.data()), kSize);
}

void SystemImage::assign(std::span<const std::uint8_t> in) {
    if (in.size() != std::size_t(kSize))
        throw FerruleError(
            QStringLiteral("system data must be %1 bytes, not %2").arg(kSize).arg(in.size()));
    int first = kSize;
    int last = -1;
    for (int i = 0; i < kSize; ++i)
        if (bytes_[std::size_t(i)] != in[std::size_t(i)]) {
            first = std::min(first, i);
            last = i;
        }
    std::copy(in.begin(), in.end(), bytes_.begin());
    changed(first, last);
}

void SystemImage::assign(const QByteArray& data) {
    assign(std::span(reinterpret_cast<const std::uint8_t*>(data.constData()),
                     std::size_t(data.size())));
}

void SystemImage::apply(std::span<const ByteWrite> writes) {
    for (const ByteWrite& w : writes)
        check(w.index);
    int first = kSize;
    int last = -1;
    for (const ByteWrite& w : writes) {
        std::uint8_t& byte = bytes_[std::size_t(w.index)];
        if (byte == w.value) continue;
        byte = w.value;
        first = std::min(first, w.index);
        last = std::max(last, w.index);
    }
    changed(first, last);
}

} // namespace ferrule
