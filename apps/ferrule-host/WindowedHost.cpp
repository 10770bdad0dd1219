// The windowed part of ferrule-host: the main window, its screenshot and the plug-in's editor.
// The program loads it only for the runs that open windows (see cli/HostRun.h).

#include "cli/DeviceRuns.h"
#include "cli/EditorRun.h"
#include "cli/HostRun.h"
#include "document/SystemDocument.h"
#include "ui/FailedSaveDialog.h"
#include "ui/FirstFrameReport.h"
#include "ui/MainWindow.h"
#include "ui/RecoveryQuestion.h"

#include <QApplication>

#include <cstdio>

using namespace ferrule;

namespace {

std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    auto app = std::make_unique<QApplication>(argc, argv);
    // The desktop entry the windows belong to (their app id on Wayland).
    QGuiApplication::setDesktopFileName(QStringLiteral(FERRULE_APP_ID));
    return app;
}

int runWindowed(const HostOptions& options, SystemDocument& document) {
    if (!options.mainScreenshot.isEmpty()) {
        MainWindow window(options, std::move(document));
        // The picture shows the window as it is once on the screen, with its ports.
        window.finishStart();
        window.show();
        QApplication::processEvents();
        if (!window.grab().save(options.mainScreenshot, "PNG"))
            return fail(kExitBadInput, QStringLiteral("screenshot \"%1\" could not be written")
                                           .arg(options.mainScreenshot));
        std::printf("screenshot written to %s\n", qPrintable(options.mainScreenshot));
        return 0;
    }
    if (options.mainWindow()) {
        FirstFrameReport::installIfAsked(QStringLiteral("FerruleHost"));
        MainWindow window(options, std::move(document));
        window.show();
        // A file that cannot be opened is said in the window, over the default data.
        if (!options.openFile.isEmpty()) window.openFile(options.openFile);
        window.offerRecovery();
        return QApplication::exec();
    }
    FirstFrameReport::installIfAsked(QStringLiteral("SysForm"));
    const EditorQuestions ask{[](const QString& question) { return askToRecover(question); },
                              [](const QString& error, bool changedOnDisk) {
                                  return askAfterFailedSave(error, changedOnDisk);
                              }};
    return runEditor(options, document, ask);
}

} // namespace

extern "C" Q_DECL_EXPORT int ferruleHostWindowed(int argc, char** argv) {
    static const WindowedRuns runs{makeApplication, runWindowed};
    return runHost(argc, argv, &runs);
}
