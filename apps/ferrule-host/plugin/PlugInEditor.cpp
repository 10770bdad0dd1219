#include "PlugInEditor.h"

#include "HostObject.h"
#include "PlugInLocator.h"
#include "ProgramName.h"
#include "host/PlugInInterface.h"
#include "transport/BlockPipeline.h"

#include <QApplication>
#include <QMessageBox>
#include <QScreen>
#include <QWidget>

#include <exception>

namespace ferrule {

bool PlugInEditor::load(const QString& pluginPath, QString* error) {
    const LocatedPlugIn located = locatePlugIn(QStringLiteral("Ferrule.PlugIn"), pluginPath);
    if (!located.error.isEmpty()) {
        *error = located.error;
        return false;
    }
    loader_.setFileName(located.file);
    QObject* instance = loader_.instance();
    if (!instance) {
        *error = QStringLiteral("plug-in \"%1\" cannot be loaded: %2")
                     .arg(located.file, loader_.errorString());
        return false;
    }
    plugIn_ = qobject_cast<PlugInInterface*>(instance);
    if (!plugIn_) {
        *error = QStringLiteral("\"%1\" does not offer the plug-in interface").arg(located.file);
        return false;
    }
    commands_ = qobject_cast<EditorCommands*>(instance);
    return true;
}

void PlugInEditor::stopTransmission() {
    if (!commands_ || !commands_->transmitting()) return;
    commands_->pressTransmit();
    // Idle now: this QueueEmpty sends nothing and hides the progress.
    plugIn_->QueueEmpty();
}

PlugInEditor::Result PlugInEditor::edit(const QByteArray& image, const Run& run) {
    Result result;
    HostObject host(image);
    host.setRefuseUpdate(run.refuseUpdate);
    BlockPipeline* pipeline = run.pipeline;
    host.setBlockSink([pipeline](int address, const QByteArray& data, int model) {
        pipeline->send(address, data, model);
    });
    // With nowhere for the blocks to go, the host refuses the update: no transmission starts
    // and no progress pretends to send.
    host.setOutputProbe([pipeline] { return pipeline->hasOutput(); });
    PlugInInterface* plugIn = plugIn_;
    pipeline->setQueueEmpty([plugIn] { plugIn->QueueEmpty(); });
    if (run.askAboutRefusal)
        QObject::connect(&host, &HostObject::transmissionRefused, &host, [] {
            QMessageBox box(QMessageBox::Information, programName(),
                            QStringLiteral("Nothing would leave: no MIDI output port and no .syx "
                                           "file are chosen.\nChoose a MIDI output to transmit."),
                            QMessageBox::Ok, QApplication::activeModalWidget());
            box.exec();
        });
    // The working image after each gesture, where the plug-in offers it.
    auto* workingCopy = qobject_cast<EditorWorkingCopy*>(loader_.instance());
    if (workingCopy && run.edited)
        workingCopy->setEditListener(
            [workingCopy, edited = run.edited] { edited(workingCopy->workingImage()); });
    const auto stopListening = [workingCopy] {
        if (workingCopy) workingCopy->setEditListener({});
    };
    try {
        plugIn->Interface(&host);
        plugIn->Owner(run.owner);
        plugIn->Title(run.title);
        plugIn->Format(run.model);
        const QScreen* screen = QGuiApplication::primaryScreen();
        const QPoint centre = screen ? screen->geometry().center() : QPoint(512, 384);
        plugIn->Center(qint16(std::min(centre.x() * 15, 32767)),
                       qint16(std::min(centre.y() * 15, 32767)));
        if (run.beforeStart) run.beforeStart();
        plugIn->Start();
        plugIn->Quit();
    } catch (const std::exception& e) {
        result.error = QString::fromLocal8Bit(e.what());
        pipeline->setQueueEmpty({});
        stopListening();
        return result;
    }
    pipeline->setQueueEmpty({});
    stopListening();
    result.ok = true;
    result.kept = host.written();
    result.changed = host.changed() && host.image() != image;
    result.image = host.image();
    return result;
}

} // namespace ferrule
