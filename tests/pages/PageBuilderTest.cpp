#include "EditorFixture.h"
#include "MouseHelpers.h"
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
    const auto value = [&](const char* kind, const ValueControl* c) {
        if (!c->isHidden())
            out << QStringLiteral("%1 %2 %3 %4,%5")
                       .arg(QLatin1String(kind))
                       .arg(c->poolIndex())
                       .arg(c->MemLoc())
                       .arg(c->x())
                       .arg(c->y());
    };
    for (auto* k : p.knobs)
        value("knob", k);
    for (auto* s : p.sliders)
        value("slider", s);
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
}

// Where each selection binds is the parameter index's law (IndexPlacements); here what the user
// sees the selectors keep: the chosen view across pages, the controls a tone lacks, the preamp
// the GT-10's mode uses, and a channel option that rebuilds the page as opening it there does.
TEST(PageBuilder, SelectorsKeepTheirViewAndRebuildAsOpeningThePageThereDoes) {
    EditorFixture f;
    ControlPools& p = f.form->pools();
    cCheckRadio* list = p.groups[ControlPools::kSelectorList];
    f.open(6, 9);
    list->ClickOn(2);
    EXPECT_EQ(f.form->views().preampView, 2);
    f.open(8, 9);
    EXPECT_EQ(list->Selected(), 2) << "the view survives the page change";
    // The GT-8's third custom tone has no speaker of its own.
    EXPECT_TRUE(p.sliders[1]->Off());
    EXPECT_FALSE(p.groups[0]->Enabled());
    EXPECT_EQ(p.groups[6]->selectedIndex(), -1);
    list->ClickOn(1);
    EXPECT_EQ(p.tabLabels[1]->text(), QStringLiteral("Custom Speaker 2"));
    EXPECT_TRUE(p.groups[0]->Enabled());
    EXPECT_FALSE(p.sliders[1]->Off()) << "the speaker controls are editable again at once";
    EXPECT_FALSE(p.knobs[6]->Off());

    // The GT-10's system preamp page opens on the preamp its "Preamp Mode" uses.
    for (const auto& [mode, selection] :
         std::vector<std::pair<int, int>>{{0, 0}, {1, 0}, {2, 1}, {3, 2}, {4, 0}, {9, 0}}) {
        f.state.image.set(kGt10PreampMode, mode);
        f.open(10, 11);
        EXPECT_EQ(list->Selected(), selection) << mode;
        EXPECT_EQ(p.tabLabels[0]->text(), QStringLiteral("System Preamp %1").arg(selection + 1));
    }

    // The GT-8's channel option rebinds the channel rows at once.
    const SystemPreampLayout& gt8 = describeModel(8).systemPreamps[0];
    f.state.image.set(gt8.channelByte, 0);
    f.open(8, 11);
    EXPECT_FALSE(list->isVisible());
    const QStringList channelA = layout(*f.form);
    ASSERT_EQ(p.groups[1]->TFormat(), gt8.channelByte);
    p.groups[1]->ClickOn(1);
    EXPECT_EQ(f.state.image.at(gt8.channelByte), 1);
    const QStringList clicked = layout(*f.form);
    EXPECT_NE(clicked, channelA);
    f.open(8, 11);
    EXPECT_EQ(layout(*f.form), clicked);
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

TEST(PageBuilder, TheDeviceIdIsShownAgainOnlyOnTheMidiPage) {
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
