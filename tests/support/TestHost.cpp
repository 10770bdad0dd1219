#include "TestHost.h"

TestHost::TestHost(QObject* parent)
    : QObject(parent)
    , image(43252, char(0)) {}

void TestHost::fillPattern() {
    for (int i = 0; i < image.size(); ++i)
        image[i] = char((i * 7 + i / 256) % 128);
}

QVariant TestHost::SysData(int index) const {
    const_cast<TestHost*>(this)->reads++;
    for (const auto& o : overrides)
        if (o.first == index) return o.second;
    if (index < 0 || index >= image.size())
        throw std::out_of_range("SysData index outside the image");
    return int(static_cast<unsigned char>(image[index]));
}

void TestHost::SysData(int index, int value) {
    if (index < 0 || index >= image.size())
        throw std::out_of_range("SysData index outside the image");
    writes++;
    image[index] = char(value);
}

void TestHost::MIDISendEx(int address, const QByteArray& data, int model) {
    if (onSend) onSend();
    blocks.push_back({address, data, model});
}

void TestHost::SetGTUpdate(bool flag, int) {
    if (!refuseUpdate) gtUpdate = flag;
}

QString TestHost::ValueText(int value, int format, int type) {
    if (failValueText) throw std::runtime_error("the host failed");
    return valueTextPrefix.isEmpty()
               ? QString::number(value)
               : QStringLiteral("%1%2/%3/%4").arg(valueTextPrefix).arg(value).arg(format).arg(type);
}
