#include "MouseHelpers.h"
#include "controls/VSlider.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

class SliderTest : public ::testing::Test {
protected:
    void SetUp() override {
        slider.setMax(100);
        slider.setMin(0);
        slider.setValue(50);
        slider.setEnabledInput(true);
        slider.show();
    }
    // A point on the thumb, in twips.
    int thumbY() const { return slider.thumbTop() + 60; }

    VSlider slider;
    QSignalSpy spy{&slider, &VSlider::Change};
};

} // namespace

TEST_F(SliderTest, DraggingTheThumbFollowsWholeValuesAndStopsAtTheEnds) {
    slider.setMin(1);
    slider.setMax(5);
    slider.setValue(3);
    pressAt(&slider, 645, thumbY());
    EXPECT_TRUE(slider.dragging());
    moveTo(&slider, 645, thumbY() - 200); // 200 twips up: about 1.03 values
    EXPECT_EQ(slider.Value(), 4);
    EXPECT_EQ(slider.thumbTop(), VSlider::thumbPosition(4, 1, 5, 780))
        << "the thumb sits at a whole value";
    moveTo(&slider, 645, 2000); // far below the travel
    EXPECT_EQ(slider.Value(), 1) << "Min, never 0";
    moveTo(&slider, 645, -2000);
    EXPECT_EQ(slider.Value(), 5);
    releaseAt(&slider, 645, 0);
    EXPECT_FALSE(slider.dragging());
    moveTo(&slider, 645, 2000, Qt::NoButton);
    EXPECT_EQ(slider.Value(), 5) << "a move after the release changes nothing";
    EXPECT_EQ(reported(spy), (QList<int>{4, 1, 5}));
}

TEST_F(SliderTest, TrackClicksStepAndAPressBesideTheThumbCountsAsBelow) {
    clickAt(&slider, 645, 60); // above the thumb
    EXPECT_EQ(slider.Value(), 51);
    clickAt(&slider, 645, 1000); // below
    EXPECT_EQ(slider.Value(), 50);
    clickAt(&slider, 150, thumbY()); // beside the thumb at its height
    EXPECT_EQ(slider.Value(), 49);
    EXPECT_FALSE(slider.dragging());

    slider.setValue(100);
    spy.clear();
    clickAt(&slider, 645, 0); // above the thumb at Max: the thumb's top is 0, so this is on it
    clickAt(&slider, 150, 0); // beside it, at its height: one down
    EXPECT_EQ(slider.Value(), 99);
    slider.setValue(0);
    spy.clear();
    clickAt(&slider, 645, 1100); // below at Min
    EXPECT_EQ(slider.Value(), 0);
    EXPECT_TRUE(spy.isEmpty());
    slider.setValue(100);
    slider.setMin(100); // a thumb at the top and nothing above
    clickAt(&slider, 645, 500);
    EXPECT_EQ(slider.Value(), 100);
}

TEST_F(SliderTest, WithoutInputNothingMovesItAndEveryLabelPresetStaysCentredOnTheTrack) {
    slider.setEnabledInput(false);
    clickAt(&slider, 645, 60);
    clickLabel(&slider, Qt::RightButton);
    pressAt(&slider, 645, thumbY());
    EXPECT_FALSE(slider.dragging());
    releaseAt(&slider, 645, thumbY());
    EXPECT_TRUE(spy.isEmpty());
    for (int preset = -5; preset <= 9; ++preset) {
        slider.setLabelWidth(preset);
        const QRect g = slider.valueLabelRect();
        EXPECT_EQ(g.left() * 2 + g.width(), 2 * 645 / 15) << "centred on x = 645 twips";
        EXPECT_EQ(g.top(), 960 / 15);
    }
    // A Min above the value pulls it up.
    slider.setMin(60);
    EXPECT_EQ(slider.Value(), 60);
    EXPECT_TRUE(spy.isEmpty());
}

// A value the range does not hold (a device's data may carry one) puts the thumb outside its
// travel, and it is drawn where presses are tested: a press on the part in sight drags it, a
// press below it, where the thumb of the range's end would stand, steps down.
TEST_F(SliderTest, AValueOutsideTheRangeShowsTheThumbWherePressesFindIt) {
    auto thumbRows = [this] {
        // The thumb's amber line is the only amber in the control.
        const QImage shot = slider.grab().toImage();
        QList<int> rows;
        for (int y = 0; y < shot.height(); ++y)
            for (int x = 0; x < shot.width(); ++x) {
                const QColor c = shot.pixelColor(x, y);
                if (c.red() > 200 && c.green() > 130 && c.green() < 190 && c.blue() < 100) {
                    rows << y;
                    break;
                }
            }
        return rows;
    };
    slider.setMax(20);
    slider.setValue(20);
    const QList<int> atMax = thumbRows();
    ASSERT_FALSE(atMax.isEmpty());
    slider.setValue(21);
    EXPECT_EQ(slider.thumbTop(), -39);
    const QList<int> above = thumbRows();
    ASSERT_FALSE(above.isEmpty()) << "part of the thumb is in sight";
    EXPECT_LT(above.first(), atMax.first()) << "drawn above the travel, where it is";
    pressAt(&slider, 645, 15);
    EXPECT_TRUE(slider.dragging()) << "a press on the thumb in sight";
    releaseAt(&slider, 645, 15);
    clickAt(&slider, 645, 120);
    EXPECT_EQ(reported(spy), (QList<int>{20})) << "below the thumb: one step down";
    slider.setValue(30);
    EXPECT_TRUE(thumbRows().isEmpty()) << "far above the range the thumb is out of sight";
}
