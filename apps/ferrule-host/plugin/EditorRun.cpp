#include "EditorRun.h"

#include "EditorWindow.h"
#include "HostObject.h"
#include "MidiOutput.h"
#include "PlugInLocator.h"
#include "cli/DeviceRuns.h"
#include "cli/HeadlessRun.h"
#include "document/SaveRecovery.h"
#include "document/SystemDocument.h"
#include "host/PlugInInterface.h"
#include "host/SettingsStore.h"
#include "io/AtomicFile.h"
#include "transport/BlockPipeline.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPluginLoader>
#include <QPushButton>
#include <QScreen>
#include <QWidget>

#include <cstdio>
#include <exception>

namespace ferrule {

namespace {

// The question after a failed save, in a message box: Retry, Save As… (a file dialog) or
// Discard. The edits stay in the document until the user chooses.
SaveChoice askInWindow(const QString& error) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Tonebench"),
                    QStringLiteral("The system data could not be saved.\n%1\n\nYour changes are "
                                   "kept until you choose.")
                        .arg(error));
    QPushButton* retry = box.addButton(QStringLiteral("Retry"), QMessageBox::AcceptRole);
    QPushButton* saveAs = box.addButton(QStringLiteral("Save As…"), QMessageBox::ActionRole);
    box.addButton(QStringLiteral("Discard"), QMessageBox::DestructiveRole);
    box.setDefaultButton(retry);
    box.exec();
    if (box.clickedButton() == retry) return {SaveChoice::Retry, {}};
    if (box.clickedButton() == saveAs) {
        const QString path = QFileDialog::getSaveFileName(
            nullptr, QStringLiteral("Save system data as"), QString(),
            QStringLiteral("System exclusive (*.syx);;Raw system data (*)"));
        if (!path.isEmpty()) return {SaveChoice::SaveAs, path};
        return {SaveChoice::Retry, {}};
    }
    return {SaveChoice::Discard, {}};
}

} // namespace

int runEditor(const HostOptions& options, SystemDocument& document) {
    const LocatedPlugIn located =
        locatePlugIn(QStringLiteral("Ferrule.PlugIn"), options.pluginPath);
    if (!located.error.isEmpty()) return fail(kExitBadInput, located.error);
    QPluginLoader loader(located.file);
    QObject* instance = loader.instance();
    if (!instance)
        return fail(kExitBadInput, QStringLiteral("plug-in \"%1\" cannot be loaded: %2")
                                       .arg(located.file, loader.errorString()));
    auto* plugIn = qobject_cast<PlugInInterface*>(instance);
    if (!plugIn)
        return fail(
            kExitBadInput,
            QStringLiteral("\"%1\" does not offer the plug-in interface").arg(located.file));

    MidiOutput midi;
    if (!options.midiOut.isEmpty()) {
        QString why;
        const std::optional<MidiApi> api = chosenMidiApi(options, &why);
        if (!api || !midi.open(*api, QStringLiteral("ferrule-host"), options.midiOut, &why))
            return fail(kExitDevice, why);
    }
    BlockPipeline pipeline({options.sysexHeader, options.gapMs, options.syxFile}, &midi);
    {
        QString why;
        if (!pipeline.open(&why)) return fail(kExitBadInput, why);
    }

    // A file that cannot be saved is said at once; OK will still offer Retry or Save As.
    if (!document.path().isEmpty() && !options.headless()) {
        QString why;
        if (!AtomicFile::writable(document.path(), &why))
            std::fprintf(stderr, "ferrule-host: warning: %s; changes can only be saved elsewhere\n",
                         qPrintable(why));
    }

    // Every input has passed: the settings key may be created now.
    RegCreateKey(RegRoot::LocalMachine, kEditorKey);

    HostObject host(document.image());
    host.setRefuseUpdate(options.refuseUpdate);
    host.setBlockSink([&pipeline](int address, const QByteArray& data, int model) {
        pipeline.send(address, data, model);
    });
    // With nowhere for the blocks to go, the host refuses the update: no transmission starts
    // and no progress pretends to send.
    host.setOutputProbe([&pipeline] { return pipeline.hasOutput(); });
    pipeline.setQueueEmpty([plugIn] { plugIn->QueueEmpty(); });
    QWidget ownerWindow;
    ownerWindow.setWindowTitle(QStringLiteral("Tonebench"));
    if (!options.editorHeadless())
        QObject::connect(&host, &HostObject::transmissionRefused, &ownerWindow, [] {
            QMessageBox box(QMessageBox::Information, QStringLiteral("Tonebench"),
                            QStringLiteral("Nothing would leave: no MIDI output port and no .syx "
                                           "file are chosen.\nStart ferrule-host with --midi-out "
                                           "PORT or --syx FILE to transmit."),
                            QMessageBox::Ok, QApplication::activeModalWidget());
            box.exec();
        });
    if (!options.editorHeadless())
        QObject::connect(&pipeline, &BlockPipeline::outputFailed, &ownerWindow,
                         [&pipeline, plugIn](const QString& why) {
                             stopEditorTransmission(findEditorWindow(), plugIn);
                             QMessageBox box(
                                 QMessageBox::Warning, QStringLiteral("Tonebench"),
                                 QStringLiteral("The transmission stopped: %1.\nSent %2.")
                                     .arg(why, pipeline.deliveryReport()),
                                 QMessageBox::Ok, QApplication::activeModalWidget());
                             box.exec();
                         });
    HeadlessRun headlessRun(options, pipeline, plugIn);
    int status = 0;
    try {
        plugIn->Interface(&host);
        plugIn->Owner(&ownerWindow);
        plugIn->Title(options.title);
        plugIn->Format(options.model);
        const QScreen* screen = QGuiApplication::primaryScreen();
        const QPoint centre = screen ? screen->geometry().center() : QPoint(512, 384);
        plugIn->Center(qint16(std::min(centre.x() * 15, 32767)),
                       qint16(std::min(centre.y() * 15, 32767)));
        headlessRun.arm();
        plugIn->Start();
        plugIn->Quit();
        status = headlessRun.status();
    } catch (const std::exception& e) {
        return fail(1, QStringLiteral("error: %1").arg(QString::fromLocal8Bit(e.what())));
    }

    if (host.changed()) document.setImage(host.image());
    if (!document.path().isEmpty() && document.modified()) {
        QString why;
        const AskAfterFailedSave ask =
            options.headless() ? AskAfterFailedSave() : AskAfterFailedSave(askInWindow);
        if (!saveWithRecovery(document, ask, &why))
            return fail(1,
                        QStringLiteral("data file ") + why + QStringLiteral("; changes not saved"));
    }
    return status;
}

} // namespace ferrule
