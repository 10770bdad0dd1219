// Test main for every test program: a QApplication on the offscreen platform and a settings
// root of its own, so that no test touches a user's settings.

#include <QApplication>

#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

namespace {
// The offscreen platform cannot grab the mouse or raise windows; those notices are not faults.
void quietOffscreenNotices(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (message.startsWith(QLatin1String("This plugin does not support"))) return;
    fprintf(stderr, "%s\n", qPrintable(message));
    if (type == QtFatalMsg) abort();
}
} // namespace
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir settingsRoot;
    qputenv("FERRULE_SETTINGS_ROOT", settingsRoot.path().toLocal8Bit());
    qInstallMessageHandler(quietOffscreenNotices);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
