#pragma once

// GoogleTest prints QString and QByteArray as text, so failures read as what the user sees.

#include <QByteArray>
#include <QString>

#include <ostream>

QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}
inline void PrintTo(const QByteArray& b, std::ostream* os) {
    *os << b.toHex(' ').toStdString();
}
QT_END_NAMESPACE
