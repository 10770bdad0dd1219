#pragma once

class QWidget;

namespace ferrule {

class PlugInInterface;

// The plug-in's editor window as the host sees it: a top-level widget named "SysForm".
QWidget* findEditorWindow();
// Ends a running transmission as the user's stop does (the transmit button pressed again),
// then lets the editor clear its progress with one QueueEmpty, as after the last step.
void stopEditorTransmission(QWidget* editor, PlugInInterface* plugIn);

} // namespace ferrule
