#pragma once

// Images of random settings, and files holding them, for tests against a device.

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
