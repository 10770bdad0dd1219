#pragma once

#include "document/DocumentJournal.h"
#include "document/DocumentLock.h"
#include "document/History.h"
#include "document/SaveRecovery.h"
#include "document/SessionOptions.h"
#include "document/SystemDocument.h"
#include "plugin/PlugInEditor.h"
#include "transport/DeviceSession.h"

#include <QMainWindow>
#include <QMessageBox>

#include <functional>
#include <memory>
#include <vector>

class QAction;
class QComboBox;
class QLabel;
class QMenu;
class QProgressBar;
class QPushButton;
class QUndoStack;

namespace ferrule {

class HistoryDock;
class HistoryModel;
class MidiMonitor;
class SettingsView;
struct Parameter;

// The librarian's window: one model's system data as a document (new, open, save in either
// form, recent files, drag and drop), the MIDI ports, the device operations (receive, request,
// send, send changes, stop) with progress, the plug-in's editor on the document, and a MIDI
// monitor. Its centre shows the document by parameter, beside what the device holds and a
// compared file's values, any of which can be taken into the document. Every change of the
// document's data is one undoable step. Nothing is lost: unsaved changes and running operations
// are asked about.
class MainWindow : public QMainWindow {
    Q_OBJECT
    Q_PROPERTY(QString documentPath READ documentPath)
    Q_PROPERTY(bool documentModified READ documentModified)
public:
    MainWindow(const SessionOptions& options, SystemDocument document, QWidget* parent = nullptr);
    ~MainWindow() override;

    const SystemDocument& document() const { return document_; }
    QString documentPath() const { return document_.path(); }
    bool documentModified() const { return document_.modified(); }
    DeviceSession& device() { return device_; }
    MidiMonitor* monitor() const { return monitor_; }
    SettingsView* settingsView() const { return view_; }
    QUndoStack* undoStack() const { return undo_; }
    History& history() { return history_; }
    HistoryDock* historyDock() const { return historyDock_; }
    QString lastResult() const { return lastResult_; }
    QString portState() const;

    // Questions the window asks, replaceable for tests.
    using AskSave = std::function<QMessageBox::StandardButton(const QString& text)>;
    void setAskSave(AskSave ask) { askSave_ = std::move(ask); }
    // Send Changes while nothing is known of the device.
    enum class UnknownDeviceAnswer { ReadFirst, SendEverything, Cancel };
    using AskUnknownDevice = std::function<UnknownDeviceAnswer()>;
    void setAskUnknownDevice(AskUnknownDevice ask) { askUnknown_ = std::move(ask); }
    void setAskAfterFailedSave(AskAfterFailedSave ask) { askFailed_ = std::move(ask); }
    // A send read back with differences: the question (rich text) and the lines, "… sent ->
    // held"; true sends those messages again.
    using AskSendAgain = std::function<bool(const QString& text, const QStringList& lines)>;
    void setAskSendAgain(AskSendAgain ask) { askSendAgain_ = std::move(ask); }
    // Opening a file that another ferrule-host has unsaved changes to: true opens it read-only.
    using AskReadOnly = std::function<bool(const QString& text)>;
    void setAskReadOnly(AskReadOnly ask) { askReadOnly_ = std::move(ask); }
    // Sending a snapshot of the history to the device: true sends it.
    using AskConfirm = std::function<bool(const QString& text)>;
    void setAskSendSnapshot(AskConfirm ask) { askSendSnapshot_ = std::move(ask); }
    // The question about changes an earlier run left unsaved: true recovers them.
    void setAskRecover(DocumentJournal::Ask ask) { askRecover_ = std::move(ask); }
    // Offers the changes an earlier run left unsaved to this window's document, if there are
    // any: the question comes at start.
    bool offerRecovery();
    const DocumentJournal& journal() const { return journal_; }
    // Whether this window holds the lock on its file (it has unsaved changes to it).
    bool holdsFileLock() const { return lock_.held(); }

    // The actions, also for tests and scripts.
    bool openFile(const QString& path);
    bool save();
    bool saveAs(const QString& path);
    void newDocument();
    bool edit();
    bool setPorts(const QString& input, const QString& output);
    // What the first frame does not need, which the window does by itself once it has first
    // been painted: it lists the ports and opens the chosen ones (given on the command line, or
    // remembered from the last run), and makes the MIDI monitor's panel. Until then the MIDI
    // line says that the ports are being listed. Once: later calls do nothing.
    void finishStart();
    bool portsListed() const { return portsListed_; }
    // Lists the ports again and reopens chosen ports that came back, as Refresh does.
    void refreshPorts();
    // Device > Send and Send Changes, as the menu starts them.
    void startSend(bool onlyChanges);
    // What the Device line says.
    QString deviceStateText() const;
    void switchModel(int model);
    // The document's image after an edit elsewhere (the editor, a receive): one undoable step,
    // named `step` (or `why`) in the Edit menu.
    void takeImage(const QByteArray& image, const QString& why, const QString& step = {});
    // Opens the editor on a page, given by its tab's caption, as the editor's own remembered
    // page.
    bool editPage(const QString& page);
    // Edit > Compare with Device: requests the device's data into the Device column; the
    // document stays as it is.
    void compareWithDevice();

    // A snapshot of the history as a new document (unsaved changes are asked about first).
    bool openSnapshot(const QString& path);
    // A snapshot of the history sent to the device, as Send sends the document, once confirmed.
    bool sendSnapshot(const QString& path);

public slots:
    // Compare with File… (and a history snapshot): the file's values in the Compared column,
    // the differences marked; false (said on the Last line) when it cannot be read.
    bool compareWithFile(const QString& path);
    // The History dock's Compare: a snapshot of the same model in the Compared column.
    bool compareWithSnapshot(const QString& path);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildActions();
    void buildPorts();
    void showPorts();
    void refreshState();
    void updateLock();
    void rememberRecent(const QString& path);
    void fillRecentMenu();
    bool maybeSave();
    void startReceive(bool request);
    void operationFinished(bool ok, const QString& message);
    // After a read-back that found differences: lists them and offers to send them again.
    void offerSendAgain();
    // Keeps what a finished operation read from or left in the device; a note when it could not.
    QString recordSnapshot();
    // A snapshot's data, and what it is; nullopt when it cannot be read, which is said. With
    // `refused`, one of another model is refused too: "`refused`: the snapshot holds …" and
    // `hint` (its %1 the snapshot's model).
    std::optional<SystemDocument> loadSnapshot(const QString& path, Snapshot* snapshot,
                                               const QString& refused = {},
                                               const QString& hint = {});
    void say(const QString& message);
    // `image` in the Compared column, headed `column`; the count of differences said.
    void showCompared(const QByteArray& image, const QString& column, const QString& what);
    // The document's read warnings, on the status bar.
    void showReadWarnings();
    void takeValuesOf(const std::vector<const Parameter*>& parameters, const QString& step);
    // A new document in the window: nothing to undo, nothing compared.
    void documentReplaced();
    void updateUndoActions();
    std::optional<MidiApi> api() const;
    // The ports part of finishStart.
    void openChosenPorts();
    // The MIDI system and ports given on the command line, or remembered from the last run.
    struct PortChoice {
        QString api, input, output;
    };
    PortChoice chosenPorts() const;

    SessionOptions options_;
    SystemDocument document_;
    DeviceSession device_;
    PlugInEditor editor_;
    bool editorLoaded_ = false;
    MidiMonitor* monitor_ = nullptr;
    History history_;
    HistoryModel* historyModel_ = nullptr;
    HistoryDock* historyDock_ = nullptr;
    // The device operation under way, as it started.
    DeviceSession::Operation operation_ = DeviceSession::Operation::None;
    QComboBox* modelBox_ = nullptr;
    QComboBox* apiBox_ = nullptr;
    QComboBox* inBox_ = nullptr;
    QComboBox* outBox_ = nullptr;
    QLabel* summary_ = nullptr;
    QLabel* portLabel_ = nullptr;
    QLabel* result_ = nullptr;
    QLabel* hint_ = nullptr;
    QLabel* deviceState_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QMenu* recentMenu_ = nullptr;
    QPushButton* editButton_ = nullptr;
    SettingsView* view_ = nullptr;
    QUndoStack* undo_ = nullptr;
    QAction *undoAction_ = nullptr, *redoAction_ = nullptr, *compareDevice_ = nullptr,
            *clearComparison_ = nullptr;
    QAction* edit_ = nullptr;
    QAction *save_ = nullptr, *receive_ = nullptr, *request_ = nullptr, *send_ = nullptr,
            *sendChanges_ = nullptr, *stop_ = nullptr, *verify_ = nullptr;
    QString lastResult_;
    QString systemProblem_;
    // The ports open when the link last changed, and whether their loss has been said.
    bool hadInput_ = false, hadOutput_ = false, lossSaid_ = false;
    bool portsListed_ = false;
    bool sendAfterRead_ = false;
    bool readingBack_ = false; // the operation under way reads back a send
    AskSendAgain askSendAgain_;
    // A request for Compare with Device: what arrives fills the Device column only.
    bool compareAfterRead_ = false;
    AskSave askSave_;
    AskUnknownDevice askUnknown_;
    AskAfterFailedSave askFailed_;
    AskReadOnly askReadOnly_;
    DocumentJournal::Ask askRecover_;
    AskConfirm askSendSnapshot_;
    DocumentLock lock_;
    DocumentJournal journal_;
};

} // namespace ferrule
