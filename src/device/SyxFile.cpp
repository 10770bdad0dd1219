#include "SyxFile.h"

#include "DumpAssembler.h"
#include "ModelMap.h"
#include "SysexCodec.h"

namespace ferrule::SyxFile {

namespace {

int byteAt(QByteArrayView bytes, qsizetype i) {
    return static_cast<unsigned char>(bytes[i]);
}

QString at(int number, qsizetype offset) {
    return QStringLiteral("message %1 at byte %2: ").arg(number).arg(offset);
}

} // namespace

bool looksLikeSyx(QByteArrayView bytes) {
    return !bytes.isEmpty() && byteAt(bytes, 0) == 0xF0;
}

Split split(QByteArrayView file) {
    Split s;
    qsizetype i = 0;
    const qsizetype n = file.size();
    while (i < n) {
        const int number = int(s.messages.size()) + 1;
        if (byteAt(file, i) != 0xF0) {
            s.error = QStringLiteral("byte %1: %2 where message %3 should start with F0")
                          .arg(i)
                          .arg(Sysex::hex(file.sliced(i, 1)))
                          .arg(number);
            return s;
        }
        qsizetype j = i + 1;
        while (j < n && byteAt(file, j) < 0x80)
            ++j;
        if (j == n) {
            s.error = at(number, i) + QStringLiteral("truncated: the file ends before its F7");
            return s;
        }
        if (byteAt(file, j) != 0xF7) {
            s.error = at(number, i) + QStringLiteral("byte %1 is %2 inside the message")
                                          .arg(j)
                                          .arg(Sysex::hex(file.sliced(j, 1)));
            return s;
        }
        s.messages.push_back({i, file.sliced(i, j + 1 - i)});
        i = j + 1;
    }
    return s;
}

int otherModelOf(const QByteArray& header, const QByteArray& expected) {
    if (header.size() != expected.size() || header.size() < 3) return 0;
    for (qsizetype i = 0; i < header.size(); ++i)
        if (i != 2 && header[i] != expected[i]) return 0;
    const int model = header[2];
    return isKnownModel(model) ? model : 0;
}

int modelOf(QByteArrayView file, const QByteArray& header) {
    if (!looksLikeSyx(file)) return 0;
    const qsizetype end = file.indexOf(char(0xF7));
    if (end < 0) return 0;
    return otherModelOf(Sysex::parse(file.first(end + 1), header).header, header);
}

Loaded read(QByteArrayView file, int model, const QByteArray& header, const QByteArray& base) {
    Loaded out;
    if (file.isEmpty()) {
        out.error = QStringLiteral("the file is empty");
        return out;
    }
    if (file.size() > kMaxSize) {
        out.error = QStringLiteral("the file holds %1 bytes; a system dump is at most %2")
                        .arg(file.size())
                        .arg(kMaxSize);
        return out;
    }
    const Split pieces = split(file);
    if (!pieces.error.isEmpty()) {
        out.error = pieces.error;
        return out;
    }
    DumpAssembler assembler(model, base);
    int number = 0;
    for (const Piece& p : pieces.messages) {
        ++number;
        const Sysex::Message m = Sysex::parse(p.bytes, header);
        if (m.fault == Sysex::Fault::WrongHeader) {
            if (const int other = otherModelOf(m.header, header)) {
                out.error = at(number, p.offset) +
                            QStringLiteral("holds GT-%1 system data, not GT-%2 (open it with "
                                           "--model %1)")
                                .arg(other)
                                .arg(model);
                return out;
            }
        }
        if (!m.ok()) {
            out.error = at(number, p.offset) + Sysex::describe(m, header);
            return out;
        }
        const DumpAssembler::Result r = assembler.apply(m.address, m.payload);
        if (!r.ok()) {
            out.error =
                at(number, p.offset) + assembler.describe(r, m.address, int(m.payload.size()));
            return out;
        }
    }
    if (assembler.unitsReceived() == 0) {
        out.error = QStringLiteral("the file holds no GT-%1 system data").arg(model);
        return out;
    }
    out.image = assembler.image();
    out.messages = number;
    out.unitsReceived = assembler.unitsReceived();
    out.unitsExpected = assembler.unitsExpected();
    return out;
}

QByteArray write(ImageBytes image, int model, const QByteArray& header) {
    QByteArray out;
    for (const ScheduledMessage& m : DumpMap::of(model).transmission()) {
        if (m.start < 0 || m.start + m.length > int(image.size())) continue;
        out.append(Sysex::frame(header, m.address, m.data(image)));
    }
    return out;
}

} // namespace ferrule::SyxFile
