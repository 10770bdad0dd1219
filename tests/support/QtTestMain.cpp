// Test main for every test program: a QApplication on the offscreen platform with a private
// settings root.

#include "OffscreenApp.h"
#include "io/QtThreads.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace {

int runTests(int argc, char** argv) {
    QTemporaryDir settingsRoot;
    prepareOffscreenApp(settingsRoot);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

} // namespace

int main(int argc, char** argv) {
    ferrule::waitForQtThreadsAtExit();
    const int code = runTests(argc, argv);
    ferrule::waitForQtThreadsToEnd();
    return code;
}
