#pragma once

// Images as the parameter index reads them, and what differs between two, one line a parameter
// as the host prints it.

#include "ImageSpans.h"
#include "catalogue/ParameterIndex.h"

#include <QByteArray>
#include <QStringList>

// "Page / Heading / Caption [instance]: a -> b" for every parameter in which `a` and `b` differ.
inline QStringList differenceLines(int model, const QByteArray& a, const QByteArray& b) {
    QStringList lines;
    for (const ferrule::ParameterDifference& d :
         ferrule::compareImages(model, bytesOf(a), bytesOf(b)))
        lines << ferrule::differenceLine(d);
    return lines;
}
