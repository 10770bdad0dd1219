// What a screen reader finds in the real editor window: for one page of every model, every
// visible control is named with the caption the user sees and reads the value text shown. (That
// the Tab key runs through the page in the reader's order is the keyboard test's, on every page.)

#include "EditorFixture.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "editor/ImageButton.h"
#include "pages/ControlPools.h"
#include "pages/GridEditor.h"

#include <QAccessible>
#include <QAccessibleValueInterface>
#include <QLabel>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

QAccessibleInterface* reader(QObject* o) {
    return QAccessible::queryAccessibleInterface(o);
}

std::string str(const QString& s) {
    return s.toStdString();
}

// One page of each model, with what a reader finds on it.
class ReaderPage : public ::testing::TestWithParam<std::pair<int, int>> {
protected:
    void SetUp() override { f.open(GetParam().first, GetParam().second); }

    // Knobs and sliders: their role, caption, value text and range; counts what it read.
    void readValueControls(int& seen) {
        for (int i = 0; i < ControlPools::kKnobs + ControlPools::kSliders; ++i) {
            const bool isKnob = i < ControlPools::kKnobs;
            const std::size_t at = std::size_t(isKnob ? i : i - ControlPools::kKnobs);
            ValueControl* c = isKnob ? static_cast<ValueControl*>(pools.knobs[at])
                                     : static_cast<ValueControl*>(pools.sliders[at]);
            const QLabel* caption = isKnob ? pools.knobLabels[at] : pools.sliderLabels[at];
            if (c->isHidden()) continue;
            ++seen;
            QAccessibleInterface* a = reader(c);
            ASSERT_NE(a, nullptr);
            EXPECT_EQ(a->role(), isKnob ? QAccessible::Dial : QAccessible::Slider);
            EXPECT_EQ(str(a->text(QAccessible::Name)), str(caption->text()));
            EXPECT_EQ(str(a->text(QAccessible::Value)), str(c->valueText()));
            QAccessibleValueInterface* v = a->valueInterface();
            ASSERT_NE(v, nullptr);
            EXPECT_EQ(v->currentValue().toInt(), c->Value());
            EXPECT_EQ(v->maximumValue().toInt(), c->Max());
            EXPECT_EQ(a->state().disabled, !c->property("inputEnabled").toBool());
        }
    }

    // Option groups' items and the on/off switches; counts what it read.
    void readOptions(int& seen) {
        for (cCheckRadio* group : pools.groups) {
            if (!group->isVisible()) continue;
            for (int item = 0; item < group->itemCount(); ++item, ++seen) {
                QAccessibleInterface* a = reader(group->glyph(item));
                ASSERT_NE(a, nullptr);
                EXPECT_EQ(a->role(), group->itemCount() > 1 ? QAccessible::RadioButton
                                                            : QAccessible::CheckBox);
                EXPECT_EQ(str(a->text(QAccessible::Name)), str(group->label(item)->text()));
                EXPECT_EQ(str(a->text(QAccessible::Description)), str(group->title()));
                EXPECT_EQ(a->state().checked, group->selectedIndex() == item);
            }
        }
        for (int i = 0; i < ControlPools::kSwitches; ++i) {
            QLabel* sw = pools.onOff[std::size_t(i)];
            if (sw->isHidden()) continue;
            ++seen;
            QAccessibleInterface* a = reader(sw);
            ASSERT_NE(a, nullptr);
            EXPECT_EQ(a->role(), QAccessible::CheckBox);
            EXPECT_EQ(str(a->text(QAccessible::Name)),
                      str(pools.onOffLabels[std::size_t(i)]->text()));
            EXPECT_EQ(a->state().checked, sw->property("picture").toInt() == 11);
        }
    }

    EditorFixture f;
    ControlPools& pools = f.form->pools();
};

} // namespace

TEST_P(ReaderPage, EveryControlReadsAsTheUserSeesIt) {
    int seen = 0;
    ASSERT_NO_FATAL_FAILURE(readValueControls(seen));
    ASSERT_NO_FATAL_FAILURE(readOptions(seen));
    EXPECT_GT(seen, 5);
    QAccessibleInterface* tab = reader(f.form->tabButton(f.form->currentTab()));
    EXPECT_EQ(tab->role(), QAccessible::PageTab);
    EXPECT_FALSE(tab->text(QAccessible::Name).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(EveryModel, ReaderPage,
                         ::testing::Values(std::pair{3, 1}, std::pair{5, 9}, std::pair{6, 8},
                                           std::pair{8, 11}, std::pair{10, 14}),
                         [](const auto& info) {
                             return "GT" + std::to_string(info.param.first) + "Page" +
                                    std::to_string(info.param.second);
                         });

TEST(Accessibility, ActionsGoThroughTheUsersPathAndTheGridIsATable) {
    EditorFixture f;
    ControlPools& pools = f.form->pools();
    f.open(8, 1);
    RKnob* knob = pools.knobs[1];
    ASSERT_TRUE(knob->isVisible());
    const int address = knob->MemLoc();
    const int target = knob->Value() > 0 ? 0 : 1;
    reader(knob)->valueInterface()->setCurrentValue(target);
    EXPECT_EQ(f.state.image.at(address), target);
    f.form->undo();
    EXPECT_NE(f.state.image.at(address), target) << "a reader's change is one undo step";

    cCheckRadio* group = nullptr;
    for (cCheckRadio* g : pools.groups)
        if (g->isVisible() && g->Enabled() && g->itemCount() > 1 && g != pools.groups[9]) group = g;
    ASSERT_NE(group, nullptr);
    const int item = (group->selectedIndex() + 1) % group->itemCount();
    QAccessibleInterface* option = reader(group->glyph(item));
    option->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(f.state.image.at(group->TFormat()), item);
    EXPECT_TRUE(option->state().checked);

    f.open(8, 5);
    QAccessibleInterface* table = reader(f.form->grid()->cellsWidget());
    ASSERT_NE(table, nullptr);
    QAccessibleTableInterface* t = table->tableInterface();
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->rowCount(), 12);
    EXPECT_EQ(t->columnCount(), 16);
    QAccessibleInterface* cell = t->cellAt(2, 3);
    ASSERT_NE(cell, nullptr);
    const QStringList rows = f.form->grid()->rowHeadings();
    const QStringList columns = f.form->grid()->columnHeadings();
    EXPECT_EQ(str(cell->text(QAccessible::Name)),
              str(rows[2].trimmed() + QStringLiteral(", ") + columns[3].trimmed() +
                  QStringLiteral(": ") + f.form->grid()->cellText(2 * 16 + 3).trimmed()));
    EXPECT_EQ(cell->tableCellInterface()->rowIndex(), 2);
    EXPECT_EQ(table->indexOfChild(cell), 2 * 16 + 3);
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}
