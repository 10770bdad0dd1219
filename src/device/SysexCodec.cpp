#include "SysexCodec.h"

#include "TransmissionSchedule.h"

namespace ferrule::Sysex {

namespace {

void appendAddress(QByteArray& out, int packed) {
    out.append(char((packed >> 24) & 0x7F));
    out.append(char((packed >> 16) & 0x7F));
    out.append(char((packed >> 8) & 0x7F));
    out.append(char(packed & 0x7F));
}

int byteAt(QByteArrayView bytes, qsizetype i) {
    return static_cast<unsigned char>(bytes[i]);
}

QByteArray frameBody(const QByteArray& header, const QByteArray& body) {
    QByteArray message;
    message.reserve(body.size() + header.size() + 3);
    message.append(char(0xF0));
    message.append(header);
    message.append(body);
    message.append(char(checksum(body)));
    message.append(char(0xF7));
    return message;
}

} // namespace

QByteArray defaultHeader(int model) {
    return QByteArray::fromRawData("\x7D\x10", 2) + char(model & 0x7F) + char(kDataSetCommand);
}

QByteArray headerOr(const QByteArray& chosen, int model) {
    return chosen.isEmpty() ? defaultHeader(model) : chosen;
}

QByteArray requestHeaderFor(const QByteArray& dataSetHeader) {
    QByteArray header = dataSetHeader;
    if (!header.isEmpty()) header.back() = char(kRequestCommand);
    return header;
}

QByteArray parseHeader(const QString& hex) {
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

QString hex(QByteArrayView bytes) {
    return QString::fromLatin1(bytes.toByteArray().toHex(' ').toUpper());
}

int checksum(QByteArrayView addressAndData) {
    int sum = 0;
    for (char b : addressAndData)
        sum += static_cast<unsigned char>(b);
    return (128 - sum % 128) % 128;
}

QByteArray frame(const QByteArray& header, int address, QByteArrayView data) {
    QByteArray body;
    body.reserve(4 + data.size());
    appendAddress(body, address);
    body.append(data);
    return frameBody(header, body);
}

QByteArray frameRequest(const QByteArray& header, int address, int size) {
    QByteArray body;
    appendAddress(body, address);
    appendAddress(body, packedAddress(size));
    return frameBody(header, body);
}

Message parse(QByteArrayView bytes, const QByteArray& expectedHeader) {
    Message m;
    const qsizetype n = bytes.size();
    if (n < 2 || byteAt(bytes, 0) != 0xF0 || byteAt(bytes, n - 1) != 0xF7) {
        m.fault = Fault::NotSysex;
        return m;
    }
    for (qsizetype i = 1; i < n - 1; ++i)
        if (byteAt(bytes, i) > 0x7F) {
            m.fault = Fault::HighDataByte;
            m.badByteOffset = int(i);
            return m;
        }
    const qsizetype h = expectedHeader.size();
    m.header = bytes.sliced(1, std::min(h, n - 2)).toByteArray();
    if (m.header != expectedHeader) {
        m.fault = Fault::WrongHeader;
        return m;
    }
    // F0, header, four address bytes, checksum, F7.
    if (n < h + 7) {
        m.fault = Fault::TooShort;
        return m;
    }
    const QByteArrayView body = bytes.sliced(1 + h, n - h - 3);
    m.address = (byteAt(body, 0) << 24) | (byteAt(body, 1) << 16) | (byteAt(body, 2) << 8) |
                byteAt(body, 3);
    m.payload = body.sliced(4).toByteArray();
    m.checksum = byteAt(bytes, n - 2);
    m.expectedChecksum = checksum(body);
    if (m.checksum != m.expectedChecksum) m.fault = Fault::BadChecksum;
    return m;
}

int requestSize(const Message& request) {
    if (request.payload.size() != 4) return -1;
    const auto d = [&](int i) { return static_cast<unsigned char>(request.payload[i]); };
    return linearAddress((d(0) << 24) | (d(1) << 16) | (d(2) << 8) | d(3));
}

QString describe(const Message& m, const QByteArray& expectedHeader) {
    switch (m.fault) {
    case Fault::None:
        return QStringLiteral("well formed");
    case Fault::NotSysex:
        return QStringLiteral("not a system-exclusive message (F0 ... F7)");
    case Fault::HighDataByte:
        return QStringLiteral("byte %1 of the message is above 7F").arg(m.badByteOffset);
    case Fault::WrongHeader:
        return QStringLiteral("header %1, expected %2").arg(hex(m.header), hex(expectedHeader));
    case Fault::TooShort:
        return QStringLiteral("too short for an address and a checksum");
    case Fault::BadChecksum:
        return QStringLiteral("checksum %1, expected %2")
            .arg(hex(QByteArray(1, char(m.checksum))),
                 hex(QByteArray(1, char(m.expectedChecksum))));
    }
    return {};
}

} // namespace ferrule::Sysex
