#include "EditorFixture.h"
#include "catalogue/OptionList.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "pages/ControlPools.h"
#include "pages/PagePrimitives.h"

#include <gtest/gtest.h>

using namespace ferrule;

TEST(Primitives, OptionListsSplitAtExactlyTheirCount) {
    EXPECT_EQ(splitGroupOptions(QStringLiteral("Num pedal sw!Off!Tuner!Solo!Amp Ch."), 4),
              (QStringList{"Off", "Tuner", "Solo", "Amp Ch.", "Num pedal sw"}));
    EXPECT_EQ(splitGroupOptions(QStringLiteral("Tuner out!Mute!Bypass"), 2),
              (QStringList{"Mute", "Bypass", "Tuner out"}));
    EXPECT_EQ(splitGroupOptions(QStringLiteral(" !Patch!System"), 2),
              (QStringList{"Patch", "System", " "}));
    EXPECT_EQ(splitGroupOptions(QStringLiteral("T!a!b!c"), 2), (QStringList{"a", "b!c", "T"}))
        << "a further \"!\" stays in the last option";
    const QStringList list =
        PagePrimitives::splitListOptions(QStringLiteral("Edit Phrase!1!2!3!4!5!6!7!8!9!10"));
    ASSERT_EQ(list.size(), 11);
    EXPECT_EQ(list[0], QStringLiteral("1"));
    EXPECT_EQ(list[9], QStringLiteral("10"));
    EXPECT_EQ(list[10], QStringLiteral("Edit Phrase"));
    const QStringList three = PagePrimitives::splitListOptions(QStringLiteral("Edit Preamp!1!2!3"));
    EXPECT_EQ(three.mid(0, 4), (QStringList{"1", "2", "3", ""}));
    EXPECT_EQ(three[10], QStringLiteral("Edit Preamp"));
    EXPECT_EQ(optionCount(6), 4);
    EXPECT_EQ(optionCount(7), 3);
    EXPECT_EQ(optionCount(5), 2);
}

// Where each kind of control stands from its placement in twips, and its binding. (Its range and
// caption are the parameter index's law, a slider's Min and a switch's picture the page sweeps'.)
TEST(Primitives, PlacementOffsetsAndBindings) {
    EditorFixture f;
    f.form->SetFormat(10);
    ControlPools& pools = f.form->pools();
    PagePrimitives& place = f.form->builder().primitives();
    RKnob* k = pools.knobs[2];
    f.state.image.set(19124, 0);
    f.state.image.set(19125, 99);
    place.PlaceKnob(2, 3705, 600, 0, 18, 99, 19124, QStringLiteral("Bank Low"), 0, true);
    EXPECT_EQ(k->Value(), 99) << "a double-byte address reads 14 bits on the GT-10";
    EXPECT_EQ(k->pos(), QPoint((3705 + 135) / 15, (600 + 270) / 15));
    EXPECT_EQ(pools.knobLabels[2]->y(), (600 - 195) / 15) << "caption above";
    f.form->SetFormat(8);
    place.PlaceKnob(2, 3705, 600, 0, 18, 99, 19124, QStringLiteral("Bank Low"), 0, false);
    EXPECT_EQ(k->Value(), 0) << "the same address is one byte on the GT-8";
    EXPECT_EQ(pools.knobLabels[2]->y(), 600 / 15);
    // Hiding never reads the image and keeps the binding.
    place.PlaceKnob(2, -1, 0, 0, 0, 0, 999999, {}, 0, false);
    EXPECT_TRUE(k->isHidden());
    EXPECT_EQ(k->MemLoc(), 19124);

    place.PlaceSlider(4, 4575, 2460, 183, 5, 10425, QStringLiteral("Sub Exp"), 4);
    EXPECT_EQ(pools.sliders[4]->pos(), QPoint(4575 / 15, (2460 + 270) / 15));
    place.PlaceSwitch(0, 7590, 2655, 7032, QStringLiteral("Exp pedal hold"));
    EXPECT_EQ(pools.onOff[0]->pos(), QPoint(7590 / 15, (2655 + 240) / 15));
}
