#include "HostLink.h"

#include "FerruleError.h"

#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <QObject>

#include <array>

namespace ferrule {

void HostLink::setHost(QObject* host) {
    host_ = host;
    methodCache_.clear();
    sysDataGet_ = sysDataPut_ = -1;
}

void HostLink::requireHost(const char* name) const {
    if (host_.isNull())
        throw FerruleError(QStringLiteral("%1: no host object has been set").arg(name));
}

bool HostLink::hasProperty(const char* name) const {
    return host_ && host_->metaObject()->indexOfProperty(name) >= 0;
}

QVariant HostLink::property(const char* name) const {
    requireHost(name);
    const QMetaObject* mo = host_->metaObject();
    const int index = mo->indexOfProperty(name);
    if (index < 0) throw FerruleError(QStringLiteral("%1: the host has no such member").arg(name));
    QVariant value = mo->property(index).read(host_);
    if (!value.isValid())
        throw FerruleError(QStringLiteral("%1: the host returned no value").arg(name));
    return value;
}

int HostLink::propertyInt(const char* name) const {
    return toInt(property(name), name);
}

bool HostLink::propertyBool(const char* name) const {
    QVariant value = property(name);
    if (!value.canConvert<bool>() || !value.convert(QMetaType::fromType<bool>()))
        throw FerruleError(
            QStringLiteral("%1: the host's value does not convert to a boolean").arg(name));
    return value.toBool();
}

namespace {
QString memberName(const char* member, int index) {
    return index < 0 ? QString::fromLatin1(member)
                     : QStringLiteral("%1(%2)").arg(QLatin1String(member)).arg(index);
}
} // namespace

int HostLink::toInt(const QVariant& value, const char* member, int index) {
    bool ok = false;
    const qlonglong v = value.toLongLong(&ok);
    if (!ok || v < INT32_MIN || v > INT32_MAX)
        throw FerruleError(
            QStringLiteral("%1: the host's value \"%2\" does not convert to an integer")
                .arg(memberName(member, index), value.toString()));
    return int(v);
}

int HostLink::toByte(const QVariant& value, const char* member, int index) {
    bool ok = false;
    const qlonglong v = value.toLongLong(&ok);
    if (!ok || v < 0 || v > 255)
        throw FerruleError(
            QStringLiteral("%1: the host's value \"%2\" is not an unsigned byte (0-255)")
                .arg(memberName(member, index), value.toString()));
    return int(v);
}

namespace {

// Whether a method takes `argumentCount` ints and returns an int (the getter) or nothing.
bool plainInts(const QMetaMethod& m, int argumentCount, bool returnsInt) {
    for (int i = 0; i < argumentCount; ++i)
        if (m.parameterMetaType(i).id() != QMetaType::Int) return false;
    return returnsInt ? m.returnMetaType().id() == QMetaType::Int
                      : m.returnMetaType().id() == QMetaType::Void;
}

} // namespace

void HostLink::resolveSysDataGet() const {
    if (sysDataGet_ == -1 && host_) {
        const int i = methodIndex("SysData", 1); // throws, naming the member, when missing
        sysDataGet_ = plainInts(host_->metaObject()->method(i), 1, true) ? i : -2;
    }
}

int HostLink::sysData(int index) const {
    return getter().get(*this, index);
}

HostLink::Getter HostLink::getter() const {
    Getter g;
    resolveSysDataGet();
    if (sysDataGet_ < 0 || host_.isNull()) return g;
    const QMetaMethod method = host_->metaObject()->method(sysDataGet_);
    const QMetaObject* owner = method.enclosingMetaObject();
    g.call = owner ? owner->d.static_metacall : nullptr;
    if (!g.call) return g;
    g.target = host_.data();
    g.localIndex = sysDataGet_ - owner->methodOffset();
    return g;
}

int HostLink::Getter::get(const HostLink& link, int index) const {
    if (!call) return toByte(link.call("SysData", {index}), "SysData", index);
    int result = 0;
    void* argv[] = {&result, &index};
    call(target, QMetaObject::InvokeMetaMethod, localIndex, argv);
    if (result < 0 || result > 255) return toByte(result, "SysData", index); // names the fault
    return result;
}

void HostLink::readSysData(std::span<std::uint8_t> out) const {
    if (out.empty()) return;
    const Getter g = getter();
    const int count = int(out.size());
    for (int i = 0; i < count; ++i)
        out[std::size_t(i)] = std::uint8_t(g.get(*this, i));
}

int HostLink::firstSysDataDifference(std::span<const std::uint8_t> bytes) const {
    if (bytes.empty()) return -1;
    const Getter g = getter();
    const int count = int(bytes.size());
    for (int i = 0; i < count; ++i)
        if (g.get(*this, i) != bytes[std::size_t(i)]) return i;
    return -1;
}

void HostLink::setSysData(int index, int value) const {
    if (sysDataPut_ == -1 && host_) {
        const int i = methodIndex("SysData", 2);
        sysDataPut_ = plainInts(host_->metaObject()->method(i), 2, false) ? i : -2;
    }
    if (sysDataPut_ < 0 || host_.isNull()) {
        call("SysData", {index, value});
        return;
    }
    void* argv[] = {nullptr, &index, &value};
    QMetaObject::metacall(host_.data(), QMetaObject::InvokeMetaMethod, sysDataPut_, argv);
}

int HostLink::methodIndex(const char* name, int argumentCount) const {
    for (const CachedMethod& c : methodCache_)
        if (c.argumentCount == argumentCount && c.name == name) return c.index;
    const QMetaObject* mo = host_->metaObject();
    for (int i = 0; i < mo->methodCount(); ++i) {
        const QMetaMethod m = mo->method(i);
        if (m.name() == name && m.parameterCount() == argumentCount &&
            m.methodType() != QMetaMethod::Constructor) {
            methodCache_.push_back({QByteArray(name), argumentCount, i});
            return i;
        }
    }
    throw FerruleError(QStringLiteral("%1: the host has no such member taking %2 argument(s)")
                           .arg(name)
                           .arg(argumentCount));
}

QVariant HostLink::call(const char* name, std::initializer_list<QVariant> args) const {
    requireHost(name);
    constexpr int maxArgs = 8;
    const int argc = int(args.size());
    if (argc > maxArgs) throw FerruleError(QStringLiteral("%1: too many arguments").arg(name));
    const int index = methodIndex(name, argc);
    const QMetaMethod method = host_->metaObject()->method(index);

    std::array<QVariant, maxArgs> converted;
    std::array<void*, maxArgs + 1> argv{};
    int i = 0;
    for (const QVariant& arg : args) {
        const QMetaType type = method.parameterMetaType(i);
        converted[i] = arg;
        if (converted[i].metaType() != type && !converted[i].convert(type))
            throw FerruleError(QStringLiteral("%1: argument %2 does not convert to %3")
                                   .arg(name)
                                   .arg(i + 1)
                                   .arg(QString::fromLatin1(type.name())));
        argv[i + 1] = converted[i].data();
        ++i;
    }
    QVariant result;
    const QMetaType returnType = method.returnMetaType();
    if (returnType.isValid() && returnType.id() != QMetaType::Void) {
        result = QVariant(returnType);
        argv[0] = result.data();
    }
    QObject* target = host_;
    QMetaObject::metacall(target, QMetaObject::InvokeMetaMethod, index, argv.data());
    if (returnType.id() == QMetaType::QVariant) return result.value<QVariant>();
    return result;
}

} // namespace ferrule
