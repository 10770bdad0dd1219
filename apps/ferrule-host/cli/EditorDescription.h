#pragma once

#include <QByteArray>

class QWidget;

namespace ferrule {

// The open editor as JSON, read from the widgets' own properties: the window (caption, model,
// page, tab), its image buttons, and every visible control that names its kind.
QByteArray describeEditor(QWidget* editor);

} // namespace ferrule
