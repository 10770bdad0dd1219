// Every page of every model is built, and every visible bound control is changed through its
// real mouse path; the whole image must then differ from before exactly by that control's
// parameter write.

#include "../controls/MouseHelpers.h"
#include "EditorFixture.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "editor/OptionHover.h"
#include "pages/ControlPools.h"
#include "sysdata/SystemImage.h"

#include <gtest/gtest.h>

using namespace ferrule;

namespace {

// A click on a value label steps down unless the value is at the bottom, then up.
template <class Control> int stepThroughLabel(Control* c, int minimum) {
    const bool down = c->Value() > minimum;
    clickLabel(c, down ? Qt::LeftButton : Qt::RightButton);
    return down ? -1 : 1;
}

// Hovers an item of a group over its glyph and clicks it through the page area.
void clickItem(SysForm& form, cCheckRadio* group, int item) {
    QLabel* glyph = group->glyph(item);
    moveTo(glyph, 90, 90, Qt::NoButton);
    QWidget* area = reinterpret_cast<QWidget*>(form.pageArea());
    const QPoint at = glyph->geometry().center();
    QTest::mousePress(area, Qt::LeftButton, {}, at);
    QTest::mouseRelease(area, Qt::LeftButton, {}, at);
}

struct Counts {
    int knobs = 0, sliders = 0, groups = 0, switches = 0;
};

Counts sweepPage(EditorFixture& f, int model, int page) {
    Counts counts;
    ControlPools& pools = f.form->pools();
    SystemImage& image = f.state.image;
    const std::string where = "GT-" + std::to_string(model) + " page " + std::to_string(page);

    for (int i = 0; i < ControlPools::kKnobs; ++i) {
        RKnob* k = pools.knobs[std::size_t(i)];
        if (k->isHidden()) continue;
        ++counts.knobs;
        SystemImage expected = image;
        const int before = k->Value();
        const int step = stepThroughLabel(k, 0);
        if (!k->Off()) expected.writeParameter(k->MemLoc(), model, before + step);
        EXPECT_TRUE(image == expected) << where << " knob " << i << " at " << k->MemLoc();
        EXPECT_EQ(image.readParameter(k->MemLoc(), model),
                  k->Off() ? image.readParameter(k->MemLoc(), model) : before + step)
            << where << " knob " << i;
    }
    for (int i = 0; i < ControlPools::kSliders; ++i) {
        VSlider* s = pools.sliders[std::size_t(i)];
        if (s->isHidden()) continue;
        ++counts.sliders;
        SystemImage expected = image;
        const int before = s->Value();
        const int step = stepThroughLabel(s, s->Min());
        if (!s->Off() && s->Enabled()) expected.writeParameter(s->MemLoc(), model, before + step);
        EXPECT_TRUE(image == expected) << where << " slider " << i << " at " << s->MemLoc();
    }
    for (int g = 0; g <= 8; ++g) {
        cCheckRadio* group = pools.groups[std::size_t(g)];
        if (!group->isVisible()) continue;
        ++counts.groups;
        const int address = group->TFormat();
        const int target = (group->selectedIndex() + 1) % group->itemCount();
        SystemImage expected = image;
        if (group->Enabled()) expected.set(address, target);
        clickItem(*f.form, group, target);
        EXPECT_TRUE(image == expected) << where << " group " << g << " at " << address;
        EXPECT_FALSE(f.form->hover().active()) << "the release ends the hover";
    }
    for (int i = 0; i < ControlPools::kSwitches; ++i) {
        QLabel* sw = pools.onOff[std::size_t(i)];
        if (sw->isHidden()) continue;
        ++counts.switches;
        const int address = sw->property("Tag").toString().toInt();
        SystemImage expected = image;
        expected.set(address, (image.at(address) & 1) ? 0 : 1);
        QTest::mouseClick(sw, Qt::LeftButton);
        EXPECT_TRUE(image == expected) << where << " switch " << i << " at " << address;
        EXPECT_EQ(sw->property("picture").toInt(), 10 + (image.at(address) & 1));
    }
    return counts;
}

} // namespace

TEST(PageSweep, EveryBoundControlOfEveryPageWritesExactlyItsParameter) {
    EditorFixture f;
    const std::map<int, std::vector<int>> pages = {{3, {1, 2, 3, 4, 7}},
                                                   {5, {1, 4, 8, 9}},
                                                   {6, {1, 4, 8, 9, 10}},
                                                   {8, {1, 4, 7, 8, 9, 10, 11}},
                                                   {10, {1, 4, 9, 11, 12, 13, 14, 15}}};
    int total = 0;
    for (const auto& [model, list] : pages)
        for (int page : list) {
            f.open(model, page);
            const Counts c = sweepPage(f, model, page);
            EXPECT_GT(c.knobs + c.sliders + c.groups + c.switches, 0) << model << "/" << page;
            total += c.knobs + c.sliders + c.groups + c.switches;
        }
    EXPECT_GT(total, 400);
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}

TEST(PageSweep, CustomToneAndPedalSelectionsAreSweptToo) {
    EditorFixture f;
    ControlPools& pools = f.form->pools();
    for (int model : {6, 8, 10})
        for (int n = 0; n < 3; ++n) {
            f.open(model, 9);
            pools.groups[ControlPools::kSelectorList]->ClickOn(n);
            sweepPage(f, model, 9);
        }
    for (int m = 0; m < 2; ++m) {
        f.open(10, 15);
        pools.groups[ControlPools::kSelectorList]->ClickOn(m);
        sweepPage(f, 10, 15);
    }
    for (int k = 0; k < 3; ++k) {
        f.open(10, 11);
        pools.groups[ControlPools::kSelectorList]->ClickOn(k);
        sweepPage(f, 10, 11);
    }
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}
