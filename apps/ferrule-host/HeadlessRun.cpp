#include "HeadlessRun.h"

#include "EditorDescription.h"

#include <QApplication>
#include <QMetaObject>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <cstdio>

HeadlessRun::HeadlessRun(const HostOptions& options)
    : options_(options) {}

void HeadlessRun::arm() {
    if (options_.page < 0 && !options_.headless()) return;
    QTimer::singleShot(0, this, &HeadlessRun::run);
}

QWidget* HeadlessRun::findEditor() {
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("SysForm") && w->isVisible()) return w;
    return nullptr;
}

void HeadlessRun::run() {
    QWidget* editor = findEditor();
    if (!editor) {
        std::fprintf(stderr, "ferrule-host: the editor window did not open\n");
        status_ = 1;
        return;
    }
    if (options_.page >= 0) QMetaObject::invokeMethod(editor, "ShowTab", Q_ARG(int, options_.page));
    if (!options_.headless()) return;
    if (!options_.screenshot.isEmpty()) {
        const QPixmap shot = editor->grab();
        if (!shot.save(options_.screenshot, "PNG")) {
            std::fprintf(stderr, "ferrule-host: screenshot \"%s\" could not be written\n",
                         qPrintable(options_.screenshot));
            status_ = 2;
        } else {
            std::printf("screenshot written to %s\n", qPrintable(options_.screenshot));
        }
    }
    if (options_.describe) std::fputs(describeEditor(editor).constData(), stdout);
    std::fflush(stdout);
    // Close without keeping changes.
    QMetaObject::invokeMethod(editor, "reject");
}
