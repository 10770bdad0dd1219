#include "SysForm.h"

#include "Accessibility.h"
#include "ButtonPress.h"
#include "EditHistory.h"
#include "FocusRing.h"
#include "ImageButton.h"
#include "KeyboardNavigation.h"
#include "OptionHover.h"
#include "PageArea.h"
#include "ValueBinding.h"
#include "controls/HostFont.h"
#include "controls/RKnob.h"
#include "controls/Twips.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "device/ModelMap.h"
#include "pages/ControlPools.h"
#include "pages/GridEditor.h"
#include "settings/SettingsStore.h"
#include "sysdata/FerruleError.h"
#include "sysdata/ModuleState.h"
#include "sysdata/ParameterEncoding.h"
#include "sysdata/ValueText.h"

#include <QCloseEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>

namespace ferrule {
namespace {

constexpr int kTabTop = 120;
constexpr int kModeTop = 120;
constexpr int kModeLeft = 4620;
constexpr int kModeStep = 900;
constexpr int kCommandTop = 630;
constexpr int kCommandLeft = 4620;
constexpr int kCommandStep = 1125;

// The window as designed shows each tab where the first model that shows it puts it, and the
// first model's tabs only; SetFormat moves and shows them per model.
struct TabDesign {
    int left = kHiddenTab;
    bool visible = false;
};
TabDesign tabDesign(int tab) {
    TabDesign design;
    for (const ModelDescription& d : modelDescriptions()) {
        const int left = d.tabs.left[std::size_t(tab)];
        if (design.left == kHiddenTab) design.left = left;
    }
    design.visible = modelDescriptions().front().tabs.left[std::size_t(tab)] != kHiddenTab;
    return design;
}

} // namespace

SysForm::SysForm(ModuleState& state)
    : QDialog(nullptr)
    , state_(state) {
    setObjectName(QStringLiteral("SysForm"));
    setModal(true);
    installEditorAccessibility();
    buildChrome();
    errorReporter_ = [this](const QString& message) {
        auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Marwick"), message,
                                    QMessageBox::Ok, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    };
}

SysForm::~SysForm() = default;

int SysForm::model() const {
    return state_.model;
}

const ButtonArt& SysForm::art() {
    // The pictures are drawn at the window's pixel ratio.
    art_.setRatio(devicePixelRatioF());
    return art_;
}

void SysForm::buildChrome() {
    setFixedSize(twipsToPx(kWidth), twipsToPx(kHeight));
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, QColor(0x23, 0x27, 0x2d));
    pal.setColor(QPalette::WindowText, QColor(0xe4, 0xe8, 0xec));
    setPalette(pal);

    for (int i = 0; i < 13; ++i) {
        auto* b = new ImageButton(i, this);
        b->setObjectName(QStringLiteral("TabButton%1").arg(i));
        tabButtons_[std::size_t(i)] = b;
        showTabPicture(i, i);
        const TabDesign design = tabDesign(i);
        b->move(twipsToPx(design.left), twipsToPx(kTabTop));
        b->setVisible(design.visible);
        b->setToolTip(ButtonArt::tabCaption(i));
        b->setAccessibleName(ButtonArt::tabCaption(i));
    }
    for (int i = 0; i < 5; ++i) {
        auto* b = new ImageButton(i, this);
        b->setObjectName(QStringLiteral("ModeButton%1").arg(i));
        b->setAccessibleName(ButtonArt::modeCaption(i));
        modeButtons_[std::size_t(i)] = b;
        showModePicture(i, i);
        b->move(twipsToPx(kModeLeft + kModeStep * i), twipsToPx(kModeTop));
    }
    for (int i = 0; i < 4; ++i) {
        auto* b = new ImageButton(i, this);
        b->setObjectName(QStringLiteral("CButton%1").arg(i));
        b->setProperty("ferruleCommandButton", true);
        commandButtons_[std::size_t(i)] = b;
        showCommandPicture(i, i + 4);
        b->move(twipsToPx(kCommandLeft + kCommandStep * i), twipsToPx(kCommandTop));
    }
    buildButtonRows();
    txWarning_ = new QLabel(QStringLiteral("Sending system data to the device…"), this);
    txWarning_->setObjectName(QStringLiteral("TxWarning"));
    txWarning_->setGeometry(twipsRect(kCommandLeft, 1095, 3300, 270));
    txWarning_->setStyleSheet(QStringLiteral("color: #f2a33a;"));
    txWarning_->hide();
    txProgress_ = new QLabel(this);
    txProgress_->setObjectName(QStringLiteral("TxProgress"));
    txProgress_->setGeometry(twipsRect(kCommandLeft + 3 * kCommandStep, 1095, 1080, 270));
    txProgress_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    txProgress_->setStyleSheet(QStringLiteral("color: #f2a33a; font-weight: bold;"));
    txProgress_->hide();

    pageArea_ = new PageArea(this);
    pageArea_->setGeometry(0, twipsToPx(kPageTop), twipsToPx(kWidth), twipsToPx(kPageHeight));
    pools_ = std::make_unique<ControlPools>(pageArea_, state_.font,
                                            [this](int value, int format, int type) {
                                                return ValueText(state_.host, value, format, type);
                                            });
    pageArea_->setPanels(std::vector<QWidget*>(pools_->tabBoxes.begin(), pools_->tabBoxes.end()));
    pageArea_->setPanelColourSource([this]() -> std::optional<int> {
        // A host without a panel colour gets flat panels.
        if (!state_.host.hasProperty("ShadingColourPanelEnd")) return std::nullopt;
        bool ok = false;
        const int colour = state_.host.property("ShadingColourPanelEnd").toInt(&ok);
        return ok ? std::optional<int>(colour) : std::nullopt;
    });
    builder_ = std::make_unique<PageBuilder>(*pools_, state_.image);
    history_ = new EditHistory(state_.image, this);
    state_.image.setChangeListener([this](int, int) { imageChanged(); });
    for (const QKeySequence& keys : QKeySequence::keyBindings(QKeySequence::Undo))
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &SysForm::undo);
    QList<QKeySequence> redoKeys = QKeySequence::keyBindings(QKeySequence::Redo);
    if (!redoKeys.contains(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)))
        redoKeys << QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
    for (const QKeySequence& keys : redoKeys)
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &SysForm::redo);
    // The pages from anywhere in the window, as tabbed windows switch them.
    const auto pageKeys = [this](std::initializer_list<QKeyCombination> keys, int step) {
        for (QKeyCombination k : keys)
            connect(new QShortcut(QKeySequence(k), this), &QShortcut::activated, this,
                    [this, step] {
                        switchTabBy(step);
                        focusFirstControl();
                    });
    };
    pageKeys({Qt::CTRL | Qt::Key_Tab, Qt::CTRL | Qt::Key_PageDown}, 1);
    pageKeys({Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab, Qt::CTRL | Qt::SHIFT | Qt::Key_Tab,
              Qt::CTRL | Qt::Key_PageUp},
             -1);
    binding_ = new ValueBinding(
        state_, *pools_, *builder_, views_, *history_, [this] { return currentPage_; },
        [this](const QString& m) { report(m); }, this);
    binding_->connectControls();
    hover_ = new OptionHover(pageArea_, *pools_, this);
    hover_->install();
    keys_ = new KeyboardNavigation(
        *pools_, [this](int i) { runGuarded([this, i] { binding_->switchClicked(i); }); }, this);
    keys_->install();
    focusRing_ = new FocusRing(this);
    for (QWidget* w : tabButtons_)
        focusRing_->watch(w);
    for (QWidget* w : modeButtons_)
        focusRing_->watch(w);
    for (QWidget* w : commandButtons_)
        focusRing_->watch(w);
    for (QWidget* w : pools_->knobs)
        focusRing_->watch(w);
    for (QWidget* w : pools_->sliders)
        focusRing_->watch(w);
    for (QWidget* w : pools_->check2)
        focusRing_->watch(w);
    for (QWidget* w : pools_->check10)
        focusRing_->watch(w);
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        focusRing_->watch(pools_->onOff[std::size_t(i)]);
}

void SysForm::setErrorReporter(std::function<void(const QString&)> reporter) {
    errorReporter_ = std::move(reporter);
}

// Errors of the host as well as the library's own: reported, the window stays open.
void SysForm::report(const QString& message) {
    lastError_ = message;
    if (errorReporter_) errorReporter_(message);
}

void SysForm::runGuarded(const std::function<void()>& action) {
    ReportErrors(action, [this](const QString& m) { report(m); });
}

// ---- set-up and lifecycle --------------------------------------------------------------------

void SysForm::Setup() {
    currentPage_ = -1;
    currentTab_ = -1;
    views_ = PageViews{};

    // The host's system data, byte by byte; a value that is not a byte stops the set-up.
    const QObject* host = state_.host.host();
    if (!host) throw FerruleError(QStringLiteral("SysData: no host object has been set"));
    state_.image.assign(readHostImage());
    history_->clear();
    transmitted_ = false;

    if (!pools_->groups[0]) {
        pools_->createOptionGroups(this);
        binding_->connectGroups();
        grid_ = new GridEditor(pageArea_, state_.image,
                               *pools_->groups[ControlPools::kSelectorList], this);
        connect(grid_, &GridEditor::editStarting, history_, &EditHistory::begin);
        connect(grid_, &GridEditor::editFinished, history_, &EditHistory::end);
        grid_->setErrorReporter([this](const QString& m) { report(m); });
        builder_->setGridHooks({[this](bool v) { grid_->ShowHarmonistGrid(v); },
                                [this](bool v) { grid_->ShowPhraseGrid(v); },
                                [this] { grid_->RefreshHarmonistGrid(); },
                                [this] { grid_->RefreshPhraseGrid(); }});
    }

    QVariant scheme = 0;
    if (!RegRead(RegRoot::LocalMachine, kEditorKey, QStringLiteral("ColourSchemeX2"), scheme))
        scheme = 2;
    setProperty("colourScheme", scheme.toInt());
    ApplyHostFont(this, state_.font);
}

void SysForm::SetFormat(int model) {
    for (int i = 0; i < 5; ++i)
        showModePicture(i, i);
    int button = 4;
    for (int i = 0; i < 4; ++i)
        if (kModels[i] == model) button = i;
    state_.model = button == 4 ? 10 : model;
    builder_->setModel(state_.model);
    showModePicture(button, 20 + button);

    // A tab the model shows goes where the model puts it; a hidden one stays where it stands.
    const ModelTabs& tabs = describeModel(state_.model).tabs;
    for (int i = 0; i < kTabCount; ++i) {
        const int left = tabs.left[std::size_t(i)];
        ImageButton* b = tabButtons_[std::size_t(i)];
        if (left != kHiddenTab) b->move(twipsToPx(left), b->y());
        b->setVisible(left != kHiddenTab);
    }
    setWindowTitle(QStringLiteral("System: GT-%1").arg(state_.model));
}

void SysForm::ShowTab(int page) {
    if (state_.model == 0) return;
    if (page == currentPage_) return;
    const int oldPage = currentPage_;
    currentPage_ = page;
    hover_->EndHover();
    builder_->primitives().ClearPage();
    const int oldTab = currentTab_;
    // Pages without a grid hide the grid of the page they leave; pages 5, 6 and 12-15 do not.
    if ((page >= 1 && page <= 4) || (page >= 7 && page <= 11)) {
        const GridHooks& grids = builder_->gridHooks();
        if (oldPage == 5 && grids.showHarmonistGrid) grids.showHarmonistGrid(false);
        if (oldPage == 6 && grids.showPhraseGrid) grids.showPhraseGrid(false);
    }
    const int tab = tabForPage(page, state_.model);
    if (tab >= 0) currentTab_ = tab;
    // The grid pages show the model's scales or phrases; a model without them keeps the last.
    const int gridData = page == 5   ? harmonistScaleBase(state_.model)
                         : page == 6 ? autoRiffPhraseBase(state_.model)
                                     : -1;
    if (gridData >= 0 && grid_) grid_->setDataAddress(gridData);
    builder_->build(page, views_);
    pageArea_->update();
    if (oldTab >= 0) showTabPicture(oldTab, oldTab);
    if (currentTab_ >= 0) showTabPicture(currentTab_, currentTab_ + 40);
    if (grid_ && grid_->isVisible()) focusRing_->watch(grid_->cellsWidget());
}

std::vector<QWidget*> SysForm::focusOrder() const {
    std::vector<QWidget*> after;
    if (grid_ && grid_->isVisible()) after = {grid_->cellsWidget(), grid_->autoFillButton()};
    const std::vector<QWidget*> chrome = chromeFocusOrder();
    after.insert(after.end(), chrome.begin(), chrome.end());
    return keys_->focusChain(after);
}

void SysForm::focusFirstControl() {
    const std::vector<QWidget*> chain = focusOrder();
    if (chain.empty()) return;
    chain.front()->setFocus(Qt::TabFocusReason);
    focusRing_->showForKeyboard(chain.front());
}

void SysForm::showEvent(QShowEvent* e) {
    QDialog::showEvent(e);
    // A window opens with the focus on the first control of its content.
    focusFirstControl();
}

bool SysForm::focusNextPrevChild(bool next) {
    // Tab and Shift+Tab follow the window's reading order, worked out when they are pressed so
    // that a page switch costs nothing for it.
    const std::vector<QWidget*> chain = focusOrder();
    if (chain.empty()) return QDialog::focusNextPrevChild(next);
    const auto n = std::ptrdiff_t(chain.size());
    // From outside the chain (nothing focused yet) Tab starts at the first control.
    const auto at = std::find(chain.begin(), chain.end(), focusWidget());
    const std::ptrdiff_t from = at == chain.end() ? (next ? n - 1 : 0) : at - chain.begin();
    const std::ptrdiff_t to = (from + (next ? 1 : n - 1)) % n;
    chain[std::size_t(to)]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

std::vector<QWidget*> SysForm::chromeFocusOrder() const {
    // A row of buttons of which one is chosen is one stop, at the chosen button.
    std::vector<QWidget*> order;
    if (currentTab_ >= 0) order.push_back(tabButtons_[std::size_t(currentTab_)]);
    order.push_back(modeButtons_[std::size_t(modeButtonIndex())]);
    order.insert(order.end(), commandButtons_.begin(), commandButtons_.end());
    return order;
}

std::vector<ImageButton*> SysForm::tabBarOrder() const {
    // The model's tabs as they stand left to right (the GT-8 and GT-10 move some of them).
    std::vector<ImageButton*> order;
    for (int i = 0; i < 13; ++i)
        if (TabAvailable(i, state_.model)) order.push_back(tabButtons_[std::size_t(i)]);
    std::stable_sort(order.begin(), order.end(),
                     [](const QWidget* a, const QWidget* b) { return a->x() < b->x(); });
    return order;
}

int SysForm::modeButtonIndex() const {
    for (int i = 0; i < 5; ++i)
        if (modelForModeButton(i) == state_.model) return i;
    return 4;
}

void SysForm::switchTabBy(int step) {
    const std::vector<ImageButton*> tabs = tabBarOrder();
    if (tabs.empty() || currentTab_ < 0) return;
    const auto at = std::find(tabs.begin(), tabs.end(), tabButtons_[std::size_t(currentTab_)]);
    const auto n = std::ptrdiff_t(tabs.size());
    const std::ptrdiff_t from = at == tabs.end() ? 0 : at - tabs.begin();
    const int next = tabs[std::size_t(((from + step) % n + n) % n)]->index();
    tabPress_->down(next);
    tabPress_->up(next);
}

void SysForm::switchModelBy(int step) {
    const int next = modeButtonIndex() + step;
    if (next < 0 || next >= 5) return;
    modePress_->down(next);
    modePress_->up(next);
}

void SysForm::Form_Load() {
    ApplyHostFont(this, state_.font);
    for (int i = 0; i < 4; ++i)
        showCommandPicture(i, i + 4);
    for (int i = 0; i < 13; ++i)
        showTabPicture(i, i);
    if (!loaded_) {
        history_->clear();
        // A window loaded anew has an empty page area: the next ShowTab builds.
        currentPage_ = -1;
        currentTab_ = -1;
    }
    loaded_ = true;
}

void SysForm::Form_Unload() {
    if (state_.model != 0) writeLastPage(state_.model, currentPage_);
}

void SysForm::unload() {
    Form_Unload();
    loaded_ = false;
    done(QDialog::Accepted);
}

void SysForm::closeEvent(QCloseEvent* e) {
    // Closing the window from its frame is a cancel that asks first; it unloads when it may.
    e->ignore();
    if (loaded_) runGuarded([this] { CancelFromKeyboardOrFrame(); });
}

void SysForm::reject() {
    // Escape.
    runGuarded([this] { CancelFromKeyboardOrFrame(); });
}

void SysForm::CancelFromKeyboardOrFrame() {
    // A stray key or click must not cost the edits: the cancel button's own question covers
    // the case after a transmission; otherwise changed values are asked about here.
    if (!transmitted_ && differsFromHost()) {
        QMessageBox box(QMessageBox::Question, QStringLiteral("Marwick"),
                        QStringLiteral("Discard the changes you made to the GT-%1's system "
                                       "settings?")
                            .arg(state_.model),
                        QMessageBox::NoButton, this);
        box.setObjectName(QStringLiteral("DiscardQuestion"));
        QPushButton* discard =
            box.addButton(QStringLiteral("Discard"), QMessageBox::DestructiveRole);
        QPushButton* keep = box.addButton(QStringLiteral("Keep editing"), QMessageBox::RejectRole);
        box.setDefaultButton(keep);
        box.setEscapeButton(keep);
        box.exec();
        if (box.clickedButton() != discard) return;
        unload();
        return;
    }
    CancelEdit();
}

void SysForm::UpdateDeviceID() {
    binding_->UpdateDeviceID();
}

// ---- commands -----------------------------------------------------------------------------------

void SysForm::setTransmissionControl(TransmissionControl control) {
    transmission_ = std::move(control);
}

int SysForm::transmissionStep() const {
    return state_.transmissionStep;
}

void SysForm::showTransmissionProgress(const QString& text) {
    txProgress_->setText(text);
}

void SysForm::transmissionEnded() {
    txWarning_->hide();
    txProgress_->hide();
    showCommandPicture(0, 4);
    emit transmissionStopped();
}

void SysForm::ToggleTransmission() {
    if (state_.transmissionStep != 0) {
        // Stop at once; the progress goes at the next QueueEmpty.
        txWarning_->hide();
        if (transmission_.stop) transmission_.stop();
        showCommandPicture(0, 4);
        emit transmissionStopped();
        return;
    }
    if (!transmission_.start || !transmission_.start()) return;
    showCommandPicture(0, 13);
    txWarning_->show();
    txProgress_->show();
    transmitted_ = true;
}

std::array<std::uint8_t, SystemImage::kSize> SysForm::readHostImage() const {
    std::array<std::uint8_t, SystemImage::kSize> bytes;
    state_.host.readSysData(bytes);
    return bytes;
}

void SysForm::ReloadFromHost() {
    const auto reloaded = readHostImage();
    history_->clear();
    {
        // One rebuild below, whatever changed.
        const QScopedValueRollback quiet(refreshing_, true);
        state_.image.assign(reloaded);
    }
    refreshPage();
}

void SysForm::refreshPage() {
    const int page = currentPage_;
    if (page < 0) return;
    const QScopedValueRollback busy(refreshing_, true);
    // The page's controls are placed again; the one with the focus keeps it.
    const QPointer<QWidget> focused = focusWidget();
    currentPage_ = -1;
    ShowTab(page);
    if (focused && focused != focusWidget() && focused->isVisibleTo(this))
        focused->setFocus(Qt::OtherFocusReason);
}

void SysForm::imageChanged() {
    // The controls show their own edits; anything else (undo, redo, reload) rebuilds the page
    // from the image, which also refits dependent ranges and the grid.
    if (history_->inGesture() || refreshing_) return;
    runGuarded([this] { refreshPage(); });
}

void SysForm::undo() {
    runGuarded([this] { history_->undo(); });
}

void SysForm::redo() {
    runGuarded([this] { history_->redo(); });
}

bool SysForm::differsFromHost() const {
    return state_.host.firstSysDataDifference(state_.image.bytes()) >= 0;
}

void SysForm::CancelEdit() {
    if (transmitted_ && differsFromHost()) {
        const QString text =
            QStringLiteral("Are you sure you want to cancel?\r\n"
                           "This will discard the changes you made in Tonebench,\r\n"
                           "but you transmitted new data to the GT-%1.\r\n"
                           "Click on 'Yes' to cancel anyway.")
                .arg(state_.model);
        QMessageBox box(QMessageBox::Question, QStringLiteral("Marwick"), text,
                        QMessageBox::Yes | QMessageBox::No, this);
        box.setObjectName(QStringLiteral("CancelQuestion"));
        if (box.exec() != QMessageBox::Yes) return;
    }
    unload();
}

void SysForm::CommitAndClose() {
    for (int i = 0; i < SystemImage::kSize; ++i)
        state_.host.setSysData(i, state_.image.at(i));
    unload();
}

// ---- tabs, mode and command buttons
// ---------------------------------------------------------------

bool SysForm::TabAvailable(int tab, int model) {
    if (tab >= kTabCount) return true;
    if (tab < 0) return false;
    // A model other than the four before the GT-10 has the GT-10's tabs.
    const int column = isKnownModel(model) ? model : 10;
    return describeModel(column).tabs.opens[std::size_t(tab)];
}

int SysForm::pageForTab(int tab) {
    return tab >= 0 && tab < kTabCount ? kTabPages[std::size_t(tab)] : -1;
}

int SysForm::modelForModeButton(int index) {
    return kModels[index];
}

// The pictures are drawn when a button is first painted with them, at the window's pixel ratio
// then: a hidden tab's never are.
void SysForm::showTabPicture(int tab, int picture) {
    tabButtons_[std::size_t(tab)]->setPicture(
        {ButtonArt::kTabWidth, ButtonArt::kTabHeight},
        [this, picture]() -> const QPixmap& { return art().Img(picture); },
        QStringLiteral("Img(%1)").arg(picture));
}

void SysForm::showModePicture(int button, int picture) {
    modeButtons_[std::size_t(button)]->setPicture(
        {ButtonArt::kModeWidth, ButtonArt::kModeHeight},
        [this, picture]() -> const QPixmap& { return art().mImg(picture); },
        QStringLiteral("mImg(%1)").arg(picture));
}

void SysForm::showCommandPicture(int button, int picture) {
    // While a transmission runs the transmit button reads "Stop".
    commandButtons_[std::size_t(button)]->setAccessibleName(
        picture >= 12 ? QStringLiteral("Stop") : ButtonArt::commandCaption(button));
    commandButtons_[std::size_t(button)]->setPicture(
        {ButtonArt::kCommandWidth, ButtonArt::kCommandHeight},
        [this, picture]() -> const QPixmap& { return art().CButton(picture); },
        QStringLiteral("CButton(%1)").arg(picture));
}

void SysForm::showCommandNormal(int i) {
    if (i == 0 && state_.transmissionStep != 0)
        showCommandPicture(0, 12);
    else
        showCommandPicture(i, i + 4);
}

void SysForm::showModeChosen(int i) {
    runGuarded([this, i] {
        SetFormat(modelForModeButton(i));
        if (TabAvailable(currentTab_, state_.model)) {
            const int page = currentPage_;
            currentPage_ = -1;
            ShowTab(page);
        } else {
            ShowTab(1);
        }
    });
}

void SysForm::pressCommand(int i) {
    commandPress_->down(i);
    commandPress_->up(i);
}

void SysForm::runCommand(int i) {
    runGuarded([this, i] {
        switch (i) {
        case 0:
            ToggleTransmission();
            break;
        case 1:
            ReloadFromHost();
            break;
        case 2:
            CancelEdit();
            break;
        case 3:
            CommitAndClose();
            break;
        default:
            break;
        }
    });
}

void SysForm::buildButtonRows() {
    // The mode buttons press unless they show the current model; the tab buttons unless theirs is
    // the current tab or the model lacks it; the command buttons always, the transmit button
    // showing its stop picture while a transmission runs.
    modePress_ = std::make_unique<ButtonPress>(ButtonPress::Row{
        [this](int i) { return modelForModeButton(i) != state_.model; },
        [this](int i) { showModePicture(i, i + 10); }, [this](int i) { showModePicture(i, i); },
        [this](int i) { showModeChosen(i); }});
    tabPress_ = std::make_unique<ButtonPress>(ButtonPress::Row{
        [this](int i) { return i != currentTab_ && TabAvailable(i, state_.model); },
        [this](int i) { showTabPicture(i, i + 20); }, [this](int i) { showTabPicture(i, i); },
        [this](int i) {
            const int page = pageForTab(i);
            if (page != currentPage_) runGuarded([this, page] { ShowTab(page); });
        }});
    commandPress_ = std::make_unique<ButtonPress>(ButtonPress::Row{
        [](int) { return true; },
        [this](int i) {
            const bool running = state_.transmissionStep != 0;
            if (running && i == 0)
                showCommandPicture(0, 13);
            else if (!running)
                showCommandPicture(i, i + 8);
        },
        [this](int i) { showCommandNormal(i); }, [this](int i) { runCommand(i); }});
    for (ImageButton* b : modeButtons_) {
        modePress_->attach(b);
        connect(b, &ImageButton::keyStep, this, [this](int, int step) {
            switchModelBy(step);
            modeButtons_[std::size_t(modeButtonIndex())]->setFocus(Qt::TabFocusReason);
        });
    }
    for (ImageButton* b : tabButtons_) {
        tabPress_->attach(b);
        connect(b, &ImageButton::keyStep, this, [this](int, int step) {
            switchTabBy(step);
            if (currentTab_ >= 0)
                tabButtons_[std::size_t(currentTab_)]->setFocus(Qt::TabFocusReason);
        });
    }
    for (ImageButton* b : commandButtons_)
        commandPress_->attach(b);
}

} // namespace ferrule
