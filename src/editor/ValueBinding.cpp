#include "ValueBinding.h"

#include "EditHistory.h"

#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "pages/ControlPools.h"
#include "pages/PageBuilder.h"
#include "sysdata/FerruleError.h"
#include "sysdata/ModuleState.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>

namespace ferrule {

ValueBinding::ValueBinding(ModuleState& state, ControlPools& pools, PageBuilder& builder,
                           PageViews& views, EditHistory& history, std::function<int()> currentPage,
                           std::function<void(const QString&)> reportError, QObject* parent)
    : QObject(parent)
    , state_(state)
    , pools_(pools)
    , builder_(builder)
    , views_(views)
    , history_(history)
    , currentPage_(std::move(currentPage))
    , reportError_(std::move(reportError)) {}

void ValueBinding::guarded(const std::function<void()>& action) {
    ReportErrors(action, reportError_);
}

void ValueBinding::connectValueControl(ValueControl* control, int index,
                                       void (ValueBinding::*changed)(int index, int value)) {
    connect(control, &ValueControl::Change, this,
            [this, index, changed](int v) { guarded([=, this] { (this->*changed)(index, v); }); });
    connect(control, &ValueControl::failed, this, [this](const QString& m) { reportError_(m); });
    connect(control, &ValueControl::gestureStarted, &history_, &EditHistory::begin);
    connect(control, &ValueControl::gestureFinished, &history_, &EditHistory::end);
}

void ValueBinding::connectControls() {
    for (int i = 0; i < ControlPools::kKnobs; ++i)
        connectValueControl(pools_.knobs[std::size_t(i)], i, &ValueBinding::knobChanged);
    for (int i = 0; i < ControlPools::kSliders; ++i)
        connectValueControl(pools_.sliders[std::size_t(i)], i, &ValueBinding::sliderChanged);
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        pools_.onOff[std::size_t(i)]->installEventFilter(this);
}

void ValueBinding::connectGroups() {
    for (int g = 0; g < ControlPools::kGroups; ++g)
        connect(pools_.groups[std::size_t(g)], &cCheckRadio::Click, this,
                [this, g](int value) { guarded([=, this] { optionGroupClicked(g, value); }); });
}

void ValueBinding::knobChanged(int index, int value) {
    const EditHistory::Scope edit(history_);
    const int address = pools_.knobs.at(std::size_t(index))->MemLoc();
    state_.image.writeParameter(address, state_.model, value);
}

void ValueBinding::sliderChanged(int index, int value) {
    const EditHistory::Scope edit(history_);
    const int address = pools_.sliders.at(std::size_t(index))->MemLoc();
    state_.image.writeParameter(address, state_.model, value);
    builder_.UpdateDependentRanges(index, currentPage_());
}

void ValueBinding::optionGroupClicked(int group, int value) {
    const EditHistory::Scope edit(history_);
    if (group == ControlPools::kSelectorList) {
        selectorClicked(value);
        return;
    }
    state_.image.set(pools_.groups.at(std::size_t(group))->TFormat(), value);
    // The channel option of the system preamp page switches the channel rows.
    if (group == 1 && currentPage_() == 11) builder_.PlaceSystemPreampRows();
}

void ValueBinding::selectorClicked(int value) {
    const GridHooks& grids = builder_.gridHooks();
    switch (currentPage_()) {
    case 5:
        views_.scaleView = value;
        if (grids.showHarmonistGrid) grids.showHarmonistGrid(true); // relabels the scale columns
        if (grids.refreshHarmonistGrid) grids.refreshHarmonistGrid();
        break;
    case 6:
        views_.phraseView = value;
        if (grids.refreshPhraseGrid) grids.refreshPhraseGrid();
        break;
    case 9:
        views_.preampView = value;
        builder_.RebindCustomTone(value + 1);
        break;
    case 11:
        builder_.PlaceSystemPreampRows();
        break;
    case 15:
        builder_.PlaceCtlPedalRows();
        break;
    default:
        break;
    }
}

void ValueBinding::switchClicked(int index) {
    const EditHistory::Scope edit(history_);
    const int address = pools_.onOff.at(std::size_t(index))->property("Tag").toString().toInt();
    // Toggles bit 0: a byte other than 0 or 1 stores 1 when its bit 0 is clear, else 0.
    const int stored = (state_.image.at(address) & 1) ? 0 : 1;
    state_.image.set(address, stored);
    pools_.showSwitchPicture(index, 10 + (stored & 1));
}

void ValueBinding::UpdateDeviceID() {
    if (currentPage_() != 4) return;
    if (state_.model == 8)
        pools_.knobs[7]->setValue(state_.image.at(10431));
    else if (state_.model == 10)
        pools_.knobs[9]->setValue(state_.image.at(19772));
}

bool ValueBinding::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseButtonRelease &&
        type != QEvent::MouseButtonDblClick)
        return QObject::eventFilter(watched, event);
    int index = -1;
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        if (watched == pools_.onOff[std::size_t(i)]) index = i;
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (index < 0 || mouse->button() != Qt::LeftButton) return QObject::eventFilter(watched, event);
    if (type == QEvent::MouseButtonPress) {
        pressedSwitch_ = index;
    } else if (type == QEvent::MouseButtonRelease) {
        const bool click =
            pressedSwitch_ == index &&
            pools_.onOff[std::size_t(index)]->rect().contains(mouse->position().toPoint());
        pressedSwitch_ = -1;
        if (click) guarded([this, index] { switchClicked(index); });
    }
    return true;
}

} // namespace ferrule
