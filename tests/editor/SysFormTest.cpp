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

// Presses, optionally drags to (dx, dy) pixels from the press, and releases, as a user does.
void pressDragRelease(QWidget* w, QPoint drag = {}, QPoint back = {}) {
    const QPoint at(w->width() / 2, w->height() / 2);
    QTest::mousePress(w, Qt::LeftButton, {}, at);
    if (!drag.isNull()) moveTo(w, (at + drag).x() * 15, (at + drag).y() * 15);
    if (!back.isNull()) moveTo(w, at.x() * 15, at.y() * 15);
    QTest::mouseRelease(w, Qt::LeftButton, {}, at + drag);
}

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

TEST_F(SysFormTest, TabPressDragOffAndRelease) {
    form->SetFormat(8);
    form->ShowTab(1);
    ImageButton* midi = form->tabButton(1);
    pressDragRelease(midi, QPoint(0, 200)); // dragged off downwards
    EXPECT_EQ(form->currentPage(), 1);
    EXPECT_EQ(midi->pictureName(), QStringLiteral("Img(1)"));
    pressDragRelease(midi, QPoint(0, 200), QPoint(1, 1)); // dragging back does not re-arm
    EXPECT_EQ(form->currentPage(), 1);

    QTest::mousePress(midi, Qt::LeftButton);
    EXPECT_EQ(midi->pictureName(), QStringLiteral("Img(21)"));
    QTest::mouseRelease(midi, Qt::LeftButton);
    EXPECT_EQ(form->currentPage(), 4);
    EXPECT_EQ(midi->pictureName(), QStringLiteral("Img(41)"));
    EXPECT_EQ(form->tabButton(0)->pictureName(), QStringLiteral("Img(0)"));

    // The current tab and an unavailable tab do not react.
    QTest::mousePress(midi, Qt::LeftButton);
    EXPECT_EQ(midi->pictureName(), QStringLiteral("Img(41)"));
    QTest::mouseRelease(midi, Qt::LeftButton);
    form->SetFormat(10);
    QTest::mousePress(form->tabButton(2), Qt::LeftButton);
    EXPECT_EQ(form->tabButton(2)->pictureName(), QStringLiteral("Img(2)"));
    QTest::mouseRelease(form->tabButton(2), Qt::LeftButton);
    EXPECT_EQ(form->currentPage(), 4);
}

TEST_F(SysFormTest, ModeButtonsSwitchModelKeepingThePageWhereItsTabExists) {
    form->SetFormat(10);
    form->ShowTab(14);
    pressDragRelease(form->modeButton(3)); // GT-8 has no tab 11
    EXPECT_EQ(state.model, 8);
    EXPECT_EQ(form->currentPage(), 1);

    form->ShowTab(4);
    pressDragRelease(form->modeButton(1)); // GT-5 has the MIDI tab
    EXPECT_EQ(state.model, 5);
    EXPECT_EQ(form->currentPage(), 4);
    EXPECT_EQ(form->windowTitle(), QStringLiteral("System: GT-5"));

    // The current model's button changes nothing, not even its picture.
    QTest::mousePress(form->modeButton(1), Qt::LeftButton);
    EXPECT_EQ(form->modeButton(1)->pictureName(), QStringLiteral("mImg(21)"));
    QTest::mouseRelease(form->modeButton(1), Qt::LeftButton);

    // Dragged off: back to normal, no switch.
    QTest::mousePress(form->modeButton(0), Qt::LeftButton);
    EXPECT_EQ(form->modeButton(0)->pictureName(), QStringLiteral("mImg(10)"));
    pressDragRelease(form->modeButton(0), QPoint(-300, 0));
    EXPECT_EQ(form->modeButton(0)->pictureName(), QStringLiteral("mImg(0)"));
    EXPECT_EQ(state.model, 5);
}

TEST_F(SysFormTest, CommandButtonPicturesFollowThePress) {
    ImageButton* reload = form->commandButton(1);
    QTest::mousePress(reload, Qt::LeftButton);
    EXPECT_EQ(reload->pictureName(), QStringLiteral("CButton(9)"));
    moveTo(reload, -75, 45); // dragged off
    EXPECT_EQ(reload->pictureName(), QStringLiteral("CButton(5)"));
    QTest::mouseRelease(reload, Qt::LeftButton);
    EXPECT_EQ(host.reads, 43252) << "a dragged-off press does not reload";
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
