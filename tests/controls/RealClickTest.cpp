// Clicks on the knob and the slider as a real mouse delivers them through the window: a
// double-click's second press is no press of the control's own, and the value label is a control
// of its own whose clicks step the value and show no help.

#include "MouseHelpers.h"
#include "RealMouse.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"

#include <QApplication>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

// Closes the context help if it is up; true when it was.
bool helpWasShown() {
    bool shown = false;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->inherits("QWhatsThat") && w->isVisible()) {
            shown = true;
            w->close();
        }
    return shown;
}

template <class Control> class RealClickTest : public ::testing::Test {
protected:
    void SetUp() override {
        control.setMax(100);
        control.setValue(50);
        if constexpr (std::is_same_v<Control, VSlider>) control.setEnabledInput(true);
        control.show();
        helpWasShown();
    }
    QPoint label() const { return control.valueLabelRect().center(); }

    Control control;
    QSignalSpy spy{&control, &Control::Change};
};

using Controls = ::testing::Types<RKnob, VSlider>;
TYPED_TEST_SUITE(RealClickTest, Controls);

} // namespace

TYPED_TEST(RealClickTest, ADoubleClickOnTheValueStepsOnce) {
    realMouse::doubleClick(&this->control, this->label());
    EXPECT_EQ(reported(this->spy), (QList<int>{49}));
    realMouse::doubleClick(&this->control, this->label(), Qt::RightButton);
    EXPECT_EQ(reported(this->spy), (QList<int>{49, 50}));
    helpWasShown();
}

TYPED_TEST(RealClickTest, ARightClickOnTheValueStepsUpAndShowsNoHelp) {
    realMouse::click(&this->control, this->label(), Qt::RightButton);
    EXPECT_EQ(reported(this->spy), (QList<int>{51}));
    EXPECT_FALSE(helpWasShown()) << "the value label is a control of its own";
    // Above the label, on the control itself, the right button shows the help and steps nothing.
    realMouse::click(&this->control, QPoint(this->label().x(), 2), Qt::RightButton);
    EXPECT_TRUE(helpWasShown());
    EXPECT_EQ(this->control.Value(), 51);
}

TEST(RealClickOnTheTrack, ADoubleClickAboveTheThumbStepsOnce) {
    VSlider slider;
    slider.setMax(100);
    slider.setValue(50);
    slider.setEnabledInput(true);
    slider.show();
    QSignalSpy spy(&slider, &VSlider::Change);
    realMouse::doubleClick(&slider, QPoint(645 / 15, 60 / 15));
    ASSERT_EQ(spy.size(), 1);
    EXPECT_EQ(slider.Value(), 51);
}
