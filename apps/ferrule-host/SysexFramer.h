#pragma once

#include <QByteArray>

// Frames one block of system data as a system-exclusive message: F0, the header (maker,
// device, model and command bytes), the four address bytes, the data, a checksum (the 7-bit
// complement of the sum of the address and data bytes) and F7.
class SysexFramer {
public:
    // The default header: the non-commercial maker 7D, device 10, the model number, command 12.
    static QByteArray defaultHeader(int model);
    // A header given as hex bytes (each 00-7F); empty when the text is not that.
    static QByteArray parseHeader(const QString& hex);

    static QByteArray frame(const QByteArray& header, int address, const QByteArray& data);
    static int checksum(const QByteArray& addressAndData);
};
