#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QtPlugin>

#include <functional>

class QWidget;

namespace ferrule {

// What a host sees of the plug-in: the fifteen members, in slot order. The same members are on
// the PlugIn object's meta-object, so a host may also reach them by name. A failing member
// throws ferrule::FerruleError (sysdata/FerruleError.h) back to the host.
class PlugInInterface {
public:
    virtual ~PlugInInterface() = default;

    virtual void Interface(QObject* host) = 0;
    virtual void Owner(QObject* window) = 0;
    virtual void Center(qint16 x, qint16 y) = 0;
    virtual void Title(const QString& title) = 0;
    virtual void Format(int model) = 0;
    virtual void Start() = 0;
    virtual void Quit() = 0;
    virtual int Version() const = 0;
    virtual int Compatibility() const = 0;
    virtual QString About() const = 0;
    virtual QString MenuEntry() const = 0;
    virtual void EditForwards() = 0;
    virtual void EditBackwards() = 0;
    virtual void EditValue(uchar value) = 0;
    virtual void QueueEmpty() = 0;
};

// Beyond the members above, for a host that keeps unsaved work safe: the open editor's working
// image, which the editor hands to the host only on OK, and a call after each gesture that
// changed it. The editor does the same whether a host uses this or not.
class EditorWorkingCopy {
public:
    virtual ~EditorWorkingCopy() = default;

    // Called on the GUI thread after each committed edit, undo or redo in the open editor; an
    // empty function stops the calls.
    virtual void setEditListener(std::function<void()> listener) = 0;
    // The open editor's 43,252 bytes as they are now; empty when no editor is open.
    virtual QByteArray workingImage() const = 0;
};

// Beyond the members above, for a host that runs the open editor by itself (scripts, tests): its
// window, and what its tab and transmit buttons and Escape do, given as they give it.
class EditorCommands {
public:
    virtual ~EditorCommands() = default;

    // The open editor's window; null while no editor is shown.
    virtual QWidget* editorWindow() const = 0;
    // Opens a page (0-15) of the open editor.
    virtual void showPage(int page) = 0;
    // The transmit button pressed and released: starts a transmission, or stops the one that
    // runs. An error it meets is reported as the button reports it (lastError()).
    virtual void pressTransmit() = 0;
    // A transmission runs.
    virtual bool transmitting() const = 0;
    // The last error the editor reported; empty when none.
    virtual QString lastError() const = 0;
    // Called on the GUI thread when a transmission ends, run to its end or stopped; an empty
    // function stops the calls.
    virtual void setTransmissionListener(std::function<void()> listener) = 0;
    // Closes the editor as Escape does, without keeping changes.
    virtual void cancel() = 0;
};

} // namespace ferrule

#define FerrulePlugInInterface_iid "org.tonebench.PlugIn/4.2"
Q_DECLARE_INTERFACE(ferrule::PlugInInterface, FerrulePlugInInterface_iid)
#define FerruleEditorWorkingCopy_iid "org.tonebench.PlugIn.WorkingCopy/1"
Q_DECLARE_INTERFACE(ferrule::EditorWorkingCopy, FerruleEditorWorkingCopy_iid)
#define FerruleEditorCommands_iid "org.tonebench.PlugIn.Commands/1"
Q_DECLARE_INTERFACE(ferrule::EditorCommands, FerruleEditorCommands_iid)
