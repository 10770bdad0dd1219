#pragma once

// Images of random settings, and files holding them, for tests against a device.

#include "device/DumpMap.h"
#include "device/ModelDescription.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <gtest/gtest.h>

#include <random>

// A whole image of random 7-bit bytes, the same for the same `start`.
inline QByteArray randomImage(unsigned start) {
    std::mt19937 random(start);
    QByteArray image(ferrule::kImageSize, 0);
    for (auto& b : image)
        b = char(random() & 0x7F);
    return image;
}

inline void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

inline QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// How many of the bytes the model's messages carry differ between two images.
inline int mappedDifferences(const QByteArray& a, const QByteArray& b, int model) {
    int differences = 0;
    for (const ferrule::DumpMap::Block& block : ferrule::DumpMap::of(model).blocks()) {
        if (!block.inImage) continue;
        const int length = block.nibbles ? block.units / 2 : block.units;
        for (int i = block.start; i < block.start + length; ++i)
            differences += a[i] != b[i];
    }
    return differences;
}
