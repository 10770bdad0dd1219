#pragma once

#include "cli/HostOptions.h"
#include "document/DocumentJournal.h"
#include "document/DocumentLock.h"
#include "document/History.h"
#include "document/SaveRecovery.h"
#include "document/SystemDocument.h"
#include "plugin/PlugInEditor.h"
#include "transport/DeviceSession.h"

#include <QMainWindow>
#include <QMessageBox>

#include <functional>
#include <memory>

class QAction;
class QComboBox;
class QLabel;
class QMenu;
class QProgressBar;
class QPushButton;

namespace ferrule {

class HistoryDock;
class HistoryModel;
class MidiMonitor;

// The librarian's window: one model's system data as a document (new, open, save in either
// form, recent files, drag and drop), the MIDI ports, the device operations (receive, request,
// send, send changes, stop) with progress, the plug-in's editor on the document, and a MIDI
// monitor. Nothing is lost: unsaved changes and running operations are asked about.
class MainWindow : public QMainWindow {
    Q_OBJECT
    Q_PROPERTY(QString documentPath READ documentPath)
    Q_PROPERTY(bool documentModified READ documentModified)
public:
    MainWindow(const HostOptions& options, SystemDocument document, QWidget* parent = nullptr);
    ~MainWindow() override;

    const SystemDocument& document() const { return document_; }
    QString documentPath() const { return document_.path(); }
    bool documentModified() const { return document_.modified(); }
    DeviceSession& device() { return device_; }
    MidiMonitor* monitor() const { return monitor_; }
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
    // Lists the ports again and reopens chosen ports that came back, as Refresh does.
    void refreshPorts();
    // Device > Send and Send Changes, as the menu starts them.
    void startSend(bool onlyChanges);
    // What the Device line says.
    QString deviceStateText() const;
    void switchModel(int model);
    // A snapshot of the history as a new document (unsaved changes are asked about first).
    bool openSnapshot(const QString& path);
    // A snapshot of the history sent to the device, as Send sends the document, once confirmed.
    bool sendSnapshot(const QString& path);
    // The document's image after an edit elsewhere (the editor, a receive).
    void takeImage(const QByteArray& image, const QString& why);

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
    // Keeps what a finished operation read from or left in the device; a note when it could not.
    QString recordSnapshot();
    // A snapshot's data, and what it is; nullopt when it cannot be read, which is said.
    std::optional<SystemDocument> loadSnapshot(const QString& path, Snapshot* snapshot);
    void say(const QString& message);
    std::optional<MidiApi> api() const;

    HostOptions options_;
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
    QAction* edit_ = nullptr;
    QAction *save_ = nullptr, *receive_ = nullptr, *request_ = nullptr, *send_ = nullptr,
            *sendChanges_ = nullptr, *stop_ = nullptr;
    QString lastResult_;
    QString systemProblem_;
    // The ports open when the link last changed, and whether their loss has been said.
    bool hadInput_ = false, hadOutput_ = false, lossSaid_ = false;
    bool sendAfterRead_ = false;
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
