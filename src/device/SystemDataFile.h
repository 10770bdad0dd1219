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

// The bytes of a regular file, at most `limit` + 1 of them (so that a longer file shows as
// such); `error` instead, one line naming the file: data file "X" does not exist.
struct Bytes {
    QByteArray bytes;
    QString error;
};
Bytes readRegularFile(const QString& path, qint64 limit);

} // namespace SystemDataFile
} // namespace ferrule
