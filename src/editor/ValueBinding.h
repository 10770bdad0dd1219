#pragma once

#include <QObject>

#include <functional>

namespace ferrule {

struct ModuleState;
struct PageViews;
class ControlPools;
class PageBuilder;
class EditHistory;
class ValueControl;

// Writes every user change of a bound control into the system data image the moment it is
// made: knobs and sliders (one byte, or two 7-bit bytes at the GT-10's double-byte addresses),
// option groups, switches; applies the few dependent updates; and carries out the selector
// list's actions. Each change is one edit of the history, or part of the control's gesture.
class ValueBinding : public QObject {
    Q_OBJECT
public:
    ValueBinding(ModuleState& state, ControlPools& pools, PageBuilder& builder, PageViews& views,
                 EditHistory& history, std::function<int()> currentPage,
                 std::function<void(const QString&)> reportError, QObject* parent);

    // Connects the knobs, sliders and switches; the option groups once set-up made them.
    void connectControls();
    void connectGroups();

    void knobChanged(int index, int value);
    void sliderChanged(int index, int value);
    void optionGroupClicked(int group, int value);
    void selectorClicked(int value);
    void switchClicked(int index);
    void UpdateDeviceID();

protected:
    // A switch toggles on its click: the left button pressed on it and released over it. A press
    // dragged off and released elsewhere does nothing, and the second press of a double-click is
    // no press, so a double-click toggles once.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void guarded(const std::function<void()>& action);
    // Connects knob or slider `index`: its changes to `changed`, its failures to the report, its
    // gestures to the history.
    void connectValueControl(ValueControl* control, int index,
                             void (ValueBinding::*changed)(int index, int value));

    ModuleState& state_;
    ControlPools& pools_;
    PageBuilder& builder_;
    PageViews& views_;
    EditHistory& history_;
    std::function<int()> currentPage_;
    std::function<void(const QString&)> reportError_;
    // The switch a left press went down on, until its release: -1 for none.
    int pressedSwitch_ = -1;
};

} // namespace ferrule
