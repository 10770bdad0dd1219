#pragma once

#include <QString>
#include <QTemporaryDir>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

// What every test and benchmark program does before it creates its QApplication: the offscreen
// platform unless another is asked for, a settings root of its own, which is also the data
// folder (recovery journals), so that nothing touches a user's settings or data, and quiet
// about what the offscreen platform cannot do (grab the mouse, raise windows), which is no fault.
inline void quietOffscreenNotices(QtMsgType type, const QMessageLogContext&,
                                  const QString& message) {
    if (message.startsWith(QLatin1String("This plugin does not support"))) return;
    std::fprintf(stderr, "%s\n", qPrintable(message));
    if (type == QtFatalMsg) std::abort();
}

inline void prepareOffscreenApp(const QTemporaryDir& settingsRoot) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("FERRULE_SETTINGS_ROOT", settingsRoot.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", settingsRoot.path().toLocal8Bit());
    qInstallMessageHandler(quietOffscreenNotices);
}
