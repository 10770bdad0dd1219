#pragma once

#include <QByteArray>
#include <QPluginLoader>
#include <QString>

#include <functional>

class QWidget;

namespace ferrule {

class BlockPipeline;

class EditorCommands;
class PlugInInterface;

// The plug-in, loaded once, and its editor run on system data as the host contract defines:
// Interface, Owner, Title, Format, Center, Start (modal), Quit. The plug-in calls SysData,
// MIDISendEx and the rest on a host object made for the run; its blocks go to the pipeline.
class PlugInEditor {
public:
    // Finds and loads the plug-in; false with one line in `error`.
    bool load(const QString& pluginPath, QString* error);
    PlugInInterface* plugIn() const { return plugIn_; }
    // What the open editor's buttons do, for runs without a user; null when the plug-in does
    // not offer it.
    EditorCommands* commands() const { return commands_; }
    // Ends a running transmission as the user's stop does (the transmit button pressed again),
    // then lets the editor clear its progress with one QueueEmpty, as after the last step.
    void stopTransmission();

    struct Run {
        int model = 10;
        QString title;
        QWidget* owner = nullptr;
        BlockPipeline* pipeline = nullptr;
        bool refuseUpdate = false;
        bool askAboutRefusal = true; // a message box when nothing could receive a transmission
        std::function<void()> beforeStart; // called just before Start (headless runs arm here)
        // Called with the editor's working image after each gesture that changed it.
        std::function<void(const QByteArray&)> edited;
    };
    struct Result {
        bool ok = false;      // false: the plug-in raised an error (in `error`)
        bool changed = false; // the editor closed keeping changes that differ from `image`
        bool kept = false;    // the editor closed with OK, changed or not
        QByteArray image;
        QString error;
    };
    Result edit(const QByteArray& image, const Run& run);

private:
    QPluginLoader loader_;
    PlugInInterface* plugIn_ = nullptr;
    EditorCommands* commands_ = nullptr;
};

} // namespace ferrule
