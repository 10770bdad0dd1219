#include "MainWindow.h"

#include "FailedSaveDialog.h"
#include "MidiMonitor.h"
#include "cli/DeviceRuns.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "settings/SettingsStore.h"
#include "plugin/EditorWindow.h"
#include "transport/BlockPipeline.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

namespace ferrule {

namespace {

// The host's own settings (ports, recent files) sit beside the editor's.
const QString kHostKey = QStringLiteral("SOFTWARE\\Quarrow\\Tonebench\\Host");
constexpr int kRecentFiles = 8;

QString readSetting(const QString& name) {
    QVariant v = QString();
    return RegRead(RegRoot::LocalMachine, kHostKey, name, v) ? v.toString() : QString();
}

void writeSetting(const QString& name, const QString& value) {
    RegCreateKey(RegRoot::LocalMachine, kHostKey);
    RegWrite(RegRoot::LocalMachine, kHostKey, name, value);
}

QString formatName(DataFormat f) {
    return f == DataFormat::Syx ? QStringLiteral(".syx") : QStringLiteral("raw image");
}

} // namespace

MainWindow::MainWindow(const HostOptions& options, SystemDocument document, QWidget* parent)
    : QMainWindow(parent)
    , options_(options)
    , document_(std::move(document)) {
    setObjectName(QStringLiteral("FerruleHost"));
    setAcceptDrops(true);
    askSave_ = [this](const QString& text) {
        return QMessageBox::question(this, QStringLiteral("Tonebench"), text,
                                     QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                     QMessageBox::Save);
    };
    askFailed_ = [this](const QString& error) { return askAfterFailedSave(error, this); };

    auto* central = new QWidget(this);
    auto* form = new QFormLayout(central);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    modelBox_ = new QComboBox(central);
    modelBox_->setObjectName(QStringLiteral("model"));
    for (int m : kModels)
        modelBox_->addItem(QStringLiteral("GT-%1").arg(m), m);
    modelBox_->setCurrentIndex(modelBox_->findData(document_.model()));
    connect(modelBox_, &QComboBox::activated, this,
            [this](int i) { switchModel(modelBox_->itemData(i).toInt()); });
    summary_ = new QLabel(central);
    summary_->setObjectName(QStringLiteral("summary"));
    summary_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    editButton_ = new QPushButton(QStringLiteral("Edit System Settings…"), central);
    editButton_->setObjectName(QStringLiteral("edit"));
    connect(editButton_, &QPushButton::clicked, this, &MainWindow::edit);
    form->addRow(QStringLiteral("Model:"), modelBox_);
    form->addRow(QStringLiteral("Data:"), summary_);
    deviceState_ = new QLabel(central);
    deviceState_->setObjectName(QStringLiteral("deviceState"));
    form->addRow(QStringLiteral("Device:"), deviceState_);
    form->addRow(QString(), editButton_);
    setCentralWidget(central);

    monitor_ = new MidiMonitor(this);
    auto* dock = new QDockWidget(QStringLiteral("MIDI Monitor"), this);
    dock->setObjectName(QStringLiteral("MidiMonitorDock"));
    dock->setWidget(monitor_);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    connect(&device_, &DeviceSession::messageIn, monitor_->model(),
            [this](const QByteArray& m) { monitor_->model()->add(true, m); });
    connect(&device_, &DeviceSession::messageOut, monitor_->model(),
            [this](const QByteArray& m) { monitor_->model()->add(false, m); });

    progress_ = new QProgressBar(this);
    progress_->setMinimumWidth(300);
    progress_->hide();
    cancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    cancel_->hide();
    connect(cancel_, &QPushButton::clicked, &device_, &DeviceSession::stop);
    portLabel_ = new QLabel(this);
    portLabel_->setObjectName(QStringLiteral("portState"));
    statusBar()->addPermanentWidget(progress_);
    statusBar()->addPermanentWidget(cancel_);
    statusBar()->addPermanentWidget(portLabel_);
    connect(&device_, &DeviceSession::progress, this,
            [this](qint64 done, qint64 total, qint64 msLeft) {
                progress_->setRange(0, int(total));
                progress_->setValue(int(done));
                progress_->setFormat(QStringLiteral("%1 of %2 bytes, %3 s left")
                                         .arg(done)
                                         .arg(total)
                                         .arg(double(msLeft) / 1000.0, 0, 'f', 1));
            });
    connect(&device_, &DeviceSession::finished, this, &MainWindow::operationFinished);
    connect(&device_, &DeviceSession::started, this, [this] {
        progress_->setRange(0, 0);
        refreshState();
    });

    buildActions();
    buildPorts();
    device_.setHeader(document_.model(), options_.sysexHeader);
    device_.setGapMs(options_.gapMs);
    resize(920, 560);
    refreshState();
}

MainWindow::~MainWindow() = default;

void MainWindow::buildActions() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    auto add = [this](QMenu* menu, const QString& text, auto slot, QKeySequence keys = {}) {
        QAction* a = menu->addAction(text);
        a->setShortcut(keys);
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    add(
        file, QStringLiteral("&New"),
        [this] {
            if (maybeSave()) newDocument();
        },
        QKeySequence::New);
    add(
        file, QStringLiteral("&Open…"),
        [this] {
            if (!maybeSave()) return;
            const QString path = QFileDialog::getOpenFileName(
                this, QStringLiteral("Open system data"), QString(),
                QStringLiteral("System data (*.syx *.bin *.raw);;All files (*)"));
            if (!path.isEmpty()) openFile(path);
        },
        QKeySequence::Open);
    recentMenu_ = file->addMenu(QStringLiteral("Open &Recent"));
    fillRecentMenu();
    save_ = add(
        file, QStringLiteral("&Save"), [this] { save(); }, QKeySequence::Save);
    add(
        file, QStringLiteral("Save &As…"),
        [this] {
            const QString path = QFileDialog::getSaveFileName(
                this, QStringLiteral("Save system data as"), document_.path(),
                QStringLiteral("System exclusive (*.syx);;Raw system data (*)"));
            if (!path.isEmpty()) saveAs(path);
        },
        QKeySequence::SaveAs);
    file->addSeparator();
    add(
        file, QStringLiteral("&Quit"), [this] { close(); }, QKeySequence::Quit);

    QMenu* editMenu = menuBar()->addMenu(QStringLiteral("&Edit"));
    edit_ = add(
        editMenu, QStringLiteral("&Edit System Settings…"), [this] { edit(); },
        QKeySequence(Qt::CTRL | Qt::Key_E));

    QMenu* deviceMenu = menuBar()->addMenu(QStringLiteral("&Device"));
    receive_ = add(
        deviceMenu, QStringLiteral("&Receive"), [this] { startReceive(false); },
        QKeySequence(Qt::CTRL | Qt::Key_R));
    request_ = add(
        deviceMenu, QStringLiteral("Re&quest"), [this] { startReceive(true); },
        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R));
    send_ = add(
        deviceMenu, QStringLiteral("&Send"), [this] { startSend(false); },
        QKeySequence(Qt::CTRL | Qt::Key_T));
    sendChanges_ = add(
        deviceMenu, QStringLiteral("Send &Changes"), [this] { startSend(true); },
        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T));
    stop_ = add(
        deviceMenu, QStringLiteral("S&top"), [this] { device_.stop(); },
        QKeySequence(Qt::Key_Escape));
    deviceMenu->addSeparator();
    add(
        deviceMenu, QStringLiteral("Refresh &Ports"), [this] { refreshPorts(); },
        QKeySequence::Refresh);

    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    view->addAction(findChild<QDockWidget*>(QStringLiteral("MidiMonitorDock"))->toggleViewAction());

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    add(help, QStringLiteral("&About ferrule-host"), [this] {
        QMessageBox::about(this, QStringLiteral("About ferrule-host"),
                           QStringLiteral("ferrule-host %1\nThe stand-alone host of the Ferrule "
                                          "system-settings editor for GT- devices.")
                               .arg(QCoreApplication::applicationVersion()));
    });

    QToolBar* tools = addToolBar(QStringLiteral("Device"));
    tools->setObjectName(QStringLiteral("DeviceToolBar"));
    for (QAction* a : {receive_, request_, send_, sendChanges_, stop_})
        tools->addAction(a);
}

void MainWindow::buildPorts() {
    addToolBarBreak();
    QToolBar* ports = addToolBar(QStringLiteral("MIDI Ports"));
    ports->setObjectName(QStringLiteral("PortsToolBar"));
    apiBox_ = new QComboBox(ports);
    for (MidiApi a : compiledMidiApis())
        apiBox_->addItem(midiApiName(a).toUpper(), int(a));
    inBox_ = new QComboBox(ports);
    inBox_->setObjectName(QStringLiteral("midiIn"));
    inBox_->setMinimumContentsLength(18);
    outBox_ = new QComboBox(ports);
    outBox_->setObjectName(QStringLiteral("midiOut"));
    outBox_->setMinimumContentsLength(18);
    ports->addWidget(new QLabel(QStringLiteral(" MIDI "), ports));
    ports->addWidget(apiBox_);
    ports->addWidget(new QLabel(QStringLiteral(" In "), ports));
    ports->addWidget(inBox_);
    ports->addWidget(new QLabel(QStringLiteral(" Out "), ports));
    ports->addWidget(outBox_);
    auto* refresh = new QToolButton(ports);
    refresh->setText(QStringLiteral("Refresh"));
    connect(refresh, &QToolButton::clicked, this, &MainWindow::refreshPorts);
    ports->addWidget(refresh);

    // The ports given on the command line, or the ones remembered from the last run.
    QString api = !options_.midiApi.isEmpty() ? options_.midiApi : readSetting("MidiApi");
    if (api.isEmpty()) {
        QString why;
        if (const auto running = defaultMidiApi(&why)) api = midiApiName(*running);
    }
    const int apiIndex = apiBox_->findText(api.toUpper());
    if (apiIndex >= 0) apiBox_->setCurrentIndex(apiIndex);
    const QString in = !options_.midiIn.isEmpty() ? options_.midiIn : readSetting("MidiIn");
    const QString out = !options_.midiOut.isEmpty() ? options_.midiOut : readSetting("MidiOut");
    refreshPorts();
    setPorts(in, out);
    auto changed = [this] {
        setPorts(inBox_->currentData().toString(), outBox_->currentData().toString());
    };
    connect(inBox_, &QComboBox::activated, this, changed);
    connect(outBox_, &QComboBox::activated, this, changed);
    connect(apiBox_, &QComboBox::activated, this, [this] { refreshPorts(); });
}

std::optional<MidiApi> MainWindow::api() const {
    if (apiBox_->count() == 0) return std::nullopt;
    return MidiApi(apiBox_->currentData().toInt());
}

void MainWindow::refreshPorts() {
    const QString in = inBox_->currentData().toString();
    const QString out = outBox_->currentData().toString();
    inBox_->clear();
    outBox_->clear();
    inBox_->addItem(QStringLiteral("(none)"), QString());
    outBox_->addItem(QStringLiteral("(none)"), QString());
    systemProblem_.clear();
    if (const auto a = api()) {
        const MidiPortList list = listMidiPorts(*a, QStringLiteral("ferrule-host"));
        systemProblem_ = list.error;
        for (const QString& p : list.inputs)
            inBox_->addItem(p, p);
        for (const QString& p : list.outputs)
            outBox_->addItem(p, p);
    }
    inBox_->setCurrentIndex(std::max(0, inBox_->findData(in)));
    outBox_->setCurrentIndex(std::max(0, outBox_->findData(out)));
    refreshState();
}

bool MainWindow::setPorts(const QString& input, const QString& output) {
    QString error;
    const std::optional<MidiApi> a = api();
    // A remembered port that is not there any more is kept in the settings, and said.
    QStringList missing;
    const auto pick = [&](QComboBox* box, const QString& name, const char* what) {
        if (name.isEmpty()) {
            box->setCurrentIndex(0);
            return QString();
        }
        for (int i = 1; i < box->count(); ++i)
            if (box->itemData(i).toString().contains(name, Qt::CaseInsensitive)) {
                box->setCurrentIndex(i);
                return box->itemData(i).toString();
            }
        missing << QStringLiteral("%1 port \"%2\" is not there").arg(QLatin1String(what), name);
        box->setCurrentIndex(0);
        return QString();
    };
    const QString in = pick(inBox_, input, "input");
    const QString out = pick(outBox_, output, "output");
    // Ports can only be listed, and so chosen, when a MIDI system runs.
    if (in.isEmpty() && out.isEmpty())
        device_.closePorts();
    else if (!device_.openPorts(*a, in, out, &error))
        missing << error;
    portProblem_ = missing.join(QStringLiteral("; "));
    writeSetting(QStringLiteral("MidiIn"), input);
    writeSetting(QStringLiteral("MidiOut"), output);
    if (a) writeSetting(QStringLiteral("MidiApi"), midiApiName(*a));
    refreshState();
    return missing.isEmpty();
}

QString MainWindow::portState() const {
    QString state = QStringLiteral("In: %1  Out: %2")
                        .arg(device_.hasInput() ? device_.inputName() : QStringLiteral("none"),
                             device_.hasOutput() ? device_.outputName() : QStringLiteral("none"));
    QStringList problems;
    if (!systemProblem_.isEmpty()) problems << systemProblem_;
    if (!portProblem_.isEmpty()) problems << portProblem_;
    if (!problems.isEmpty()) state += QStringLiteral("  (%1)").arg(problems.join("; "));
    return state;
}

void MainWindow::refreshState() {
    const QString name = document_.path().isEmpty() ? QStringLiteral("Untitled")
                                                    : QFileInfo(document_.path()).fileName();
    setWindowTitle(QStringLiteral("%1[*] - GT-%2 - ferrule-host").arg(name).arg(document_.model()));
    setWindowModified(document_.modified());
    summary_->setText(
        document_.path().isEmpty()
            ? QStringLiteral("GT-%1 system data, not saved to a file yet").arg(document_.model())
            : QStringLiteral("GT-%1 system data in %2 (%3)%4")
                  .arg(document_.model())
                  .arg(document_.path(), formatName(document_.format()),
                       document_.modified() ? QStringLiteral(", changed") : QString()));
    portLabel_->setText(portState());
    deviceState_->setText(
        !device_.knowsDevice()
            ? QStringLiteral("not known yet: nothing received from or sent to it in this run")
        : device_.knownImage() == document_.image()
            ? QStringLiteral("holds this data")
            : QStringLiteral("holds other data: Send Changes sends the difference"));
    const bool idle = device_.busy() == DeviceSession::Operation::None;
    receive_->setEnabled(idle && device_.hasInput());
    request_->setEnabled(idle && device_.hasInput() && device_.hasOutput());
    send_->setEnabled(idle && device_.hasOutput());
    sendChanges_->setEnabled(idle && device_.hasOutput());
    stop_->setEnabled(!idle);
    // An edit while the device's data arrives would be overwritten by it.
    edit_->setEnabled(idle);
    editButton_->setEnabled(idle);
    progress_->setVisible(!idle);
    cancel_->setVisible(!idle);
}

void MainWindow::say(const QString& message) {
    lastResult_ = message;
    statusBar()->showMessage(message);
}

void MainWindow::newDocument() {
    document_ = SystemDocument(document_.model(), options_.dataSetHeader(document_.model()));
    say(QStringLiteral("new GT-%1 system data from the defaults").arg(document_.model()));
    refreshState();
}

bool MainWindow::openFile(const QString& path) {
    QString error;
    int model = document_.model();
    auto header = [this](int m) { return options_.dataSetHeader(m); };
    std::optional<SystemDocument> doc = SystemDocument::open(path, model, header(model), &error);
    if (!doc) {
        // Another model's dump: say which, and offer to switch.
        static const QRegularExpression other(QStringLiteral("holds GT-(\\d+) system data"));
        const auto m = other.match(error);
        if (m.hasMatch() &&
            QMessageBox::question(this, QStringLiteral("Tonebench"),
                                  QStringLiteral("%1 holds GT-%2 system data.\nSwitch to the "
                                                 "GT-%2 and open it?")
                                      .arg(QFileInfo(path).fileName(), m.captured(1))) ==
                QMessageBox::Yes) {
            model = m.captured(1).toInt();
            doc = SystemDocument::open(path, model, header(model), &error);
        }
    }
    if (!doc) {
        say(error);
        QMessageBox::warning(this, QStringLiteral("Tonebench"), error);
        return false;
    }
    document_ = std::move(*doc);
    modelBox_->setCurrentIndex(modelBox_->findData(document_.model()));
    device_.setHeader(document_.model(), options_.sysexHeader);
    rememberRecent(path);
    say(QStringLiteral("opened %1").arg(path));
    refreshState();
    return true;
}

bool MainWindow::save() {
    if (document_.path().isEmpty()) {
        const QString path = QFileDialog::getSaveFileName(
            this, QStringLiteral("Save system data as"), QString(),
            QStringLiteral("System exclusive (*.syx);;Raw system data (*)"));
        return !path.isEmpty() && saveAs(path);
    }
    QString error;
    const bool ok = saveWithRecovery(document_, askFailed_, &error);
    say(ok ? QStringLiteral("saved %1").arg(document_.path())
           : QStringLiteral("not saved: %1").arg(error));
    if (ok) rememberRecent(document_.path());
    refreshState();
    return ok;
}

bool MainWindow::saveAs(const QString& path) {
    QString error;
    bool ok = document_.saveAs(path, SystemDocument::formatForName(path), &error);
    if (!ok) ok = saveWithRecovery(document_, askFailed_, &error);
    say(ok ? QStringLiteral("saved %1").arg(document_.path())
           : QStringLiteral("not saved: %1").arg(error));
    if (ok) rememberRecent(document_.path());
    refreshState();
    return ok;
}

void MainWindow::switchModel(int model) {
    if (model == document_.model()) return;
    // The image holds every model; a .syx file holds one, so the data leaves that file.
    SystemDocument next(model, options_.dataSetHeader(model));
    next.setImage(document_.image());
    if (document_.format() == DataFormat::Raw && !document_.path().isEmpty()) {
        if (!maybeSave()) {
            modelBox_->setCurrentIndex(modelBox_->findData(document_.model()));
            return;
        }
        std::optional<SystemDocument> reopened =
            SystemDocument::open(document_.path(), model, next.header(), &lastResult_);
        if (reopened) next = std::move(*reopened);
    }
    document_ = std::move(next);
    device_.setHeader(model, options_.sysexHeader);
    say(QStringLiteral("now editing the GT-%1").arg(model));
    refreshState();
}

void MainWindow::takeImage(const QByteArray& image, const QString& why) {
    document_.setImage(image);
    say(why);
    refreshState();
}

bool MainWindow::edit() {
    if (!editorLoaded_) {
        QString error;
        if (!editor_.load(options_.pluginPath, &error)) {
            say(error);
            QMessageBox::warning(this, QStringLiteral("Tonebench"), error);
            return false;
        }
        editorLoaded_ = true;
    }
    BlockPipeline pipeline({options_.sysexHeader, options_.gapMs, {}}, device_.output());
    QString why;
    pipeline.open(&why);
    connect(&pipeline, &BlockPipeline::messageSent, this, [this](const QByteArray& m) {
        monitor_->model()->add(false, m);
        device_.forgetDevice();
    });
    connect(&pipeline, &BlockPipeline::outputFailed, this, [this, &pipeline](const QString& w) {
        stopEditorTransmission(findEditorWindow(), editor_.plugIn());
        QMessageBox::warning(QApplication::activeModalWidget(), QStringLiteral("Tonebench"),
                             QStringLiteral("The transmission stopped: %1.\nSent %2.")
                                 .arg(w, pipeline.deliveryReport()));
    });
    RegCreateKey(RegRoot::LocalMachine, kEditorKey);
    PlugInEditor::Run run;
    run.model = document_.model();
    run.title = QStringLiteral("GT-%1").arg(document_.model());
    run.owner = this;
    run.pipeline = &pipeline;
    const PlugInEditor::Result result = editor_.edit(document_.image(), run);
    if (!result.ok) {
        say(QStringLiteral("the editor stopped: %1").arg(result.error));
        return false;
    }
    if (result.changed)
        takeImage(result.image, QStringLiteral("edited"));
    else
        say(QStringLiteral("the editor closed without changes"));
    return result.changed;
}

void MainWindow::startReceive(bool request) {
    device_.receive(document_.image(), request, options_.timeoutS);
    say(request ? QStringLiteral("requesting the GT-%1's system data…").arg(document_.model())
                : QStringLiteral("waiting for a dump from the GT-%1: start it on the device")
                      .arg(document_.model()));
    refreshState();
}

void MainWindow::startSend(bool onlyChanges) {
    const int queued = device_.send(document_.image(), onlyChanges);
    if (queued > 0) say(QStringLiteral("sending %1 messages…").arg(queued));
    refreshState();
}

void MainWindow::operationFinished(bool ok, const QString& message) {
    if (ok && !device_.received().isEmpty() && message.startsWith(QLatin1String("received"))) {
        takeImage(device_.received(), message);
    } else {
        say(ok ? message : QStringLiteral("failed: %1").arg(message));
    }
    refreshState();
}

bool MainWindow::maybeSave() {
    if (!document_.modified()) return true;
    const QString name = document_.path().isEmpty() ? QStringLiteral("The new system data")
                                                    : QFileInfo(document_.path()).fileName();
    switch (askSave_(QStringLiteral("%1 has unsaved changes. Save them?").arg(name))) {
    case QMessageBox::Save:
        return save();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (device_.busy() != DeviceSession::Operation::None) {
        if (QMessageBox::question(this, QStringLiteral("Tonebench"),
                                  QStringLiteral("A transfer with the device is running. Stop it "
                                                 "and close?")) != QMessageBox::Yes) {
            event->ignore();
            return;
        }
        device_.stop();
    }
    if (!maybeSave()) {
        event->ignore();
        return;
    }
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile()) return;
    if (maybeSave()) openFile(urls.first().toLocalFile());
    event->acceptProposedAction();
}

void MainWindow::rememberRecent(const QString& path) {
    QStringList recent =
        readSetting(QStringLiteral("RecentFiles")).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const QString absolute = QFileInfo(path).absoluteFilePath();
    recent.removeAll(absolute);
    recent.prepend(absolute);
    while (recent.size() > kRecentFiles)
        recent.removeLast();
    writeSetting(QStringLiteral("RecentFiles"), recent.join(QLatin1Char('\n')));
    fillRecentMenu();
}

void MainWindow::fillRecentMenu() {
    recentMenu_->clear();
    const QStringList recent =
        readSetting(QStringLiteral("RecentFiles")).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& path : recent)
        connect(recentMenu_->addAction(path), &QAction::triggered, this, [this, path] {
            if (maybeSave()) openFile(path);
        });
    recentMenu_->setEnabled(!recent.isEmpty());
}

} // namespace ferrule
