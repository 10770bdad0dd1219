#include "../controls/MouseHelpers.h"
#include "EditorFixture.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "device/ModelDescription.h"
#include "editor/OptionHover.h"
#include "editor/PageArea.h"
#include "editor/ValueBinding.h"
#include "pages/ControlPools.h"

#include <gtest/gtest.h>

using namespace ferrule;

namespace {

// What a page binds: every visible control's kind, index, address and position.
QStringList layout(SysForm& form) {
    QStringList out;
    ControlPools& p = form.pools();
    for (auto* k : p.knobs)
        if (!k->isHidden())
            out << QStringLiteral("knob %1 %2 %3,%4")
                       .arg(k->poolIndex())
                       .arg(k->MemLoc())
                       .arg(k->x())
                       .arg(k->y());
    for (auto* s : p.sliders)
        if (!s->isHidden())
            out << QStringLiteral("slider %1 %2 %3,%4")
                       .arg(s->poolIndex())
                       .arg(s->MemLoc())
                       .arg(s->x())
                       .arg(s->y());
    for (int g = 0; g < ControlPools::kGroups; ++g)
        if (p.groups[std::size_t(g)]->isVisible())
            out << QStringLiteral("group %1 %2").arg(g).arg(p.groups[std::size_t(g)]->TFormat());
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        if (!p.onOff[std::size_t(i)]->isHidden())
            out << QStringLiteral("switch %1 %2")
                       .arg(i)
                       .arg(p.onOff[std::size_t(i)]->property("Tag").toString());
    for (int i = 0; i < ControlPools::kHeadings; ++i)
        if (!p.tabBoxes[std::size_t(i)]->isHidden())
            out << QStringLiteral("heading %1 %2").arg(i).arg(p.tabLabels[std::size_t(i)]->text());
    return out;
}

std::vector<int> knobAddresses(SysForm& form, std::initializer_list<int> knobs) {
    std::vector<int> out;
    for (int k : knobs)
        out.push_back(form.pools().knobs[std::size_t(k)]->MemLoc());
    return out;
}

} // namespace

TEST(PageBuilder, PagesTwoThreeAndSevenRepeatPageOne) {
    EditorFixture f;
    for (int model : {3, 5, 6, 8, 10}) {
        f.open(model, 1);
        const QStringList one = layout(*f.form);
        EXPECT_FALSE(one.isEmpty());
        for (int page : {2, 3, 7}) {
            f.rebuild(page);
            if (model == 8 && page == 7) {
                EXPECT_NE(layout(*f.form), one);
            } else {
                EXPECT_EQ(layout(*f.form), one) << model << " page " << page;
            }
        }
    }
}

TEST(PageBuilder, ALackedPageStaysEmptyAndOnlyTheGt8HasAnOddSliderAndKnob) {
    EditorFixture f;
    ControlPools& p = f.form->pools();
    for (int model : kModels)
        for (int page = 1; page <= 15; ++page) {
            f.open(model, page);
            const std::vector<int> pages = pagesOf(model);
            const bool own = std::ranges::count(pages, page) || page == 2 || page == 3 || page == 7;
            // A custom or system page (8-11) the model does not have stays empty.
            EXPECT_TRUE(own || page < 8 || page > 11 || layout(*f.form).isEmpty())
                << model << "/" << page;
            // Only the GT-8's "Sub Exp" (page 1, repeated on 2 and 3) starts at 1; only its "Input
            // Presence" has its caption above.
            for (auto* s : p.sliders) {
                if (s->isHidden()) continue;
                EXPECT_EQ(s->Min(), model == 8 && page <= 3 && s->caption() == u"Sub Exp" ? 1 : 0);
            }
            for (int i = 0; i < ControlPools::kKnobs; ++i) {
                if (p.knobs[std::size_t(i)]->isHidden()) continue;
                const bool above = p.knobLabels[std::size_t(i)]->y() * 15 <
                                   p.knobs[std::size_t(i)]->y() * 15 - 270 - 100;
                EXPECT_EQ(above, model == 8 && page == 7 && i == 6)
                    << model << "/" << page << " knob " << i;
            }
        }
    // The MIDI block of the GT-6 and GT-8 binds the same parameters, one stretch apart.
    f.open(6, 4);
    const std::vector<int> gt6 = knobAddresses(*f.form, {0, 1, 2, 3, 4, 5, 6});
    f.open(8, 4);
    const std::vector<int> gt8 = knobAddresses(*f.form, {0, 1, 2, 3, 4, 5, 6});
    for (std::size_t i = 0; i < gt6.size(); ++i)
        EXPECT_EQ(gt8[i] - gt6[i], gt8[0] - gt6[0]) << "knob " << i;
    EXPECT_EQ(p.groups[0]->TFormat(), gt8.back() + 1);
}

TEST(PageBuilder, CustomPreampSelectionsRebind) {
    EditorFixture f;
    ControlPools& p = f.form->pools();
    cCheckRadio* list = p.groups[ControlPools::kSelectorList];

    f.open(6, 9);
    EXPECT_EQ(p.sliders[0]->MemLoc(), 10342);
    list->ClickOn(1);
    EXPECT_EQ(p.sliders[0]->MemLoc(), 10351);
    EXPECT_EQ(knobAddresses(*f.form, {0, 7}), (std::vector<int>{10352, 10359}));
    EXPECT_EQ(p.tabLabels[0]->text(), QStringLiteral("Custom Preamp 2"));
    list->ClickOn(2);
    EXPECT_EQ(p.sliders[0]->MemLoc(), 10360);
    EXPECT_EQ(knobAddresses(*f.form, {0, 7}), (std::vector<int>{10361, 10368}));
    EXPECT_EQ(f.form->views().preampView, 2);

    f.open(8, 9);
    EXPECT_EQ(list->Selected(), 2) << "the view survives the page change";
    EXPECT_TRUE(p.sliders[1]->Off());
    EXPECT_FALSE(p.groups[0]->Enabled());
    EXPECT_EQ(p.groups[6]->selectedIndex(), -1);
    list->ClickOn(1);
    EXPECT_EQ(p.sliders[0]->MemLoc(), 13786);
    EXPECT_EQ(knobAddresses(*f.form, {0, 5}), (std::vector<int>{13787, 13792}));
    EXPECT_EQ(p.sliders[1]->MemLoc(), 13805);
    EXPECT_EQ(knobAddresses(*f.form, {6, 7}), (std::vector<int>{13806, 13807}));
    EXPECT_EQ(p.groups[6]->TFormat(), 13808);
    EXPECT_EQ(p.groups[0]->TFormat(), 13809);
    EXPECT_TRUE(p.groups[0]->Enabled());
    EXPECT_FALSE(p.sliders[1]->Off()) << "the speaker controls are editable again at once";
    EXPECT_FALSE(p.knobs[6]->Off());
    EXPECT_EQ(p.tabLabels[1]->text(), QStringLiteral("Custom Speaker 2"));
    list->ClickOn(2);
    list->ClickOn(0);
    EXPECT_EQ(p.sliders[1]->MemLoc(), 13800);
    EXPECT_EQ(p.groups[0]->TFormat(), 13804);
    EXPECT_TRUE(p.groups[6]->Enabled());

    // GT-10: the preamp base follows the channel byte of system preamp n.
    for (int channel : {0, 1}) {
        f.state.image.set(19489, channel);
        f.form->views().preampView = 0;
        f.open(10, 9);
        const int base = channel == 0 ? 19520 : 19552;
        EXPECT_EQ(p.sliders[0]->MemLoc(), base);
        EXPECT_EQ(knobAddresses(*f.form, {0, 5}), (std::vector<int>{base + 1, base + 6}));
        EXPECT_EQ(p.sliders[1]->MemLoc(), base + 7);
        EXPECT_EQ(p.groups[0]->TFormat(), base + 11);
        EXPECT_EQ(p.groups[8]->TFormat(), 19121);
    }
    f.state.image.set(19694, 1);
    list->ClickOn(2);
    EXPECT_EQ(p.sliders[0]->MemLoc(), 19757);
}

TEST(PageBuilder, SystemPreampPageAndItsRebuild) {
    EditorFixture f;
    ControlPools& p = f.form->pools();
    const struct {
        int mode, selection, switchAt;
    } cases[] = {{0, 0, 19487}, {1, 0, 19487}, {2, 1, 19615},
                 {3, 2, 19692}, {4, 0, 19487}, {9, 0, 19487}};
    for (const auto& c : cases) {
        f.state.image.set(19121, c.mode);
        f.open(10, 11);
        EXPECT_EQ(p.groups[ControlPools::kSelectorList]->Selected(), c.selection) << c.mode;
        EXPECT_EQ(p.onOff[2]->property("Tag").toString().toInt(), c.switchAt) << c.mode;
        EXPECT_EQ(p.groups[6]->TFormat(), c.switchAt + 1);
        EXPECT_EQ(p.groups[1]->TFormat(), c.switchAt + 2);
        EXPECT_EQ(knobAddresses(*f.form, {0, 1}),
                  (std::vector<int>{c.switchAt + 3, c.switchAt + 4}));
        EXPECT_EQ(p.tabLabels[0]->text(), QStringLiteral("System Preamp %1").arg(c.selection + 1));
    }

    // GT-8: channel B moves the channel rows to 11488-11504; the channel option rebuilds them.
    f.state.image.set(11468, 0);
    f.open(8, 11);
    EXPECT_TRUE(p.groups[ControlPools::kSelectorList]->isVisible() == false);
    EXPECT_EQ(p.onOff[2]->property("Tag").toString().toInt(), 11465);
    EXPECT_EQ(p.sliders[0]->MemLoc(), 11471);
    EXPECT_EQ(p.groups[1]->TFormat(), 11468);
    p.groups[1]->ClickOn(1);
    EXPECT_EQ(f.state.image.at(11468), 1);
    EXPECT_EQ(p.sliders[0]->MemLoc(), 11488);
    EXPECT_EQ(knobAddresses(*f.form, {2, 11}), (std::vector<int>{11489, 11504}));
}

TEST(PageBuilder, ControlPedalPairs) {
    EditorFixture f;
    ControlPools& p = f.form->pools();
    f.open(10, 15);
    EXPECT_EQ(p.onOff[0]->property("Tag").toString().toInt(), 19281);
    EXPECT_EQ(p.groups[1]->TFormat(), 19229);
    p.groups[ControlPools::kSelectorList]->ClickOn(1);
    EXPECT_EQ(p.onOff[0]->property("Tag").toString().toInt(), 19329);
    EXPECT_EQ(p.sliders[0]->MemLoc(), 19330);
    EXPECT_EQ(knobAddresses(*f.form, {0, 1, 2, 3}), (std::vector<int>{19332, 19334, 19337, 19338}));
    EXPECT_EQ(p.groups[0]->TFormat(), 19336);
    EXPECT_EQ(p.groups[1]->TFormat(), 19232);
    EXPECT_EQ(p.groups[3]->TFormat(), 19233);
    EXPECT_EQ(p.tabLabels[0]->text(), QStringLiteral("CTL Pedal 3"));
    EXPECT_EQ(p.tabLabels[1]->text(), QStringLiteral("CTL Pedal 4"));
}

TEST(PageBuilder, ExpressionPedalRangesFollowTheFunction) {
    EditorFixture f;
    ControlPools& p = f.form->pools();
    auto setFunction = [&](int slider, int value) {
        f.form->binding().sliderChanged(slider, value);
    };
    f.state.image.writeParameter(19250, 10, 2);
    f.state.image.writeParameter(19252, 10, 30);
    f.open(10, 14);
    EXPECT_EQ(p.knobs[0]->Max(), 48) << "set while the page is built";
    EXPECT_EQ(p.knobs[0]->TFormat(), 1);
    EXPECT_EQ(p.knobs[0]->Value(), 30);
    setFunction(0, 3);
    EXPECT_EQ(p.knobs[1]->Max(), 100);
    EXPECT_EQ(p.knobs[1]->TFormat(), 0);
    setFunction(0, 4);
    EXPECT_EQ(p.knobs[1]->Max(), 48);
    // The pedal switch column changes nothing.
    const int maxBefore = p.knobs[4]->Max();
    setFunction(1, 5);
    EXPECT_EQ(p.knobs[4]->Max(), maxBefore);
    EXPECT_EQ(p.knobs[4]->TFormat(), 30);
    // The external pedal: 0 or 1 format 0, 2 format 9, others unchanged.
    setFunction(2, 2);
    EXPECT_EQ(p.knobs[8]->TFormat(), 9);
    EXPECT_EQ(p.knobs[9]->TFormat(), 9);
    setFunction(2, 5);
    EXPECT_EQ(p.knobs[8]->TFormat(), 9);
    setFunction(2, 1);
    EXPECT_EQ(p.knobs[8]->TFormat(), 0);
    EXPECT_EQ(p.knobs[8]->Max(), 100);
    // Elsewhere a slider change alters no knob.
    f.open(8, 1);
    const int before = p.knobs[0]->Max();
    f.form->binding().sliderChanged(1, 2);
    EXPECT_EQ(p.knobs[0]->Max(), before);
}

TEST(PageBuilder, DeviceIdAndSwitchBitZero) {
    EditorFixture f;
    ControlPools& p = f.form->pools();
    f.open(10, 4);
    f.state.image.set(19772, 17);
    f.form->UpdateDeviceID();
    EXPECT_EQ(p.knobs[9]->Value(), 17);
    f.open(10, 7);
    f.state.image.set(19772, 5);
    f.form->UpdateDeviceID();
    EXPECT_EQ(p.knobs[9]->Value(), 17) << "not on the MIDI page";
    f.open(8, 4);
    f.state.image.set(10431, 9);
    f.form->UpdateDeviceID();
    EXPECT_EQ(p.knobs[7]->Value(), 9);
    f.open(5, 4);
    const int v = p.knobs[7]->Value();
    f.state.image.set(10431, 3);
    f.form->UpdateDeviceID();
    EXPECT_EQ(p.knobs[7]->Value(), v);

    // A switch whose byte holds 2 (bit 0 clear) stores 1; 3 stores 0.
    f.open(3, 4);
    for (const auto& [stored, after] :
         std::vector<std::pair<int, int>>{{2, 1}, {3, 0}, {0, 1}, {1, 0}}) {
        f.state.image.set(15, stored);
        f.rebuild(4);
        QTest::mouseClick(p.onOff[0], Qt::LeftButton);
        EXPECT_EQ(f.state.image.at(15), after) << stored;
        EXPECT_EQ(p.onOff[0]->property("picture").toInt(), 10 + after);
    }
}

TEST(PageBuilder, HoverRectangleEdgesAndRightClickHelp) {
    EditorFixture f;
    f.open(8, 1);
    ControlPools& p = f.form->pools();
    OptionHover& hover = f.form->hover();
    cCheckRadio* group = p.groups[6];
    QLabel* glyph = group->glyph(1);
    QLabel* label = group->label(1);
    moveTo(glyph, 30, 30, Qt::NoButton);
    ASSERT_TRUE(hover.active());
    EXPECT_EQ(group->hoverIndex(), 1);
    EXPECT_EQ(cCheckRadio::glyphPicture(glyph), group->selectedIndex() == 1 ? 5 : 4);
    EXPECT_EQ(hover.left(), glyph->x() * 15);
    EXPECT_EQ(hover.right(), (label->x() + label->width()) * 15);
    EXPECT_EQ(hover.bottom(),
              std::max(glyph->y() + glyph->height(), label->y() + label->height()) * 15);
    // Onto its own label: still hovering; on the right edge itself: inside; one unit past: out.
    hover.TrackHover(label->x() * 15 + 30, hover.top());
    hover.TrackHover(hover.right(), hover.bottom());
    EXPECT_TRUE(hover.active());
    hover.TrackHover(hover.right() + 1, hover.top());
    EXPECT_FALSE(hover.active());
    EXPECT_EQ(group->hoverIndex(), -1);

    // A right click shows help and chooses nothing.
    const int selected = group->selectedIndex();
    const int target = (selected + 1) % 4;
    moveTo(group->glyph(target), 30, 30, Qt::NoButton);
    QWidget* area = f.form->pageArea();
    const QPoint at = group->glyph(target)->geometry().center();
    QTest::mousePress(area, Qt::RightButton, {}, at);
    QTest::mouseRelease(area, Qt::RightButton, {}, at);
    EXPECT_EQ(group->selectedIndex(), selected);
    EXPECT_FALSE(hover.active());
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->inherits("QWhatsThat")) w->close();
}

TEST(PageBuilder, PanelsArePaintedOnlyWhereVisibleAndFlatWithoutAHostColour) {
    EditorFixture f;
    f.open(10, 1);
    PageArea* area = f.form->pageArea();
    area->grab();
    EXPECT_EQ(area->panelsPainted(), 5);
    f.open(10, 4);
    area->grab();
    EXPECT_EQ(area->panelsPainted(), 1);
    const QImage shot = area->grab().toImage();
    // The MIDI panel shades from a light tint at the top to the host colour at the bottom.
    const QColor top(shot.pixel(300, 4));
    const QColor bottom(shot.pixel(300, (105 - 75 + 4380) / 15 - 3));
    EXPECT_GT(top.red(), bottom.red());
    EXPECT_NEAR(bottom.red(), 0x80, 6);

    // A host without the panel colour: flat panels, no error.
    HostWithoutStrikethrough bare;
    f.state.host.setHost(&bare);
    area->grab();
    EXPECT_EQ(area->panelsPainted(), 0);
    f.state.host.setHost(&f.host);
    EXPECT_TRUE(f.errors.isEmpty());
}

TEST(PageBuilder, ReloadRebuildsTheShownPageWithTheHostsValues) {
    EditorFixture f;
    ControlPools& p = f.form->pools();
    f.open(6, 9);
    f.form->pools().groups[ControlPools::kSelectorList]->ClickOn(1);
    f.host.image[10351] = char(5);
    f.host.image[10352] = char(9);
    EXPECT_NE(p.sliders[0]->Value(), 5);
    f.form->ReloadFromHost();
    EXPECT_EQ(f.form->currentPage(), 9);
    EXPECT_EQ(p.sliders[0]->MemLoc(), 10351) << "the chosen custom tone stays";
    EXPECT_EQ(p.sliders[0]->Value(), 5);
    EXPECT_EQ(p.knobs[0]->Value(), 9);
}
