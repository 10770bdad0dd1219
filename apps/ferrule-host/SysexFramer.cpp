#include "SysexFramer.h"

#include <QString>

QByteArray SysexFramer::defaultHeader(int model) {
    return QByteArray::fromRawData("\x7D\x10", 2) + char(model & 0x7F) + char(0x12);
}

QByteArray SysexFramer::parseHeader(const QString& hex) {
    QString digits = hex;
    digits.remove(QLatin1Char(' '));
    if (digits.isEmpty() || digits.size() % 2 != 0) return {};
    for (QChar c : digits)
        if (!c.isDigit() && !QStringLiteral("abcdefABCDEF").contains(c)) return {};
    const QByteArray bytes = QByteArray::fromHex(digits.toLatin1());
    for (char b : bytes)
        if (static_cast<unsigned char>(b) > 0x7F) return {};
    return bytes;
}

int SysexFramer::checksum(const QByteArray& addressAndData) {
    int sum = 0;
    for (char b : addressAndData)
        sum += static_cast<unsigned char>(b);
    return (128 - sum % 128) % 128;
}

QByteArray SysexFramer::frame(const QByteArray& header, int address, const QByteArray& data) {
    QByteArray body;
    body.reserve(4 + data.size());
    body.append(char((address >> 24) & 0x7F));
    body.append(char((address >> 16) & 0x7F));
    body.append(char((address >> 8) & 0x7F));
    body.append(char(address & 0x7F));
    body.append(data);
    QByteArray message;
    message.reserve(body.size() + header.size() + 3);
    message.append(char(0xF0));
    message.append(header);
    message.append(body);
    message.append(char(checksum(body)));
    message.append(char(0xF7));
    return message;
}
