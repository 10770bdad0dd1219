#pragma once

#include <QString>
#include <stdexcept>

namespace ferrule {

// The one exception type of the library. It leaves the plug-in as the error of the member the
// host called; window actions catch it at their edge and show it in a message box.
class FerruleError : public std::runtime_error {
public:
    explicit FerruleError(const QString& message)
        : std::runtime_error(message.toStdString()) {}
    QString message() const { return QString::fromStdString(what()); }
};

} // namespace ferrule
