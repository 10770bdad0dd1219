// The keyboard in the editor window, as people expect it of a tabbed dialog: it opens with the
// focus (and its ring) on the page's first control; Tab goes through the page's controls before
// the buttons; the tab bar and the model buttons are one stop each, with arrows; Ctrl+Tab,
// Ctrl+Shift+Tab, Ctrl+PgDown and Ctrl+PgUp switch pages from anywhere.

#include "EditorFixture.h"
#include "EditorSession.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "device/ModelMap.h"
#include "editor/FocusRing.h"
#include "editor/ImageButton.h"
#include "editor/KeyboardNavigation.h"
#include "host/PlugIn.h"
#include "pages/ControlPools.h"
#include "pages/GridEditor.h"
#include "settings/SettingsStore.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <set>

using namespace ferrule;

namespace {

// Every control of the page that the keyboard can reach, found from the pools.
std::set<QWidget*> pageControls(const SysForm& form) {
    const ControlPools& pools = form.pools();
    std::set<QWidget*> out;
    auto add = [&](QWidget* w) {
        if (w && w->isVisibleTo(&const_cast<SysForm&>(form))) out.insert(w);
    };
    for (QWidget* w : pools.knobs)
        add(w);
    for (QWidget* w : pools.sliders)
        add(w);
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        add(pools.onOff[std::size_t(i)]);
    for (QWidget* w : pools.check2)
        add(w);
    for (QWidget* w : pools.check10)
        add(w);
    return out;
}

QWidget* ringTarget(const SysForm& form) {
    const auto* ring = form.findChild<FocusRing*>();
    return ring ? ring->target() : nullptr;
}

void activate(SysForm& form) {
    form.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
}

// The tabs the model has, in the bar's order.
std::vector<int> tabBar(const SysForm& form) {
    std::vector<std::pair<int, int>> at;
    for (int i = 0; i < 13; ++i)
        if (SysForm::TabAvailable(i, form.model())) at.push_back({form.tabButton(i)->x(), i});
    std::sort(at.begin(), at.end());
    std::vector<int> tabs;
    for (const auto& p : at)
        tabs.push_back(p.second);
    return tabs;
}

} // namespace

// Each page of each model, reached from the keyboard: the focus lands on the page's first control
// with the ring showing; Tab visits every control of the page once, then the grid, then one stop
// for the tab bar and one for the model buttons, then the four command buttons, and comes round.
TEST(Keyboard, EveryPageOfEveryModelTakesTheFocusControlsFirstThenOneStopPerButtonRow) {
    EditorFixture f;
    SysForm& form = *f.form;
    activate(form);
    for (int model : kModels) {
        f.open(model, 1);
        form.focusFirstControl();
        const std::vector<int> tabs = tabBar(form);
        const std::string where = "GT-" + std::to_string(model);
        for (std::size_t n = 0; n < tabs.size(); ++n) {
            const std::string page = where + " tab " + std::to_string(form.currentTab());
            ASSERT_EQ(form.currentTab(), tabs[n]) << page << ": Ctrl+PgDown goes along the bar";
            QWidget* first = form.focusWidget();
            ASSERT_NE(first, nullptr);
            EXPECT_EQ(ringTarget(form), first) << page << ": the focus is seen";

            std::vector<QWidget*> walk{first};
            for (int i = 0; i < 300; ++i) {
                QTest::keyClick(form.focusWidget(), Qt::Key_Tab);
                if (form.focusWidget() == first) break;
                walk.push_back(form.focusWidget());
            }
            ASSERT_EQ(form.focusWidget(), first) << page << ": Tab comes round";
            const std::set<QWidget*> controls = pageControls(form);
            std::vector<QWidget*> expectedTail;
            if (form.grid() && form.grid()->isVisible()) {
                expectedTail.push_back(form.grid()->cellsWidget());
                // Auto-fill is the phrase grid's only.
                if (form.grid()->autoFillButton()->isVisibleTo(&form))
                    expectedTail.push_back(form.grid()->autoFillButton());
            }
            const auto modeIndex = int(std::ranges::find(kModels, model) - std::begin(kModels));
            expectedTail.push_back(form.tabButton(form.currentTab()));
            expectedTail.push_back(form.modeButton(modeIndex));
            for (int b = 0; b < 4; ++b)
                expectedTail.push_back(form.commandButton(b));
            ASSERT_EQ(walk.size(), controls.size() + expectedTail.size()) << page;
            const std::vector<QWidget*> head(walk.begin(), walk.end() - long(expectedTail.size()));
            EXPECT_EQ(std::set<QWidget*>(head.begin(), head.end()), controls)
                << page << ": every control of the page once, before any button";
            EXPECT_EQ(head, form.findChild<KeyboardNavigation*>()->pageOrder())
                << page << ": in the order a screen reader reads the page";
            EXPECT_EQ(std::vector<QWidget*>(walk.end() - long(expectedTail.size()), walk.end()),
                      expectedTail)
                << page;
            // Shift+Tab from the first control goes back to the last command button.
            QTest::keyClick(first, Qt::Key_Backtab);
            EXPECT_EQ(form.focusWidget(), form.commandButton(3)) << page;
            // A page switch from anywhere, here from a command button.
            QTest::keyClick(form.focusWidget(), Qt::Key_PageDown, Qt::ControlModifier);
        }
        EXPECT_EQ(form.currentTab(), tabs.front()) << where << ": the bar's end wraps round";
    }
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}

// The tab bar is one stop: the arrows move along the model's tabs and keep the focus on the bar;
// Ctrl+Tab and Ctrl+Shift+Tab (also Ctrl+PgUp) switch from a control and land on the new page.
TEST(Keyboard, TheTabBarAndTheModelButtonsTakeArrowsAndCtrlTabSwitchesFromAnywhere) {
    EditorFixture f;
    SysForm& form = *f.form;
    activate(form);
    f.open(8, 1);
    const std::vector<int> tabs = tabBar(form);
    ASSERT_EQ(tabs.size(), 9u);
    form.tabButton(tabs[0])->setFocus(Qt::TabFocusReason);
    QTest::keyClick(form.focusWidget(), Qt::Key_Right);
    EXPECT_EQ(form.currentTab(), tabs[1]);
    EXPECT_EQ(form.focusWidget(), form.tabButton(tabs[1]));
    QTest::keyClick(form.focusWidget(), Qt::Key_Left);
    QTest::keyClick(form.focusWidget(), Qt::Key_Left);
    EXPECT_EQ(form.currentTab(), tabs.back()) << "the arrows wrap round the bar";
    EXPECT_EQ(ringTarget(form), form.tabButton(tabs.back()));

    form.focusFirstControl();
    QTest::keyClick(form.focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(form.currentTab(), tabs.front());
    QTest::keyClick(form.focusWidget(), Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(form.currentTab(), tabs.back());
    QTest::keyClick(form.focusWidget(), Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(form.currentTab(), tabs[tabs.size() - 2]);
    EXPECT_EQ(form.focusWidget(), form.focusOrder().front());
    EXPECT_TRUE(pageControls(form).count(form.focusWidget())) << "on the new page's control";

    // The model buttons: the arrows choose the neighbour model, as a click on it does, and stop
    // at the row's ends.
    form.modeButton(3)->setFocus(Qt::TabFocusReason);
    QTest::keyClick(form.focusWidget(), Qt::Key_Right);
    EXPECT_EQ(form.model(), 10);
    EXPECT_EQ(form.focusWidget(), form.modeButton(4));
    QTest::keyClick(form.focusWidget(), Qt::Key_Right);
    EXPECT_EQ(form.model(), 10);
    QTest::keyClick(form.focusWidget(), Qt::Key_Up);
    EXPECT_EQ(form.model(), 8);
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}

// From opening the editor: the focus and its ring are on the page's first control, and one Tab
// and an arrow key change the second control's value in the image.
TEST(Keyboard, OneTabAndAnArrowFromOpeningChangeThePagesSecondControl) {
    RegCreateKey(RegRoot::LocalMachine, kEditorKey);
    for (int model : kModels) {
        TestHost host;
        host.fillPattern();
        PlugIn plugIn;
        plugIn.Interface(&host);
        plugIn.Format(model);
        const std::string where = "GT-" + std::to_string(model);
        bool checked = false;
        whileEditorOpen(plugIn, [&](SysForm& form) {
            ASSERT_TRUE(QTest::qWaitForWindowActive(&form)) << where;
            const std::vector<QWidget*> order = form.focusOrder();
            ASSERT_GE(order.size(), 2u);
            EXPECT_EQ(form.focusWidget(), order[0]) << where;
            EXPECT_EQ(ringTarget(form), order[0]) << where << ": the focus is seen from the start";
            QTest::keyClick(form.focusWidget(), Qt::Key_Tab);
            ASSERT_EQ(form.focusWidget(), order[1]) << where;
            QTest::keyClick(form.focusWidget(), Qt::Key_Up);
            if (!form.differsFromHost()) QTest::keyClick(form.focusWidget(), Qt::Key_Down);
            EXPECT_TRUE(form.differsFromHost()) << where << ": the second control changed";
            checked = true;
        });
        EXPECT_TRUE(checked) << where;
    }
}
