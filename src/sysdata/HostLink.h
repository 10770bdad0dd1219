#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

namespace ferrule {

// Late-bound access to the host object by member name, through its meta-object. Every failure
// (a missing member, an argument or result that does not convert) throws FerruleError naming
// the member.
class HostLink {
public:
    void setHost(QObject* host);
    QObject* host() const { return host_; }

    bool hasProperty(const char* name) const;
    QVariant property(const char* name) const;
    int propertyInt(const char* name) const;
    bool propertyBool(const char* name) const;

    // Calls the host method `name` taking exactly args.size() arguments; each argument is
    // converted to the parameter's type. Returns the result (invalid for a void method).
    QVariant call(const char* name, std::initializer_list<QVariant> args) const;

    // A host value converted to an unsigned byte (0-255) or an integer; the error names the
    // member, with its index when one is given.
    static int toByte(const QVariant& value, const char* member, int index = -1);
    static int toInt(const QVariant& value, const char* member, int index = -1);

    // SysData(index) read as a byte, and SysData(index, value) written. The methods are found
    // by name once per host; when their types are plain integers the calls go straight to the
    // host's dispatcher, otherwise through call() with its conversions. Errors are the same.
    int sysData(int index) const;
    void setSysData(int index, int value) const;

    // SysData(i) for every i from 0 to out.size() - 1 in ascending order, into out: one host
    // call per index, as sysData() makes it, with its errors at the index that fails.
    void readSysData(std::span<std::uint8_t> out) const;
    // The first index i at which SysData(i) differs from bytes[i], asking in ascending order
    // and no further; -1 when none does.
    int firstSysDataDifference(std::span<const std::uint8_t> bytes) const;

private:
    // SysData(index) straight through the declaring class's static dispatcher when the getter
    // takes and returns plain integers (what QMetaMethod::invoke does for a direct call);
    // through call() with its conversions otherwise.
    struct Getter {
        QObject* target = nullptr;
        QMetaObject::Data::StaticMetacallFunction call = nullptr;
        int localIndex = -1;
        int get(const HostLink& link, int index) const;
    };
    Getter getter() const;
    void resolveSysDataGet() const;
    int methodIndex(const char* name, int argumentCount) const;
    void requireHost(const char* name) const;

    QPointer<QObject> host_;
    struct CachedMethod {
        QByteArray name;
        int argumentCount;
        int index;
    };
    mutable std::vector<CachedMethod> methodCache_;
    // SysData's two forms with integer types, resolved once (-1: not yet; -2: not plain ints).
    mutable int sysDataGet_ = -1;
    mutable int sysDataPut_ = -1;
};

} // namespace ferrule
