#include "HostObject.h"

#include <QApplication>
#include <QFont>

#include <stdexcept>

namespace ferrule {

HostObject::HostObject(const QByteArray& image, QObject* parent)
    : QObject(parent)
    , image_(image) {
    setObjectName(QStringLiteral("Tonebench"));
}

QString HostObject::fontName() const {
    return QApplication::font().family();
}

float HostObject::fontSize() const {
    const qreal points = QApplication::font().pointSizeF();
    return points > 0 ? float(points) : 9.0F;
}

int HostObject::SysData(int index) const {
    if (index < 0 || index >= image_.size())
        throw std::out_of_range("SysData: index " + std::to_string(index) +
                                " is outside the image");
    return static_cast<unsigned char>(image_[index]);
}

void HostObject::SysData(int index, int value) {
    if (index < 0 || index >= image_.size())
        throw std::out_of_range("SysData: index " + std::to_string(index) +
                                " is outside the image");
    if (value < 0 || value > 255)
        throw std::out_of_range("SysData: value " + std::to_string(value) + " is not a byte");
    written_ = true;
    if (static_cast<unsigned char>(image_[index]) != value) {
        image_[index] = char(value);
        changed_ = true;
    }
}

void HostObject::MIDISendEx(int address, const QByteArray& data, int model) {
    if (sink_) sink_(address, data, model);
}

void HostObject::SetGTUpdate(bool flag, int) {
    if (flag && outputProbe_ && !outputProbe_()) {
        gtUpdate_ = false;
        emit transmissionRefused();
        return;
    }
    if (!refuseUpdate_) gtUpdate_ = flag;
}

QString HostObject::ValueText(int value, int, int) const {
    return QString::number(value);
}

void HostObject::setBlockSink(std::function<void(int, const QByteArray&, int)> sink) {
    sink_ = std::move(sink);
}

} // namespace ferrule
