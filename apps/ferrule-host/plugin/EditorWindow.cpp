#include "EditorWindow.h"

#include "host/PlugInInterface.h"

#include <QApplication>
#include <QMetaObject>
#include <QWidget>

namespace ferrule {

QWidget* findEditorWindow() {
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == QLatin1String("SysForm") && w->isVisible()) return w;
    return nullptr;
}

void stopEditorTransmission(QWidget* editor, PlugInInterface* plugIn) {
    if (!editor || editor->property("transmissionStep").toInt() == 0) return;
    QMetaObject::invokeMethod(editor, "ToggleTransmission");
    // Idle now: this QueueEmpty sends nothing and hides the progress.
    if (plugIn) plugIn->QueueEmpty();
}

} // namespace ferrule
