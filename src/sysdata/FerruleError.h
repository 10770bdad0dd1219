#pragma once

#include <QString>

#include <exception>
#include <functional>
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

// The edge where an error would otherwise reach the event loop (a slot, an event handler, a
// menu's choice): runs the action and hands the message of whatever it throws to report, so
// that the error is shown and the window goes on.
inline void ReportErrors(const std::function<void()>& action,
                         const std::function<void(const QString&)>& report) {
    try {
        action();
    } catch (const std::exception& e) {
        report(QString::fromStdString(e.what()));
    }
}

} // namespace ferrule
