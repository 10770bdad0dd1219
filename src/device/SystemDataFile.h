#pragma once

#include <QByteArray>
#include <QString>

namespace ferrule {

// A file of system data, read and checked whole: a raw image of exactly 43,252 bytes, or a .syx
// file whose every message is good for the model. Only regular files are read (a FIFO or a
// device would block or never end).
namespace SystemDataFile {

struct Read {
    QByteArray image; // empty when `error` is set
    bool syx = false;
    QString error; // one line: data file "X" holds 100 bytes; ...
};

// Bytes a .syx file does not carry come from `base`.
Read read(const QString& path, int model, const QByteArray& header, const QByteArray& base);

} // namespace SystemDataFile
} // namespace ferrule
