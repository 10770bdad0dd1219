#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace ferrule {

// The system-exclusive messages that carry system data. A data-set message is F0, a header
// (maker, device, model and command bytes), four address bytes, the data, a checksum (the 7-bit
// complement of the sum of the address and data bytes) and F7. A request message has the same
// header with the request command, four address bytes, four size bytes (address units, packed
// like an address), a checksum over those eight bytes and F7.
namespace Sysex {

inline constexpr int kDataSetCommand = 0x12;
inline constexpr int kRequestCommand = 0x11;

// The default data-set header: the non-commercial maker 7D, device 10, the model, command 12.
QByteArray defaultHeader(int model);
// The header chosen, or the model's default header when none was chosen (empty).
QByteArray headerOr(const QByteArray& chosen, int model);
// The request header that belongs to a data-set header: the same with its last (command) byte
// replaced by 11.
QByteArray requestHeaderFor(const QByteArray& dataSetHeader);
// A header given as hex bytes (each 00-7F, spaces allowed); empty when the text is not that.
QByteArray parseHeader(const QString& hex);
QString hex(QByteArrayView bytes);

int checksum(QByteArrayView addressAndData);
QByteArray frame(const QByteArray& header, int address, QByteArrayView data);
QByteArray frameRequest(const QByteArray& header, int address, int size);

// Why a message is not a well-formed message of the expected header.
enum class Fault {
    None,
    NotSysex,     // does not start with F0 and end with F7
    HighDataByte, // a byte between F0 and F7 above 7F
    WrongHeader,  // the header differs from the expected one
    TooShort,     // no room for the address and the checksum
    BadChecksum,
};

struct Message {
    Fault fault = Fault::None;
    QByteArray header;  // the bytes between F0 and the address (as long as the expected header)
    int address = 0;    // packed
    QByteArray payload; // data (data set) or the four size bytes (request)
    int checksum = 0;   // as received
    int expectedChecksum = 0;
    int badByteOffset = -1; // for HighDataByte: the offset inside the message
    bool ok() const { return fault == Fault::None; }
};

// Parses one complete message (F0 … F7) against the expected header. A message whose header
// differs is reported as WrongHeader with the header bytes it carries, so the caller can tell
// another model's data from foreign traffic.
Message parse(QByteArrayView message, const QByteArray& expectedHeader);

// The size bytes of a request: four 7-bit digits, most significant first, back to a number.
int requestSize(const Message& request);

// A line of text for a fault: "checksum 0x12, expected 0x34" and the like.
QString describe(const Message& message, const QByteArray& expectedHeader);

} // namespace Sysex
} // namespace ferrule
