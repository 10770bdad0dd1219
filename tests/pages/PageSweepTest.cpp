// Every page of every model is built, and every visible bound control is changed through its
// real mouse path; the whole image must then differ from before exactly by that control's
// parameter write.

#include "MouseHelpers.h"
#include "PageStates.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "editor/EditHistory.h"
#include "editor/OptionHover.h"
#include "pages/ControlPools.h"
#include "sysdata/SystemImage.h"

#include <QWhatsThis>
#include <QWheelEvent>

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

Counts sweepPage(EditorFixture& f, int model, const std::string& where) {
    Counts counts;
    ControlPools& pools = f.form->pools();
    SystemImage& image = f.state.image;

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

// In every state of every page: each selection, channel, preamp mode and pedal function.
TEST(PageSweep, EveryBoundControlOfEveryPageWritesExactlyItsParameter) {
    EditorFixture f;
    int total = 0;
    for (int model : kModels)
        everyPageState(f, model, [&](const std::string& at) {
            const Counts c = sweepPage(f, model, at);
            EXPECT_GT(c.knobs + c.sliders + c.groups + c.switches, 0) << at;
            total += c.knobs + c.sliders + c.groups + c.switches;
        });
    EXPECT_GT(total, 400);
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}

namespace {

void sendWheel(QWidget* w, int delta, Qt::KeyboardModifiers modifiers = {}) {
    const QPointF at = w->rect().center();
    QWheelEvent e(at, w->mapToGlobal(at), {}, {0, delta}, Qt::NoButton, modifiers,
                  Qt::NoScrollPhase, false);
    QApplication::sendEvent(w, &e);
}

// The image after `change`, then put back by one undo: the caller compares the first with what
// the keyboard and the wheel do.
template <class Change> QByteArray changedThenUndone(EditorFixture& f, Change change) {
    const QByteArray before = f.state.image.toByteArray();
    change();
    const QByteArray after = f.state.image.toByteArray();
    f.form->undo();
    EXPECT_EQ(f.state.image.toByteArray(), before) << "one undo takes the change back";
    return after;
}

// Every visible control of a page is changed by the mouse, undone, then changed by its keys:
// both must leave the same image. The wheel then moves every knob and slider at once in
// quarter notches; one undo takes the whole burst back.
void sweepKeys(EditorFixture& f, int model, int page) {
    ControlPools& pools = f.form->pools();
    SystemImage& image = f.state.image;
    const std::string where = "GT-" + std::to_string(model) + " page " + std::to_string(page);
    const QByteArray original = image.toByteArray();

    std::vector<ValueControl*> values;
    for (RKnob* k : pools.knobs)
        if (!k->isHidden()) values.push_back(k);
    for (VSlider* s : pools.sliders)
        if (!s->isHidden()) values.push_back(s);
    SystemImage wheeled(image);
    for (std::size_t i = 0; i < values.size(); ++i) {
        ValueControl* c = values[i];
        const int before = c->Value();
        const QString text = c->valueText();
        int step = 0;
        const QByteArray byMouse = changedThenUndone(f, [&] {
            step = stepThroughLabel(c, c->property("minimum").toInt());
            QWhatsThis::hideText(); // the right button's help, a popup that would take the wheel
        });
        c = values[i];
        EXPECT_EQ(c->Value(), before) << where << " " << c->objectName().toStdString();
        EXPECT_EQ(c->valueText(), text) << where << " undo shows the value again";
        QTest::keyClick(c, step < 0 ? Qt::Key_Down : Qt::Key_Up);
        EXPECT_EQ(image.toByteArray(), byMouse) << where << " " << c->objectName().toStdString();
        f.form->undo();
        if (byMouse != original) {
            SystemImage one(image);
            one.assign(byMouse);
            wheeled.writeParameter(c->MemLoc(), model, one.readParameter(c->MemLoc(), model));
        }
    }
    for (ValueControl* c : values) {
        const int step = c->Value() > c->property("minimum").toInt() ? -1 : 1;
        for (int part = 0; part < 4; ++part)
            sendWheel(c, 30 * step);
    }
    EXPECT_TRUE(image == wheeled) << where << " four quarter notches make one step";
    // The burst ends when the wheel has rested; undo waits for that, as the user would.
    ASSERT_TRUE(QTest::qWaitFor([&] { return !f.form->history().inGesture(); }, 60000)) << where;
    f.form->undo();
    EXPECT_EQ(image.toByteArray(), original) << where << " the wheel burst is one undo step";

    for (int g = 0; g <= 8; ++g) {
        cCheckRadio* group = pools.groups[std::size_t(g)];
        if (!group->isVisible() || !group->Enabled()) continue;
        const int target = (group->selectedIndex() + 1) % group->itemCount();
        const QByteArray byMouse = changedThenUndone(f, [&] { clickItem(*f.form, group, target); });
        QTest::keyClick(group->glyph(target), Qt::Key_Space);
        EXPECT_EQ(image.toByteArray(), byMouse) << where << " group " << g;
        f.form->undo();
        if (group->itemCount() == 2) {
            // The arrow towards the other item, as it stands on the page, selects it as the
            // click did.
            const QPoint from = group->glyph(group->selectedIndex())->pos();
            const QPoint to = group->glyph(target)->pos();
            const Qt::Key arrow = to.y() < from.y()   ? Qt::Key_Up
                                  : to.y() > from.y() ? Qt::Key_Down
                                  : to.x() < from.x() ? Qt::Key_Left
                                                      : Qt::Key_Right;
            QTest::keyClick(group->glyph(group->selectedIndex()), arrow);
            EXPECT_EQ(image.toByteArray(), byMouse) << where << " group " << g << " arrow";
            f.form->undo();
        }
    }
    for (int i = 0; i < ControlPools::kSwitches; ++i) {
        QLabel* sw = pools.onOff[std::size_t(i)];
        if (sw->isHidden()) continue;
        const QByteArray byMouse =
            changedThenUndone(f, [&] { QTest::mouseClick(sw, Qt::LeftButton); });
        QTest::keyClick(sw, Qt::Key_Space);
        EXPECT_EQ(image.toByteArray(), byMouse) << where << " switch " << i;
        f.form->undo();
    }
    EXPECT_EQ(image.toByteArray(), original) << where;
}

} // namespace

TEST(PageSweep, KeysAndTheWheelWriteWhatTheMouseWritesAndUndoTakesItBack) {
    EditorFixture f;
    const std::map<int, std::vector<int>> pages = {
        {3, {1, 4}}, {5, {1, 9}}, {6, {1, 8}}, {8, {1, 11}}, {10, {1, 11, 14}}};
    for (const auto& [model, list] : pages)
        for (int page : list) {
            f.open(model, page);
            sweepKeys(f, model, page);
        }
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}

TEST(PageSweep, ADragOrATrackClickIsOneUndoStepThatRestoresImageAndDisplay) {
    EditorFixture f;
    f.open(10, 1);
    ControlPools& pools = f.form->pools();
    SystemImage& image = f.state.image;
    RKnob* knob = nullptr;
    for (RKnob* k : pools.knobs)
        if (!k->isHidden() && !k->Off() && k->Max() >= 20) {
            knob = k;
            break;
        }
    ASSERT_NE(knob, nullptr);
    const QByteArray original = image.toByteArray();
    const int steps = f.form->history().steps();
    const QString text = knob->valueText();
    // Round the arc from the low end to the top, through several values.
    pressAt(knob, 150, 600);
    for (int x = 150; x <= 375; x += 25)
        moveTo(knob, x, 600 - (x - 150) * 2);
    releaseAt(knob, 375, 150);
    ASSERT_NE(image.toByteArray(), original);
    EXPECT_EQ(f.form->history().steps(), steps + 1) << "a whole drag is one step";
    f.form->undo();
    EXPECT_EQ(image.toByteArray(), original);
    EXPECT_EQ(knob->valueText(), text);
    EXPECT_EQ(knob->property("pointerLeft").toInt(),
              RKnob::pointerPosition(knob->Value(), knob->Max()).x());

    f.open(3, 1);
    VSlider* slider = pools.sliders[3];
    ASSERT_TRUE(slider->isVisible() && slider->Enabled());
    const QByteArray beforeClick = image.toByteArray();
    const int value = slider->Value();
    // Above the thumb steps up, unless at the top already; below steps down.
    const bool up = value < slider->Max();
    clickAt(slider, VSlider::kThumbLeft + 60, up ? slider->thumbTop() - 60 : 890);
    ASSERT_EQ(slider->Value(), up ? value + 1 : value - 1);
    f.form->undo();
    EXPECT_EQ(image.toByteArray(), beforeClick);
    EXPECT_EQ(slider->Value(), value);
    EXPECT_EQ(slider->thumbTop(),
              VSlider::thumbPosition(value, slider->Min(), slider->Max(), slider->travel()));
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}

TEST(PageSweep, NoCaptionRunsIntoAnotherOrOverItsFrameOnAnyPage) {
    EditorFixture f;
    ControlPools& pools = f.form->pools();
    auto shown = [](const QWidget* w) { return w->isVisibleTo(w->parentWidget()); };
    // The drawn extent of a caption's text in the page area.
    auto ink = [](const QLabel* l) {
        const int width = QFontMetrics(l->font()).horizontalAdvance(l->text());
        const QRect r = l->geometry();
        const int left =
            (l->alignment() & Qt::AlignHCenter) ? r.center().x() - width / 2 : r.left();
        return QRect(left, r.top() + 2, width, r.height() - 4);
    };
    for (int model : kModels)
        for (int page : pagesOf(model)) {
            f.open(model, page);
            const std::string where =
                "GT-" + std::to_string(model) + " page " + std::to_string(page);
            std::vector<const QLabel*> texts;
            for (auto* group : {&pools.checkTitles, &pools.checkLabels10})
                for (const QLabel* l : *group)
                    if (shown(l) && !l->text().isEmpty()) texts.push_back(l);
            for (const QLabel* l : pools.checkLabels)
                if (shown(l) && !l->text().isEmpty()) texts.push_back(l);
            for (const QLabel* l : pools.knobLabels)
                if (shown(l) && !l->text().isEmpty()) texts.push_back(l);
            for (const QLabel* l : pools.sliderLabels)
                if (shown(l) && !l->text().isEmpty()) texts.push_back(l);
            for (std::size_t a = 0; a < texts.size(); ++a) {
                for (std::size_t b = a + 1; b < texts.size(); ++b)
                    EXPECT_FALSE(ink(texts[a]).adjusted(-2, 0, 2, 0).intersects(ink(texts[b])))
                        << where << ": \"" << texts[a]->text().toStdString() << "\" meets \""
                        << texts[b]->text().toStdString() << "\"";
                for (const QWidget* box : pools.tabBoxes) {
                    if (!shown(box) || !box->geometry().contains(ink(texts[a]).topLeft())) continue;
                    EXPECT_LT(ink(texts[a]).right(), box->geometry().right() - 1)
                        << where << ": \"" << texts[a]->text().toStdString()
                        << "\" crosses its frame";
                }
            }
        }
}
