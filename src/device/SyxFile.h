#pragma once

#include "TransmissionSchedule.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <vector>

namespace ferrule {

// .syx files: system-exclusive messages one after another, nothing between them.
namespace SyxFile {

// No system dump of any model comes near this; a bigger file is refused unread.
inline constexpr qint64 kMaxSize = 1 << 20;

// A file is taken as .syx when it starts with F0 (a raw image never does: its first byte is a
// 7-bit value).
bool looksLikeSyx(QByteArrayView bytes);

struct Piece {
    qsizetype offset = 0; // of its F0 in the file
    QByteArrayView bytes; // F0 … F7
};
struct Split {
    std::vector<Piece> messages;
    QString error; // set on the first framing fault, naming the message and byte offset
};
// Cuts a file into messages. Faults: bytes outside a message, a status byte inside one, a
// message without its F7.
Split split(QByteArrayView file);

struct Loaded {
    QByteArray image; // the result; empty when `error` is set
    QString error;    // one line: "message 3 at byte 412: checksum 0x12, expected 0x34"
    int messages = 0;
    int unitsReceived = 0;
    int unitsExpected = 0;
};
// Validates the whole file for `model` with the data-set `header` and, when every message is
// good, returns `base` with the file's data put in through the model's dump map. A message of
// another model is reported with the model it holds.
Loaded read(QByteArrayView file, int model, const QByteArray& header, const QByteArray& base);

// The model's whole data as the messages of a transmission, in the order the transmission sends
// them (the blocks beyond the image are left out, as the transmission leaves them out).
QByteArray write(ImageBytes image, int model, const QByteArray& header);

// If `header` is a model's data-set header differing from `expected` only in the model byte
// (the third), that model; otherwise 0.
int otherModelOf(const QByteArray& header, const QByteArray& expected);

// The model whose data a .syx file holds, told by its first message: a header that is `header`
// or differs from it only in the model byte. 0 when the file does not begin with such a message
// (a raw image, a foreign dump, a file cut short).
int modelOf(QByteArrayView file, const QByteArray& header);

} // namespace SyxFile
} // namespace ferrule
