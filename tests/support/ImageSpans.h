#pragma once

// A system data image held in a QByteArray, seen as the bytes the library reads and writes, and
// random images to feed the laws.

#include "device/ModelDescription.h"
#include "device/TransmissionSchedule.h"

#include <QByteArray>

#include <cstdint>
#include <random>
#include <span>

inline ferrule::ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
}

inline std::span<std::uint8_t> writable(QByteArray& image) {
    return {reinterpret_cast<std::uint8_t*>(image.data()), std::size_t(image.size())};
}

// A whole image of random 7-bit bytes, the next from `random`.
inline QByteArray randomImage(std::mt19937& random) {
    QByteArray image(ferrule::kImageSize, 0);
    for (auto& b : image)
        b = char(random() & 0x7F);
    return image;
}
