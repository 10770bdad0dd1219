#pragma once

#include "editor/SysForm.h"
#include "host/PlugIn.h"

#include <QApplication>
#include <QTimer>

#include <functional>

// Runs `inspect` on the editor window once its modal loop is running, then closes it without
// keeping changes (unless `inspect` closed it).
inline void whileEditorOpen(ferrule::PlugIn& plugIn,
                            const std::function<void(ferrule::SysForm&)>& inspect) {
    QTimer::singleShot(0, [&plugIn, inspect] {
        ferrule::SysForm* form = plugIn.editor();
        if (form && form->isVisible()) {
            inspect(*form);
            if (form->isVisible()) form->CancelEdit();
        }
    });
    plugIn.Start();
}
