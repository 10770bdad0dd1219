#include "MouseHelpers.h"
#include "controls/ControlArt.h"
#include "controls/RKnob.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

class KnobTest : public ::testing::Test {
protected:
    void SetUp() override {
        knob.setValueTextSource(
            [](int v, int f, int t) { return QStringLiteral("%1|%2|%3").arg(v).arg(f).arg(t); });
        knob.setMax(100);
        knob.setValue(50);
        knob.show();
    }

    RKnob knob;
    QSignalSpy spy{&knob, &RKnob::Change};
};

} // namespace

TEST_F(KnobTest, DragFollowsTheAngleWithDeadCentreAndEndStopGap) {
    // A press in the dead centre changes nothing.
    pressAt(&knob, 375, 375);
    releaseAt(&knob, 375, 375);
    EXPECT_EQ(knob.Value(), 50);
    EXPECT_TRUE(spy.isEmpty());

    // Straight up is the middle of the range; the pointer follows the mouse.
    knob.setValue(20);
    pressAt(&knob, 375, 75);
    EXPECT_EQ(knob.Value(), 50);
    EXPECT_EQ(QPoint(knob.pointerLeft(), knob.pointerTop()), QPoint(300, 90));
    // Drag round to the right half, then into the bottom gap: exactly Max.
    moveTo(&knob, 675, 375); // three o'clock: (270° - 30°) × 101 / 300 = 80.8
    EXPECT_EQ(knob.Value(), 80);
    moveTo(&knob, 450, 705);
    EXPECT_EQ(knob.Value(), 100);
    EXPECT_EQ(QPoint(knob.pointerLeft(), knob.pointerTop()), QPoint(405, 482));
    // Moving on along the gap never passes Max.
    moveTo(&knob, 525, 690);
    EXPECT_EQ(knob.Value(), 100);
    releaseAt(&knob, 525, 690);
    EXPECT_EQ(reported(spy), (QList<int>{50, 80, 100}));

    // The left half of the gap gives exactly 0 (from a value far from Max).
    knob.setValue(30);
    spy.clear();
    pressAt(&knob, 300, 705);
    releaseAt(&knob, 300, 705);
    EXPECT_EQ(knob.Value(), 0);
    EXPECT_EQ(reported(spy), (QList<int>{0}));
    EXPECT_FALSE(knob.dragging());
}

TEST_F(KnobTest, JumpGuardKeepsADragFromCrossingTheGap) {
    knob.setMax(10);
    knob.setValue(0);
    // From 0, a point in the upper half of the range is ignored, pointer included.
    const QPoint before(knob.pointerLeft(), knob.pointerTop());
    pressAt(&knob, 675, 375); // three o'clock: value 8
    EXPECT_EQ(knob.Value(), 0);
    EXPECT_EQ(QPoint(knob.pointerLeft(), knob.pointerTop()), before);
    moveTo(&knob, 375, 75); // straight up: value 5, not above half, accepted
    EXPECT_EQ(knob.Value(), 5);
    releaseAt(&knob, 375, 75);

    knob.setValue(10);
    spy.clear();
    pressAt(&knob, 75, 375); // nine o'clock: value 2, below half of Max: ignored
    EXPECT_EQ(knob.Value(), 10);
    moveTo(&knob, 375, 75); // back to 5 is accepted
    EXPECT_EQ(knob.Value(), 5);
    releaseAt(&knob, 375, 75);
    EXPECT_EQ(reported(spy), (QList<int>{5}));

    // With Max 1 there is no guard: 0 to 1 across the top.
    knob.setMax(1);
    knob.setValue(0);
    clickAt(&knob, 675, 375);
    EXPECT_EQ(knob.Value(), 1);
}

TEST_F(KnobTest, DraggingInsideOneSectorMovesThePointerButRaisesNothing) {
    knob.setMax(2); // three sectors of 100°: value 1 covers 130°-230°
    knob.setValue(1);
    pressAt(&knob, 300, 90); // left of straight up, still value 1
    const int left1 = knob.pointerLeft();
    moveTo(&knob, 450, 90); // right of straight up, still value 1
    EXPECT_NE(knob.pointerLeft(), left1);
    releaseAt(&knob, 450, 90);
    EXPECT_EQ(knob.Value(), 1);
    EXPECT_TRUE(spy.isEmpty());
}

// The masked pictures drawn for a finer screen: twice the pixels, painted rather than scaled
// (some 2 × 2 blocks differ inside), and still a mask pair: wherever the mask keeps the
// background, the picture adds nothing to it.
TEST(ControlArtAtScreenRatio, PicturesAreDrawnFinerAndTheirMasksStillHold) {
    struct Pair {
        const QPixmap& image;
        const QPixmap& mask;
    };
    for (qreal ratio : {1.5, 2.0}) {
        for (const Pair& pair :
             {Pair{ControlArt::knobImage(2, ratio), ControlArt::knobMask(ratio)},
              Pair{ControlArt::trackImage(ratio), ControlArt::trackMask(ratio)}}) {
            const QImage image = pair.image.toImage();
            const QImage mask = pair.mask.toImage();
            const QImage one = ControlArt::knobImage(2).toImage();
            EXPECT_EQ(pair.image.devicePixelRatio(), ratio);
            EXPECT_EQ(image.size(), mask.size());
            EXPECT_EQ(pair.image.deviceIndependentSize().toSize(),
                      image.width() > 60 ? one.size() : ControlArt::trackImage().size());
            int kept = 0, uneven = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    if (mask.pixel(x, y) == qRgb(255, 255, 255)) {
                        ++kept;
                        EXPECT_EQ(image.pixel(x, y), qRgb(0, 0, 0))
                            << ratio << " at " << x << "," << y;
                    }
            for (int y = 0; y + 1 < image.height(); y += 2)
                for (int x = 0; x + 1 < image.width(); x += 2)
                    if (image.pixel(x, y) != image.pixel(x + 1, y + 1)) ++uneven;
            EXPECT_GT(kept, 0);
            EXPECT_GT(uneven, 20) << "drawn at " << ratio << ", not pixel-doubled";
        }
    }
}
