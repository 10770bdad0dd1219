#include "EditorRun.h"

#include "DeviceRuns.h"
#include "HeadlessRun.h"
#include "HistoryRun.h"
#include "MidiInput.h"
#include "MidiOutput.h"
#include "document/DocumentJournal.h"
#include "document/DocumentLock.h"
#include "document/SaveRecovery.h"
#include "document/SystemDocument.h"
#include "io/AtomicFile.h"
#include "plugin/PlugInEditor.h"
#include "plugin/ProgramName.h"
#include "settings/SettingsStore.h"
#include "transport/BlockPipeline.h"

#include <QApplication>
#include <QMessageBox>
#include <QWidget>

#include <cstdio>
#include <optional>

namespace ferrule {

int runEditor(const HostOptions& options, SystemDocument& document, const EditorQuestions& ask) {
    PlugInEditor editor;
    {
        QString why;
        if (!editor.load(options.pluginPath, &why)) return fail(kExitBadInput, why);
    }

    MidiOutput midi;
    if (!options.midiOut.isEmpty()) {
        QString why;
        const std::optional<MidiApi> api = chosenMidiApi(options, &why);
        if (!api || !midi.open(*api, QStringLiteral("ferrule-host"), options.midiOut, &why))
            return fail(kExitDevice, why);
    }
    // --verify reads back from the device's output; a port that cannot be opened fails before
    // anything is sent. Other runs have no input, nor its ring and wake-up.
    std::optional<MidiInput> readBack;
    if (options.verify) {
        QString why;
        const std::optional<MidiApi> api = chosenMidiApi(options, &why);
        if (!api ||
            !readBack.emplace().open(*api, QStringLiteral("ferrule-host"), options.midiIn, &why))
            return fail(kExitDevice, why);
    }
    BlockPipeline pipeline({options.sysexHeader, options.gapMs, options.syxFile}, &midi);
    {
        QString why;
        if (!pipeline.open(&why)) return fail(kExitBadInput, why);
    }
    // One writer per file: a file another ferrule-host has unsaved changes to is not edited
    // here, and while this editor is open the file is this run's.
    DocumentLock lock(options.editorHeadless() ? QString() : document.path());
    if (!document.path().isEmpty() && !options.editorHeadless() && !lock.lock())
        return fail(kExitBadInput,
                    QStringLiteral("%1 has unsaved changes in another ferrule-host (process %2)")
                        .arg(document.path())
                        .arg(DocumentLock::holder(document.path())));
    // A file that cannot be saved is said at once; OK will still offer Retry or Save As.
    if (!document.path().isEmpty() && !options.headless()) {
        QString why;
        if (!AtomicFile::writable(document.path(), &why))
            std::fprintf(stderr, "ferrule-host: warning: %s; changes can only be saved elsewhere\n",
                         qPrintable(why));
    }

    // Changes an earlier run left unsaved are offered before the editor opens, and the editor's
    // own changes are journaled until they are saved or discarded. Runs without a display
    // neither ask nor touch journals.
    std::optional<DocumentJournal> journal;
    if (!options.editorHeadless() && !document.path().isEmpty()) {
        journal.emplace();
        journal->offerRecovery(document, ask.recover);
    }

    // Every input has passed: the settings key may be created now.
    RegCreateKey(RegRoot::LocalMachine, kEditorKey);

    QWidget ownerWindow;
    ownerWindow.setWindowTitle(programName());
    if (!options.editorHeadless())
        QObject::connect(&pipeline, &BlockPipeline::outputFailed, &ownerWindow,
                         [&pipeline, &editor](const QString& why) {
                             editor.stopTransmission();
                             QMessageBox box(
                                 QMessageBox::Warning, programName(),
                                 QStringLiteral("The transmission stopped: %1.\nSent %2.")
                                     .arg(why, pipeline.deliveryReport()),
                                 QMessageBox::Ok, QApplication::activeModalWidget());
                             box.exec();
                         });
    HeadlessRun headlessRun(options, pipeline, editor);
    if (readBack) headlessRun.setReadBack(&*readBack, &midi, document.image());
    PlugInEditor::Run run;
    run.model = options.model;
    run.title = options.title;
    run.owner = &ownerWindow;
    run.pipeline = &pipeline;
    run.refuseUpdate = options.refuseUpdate;
    run.askAboutRefusal = !options.editorHeadless();
    run.beforeStart = [&headlessRun] { headlessRun.arm(); };
    if (journal)
        run.edited = [&journal, &document](const QByteArray& image) {
            journal->keep(document, image);
        };
    const QByteArray edited = document.image();
    const PlugInEditor::Result result = editor.edit(edited, run);
    // What --transmit sent to the device is the state the device is in now; verified when it
    // was read back so.
    if (options.transmit && midi.isOpen() && result.ok && headlessRun.transmitted()) {
        QStringList ports{midi.portName()};
        if (readBack) ports << readBack->portName();
        keepInHistory(headlessRun.verified() ? Snapshot::Kind::Verified : Snapshot::Kind::Sent,
                      options.model, edited, options.dataSetHeader(), ports);
    }
    // An editor that failed leaves its journal for the next start.
    if (!result.ok) return fail(1, QStringLiteral("error: %1").arg(result.error));

    // OK keeps the changes, recovered ones too, and saves them; Cancel discards them.
    if (result.changed) document.setImage(result.image);
    QString why;
    bool saved = true;
    if (!document.path().isEmpty() && document.modified() && result.kept) {
        saved = saveWithRecovery(
            document, options.headless() ? AskAfterFailedSave() : ask.afterFailedSave, &why);
    }
    // Saved, or discarded by the user's choice: the journal has done its work.
    if (journal) journal->drop();
    if (!saved)
        return fail(1, QStringLiteral("data file ") + why + QStringLiteral("; changes not saved"));
    return headlessRun.status();
}

} // namespace ferrule
