// The editor window's clicks as a real mouse delivers them (through the window: a double-click's
// second press comes as a double-click event), and Escape and the close box, which ask before
// they give up changed values.

#include "BoxAnswerer.h"
#include "EditorFixture.h"
#include "MouseHelpers.h"
#include "RealMouse.h"
#include "controls/RKnob.h"
#include "editor/ImageButton.h"
#include "pages/ControlPools.h"

#include <QKeyEvent>
#include <QLabel>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

void pressEscape(QWidget* w) {
    QTest::keyClick(w, Qt::Key_Escape);
}

} // namespace

// A double-click on Transmit starts one transmission and does not stop it at once.
TEST(EditorClicks, ADoubleClickOnTransmitStartsOnce) {
    EditorFixture f;
    f.form->SetFormat(8);
    f.form->ShowTab(1);
    int starts = 0, stops = 0;
    f.form->setTransmissionControl({[&] {
                                        ++starts;
                                        f.state.transmissionStep = 1;
                                        return true;
                                    },
                                    [&] {
                                        ++stops;
                                        f.state.transmissionStep = 0;
                                    }});
    ImageButton* transmit = f.form->commandButton(0);
    realMouse::doubleClick(transmit, transmit->rect().center());
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(stops, 0);
    EXPECT_EQ(transmit->pictureName(), QStringLiteral("CButton(13)")) << "as a start leaves it";
    // A double-click on a tab changes the page once and leaves the pictures as one click does.
    ImageButton* midi = f.form->tabButton(1);
    realMouse::doubleClick(midi, midi->rect().center());
    EXPECT_EQ(f.form->currentPage(), 4);
    EXPECT_EQ(midi->pictureName(), QStringLiteral("Img(41)"));
}

// A host that fails while the window runs, behind a click on a knob, an undo or a page switch:
// each failure is reported once, nothing reaches the event loop and the window stays open.
TEST(EditorClicks, AFailingHostIsReportedAndTheWindowStaysOpen) {
    EditorFixture f;
    f.open(10, 1);
    RKnob* knob = nullptr;
    for (RKnob* k : f.form->pools().knobs)
        if (k->isVisible() && !knob) knob = k;
    ASSERT_NE(knob, nullptr);
    clickLabel(knob, Qt::RightButton);
    ASSERT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
    f.host.failValueText = true;
    clickLabel(knob, Qt::RightButton);
    f.form->undo();
    f.form->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(f.form.get()));
    QTest::keyClick(f.form->focusWidget(), Qt::Key_PageDown, Qt::ControlModifier);
    ASSERT_EQ(f.errors.size(), 3) << f.errors.join(QLatin1Char('\n')).toStdString();
    for (const QString& e : f.errors)
        EXPECT_TRUE(e.contains(QStringLiteral("the host failed"))) << e.toStdString();
    EXPECT_TRUE(f.form->isVisible());
    EXPECT_EQ(f.form->lastError(), f.errors.last());
}

// An on/off switch toggles on its click: a press dragged off and released elsewhere leaves it, a
// double-click toggles it once.
TEST(EditorClicks, ASwitchTogglesOnTheClickNotThePress) {
    EditorFixture f;
    f.open(10, 1);
    QLabel* sw = nullptr;
    for (int i = 0; i < ControlPools::kSwitches && !sw; ++i)
        if (f.form->pools().onOff[std::size_t(i)]->isVisible())
            sw = f.form->pools().onOff[std::size_t(i)];
    ASSERT_NE(sw, nullptr);
    const int address = sw->property("Tag").toString().toInt();
    f.state.image.set(address, 0);
    f.rebuild(1);
    const int before = 0;
    const QPoint on = sw->rect().center();
    realMouse::dragOff(sw, on, on + QPoint(0, sw->height() * 3));
    EXPECT_EQ(f.state.image.at(address), before) << "dragged off: no click";
    realMouse::click(sw, on);
    EXPECT_EQ(f.state.image.at(address), 1 - before);
    realMouse::doubleClick(sw, on);
    EXPECT_EQ(f.state.image.at(address), before) << "a double-click is one click";
    EXPECT_EQ(sw->property("picture").toInt(), 10 + before);
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}

// Escape and the close box close at once when nothing changed; with changed values they ask
// "Discard" or "Keep editing". The Cancel button asks only after a transmission, and only when
// the data differs from the host's: its own question, once, and only Yes gives the changes up.
TEST(EditorClicks, EscapeAndTheCloseBoxAskBeforeDiscardingChangedValues) {
    EditorFixture f;
    f.open(8, 1);
    auto change = [&f] { f.state.image.set(10400, (f.state.image.at(10400) + 1) % 128); };
    {
        BoxAnswerer none{QString(), QString()};
        pressEscape(f.form.get());
        EXPECT_FALSE(f.form->isVisible()) << "nothing changed: closed at once";
        EXPECT_TRUE(none.names.isEmpty());
    }
    for (const bool closeBox : {false, true}) {
        f.form->Form_Load();
        f.form->show();
        change();
        const auto ask = [&] {
            if (closeBox)
                f.form->close();
            else
                pressEscape(f.form.get());
        };
        {
            BoxAnswerer keep(QStringLiteral("DiscardQuestion"), QStringLiteral("Keep editing"));
            ask();
            EXPECT_EQ(keep.names, QStringList{QStringLiteral("DiscardQuestion")});
            EXPECT_EQ(keep.titles.value(0), QStringLiteral("Marwick"));
            EXPECT_TRUE(f.form->isVisible()) << "kept editing";
            EXPECT_TRUE(f.form->differsFromHost()) << "the change is still there";
        }
        {
            BoxAnswerer discard(QStringLiteral("DiscardQuestion"), QStringLiteral("Discard"));
            ask();
            EXPECT_FALSE(f.form->isVisible());
        }
        f.form->Setup(); // the host's data again
    }
    // The Cancel button asks nothing before a transmission, even with changes, nor after one while
    // the data is the host's.
    const auto cancelAsksNothing = [&] {
        BoxAnswerer any(QMessageBox::Yes);
        f.form->CancelEdit();
        EXPECT_FALSE(f.form->isVisible());
        EXPECT_EQ(any.asked(), 0);
        f.form->Form_Load();
        f.form->show();
    };
    f.form->Form_Load();
    f.form->show();
    change();
    cancelAsksNothing();
    f.form->Setup();
    f.form->setTransmissionControl({[] { return true; }, [] {}});
    f.form->ToggleTransmission();
    ASSERT_TRUE(f.form->transmitted());
    cancelAsksNothing();
    // After a transmission with changed data: the cancel's own question, no second one; No keeps
    // the window open, Yes closes it.
    change();
    {
        BoxAnswerer no(QMessageBox::No);
        pressEscape(f.form.get());
        EXPECT_EQ(no.names, QStringList{QStringLiteral("CancelQuestion")});
        EXPECT_EQ(
            no.texts.value(0),
            QStringLiteral("Are you sure you want to cancel?\r\nThis will discard the changes "
                           "you made in Tonebench,\r\nbut you transmitted new data to the "
                           "GT-8.\r\nClick on 'Yes' to cancel anyway."));
        EXPECT_EQ(no.buttons.value(0), QMessageBox::Yes | QMessageBox::No);
        EXPECT_TRUE(f.form->isVisible());
    }
    BoxAnswerer yes(QMessageBox::Yes);
    pressEscape(f.form.get());
    EXPECT_EQ(yes.asked(), 1);
    EXPECT_FALSE(f.form->isVisible());
    EXPECT_NE(f.host.image[10400], char(f.state.image.at(10400)))
        << "a cancel gives the host nothing";
}
