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

void SystemImage::set(int index, int value) {
    check(index);
    if (value < 0 || value > 255)
        throw FerruleError(QStringLiteral("value %1 for system data index %2 is not a byte")
                               .arg(value)
                               .arg(index));
    bytes_[std::size_t(index)] = std::uint8_t(value);
}

int SystemImage::readParameter(int memLoc, int model) const {
    if (IsDoubleByte(memLoc, model)) return joinDoubleByte(at(memLoc), at(memLoc + 1));
    return at(memLoc);
}

void SystemImage::writeParameter(int memLoc, int model, int value) {
    if (IsDoubleByte(memLoc, model)) {
        check(memLoc + 1);
        const auto [high, low] = splitDoubleByte(value);
        set(memLoc, high);
        set(memLoc + 1, low);
    } else {
        set(memLoc, value);
    }
}

QByteArray SystemImage::toByteArray() const {
    return QByteArray(reinterpret_cast<const char*>(bytes_.data()), kSize);
}

void SystemImage::assign(const QByteArray& data) {
    if (data.size() != kSize)
        throw FerruleError(
            QStringLiteral("system data must be %1 bytes, not %2").arg(kSize).arg(data.size()));
    std::copy(data.begin(), data.end(), reinterpret_cast<char*>(bytes_.data()));
}

} // namespace ferrule
