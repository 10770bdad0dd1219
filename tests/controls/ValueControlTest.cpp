// What the knob and the slider share, tried on both: the value label's clicks step within the
// range (also as a real mouse delivers them through the window: a double-click's second press is
// no press of the control's own, and the label is a control of its own that shows no help),
// "off" takes values but no input, and a lower range pulls the value in without a signal.

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

// Where the control draws its value: the knob's pointer, the slider's thumb.
QPoint pointerOf(const RKnob& k) {
    return {k.pointerLeft(), k.pointerTop()};
}
QPoint pointerOf(const VSlider& s) {
    return {0, s.thumbTop()};
}

template <class Control> class EitherControl : public ::testing::Test {
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
TYPED_TEST_SUITE(EitherControl, Controls);

} // namespace

TYPED_TEST(EitherControl, LabelClicksStepByOneWithinTheRangeAndOffTakesValuesButNoInput) {
    TypeParam& c = this->control;
    c.setValue(0);
    clickLabel(&c, Qt::LeftButton); // at the bottom: nothing
    clickLabel(&c, Qt::RightButton);
    EXPECT_EQ(c.Value(), 1);
    c.setValue(100);
    clickLabel(&c, Qt::RightButton); // at the top: nothing
    clickLabel(&c, Qt::LeftButton);
    EXPECT_EQ(c.Value(), 99);
    TypeParam set(0);
    set.setMax(100);
    set.setValue(99);
    EXPECT_EQ(pointerOf(c), pointerOf(set)) << "a label step draws the value as setting it does";

    c.setOff(true);
    EXPECT_EQ(c.valueText(), QStringLiteral("off"));
    clickAt(&c, 645, 60);
    clickLabel(&c, Qt::RightButton);
    pressAt(&c, 375, 75);
    EXPECT_FALSE(c.dragging());
    releaseAt(&c, 375, 75);
    EXPECT_EQ(c.Value(), 99);
    c.setValue(7);
    EXPECT_EQ(c.valueText(), QStringLiteral("7")) << "setting Value replaces \"off\"";
    EXPECT_TRUE(c.Off());
    c.setOff(false);
    EXPECT_EQ(c.valueText(), QStringLiteral("7"));
    EXPECT_EQ(reported(this->spy), (QList<int>{1, 99})) << "set values raise nothing";
}

TYPED_TEST(EitherControl, ALowerMaxPullsTheValueInWithoutASignalAndAZeroRangeDividesNothing) {
    TypeParam& c = this->control;
    c.setValue(80);
    const QPoint at = pointerOf(c);
    c.setMax(60);
    EXPECT_EQ(c.Value(), 60);
    EXPECT_EQ(c.valueText(), QStringLiteral("60"));
    if constexpr (std::is_same_v<TypeParam, RKnob>) {
        EXPECT_EQ(pointerOf(c), at) << "the knob's pointer stays where it was";
    }
    c.setMax(0);
    EXPECT_EQ(c.Value(), 0);
    if constexpr (std::is_same_v<TypeParam, RKnob>) {
        c.setValue(3);
        EXPECT_EQ(c.Value(), 0) << "the knob holds no value above its range";
    }
    TypeParam low(0);
    low.setMax(100);
    low.setValue(1);
    low.setValue(0);
    EXPECT_EQ(pointerOf(c), pointerOf(low)) << "drawn at the low end";
    clickAt(&c, 645, 60);
    EXPECT_EQ(c.Value(), 0);
    EXPECT_TRUE(this->spy.isEmpty());
}

TYPED_TEST(EitherControl, ARealDoubleClickOnTheValueStepsOnce) {
    realMouse::doubleClick(&this->control, this->label());
    EXPECT_EQ(reported(this->spy), (QList<int>{49}));
    realMouse::doubleClick(&this->control, this->label(), Qt::RightButton);
    EXPECT_EQ(reported(this->spy), (QList<int>{49, 50}));
    helpWasShown();
}

TYPED_TEST(EitherControl, ARealRightClickOnTheValueStepsUpAndShowsNoHelp) {
    this->control.setCaption(QStringLiteral("Reverb Level"));
    realMouse::click(&this->control, this->label(), Qt::RightButton);
    EXPECT_EQ(reported(this->spy), (QList<int>{51}));
    EXPECT_FALSE(helpWasShown()) << "the value label is a control of its own";
    // Above the label, on the control itself, the right button shows the help, with the caption
    // and the value, and steps nothing.
    realMouse::click(&this->control, QPoint(this->label().x(), 2), Qt::RightButton);
    EXPECT_TRUE(helpWasShown());
    EXPECT_TRUE(this->control.helpText().contains(QStringLiteral("Reverb Level")));
    EXPECT_TRUE(this->control.helpText().contains(QStringLiteral("51")));
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
