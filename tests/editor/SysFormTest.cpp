#include "editor/SysForm.h"
#include "MouseHelpers.h"
#include "TestHost.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "editor/ImageButton.h"
#include "pages/ControlPools.h"
#include "sysdata/ModuleState.h"
#include "sysdata/ParameterEncoding.h"

#include <QTest>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

class SysFormTest : public ::testing::Test {
protected:
    void SetUp() override {
        state.host.setHost(&host);
        form = std::make_unique<SysForm>(state);
        form->Setup();
        form->Form_Load();
    }

    std::vector<int> visibleTabs() const {
        std::vector<int> out;
        for (int i = 0; i < 13; ++i)
            if (!form->tabButton(i)->isHidden()) out.push_back(i);
        return out;
    }
    int tabLeft(int i) const { return form->tabButton(i)->x() * 15; }

    TestHost host;
    ModuleState state;
    std::unique_ptr<SysForm> form;
};

} // namespace

TEST_F(SysFormTest, SetFormatShowsTabsAndCaptionPerModel) {
    for (int model : kModels) {
        form->SetFormat(model);
        EXPECT_EQ(form->windowTitle(), QStringLiteral("System: GT-%1").arg(model));
        std::vector<int> row = visibleTabs();
        std::ranges::sort(row, {}, [this](int t) { return tabLeft(t); });
        ASSERT_FALSE(row.empty());
        EXPECT_EQ(row.front(), 0) << "the System tab first";
        // One row from the left edge, 495 twips apart, without a gap.
        for (std::size_t i = 0; i < row.size(); ++i)
            EXPECT_EQ(tabLeft(row[i]), 60 + 495 * int(i)) << model;
        for (int t = 0; t < kTabCount; ++t) // a tab that opens a page is one the user sees
            EXPECT_TRUE(!SysForm::TabAvailable(t, model) || std::ranges::count(row, t)) << t;
    }
    form->SetFormat(8);
    EXPECT_EQ(form->modeButton(3)->pictureName(), QStringLiteral("mImg(23)"));
    form->SetFormat(10);
    EXPECT_EQ(form->modeButton(3)->pictureName(), QStringLiteral("mImg(3)"))
        << "the old model's button is normal again";
    // Any other number means the GT-10.
    for (int unknown : {4, 0, -7, 12}) {
        form->SetFormat(unknown);
        EXPECT_EQ(state.model, 10);
        EXPECT_EQ(form->windowTitle(), QStringLiteral("System: GT-10"));
        EXPECT_EQ(form->modeButton(4)->pictureName(), QStringLiteral("mImg(24)"));
    }
}

TEST_F(SysFormTest, ATabOpensItsPageExactlyWhereTheModelHasIt) {
    for (int model : kModels) {
        for (int t = 0; t < kTabCount; ++t) {
            form->SetFormat(model);
            const int from = t == 0 ? 4 : 1;
            form->ShowTab(from);
            QTest::mouseClick(form->tabButton(t), Qt::LeftButton);
            const bool opens = SysForm::TabAvailable(t, model);
            EXPECT_EQ(form->currentPage(), opens ? SysForm::pageForTab(t) : from)
                << "model " << model << " tab " << t;
            if (!opens) continue;
            EXPECT_EQ(form->currentTab(), t);
            EXPECT_FALSE(form->tabButton(t)->isHidden()) << "model " << model << " tab " << t;
            // The page's own tab is the one that opened it.
            EXPECT_EQ(tabForPage(SysForm::pageForTab(t), model), t);
        }
        EXPECT_TRUE(SysForm::TabAvailable(kTabCount, model));
        EXPECT_FALSE(SysForm::TabAvailable(-1, model));
    }
}

// A press shows on every kind of button; dragged off, the button is plain again and its release
// does nothing, even after dragging back.
TEST_F(SysFormTest, APressDraggedOffEveryKindOfButtonReleasesNothing) {
    form->SetFormat(8);
    form->ShowTab(1);
    const struct {
        ImageButton* button;
        const char *pressed, *plain;
    } buttons[] = {{form->tabButton(1), "Img(21)", "Img(1)"},
                   {form->modeButton(0), "mImg(10)", "mImg(0)"},
                   {form->commandButton(1), "CButton(9)", "CButton(5)"}};
    for (const auto& b : buttons) {
        QTest::mousePress(b.button, Qt::LeftButton);
        EXPECT_EQ(b.button->pictureName(), QLatin1String(b.pressed));
        moveTo(b.button, -300, 45);
        EXPECT_EQ(b.button->pictureName(), QLatin1String(b.plain));
        moveTo(b.button, 45, 45);
        QTest::mouseRelease(b.button, Qt::LeftButton, {}, QPoint(-20, 3));
        EXPECT_EQ(b.button->pictureName(), QLatin1String(b.plain));
    }
    EXPECT_EQ(form->currentPage(), 1);
    EXPECT_EQ(state.model, 8);
    EXPECT_EQ(host.reads, 43252) << "no reload";
}

// A tab opens its page on its click; the current tab and a tab the model lacks do not react. A
// model button switches the model, keeping the page where the new model has its tab.
TEST_F(SysFormTest, TabsAndModelButtonsActOnTheirClickAndTheCurrentOneNotAtAll) {
    const auto press = [](ImageButton* b) { // the picture while pressed
        QTest::mousePress(b, Qt::LeftButton);
        const QString pressed = b->pictureName();
        QTest::mouseRelease(b, Qt::LeftButton);
        return pressed;
    };
    form->SetFormat(8);
    form->ShowTab(1);
    EXPECT_EQ(press(form->tabButton(1)), QStringLiteral("Img(21)"));
    EXPECT_EQ(form->currentPage(), 4);
    EXPECT_EQ(form->tabButton(1)->pictureName(), QStringLiteral("Img(41)"));
    EXPECT_EQ(form->tabButton(0)->pictureName(), QStringLiteral("Img(0)"));
    EXPECT_EQ(press(form->tabButton(1)), QStringLiteral("Img(41)"));
    form->SetFormat(10);
    EXPECT_EQ(press(form->tabButton(2)), QStringLiteral("Img(2)"));
    EXPECT_EQ(form->currentPage(), 4);

    form->ShowTab(14);
    press(form->modeButton(3)); // the GT-8 has no tab 11
    EXPECT_EQ(state.model, 8);
    EXPECT_EQ(form->currentPage(), 1);
    form->ShowTab(4);
    press(form->modeButton(1)); // the GT-5 has the MIDI tab
    EXPECT_EQ(state.model, 5);
    EXPECT_EQ(form->currentPage(), 4);
    EXPECT_EQ(form->windowTitle(), QStringLiteral("System: GT-5"));
    EXPECT_EQ(press(form->modeButton(1)), QStringLiteral("mImg(21)"));
}

TEST_F(SysFormTest, CommitWritesEveryByteAndReloadRereadsTheHost) {
    host.fillPattern();
    form->ReloadFromHost();
    EXPECT_EQ(state.image.toByteArray(), host.image);
    state.image.set(100, 99);
    state.image.set(43251, 1);
    QByteArray expected = state.image.toByteArray();
    form->CommitAndClose();
    EXPECT_EQ(host.image, expected);
    EXPECT_EQ(host.writes, 43252);
}

TEST_F(SysFormTest, TheEleventhSliderNeverTakesInput) {
    for (int i = 0; i < ControlPools::kSliders; ++i)
        EXPECT_EQ(form->pools().sliders[std::size_t(i)]->Enabled(), i < 10) << i;
}
