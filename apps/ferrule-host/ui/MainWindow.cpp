#include "MainWindow.h"

#include "AfterFirstPaint.h"
#include "FailedSaveDialog.h"
#include "HistoryDock.h"
#include "HistoryModel.h"
#include "MidiMonitor.h"
#include "RecoveryQuestion.h"
#include "SettingsView.h"
#include "catalogue/PageCatalogue.h"
#include "device/ModelDescription.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "document/HostSettings.h"
#include "document/ImageEdit.h"
#include "plugin/ProgramName.h"
#include "settings/SettingsStore.h"
#include "transport/BlockPipeline.h"
#include "transport/SendVerifier.h"

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
#include <QUndoStack>
#include <QVBoxLayout>

#include <utility>

namespace ferrule {

namespace {

constexpr int kRecentFiles = 8;
// The title of the window's own dialogs.
const QString kTitle = programName();

QString readSetting(const QString& name) {
    QVariant v = QString();
    return RegRead(RegRoot::LocalMachine, kHostKey, name, v) ? v.toString() : QString();
}

void writeSetting(const QString& name, const QString& value) {
    RegCreateKey(RegRoot::LocalMachine, kHostKey);
    RegWrite(RegRoot::LocalMachine, kHostKey, name, value);
}

// The page a tab opens, by the tab's caption; -1 for none.
int tabPage(const QString& caption) {
    for (int tab = 0; tab < kTabCount; ++tab)
        if (caption == QLatin1String(PageCatalogue::tabCaption(tab)))
            return kTabPages[std::size_t(tab)];
    return -1;
}

// A long text takes the window's width and wraps, as high as it needs at that width.
void wrapWide(QLabel* label) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    label->setSizePolicy(policy);
}

QString formatName(DataFormat f) {
    return f == DataFormat::Syx    ? QStringLiteral(".syx")
           : f == DataFormat::Text ? QStringLiteral("settings text")
                                   : QStringLiteral("raw image");
}

// The file dialogs' choices: every form ferrule-host reads and writes.
const QString kOpenFilter = QStringLiteral("System data (*.syx *.txt *.bin *.raw);;All files (*)");
const QString kSaveFilter =
    QStringLiteral("System exclusive (*.syx);;Settings text (*.txt);;Raw system data (*)");

} // namespace

MainWindow::MainWindow(const SessionOptions& options, SystemDocument document, QWidget* parent)
    : QMainWindow(parent)
    , options_(options)
    , document_(std::move(document)) {
    setObjectName(QStringLiteral("FerruleHost"));
    setAcceptDrops(true);
    askSave_ = [this](const QString& text) {
        return QMessageBox::question(this, kTitle, text,
                                     QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                     QMessageBox::Save);
    };
    askFailed_ = [this](const QString& error, bool changedOnDisk) {
        return askAfterFailedSave(error, changedOnDisk, this);
    };
    askRecover_ = [this](const QString& question) { return askToRecover(question, this); };
    askSendSnapshot_ = [this](const QString& text) {
        return QMessageBox::question(this, kTitle, text, QMessageBox::Yes | QMessageBox::Cancel,
                                     QMessageBox::Cancel) == QMessageBox::Yes;
    };
    askReadOnly_ = [this](const QString& text) {
        return QMessageBox::question(this, kTitle, text, QMessageBox::Open | QMessageBox::Cancel,
                                     QMessageBox::Cancel) == QMessageBox::Open;
    };
    askUnknown_ = [this] {
        QMessageBox box(QMessageBox::Question, kTitle,
                        QStringLiteral("Nothing is known yet of the data the device holds, so "
                                       "Send Changes would send every message and replace all "
                                       "of the device's system settings.\n\nRead the device "
                                       "first and then send only what differs?"),
                        QMessageBox::NoButton, this);
        QPushButton* read =
            box.addButton(QStringLiteral("Read First (Recommended)"), QMessageBox::AcceptRole);
        QPushButton* all = box.addButton(QStringLiteral("Send Everything"), QMessageBox::YesRole);
        box.addButton(QMessageBox::Cancel);
        box.setDefaultButton(read);
        box.exec();
        return box.clickedButton() == read  ? UnknownDeviceAnswer::ReadFirst
               : box.clickedButton() == all ? UnknownDeviceAnswer::SendEverything
                                            : UnknownDeviceAnswer::Cancel;
    };

    askSendAgain_ = [this](const QString& text, const QStringList& lines) {
        QMessageBox box(QMessageBox::Warning, kTitle, text, QMessageBox::NoButton, this);
        box.setTextFormat(Qt::RichText);
        box.setDetailedText(lines.join(QLatin1Char('\n')));
        QPushButton* again = box.addButton(QStringLiteral("Send Again"), QMessageBox::AcceptRole);
        box.addButton(QMessageBox::Close);
        box.setDefaultButton(again);
        box.exec();
        return box.clickedButton() == again;
    };

    auto* central = new QWidget(this);
    auto* outer = new QVBoxLayout(central);
    auto* form = new QFormLayout;
    outer->addLayout(form);
    // Fields keep their size, but for the long texts, which take the width and wrap.
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
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
    summary_->setWordWrap(true);
    editButton_ = new QPushButton(QStringLiteral("Edit System Settings…"), central);
    editButton_->setObjectName(QStringLiteral("edit"));
    connect(editButton_, &QPushButton::clicked, this, &MainWindow::edit);
    form->addRow(QStringLiteral("Model:"), modelBox_);
    form->addRow(QStringLiteral("Data:"), summary_);
    deviceState_ = new QLabel(central);
    deviceState_->setObjectName(QStringLiteral("deviceState"));
    deviceState_->setWordWrap(true);
    form->addRow(QStringLiteral("Device:"), deviceState_);
    // The ports and the last result are long texts: they wrap instead of being cut.
    portLabel_ = new QLabel(central);
    portLabel_->setObjectName(QStringLiteral("portState"));
    portLabel_->setWordWrap(true);
    form->addRow(QStringLiteral("MIDI:"), portLabel_);
    result_ = new QLabel(central);
    result_->setObjectName(QStringLiteral("result"));
    result_->setWordWrap(true);
    result_->setTextFormat(Qt::RichText);
    connect(result_, &QLabel::linkActivated, this, [this] {
        QMessageBox box(QMessageBox::Information, kTitle, lastResult_, QMessageBox::Ok, this);
        box.setDetailedText(device_.lastDetails());
        box.exec();
    });
    form->addRow(QStringLiteral("Last:"), result_);
    for (QLabel* text : {summary_, deviceState_, portLabel_, result_})
        wrapWide(text);
    form->addRow(QString(), editButton_);
    // What to do first, while the window holds nothing but the default data.
    hint_ = new QLabel(
        QStringLiteral("<b>To begin</b>, read the device: choose its MIDI ports In and Out in "
                       "the MIDI Ports tool bar above, then <b>Device &gt; Request</b>.<br>Or "
                       "open a .syx file with <b>File &gt; Open…</b>, or drop it on this "
                       "window."),
        central);
    hint_->setObjectName(QStringLiteral("firstStartHint"));
    hint_->setWordWrap(true);
    hint_->setFrameShape(QFrame::StyledPanel);
    hint_->setMargin(8);
    hint_->setBackgroundRole(QPalette::ToolTipBase);
    hint_->setForegroundRole(QPalette::ToolTipText);
    hint_->setAutoFillBackground(true);
    wrapWide(hint_);
    outer->insertWidget(0, hint_);
    undo_ = new QUndoStack(this);
    view_ = new SettingsView(central);
    view_->model()->setModel(document_.model());
    outer->addWidget(view_, 1);
    connect(view_, &SettingsView::openRequested, this, &MainWindow::editPage);
    connect(view_, &SettingsView::takeRequested, this, &MainWindow::takeValuesOf);
    setCentralWidget(central);

    monitor_ = new MidiMonitor(this);
    auto* dock = new QDockWidget(QStringLiteral("MIDI Monitor"), this);
    dock->setObjectName(QStringLiteral("MidiMonitorDock"));
    dock->setWidget(monitor_);
    addDockWidget(Qt::BottomDockWidgetArea, dock);
    // The settings take the room; the monitor starts low.
    resizeDocks({dock}, {150}, Qt::Vertical);
    connect(&device_, &DeviceSession::messageIn, monitor_->model(),
            [this](const QByteArray& m) { monitor_->model()->add(true, m); });
    connect(&device_, &DeviceSession::messageOut, monitor_->model(),
            [this](const QByteArray& m) { monitor_->model()->add(false, m); });
    // The history shares the bottom with the monitor, in front: a person looks back at the
    // device's states more often than at its messages.
    historyModel_ = new HistoryModel(&history_, this);
    historyDock_ = new HistoryDock(historyModel_, this);
    addDockWidget(Qt::BottomDockWidgetArea, historyDock_);
    tabifyDockWidget(dock, historyDock_);
    historyDock_->raise();
    connect(historyDock_, &HistoryDock::openRequested, this, &MainWindow::openSnapshot);
    connect(historyDock_, &HistoryDock::sendRequested, this, &MainWindow::sendSnapshot);
    connect(historyDock_, &HistoryDock::compareRequested, this, &MainWindow::compareWithSnapshot);

    progress_ = new QProgressBar(this);
    progress_->setMinimumWidth(300);
    progress_->hide();
    cancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    cancel_->hide();
    connect(cancel_, &QPushButton::clicked, &device_, &DeviceSession::stop);
    statusBar()->addPermanentWidget(progress_);
    statusBar()->addPermanentWidget(cancel_);
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
    connect(&device_, &DeviceSession::linkChanged, this, [this] {
        // A port lost or back is the latest thing that happened, so it is said as such; an
        // operation the loss ended has said so already, with what had left by then.
        // A port closed on purpose (the user chose another) leaves no problem: not a loss.
        const QString problem = device_.linkProblem();
        const bool lost = !problem.isEmpty() && ((hadInput_ && !device_.hasInput()) ||
                                                 (hadOutput_ && !device_.hasOutput()));
        const auto saidAlready = [&] {
            for (const QString& part : problem.split(QStringLiteral("; ")))
                if (lastResult_.contains(part)) return true;
            return false;
        };
        if (lost) {
            if (!saidAlready()) say(problem);
            lossSaid_ = true;
        } else if (lossSaid_ && problem.isEmpty()) {
            say(QStringLiteral("the MIDI ports are open again: %1").arg(portState()));
            lossSaid_ = false;
        }
        hadInput_ = device_.hasInput();
        hadOutput_ = device_.hasOutput();
        showPorts();
        refreshState();
    });
    connect(&device_, &DeviceSession::started, this, [this](DeviceSession::Operation op) {
        readingBack_ = op == DeviceSession::Operation::Verify;
        if (readingBack_) say(QStringLiteral("reading back what was sent…"));
        operation_ = op;
        progress_->setRange(0, 0);
        refreshState();
    });

    buildActions();
    buildPorts();
    AfterFirstPaint::call(this, [this] { finishStart(); });
    device_.setHeader(document_.model(), options_.sysexHeader);
    device_.setGapMs(options_.gapMs);
    resize(960, 720);
    showReadWarnings();
    refreshState();
}

void MainWindow::showReadWarnings() {
    // What the reading kept though it looked wrong (a value outside its range).
    const QStringList& warnings = document_.warnings();
    if (warnings.isEmpty()) return;
    statusBar()->showMessage(warnings.size() == 1 ? warnings.first()
                                                  : QStringLiteral("%1 (and %2 more warnings)")
                                                        .arg(warnings.first())
                                                        .arg(warnings.size() - 1));
}

MainWindow::~MainWindow() {
    // The undo stack, a child, empties itself as it goes and says so: not to a window that is
    // no longer whole.
    undo_->disconnect(this);
}

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
                this, QStringLiteral("Open system data"), QString(), kOpenFilter);
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
                this, QStringLiteral("Save system data as"), document_.path(), kSaveFilter);
            if (!path.isEmpty()) saveAs(path);
        },
        QKeySequence::SaveAs);
    file->addSeparator();
    add(
        file, QStringLiteral("&Quit"), [this] { close(); }, QKeySequence::Quit);

    QMenu* editMenu = menuBar()->addMenu(QStringLiteral("&Edit"));
    undoAction_ = add(
        editMenu, QStringLiteral("&Undo"), [this] { undo_->undo(); }, QKeySequence::Undo);
    redoAction_ = add(
        editMenu, QStringLiteral("&Redo"), [this] { undo_->redo(); }, QKeySequence::Redo);
    connect(undo_, &QUndoStack::indexChanged, this, &MainWindow::updateUndoActions);
    editMenu->addSeparator();
    edit_ = add(
        editMenu, QStringLiteral("&Edit System Settings…"), [this] { edit(); },
        QKeySequence(Qt::CTRL | Qt::Key_E));
    editMenu->addSeparator();
    add(editMenu, QStringLiteral("Compare with &File…"), [this] {
        const QString path = QFileDialog::getOpenFileName(
            this, QStringLiteral("Compare with system data"), QString(),
            QStringLiteral("System data (*.syx *.bin *.raw);;All files (*)"));
        if (!path.isEmpty()) compareWithFile(path);
    });
    compareDevice_ =
        add(editMenu, QStringLiteral("Compare with &Device"), [this] { compareWithDevice(); });
    clearComparison_ = add(editMenu, QStringLiteral("&Clear Comparison"), [this] {
        view_->model()->setImage(SettingsModel::ComparedSide, {});
        view_->setOtherSide(SettingsModel::DocumentSide, {});
        say(QStringLiteral("the comparison is cleared"));
        refreshState();
    });
    editMenu->addSeparator();
    editMenu->addActions(view_->takeActions());

    QMenu* deviceMenu = menuBar()->addMenu(QStringLiteral("&Device"));
    // A greyed item says why, as on the tool bar.
    editMenu->setToolTipsVisible(true);
    deviceMenu->setToolTipsVisible(true);
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
    // On unless turned off: a send is read back and compared with what was sent.
    verify_ = add(deviceMenu, QStringLiteral("&Verify After Send"), [this](bool on) {
        device_.setVerify(on);
        writeSetting(QStringLiteral("VerifyAfterSend"),
                     on ? QStringLiteral("1") : QStringLiteral("0"));
    });
    verify_->setCheckable(true);
    verify_->setChecked(readSetting(QStringLiteral("VerifyAfterSend")) != QLatin1String("0"));
    device_.setVerify(verify_->isChecked());
    deviceMenu->addSeparator();
    add(
        deviceMenu, QStringLiteral("Refresh &Ports"), [this] { refreshPorts(); },
        QKeySequence::Refresh);

    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    view->addAction(findChild<QDockWidget*>(QStringLiteral("MidiMonitorDock"))->toggleViewAction());
    view->addAction(historyDock_->toggleViewAction());

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    add(help, QStringLiteral("&About ferrule-host"), [this] {
        QMessageBox::about(this, QStringLiteral("About %1").arg(kTitle),
                           QStringLiteral("ferrule-host %1\nThe stand-alone host of the Ferrule "
                                          "system-settings editor for GT- devices.")
                               .arg(QCoreApplication::applicationVersion()));
    });

    QToolBar* tools = addToolBar(QStringLiteral("Device"));
    tools->setObjectName(QStringLiteral("DeviceToolBar"));
    for (QAction* a : {receive_, request_, send_, sendChanges_, stop_})
        tools->addAction(a);
    updateUndoActions();
}

void MainWindow::buildPorts() {
    addToolBarBreak();
    QToolBar* ports = addToolBar(QStringLiteral("MIDI Ports"));
    ports->setObjectName(QStringLiteral("PortsToolBar"));
    apiBox_ = new QComboBox(ports);
    inBox_ = new QComboBox(ports);
    inBox_->setObjectName(QStringLiteral("midiIn"));
    outBox_ = new QComboBox(ports);
    outBox_->setObjectName(QStringLiteral("midiOut"));
    inBox_->setMinimumContentsLength(18);
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

    // Until the ports are listed, the boxes show what is chosen, nothing more: no MIDI system
    // when none is (which one runs is not known yet), but room for any of their names.
    const PortChoice chosen = chosenPorts();
    for (MidiApi a : kMidiApis)
        apiBox_->addItem(midiApiName(a).toUpper());
    apiBox_->setCurrentIndex(apiBox_->findText(chosen.api.toUpper()));
    inBox_->addItem(chosen.input.isEmpty() ? QStringLiteral("(none)") : chosen.input);
    outBox_->addItem(chosen.output.isEmpty() ? QStringLiteral("(none)") : chosen.output);
    auto changed = [this] {
        setPorts(inBox_->currentData().toString(), outBox_->currentData().toString());
    };
    connect(inBox_, &QComboBox::activated, this, changed);
    connect(outBox_, &QComboBox::activated, this, changed);
    connect(apiBox_, &QComboBox::activated, this, [this] {
        // Another MIDI system has other ports: the choice starts again.
        device_.closePorts();
        if (const auto a = this->api()) writeSetting(QStringLiteral("MidiApi"), midiApiName(*a));
        showPorts();
    });
}

MainWindow::PortChoice MainWindow::chosenPorts() const {
    const auto given = [](const QString& option, const QString& setting) {
        return !option.isEmpty() ? option : readSetting(setting);
    };
    return {given(options_.midiApi, QStringLiteral("MidiApi")),
            given(options_.midiIn, QStringLiteral("MidiIn")),
            given(options_.midiOut, QStringLiteral("MidiOut"))};
}

void MainWindow::finishStart() {
    openChosenPorts();
    monitor_->buildPanel();
}

void MainWindow::openChosenPorts() {
    if (portsListed_) return;
    portsListed_ = true;
    apiBox_->clear();
    for (MidiApi a : compiledMidiApis())
        apiBox_->addItem(midiApiName(a).toUpper(), int(a));
    const PortChoice chosen = chosenPorts();
    QString api = chosen.api;
    if (api.isEmpty()) {
        QString why;
        if (const auto running = defaultMidiApi(&why)) api = midiApiName(*running);
    }
    const int apiIndex = apiBox_->findText(api.toUpper());
    if (apiIndex >= 0) apiBox_->setCurrentIndex(apiIndex);
    setPorts(chosen.input, chosen.output);
    // The window may have been shown before: the boxes fit the names they hold now, not only
    // those they held then.
    for (QComboBox* box : {inBox_, outBox_})
        box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
}

std::optional<MidiApi> MainWindow::api() const {
    if (apiBox_->count() == 0) return std::nullopt;
    return MidiApi(apiBox_->currentData().toInt());
}

void MainWindow::refreshPorts() {
    if (!portsListed_) return openChosenPorts();
    device_.reconnect();
    showPorts();
}

void MainWindow::showPorts() {
    // The boxes show the ports there are, and the chosen ones: open, or named as gone.
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
    const auto select = [](QComboBox* box, const QString& open, const QString& chosen) {
        const QString name = !open.isEmpty() ? open : chosen;
        if (name.isEmpty()) {
            box->setCurrentIndex(0);
            return;
        }
        int at = box->findData(name);
        if (at < 0 || open.isEmpty()) {
            if (at >= 0) box->removeItem(at);
            // Said first: a long name is cut at the box's end.
            box->addItem(QStringLiteral("(not there) %1").arg(name), name);
            at = box->count() - 1;
        }
        box->setCurrentIndex(at);
    };
    select(inBox_, device_.inputName(), device_.chosenInput());
    select(outBox_, device_.outputName(), device_.chosenOutput());
    refreshState();
}

bool MainWindow::setPorts(const QString& input, const QString& output) {
    // A choice made before the start's listing replaces the one it opens.
    openChosenPorts();
    QString error;
    const std::optional<MidiApi> a = api();
    // A name picks the first listed port that contains it; a port not listed now is kept as
    // chosen, said, and opened as soon as it is there.
    const MidiPortList list =
        a ? listMidiPorts(*a, QStringLiteral("ferrule-host")) : MidiPortList();
    const auto pick = [](const QStringList& ports, const QString& name) {
        const int at = name.isEmpty() ? -1 : choosePort(ports, name);
        return at >= 0 ? ports[at] : name;
    };
    const QString in = pick(list.inputs, input);
    const QString out = pick(list.outputs, output);
    bool ok = true;
    if ((in.isEmpty() && out.isEmpty()) || !a)
        device_.closePorts();
    else
        ok = device_.openPorts(*a, in, out, &error);
    writeSetting(QStringLiteral("MidiIn"), input);
    writeSetting(QStringLiteral("MidiOut"), output);
    if (a) writeSetting(QStringLiteral("MidiApi"), midiApiName(*a));
    showPorts();
    return ok;
}

QString MainWindow::portState() const {
    if (!portsListed_) return QStringLiteral("listing the ports…");
    QString state = QStringLiteral("In: %1  Out: %2")
                        .arg(device_.hasInput() ? device_.inputName() : QStringLiteral("none"),
                             device_.hasOutput() ? device_.outputName() : QStringLiteral("none"));
    QStringList problems;
    // A chosen port's problem says more than the listing's.
    if (!device_.linkProblem().isEmpty())
        problems << device_.linkProblem();
    else if (!systemProblem_.isEmpty())
        problems << systemProblem_;
    if (!problems.isEmpty()) state += QStringLiteral("  (%1)").arg(problems.join("; "));
    return state;
}

QString MainWindow::deviceStateText() const {
    using Kind = DeviceSession::Knowledge::Kind;
    const DeviceSession::Knowledge& k = device_.knowledge();
    const QString at = k.at.toString(QStringLiteral("HH:mm:ss"));
    const bool same = k.image == document_.image();
    const QString data = same ? QStringLiteral("this") : QStringLiteral("other");
    QString text;
    if (k.kind == Kind::Received)
        text = QStringLiteral("holds %1 data (read from it at %2)").arg(data, at);
    else if (k.kind == Kind::Verified)
        text = QStringLiteral("holds %1 data (sent and verified at %2)").arg(data, at);
    else if (k.kind == Kind::Sent)
        text = QStringLiteral("was sent %1 data at %2; not read back").arg(data, at);
    if (!text.isEmpty() && !same) text += QStringLiteral(": Send Changes sends the difference");
    if (text.isEmpty())
        text =
            k.why.isEmpty()
                ? QStringLiteral("not known yet: nothing received from or sent to it in this run")
                : QStringLiteral("not known: %1").arg(k.why);
    if (!device_.linkProblem().isEmpty())
        text = k.kind == Kind::Unknown
                   ? QStringLiteral("not reachable: %1; what it holds is not known")
                         .arg(device_.linkProblem())
                   : QStringLiteral("not reachable: %1; it %2").arg(device_.linkProblem(), text);
    return text;
}

void MainWindow::updateLock() {
    // Held while this window has changes to its file that are not saved.
    lock_.setPath(document_.path());
    if (document_.modified() && !document_.readOnly() && !document_.path().isEmpty()) {
        if (!lock_.lock()) {
            document_.setReadOnly(true);
            say(QStringLiteral("%1 has unsaved changes in another ferrule-host (process %2): "
                               "save yours under another name")
                    .arg(QFileInfo(document_.path()).fileName())
                    .arg(DocumentLock::holder(document_.path())));
        }
    } else {
        lock_.unlock();
    }
}

bool MainWindow::offerRecovery() {
    if (!journal_.offerRecovery(document_, askRecover_)) return false;
    documentReplaced();
    say(QStringLiteral("recovered the changes that were not saved"));
    refreshState();
    return true;
}

void MainWindow::refreshState() {
    updateLock();
    // Every change of the document passes here: its unsaved state is journaled, or its journal
    // goes once it is saved or has no changes.
    journal_.keep(document_, document_.image());
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
                       QString(document_.readOnly() ? QStringLiteral(", read-only: changes "
                                                                     "go to another file")
                                                    : QString()) +
                           (document_.modified() ? QStringLiteral(", changed") : QString())));
    portLabel_->setText(portState());
    deviceState_->setText(deviceStateText());
    const bool idle = device_.busy() == DeviceSession::Operation::None;
    // A disabled action says why.
    const QString busy = QStringLiteral("a transfer with the device is running");
    const QString listing = QStringLiteral("the MIDI ports are being listed");
    const QString noIn = !portsListed_ ? listing
                         : device_.chosenInput().isEmpty()
                             ? QStringLiteral("choose the device's MIDI input port first")
                             : device_.linkProblem();
    const QString noOut = !portsListed_ ? listing
                          : device_.chosenOutput().isEmpty()
                              ? QStringLiteral("choose the device's MIDI output port first")
                              : device_.linkProblem();
    const auto enable = [](auto* item, const QString& why, const QString& what) {
        item->setEnabled(why.isEmpty());
        item->setToolTip(why.isEmpty() ? what : QStringLiteral("Not now: %1").arg(why));
    };
    const auto enableAction = [&](QAction* action, const QString& why) {
        enable(action, why, action->text().remove(QLatin1Char('&')));
    };
    const QString inWhy = !idle ? busy : device_.hasInput() ? QString() : noIn;
    const QString outWhy = !idle ? busy : device_.hasOutput() ? QString() : noOut;
    enableAction(receive_, inWhy);
    enableAction(request_, !inWhy.isEmpty() ? inWhy : outWhy);
    enableAction(send_, outWhy);
    enableAction(sendChanges_, outWhy);
    historyDock_->setSendProblem(outWhy);
    enableAction(stop_,
                 idle ? QStringLiteral("no transfer with the device is running") : QString());
    enableAction(compareDevice_, !inWhy.isEmpty() ? inWhy : outWhy);
    // The document by parameter, beside what the device is known to hold.
    SettingsModel* settings = view_->model();
    settings->setModel(document_.model());
    settings->setImage(SettingsModel::DocumentSide, document_.image());
    settings->setImage(SettingsModel::DeviceSide,
                       device_.knowsDevice() ? device_.knowledge().image : QByteArray());
    enableAction(clearComparison_, settings->known(SettingsModel::ComparedSide)
                                       ? QString()
                                       : QStringLiteral("nothing is compared"));
    view_->setTakeBlocked(idle ? QString() : busy);
    updateUndoActions();
    // An edit while the device's data arrives would be overwritten by it, and what a transfer
    // learns of the device belongs to the model it started with.
    enable(modelBox_, idle ? QString() : busy,
           QStringLiteral("The device model whose data is edited"));
    enableAction(edit_, idle ? QString() : busy);
    enable(editButton_, idle ? QString() : busy, edit_->toolTip());
    // The hint stays until the window holds something of its own: a file, the device's data,
    // an edit.
    hint_->setVisible(document_.path().isEmpty() && !document_.modified() &&
                      device_.knowledge().kind == DeviceSession::Knowledge::Kind::Unknown);
    progress_->setVisible(!idle);
    cancel_->setVisible(!idle);
}

void MainWindow::say(const QString& message) {
    // Shown whole on the Last line, which wraps; the status bar, which would cut it, is left to
    // the progress of a transfer.
    lastResult_ = message;
    QString shown = message.toHtmlEscaped();
    if (!device_.lastDetails().isEmpty() && message.startsWith(QLatin1String("failed")))
        shown += QStringLiteral(" <a href=\"details\">Details…</a>");
    result_->setText(shown);
}

void MainWindow::documentReplaced() {
    undo_->clear();
    view_->model()->setImage(SettingsModel::ComparedSide, {});
    view_->setOtherSide(SettingsModel::DocumentSide, {});
}

void MainWindow::updateUndoActions() {
    // Not while the device's data arrives: it would replace the document under the step. A
    // greyed action says why.
    const bool idle = device_.busy() == DeviceSession::Operation::None;
    const auto update = [idle](QAction* action, const QString& verb, bool can,
                               const QString& step) {
        action->setText(can ? QStringLiteral("&%1 %2").arg(verb, step)
                            : QStringLiteral("&%1").arg(verb));
        const QString why = !idle  ? QStringLiteral("a transfer with the device is running")
                            : !can ? QStringLiteral("nothing to %1").arg(verb.toLower())
                                   : QString();
        action->setEnabled(why.isEmpty());
        action->setToolTip(why.isEmpty() ? QStringLiteral("%1 %2").arg(verb, step)
                                         : QStringLiteral("Not now: %1").arg(why));
    };
    update(undoAction_, QStringLiteral("Undo"), undo_->canUndo(), undo_->undoText());
    update(redoAction_, QStringLiteral("Redo"), undo_->canRedo(), undo_->redoText());
}

void MainWindow::newDocument() {
    document_ = SystemDocument(document_.model(), options_.dataSetHeader(document_.model()));
    documentReplaced();
    say(QStringLiteral("new GT-%1 system data from the defaults").arg(document_.model()));
    refreshState();
}

bool MainWindow::openFile(const QString& path) {
    QString error;
    // A settings text names its model.
    const int textModel = SystemDocument::textModel(path);
    int model = textModel != 0 ? textModel : document_.model();
    auto header = [this](int m) { return options_.dataSetHeader(m); };
    std::optional<SystemDocument> doc = SystemDocument::open(path, model, header(model), &error);
    if (!doc) {
        // Another model's dump: say which, and offer to switch.
        static const QRegularExpression other(QStringLiteral("holds GT-(\\d+) system data"));
        const auto m = other.match(error);
        if (m.hasMatch()) {
            const QString name = QFileInfo(path).fileName();
            if (QMessageBox::question(this, kTitle,
                                      QStringLiteral("%1 holds GT-%2 system data.\nSwitch to the "
                                                     "GT-%2 and open it?")
                                          .arg(name, m.captured(1))) != QMessageBox::Yes) {
                // The answer was the user's own: said on the Last line, not asked again.
                say(QStringLiteral("not opened: %1 holds GT-%2 system data (choose the GT-%2 "
                                   "in the Model box to open it)")
                        .arg(name, m.captured(1)));
                return false;
            }
            model = m.captured(1).toInt();
            doc = SystemDocument::open(path, model, header(model), &error);
        }
    }
    if (!doc) {
        say(error);
        QMessageBox::warning(this, kTitle, error);
        return false;
    }
    // One writer per file: another ferrule-host with unsaved changes to it keeps it.
    if (const qint64 other = DocumentLock::holder(path)) {
        if (!askReadOnly_(QStringLiteral("%1 has unsaved changes in another ferrule-host "
                                         "(process %2). Open it read-only? Your changes can "
                                         "then be saved under another name only.")
                              .arg(QFileInfo(path).fileName())
                              .arg(other)))
            return false;
        doc->setReadOnly(true);
    }
    document_ = std::move(*doc);
    documentReplaced();
    modelBox_->setCurrentIndex(modelBox_->findData(document_.model()));
    device_.setHeader(document_.model(), options_.sysexHeader);
    rememberRecent(path);
    say(QStringLiteral("opened %1").arg(path));
    showReadWarnings();
    refreshState();
    return true;
}

bool MainWindow::save() {
    if (document_.path().isEmpty()) {
        const QString path = QFileDialog::getSaveFileName(
            this, QStringLiteral("Save system data as"), QString(), kSaveFilter);
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
    documentReplaced();
    device_.setHeader(model, options_.sysexHeader);
    say(QStringLiteral("now editing the GT-%1").arg(model));
    refreshState();
}

void MainWindow::takeImage(const QByteArray& image, const QString& why, const QString& step) {
    if (image != document_.image())
        undo_->push(new ImageEdit(
            step.isEmpty() ? why : step, document_.image(), image,
            [this] { return document_.image(); },
            [this](const QByteArray& next, const QString& what) {
                document_.setImage(next);
                say(what);
                refreshState();
            }));
    say(why);
    refreshState();
}

void MainWindow::takeValuesOf(const std::vector<const Parameter*>& parameters,
                              const QString& step) {
    const SettingsModel* settings = view_->model();
    const SettingsModel::Side side = view_->otherSide();
    if (side == SettingsModel::DocumentSide || !settings->known(side)) return;
    int differing = 0;
    for (const Parameter* p : parameters)
        differing += settings->differs(p, side) ? 1 : 0;
    if (differing == 0) {
        say(QStringLiteral("%1: nothing to take, the values are the same").arg(step));
        return;
    }
    takeImage(takeValues(document_.image(), settings->image(side), parameters),
              QStringLiteral("took %1 %2 from %3")
                  .arg(differing)
                  .arg(differing == 1 ? QStringLiteral("value") : QStringLiteral("values"),
                       view_->otherName()),
              step);
}

bool MainWindow::compareWithFile(const QString& path) {
    // The one place a compared file is read: in every form the document itself can be opened
    // from.
    QString error;
    const std::optional<SystemDocument> other = SystemDocument::open(
        path, document_.model(), options_.dataSetHeader(document_.model()), &error);
    if (!other) {
        say(QStringLiteral("not compared: %1").arg(error));
        return false;
    }
    showCompared(other->image(), QFileInfo(path).fileName(), path);
    return true;
}

bool MainWindow::compareWithSnapshot(const QString& path) {
    Snapshot s;
    const std::optional<SystemDocument> snapshot =
        loadSnapshot(path, &s, QStringLiteral("not compared"));
    if (!snapshot) return false;
    const QString name = QStringLiteral("%1 %2").arg(Snapshot::kindName(s.kind), s.localTime());
    showCompared(snapshot->image(), name, QStringLiteral("the snapshot %1").arg(name));
    return true;
}

void MainWindow::showCompared(const QByteArray& image, const QString& column, const QString& what) {
    view_->model()->setImage(SettingsModel::ComparedSide, image);
    view_->setOtherSide(SettingsModel::ComparedSide, column);
    refreshState();
    const int count = view_->model()->differences(SettingsModel::ComparedSide);
    say(QStringLiteral("compared with %1: %2").arg(what, settingsDiffer(count)));
}

void MainWindow::compareWithDevice() {
    compareAfterRead_ = true;
    startReceive(true);
    if (device_.busy() == DeviceSession::Operation::None) compareAfterRead_ = false;
}

bool MainWindow::editPage(const QString& page) {
    // The editor starts on the page it remembers for the model, which it reads from the
    // settings store: that is where the host sets it.
    // It keeps only the first pages so; for the others it starts on the first.
    const int number = tabPage(page);
    const bool taken = number >= 0 && number <= kLastPageKept;
    RegCreateKey(RegRoot::LocalMachine, kEditorKey);
    writeLastPage(document_.model(), taken ? number : 1);
    if (!taken)
        say(QStringLiteral("the editor starts on its System page: choose its %1 tab").arg(page));
    return edit();
}

bool MainWindow::edit() {
    if (!editorLoaded_) {
        QString error;
        if (!editor_.load(options_.pluginPath, &error)) {
            say(error);
            QMessageBox::warning(this, kTitle, error);
            return false;
        }
        editorLoaded_ = true;
    }
    const std::shared_ptr<MidiOutput> output = device_.sharedOutput();
    BlockPipeline pipeline({options_.sysexHeader, options_.gapMs, {}}, output.get());
    QString why;
    pipeline.open(&why);
    connect(&pipeline, &BlockPipeline::messageSent, this, [this](const QByteArray& m) {
        monitor_->model()->add(false, m);
        device_.forgetDevice(QStringLiteral("the editor sent data to it"));
    });
    connect(&pipeline, &BlockPipeline::outputFailed, this, [this, &pipeline](const QString& w) {
        editor_.stopTransmission();
        QMessageBox::warning(QApplication::activeModalWidget(), kTitle,
                             QStringLiteral("The transmission stopped: %1.\nSent %2.")
                                 .arg(w, pipeline.deliveryReport()));
    });
    RegCreateKey(RegRoot::LocalMachine, kEditorKey);
    PlugInEditor::Run run;
    run.model = document_.model();
    run.title = QStringLiteral("GT-%1").arg(document_.model());
    run.owner = this;
    run.pipeline = &pipeline;
    // The editor's changes are journaled as they are made, before OK hands them over.
    run.edited = [this](const QByteArray& image) { journal_.keep(document_, image); };
    const PlugInEditor::Result result = editor_.edit(document_.image(), run);
    if (!result.ok) {
        say(QStringLiteral("the editor stopped: %1").arg(result.error));
        return false;
    }
    if (result.changed) {
        takeImage(result.image, QStringLiteral("edited"), QStringLiteral("Edit System Settings"));
    } else {
        say(QStringLiteral("the editor closed without changes"));
        refreshState();
    }
    return result.changed;
}

void MainWindow::startReceive(bool request) {
    // What arrives replaces the document: unsaved changes are asked about first.
    if (!sendAfterRead_ && !compareAfterRead_ && !maybeSave()) return;
    device_.receive(document_.image(), request, options_.timeoutS);
    if (device_.busy() == DeviceSession::Operation::None) {
        // The port may have gone while a question was open.
        say(QStringLiteral("not started: %1")
                .arg(!device_.linkProblem().isEmpty() ? device_.linkProblem()
                                                      : QStringLiteral("a port is missing")));
        refreshState();
        return;
    }
    say(request ? QStringLiteral("requesting the GT-%1's system data…").arg(document_.model())
                : QStringLiteral("waiting for a dump from the GT-%1: start it on the device")
                      .arg(document_.model()));
    refreshState();
}

void MainWindow::startSend(bool onlyChanges) {
    if (onlyChanges && !device_.knowsDevice()) {
        switch (askUnknown_()) {
        case UnknownDeviceAnswer::ReadFirst:
            if (!device_.hasInput()) {
                say(QStringLiteral("not sent: the device cannot be read without its MIDI input "
                                   "port"));
                return;
            }
            sendAfterRead_ = true;
            startReceive(true);
            if (device_.busy() == DeviceSession::Operation::None) sendAfterRead_ = false;
            return;
        case UnknownDeviceAnswer::SendEverything:
            break;
        case UnknownDeviceAnswer::Cancel:
            return;
        }
    }
    const int queued = device_.send(document_.image(), onlyChanges);
    if (queued > 0) say(QStringLiteral("sending %1…").arg(messageCount(queued)));
    refreshState();
}

void MainWindow::operationFinished(bool ok, const QString& done) {
    // A failed or stopped operation leaves nothing in the history; but a read-back that failed
    // or found differences follows a send that happened, and that send is kept.
    const bool sent = ok || operation_ == DeviceSession::Operation::Verify;
    const QString message = sent ? done + recordSnapshot() : done;
    operation_ = DeviceSession::Operation::None;
    if (compareAfterRead_) {
        // Read to compare: the device's data fills the Device column, the document stays.
        compareAfterRead_ = false;
        refreshState();
        if (!ok) {
            say(QStringLiteral("failed: %1").arg(message));
            return;
        }
        view_->setOtherSide(SettingsModel::DeviceSide, QStringLiteral("the device"));
        const int count = view_->model()->differences(SettingsModel::DeviceSide);
        say(QStringLiteral("%1; compared: %2").arg(message, settingsDiffer(count)));
        return;
    }
    if (sendAfterRead_) {
        // The device was read only to know what it holds; the document stays as it is.
        sendAfterRead_ = false;
        say(ok ? message : QStringLiteral("failed: %1").arg(message));
        if (ok) startSend(true);
        refreshState();
        return;
    }
    const bool readBack = std::exchange(readingBack_, false);
    if (ok && !device_.received().isEmpty() && message.startsWith(QLatin1String("received"))) {
        takeImage(device_.received(), message, QStringLiteral("Receive"));
    } else {
        say(ok ? message : QStringLiteral("failed: %1").arg(message));
    }
    refreshState();
    // Asked once the device session has finished its own work.
    if (readBack && device_.verification() &&
        device_.verification()->outcome() == SendVerifier::Outcome::Differs)
        QMetaObject::invokeMethod(this, &MainWindow::offerSendAgain, Qt::QueuedConnection);
}

void MainWindow::offerSendAgain() {
    const SendVerifier* v = device_.verification();
    if (!v || v->outcome() != SendVerifier::Outcome::Differs) return;
    const QStringList lines = v->differenceLines();
    const int messages = int(v->messagesToSendAgain().size());
    // The settings one a line, unwrapped; the whole list is under Show Details.
    QStringList shown = lines.mid(0, 12);
    if (lines.size() > 12) shown << QStringLiteral("… and %1 more").arg(lines.size() - 12);
    const QString text =
        QStringLiteral("<p>The device holds %1 setting(s) otherwise than they were sent (sent "
                       "-&gt; held):</p><p style=\"white-space:pre\">%2</p><p>Send the %3 "
                       "message(s) that carry them again?</p>")
            .arg(lines.size())
            .arg(shown.join(QLatin1Char('\n'))
                     .toHtmlEscaped()
                     .replace(QLatin1Char('\n'), QStringLiteral("<br>")))
            .arg(messages);
    if (!askSendAgain_(text, lines)) return;
    const int queued = device_.sendAgain();
    if (queued > 0) say(QStringLiteral("sending %1 again…").arg(messageCount(queued)));
    refreshState();
}

QString MainWindow::recordSnapshot() {
    using Operation = DeviceSession::Operation;
    Snapshot::Kind kind = Snapshot::Kind::Sent;
    QByteArray image = device_.received();
    QStringList ports;
    switch (operation_) {
    case Operation::Receive:
        kind = Snapshot::Kind::Received;
        ports = {device_.inputName()};
        break;
    case Operation::Request:
        kind = Snapshot::Kind::Requested;
        ports = {device_.inputName(), device_.outputName()};
        break;
    case Operation::Send:
        // Whole or only the changes, the device now holds what it was last known to hold with
        // the messages sent over it.
        image = device_.knowledge().image;
        ports = {device_.outputName()};
        break;
    case Operation::Verify:
        // What was sent, verified when the device was read back holding all of it.
        if (const SendVerifier* v = device_.verification()) {
            image = v->sentImage();
            if (v->outcome() == SendVerifier::Outcome::Verified) kind = Snapshot::Kind::Verified;
        }
        ports = {device_.outputName(), device_.inputName()};
        break;
    case Operation::None:
        return {};
    }
    if (image.isEmpty()) return {};
    ports.removeAll(QString());
    ports.removeDuplicates();
    QString error;
    history_.record(kind, document_.model(), image, options_.dataSetHeader(document_.model()),
                    ports, &error);
    return error.isEmpty() ? QString() : QStringLiteral("; not kept in the history: %1").arg(error);
}

std::optional<SystemDocument> MainWindow::loadSnapshot(const QString& path, Snapshot* snapshot,
                                                       const QString& refused,
                                                       const QString& hint) {
    QString error = QStringLiteral("%1 is not a snapshot of the history").arg(path);
    std::optional<SystemDocument> doc;
    if (const std::optional<Snapshot> s = History::of(path)) {
        *snapshot = *s;
        doc = SystemDocument::open(path, s->model, options_.dataSetHeader(s->model), &error);
    }
    if (!doc) {
        say(error);
        QMessageBox::warning(this, kTitle, error);
    } else if (!refused.isEmpty() && snapshot->model != document_.model()) {
        say(QStringLiteral("%1: the snapshot holds GT-%2 system data and the window edits the "
                           "GT-%3%4")
                .arg(refused)
                .arg(snapshot->model)
                .arg(document_.model())
                .arg(hint.isEmpty() ? hint : hint.arg(snapshot->model)));
        doc.reset();
    }
    return doc;
}

bool MainWindow::openSnapshot(const QString& path) {
    if (!maybeSave()) return false;
    Snapshot s;
    const std::optional<SystemDocument> snapshot = loadSnapshot(path, &s);
    if (!snapshot) return false;
    // A new document: saving it must not write into the history.
    SystemDocument next(snapshot->model(), snapshot->header());
    next.setImage(snapshot->image());
    document_ = std::move(next);
    modelBox_->setCurrentIndex(modelBox_->findData(document_.model()));
    device_.setHeader(document_.model(), options_.sysexHeader);
    say(QStringLiteral("opened the GT-%1 system data %2 on %3 as new data")
            .arg(s.model)
            .arg(Snapshot::kindName(s.kind), s.localTime()));
    refreshState();
    return true;
}

bool MainWindow::sendSnapshot(const QString& path) {
    Snapshot s;
    const std::optional<SystemDocument> snapshot =
        loadSnapshot(path, &s, QStringLiteral("not sent"),
                     QStringLiteral(" (choose the GT-%1 in the Model box first)"));
    if (!snapshot) return false;
    if (!askSendSnapshot_(QStringLiteral("Send the GT-%1 system data %2 on %3 to the device?\n\n"
                                         "It replaces all of the device's system settings.")
                              .arg(s.model)
                              .arg(Snapshot::kindName(s.kind), s.localTime())))
        return false;
    const int queued = device_.send(snapshot->image(), false);
    if (queued > 0) say(QStringLiteral("sending the snapshot: %1…").arg(messageCount(queued)));
    refreshState();
    return queued > 0;
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
        if (QMessageBox::question(this, kTitle,
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
    // Saved, discarded or unchanged: nothing is left to recover.
    journal_.drop();
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
