#include "host/Transmission.h"
#include "EditorSession.h"
#include "MouseHelpers.h"
#include "PlugInFixture.h"
#include "TestHost.h"
#include "device/ModelMap.h"
#include "device/TransmissionSchedule.h"
#include "editor/ImageButton.h"
#include "settings/SettingsStore.h"
#include "sysdata/ModuleState.h"

#include <QLabel>
#include <QTest>
#include <gtest/gtest.h>

#include <map>

using namespace ferrule;

namespace {

// A whole transmission as the schedule makes it, step by step.
struct Expected {
    int step;
    int address;
    int start;
    int length;
    bool nibbles;
};
std::vector<Expected> scheduleOf(int model) {
    std::vector<Expected> all;
    for (int s = 0; s < TransmissionSchedule::stepTotal(model); ++s)
        for (const ScheduledMessage& m : TransmissionSchedule::messages(model, s))
            all.push_back({s, m.address, m.start, m.length, m.nibbles});
    return all;
}

// The data bytes of a message, split into nibbles here rather than by the code under test.
QByteArray dataOf(const QByteArray& image, const Expected& m) {
    QByteArray out;
    for (int i = 0; i < m.length; ++i) {
        const auto byte = static_cast<unsigned char>(image[m.start + i]);
        if (m.nibbles) {
            out.append(char(byte >> 4));
            out.append(char(byte & 15));
        } else {
            out.append(char(byte));
        }
    }
    return out;
}

using TransmissionTest = PlugInFixture;

} // namespace

TEST(TransmissionSchedule, AddressArithmeticCarriesAcrossSevenBitDigits) {
    EXPECT_EQ(AddressAdd(0x00000000, 1, 241), 0x00000171);
    EXPECT_EQ(AddressAdd(0x00020000, 0, 242), 0x00020000);
    EXPECT_EQ(AddressAdd(0x00020000, 1, 242), 0x00020172);
    EXPECT_EQ(AddressAdd(0x0000007F, 1, 1), 0x00000100);
    EXPECT_EQ(AddressAdd(0x00007F7F, 1, 1), 0x00010000);
    EXPECT_EQ(AddressAdd(0x30000A00, 1, 241), 0x30000B71) << "parts 5 and 6 join seamlessly";
    EXPECT_EQ(linearAddress(packedAddress(123456789 & 0x0FFFFFFF)), 123456789 & 0x0FFFFFFF);
}

TEST(TransmissionSchedule, StepsAddressesAndBytesForEveryModel) {
    const std::map<int, int> totals = {{3, 68}, {5, 46}, {6, 69}, {8, 160}, {10, 109}};
    for (int model : kModels) {
        SCOPED_TRACE(model);
        const int total = TransmissionSchedule::stepTotal(model);
        EXPECT_EQ(total, totals.at(model));
        // Every step sends, and the step after the last sends nothing.
        for (int s = 0; s < total; ++s)
            EXPECT_FALSE(TransmissionSchedule::messages(model, s).empty()) << "step " << s;
        EXPECT_TRUE(TransmissionSchedule::messages(model, total).empty());
        // Step 0 is one message at address 0 from the model's first byte.
        const auto first = TransmissionSchedule::messages(model, 0);
        ASSERT_EQ(first.size(), 1u);
        EXPECT_EQ(first[0].address, 0);
        EXPECT_EQ(first[0].start, modelStretch(model).start);
        // No image byte goes twice (nor an address unit: DumpMap's law), and every message keeps
        // to the model's stretch (the GT-10's last entry runs past the image end).
        std::vector<Expected> all = scheduleOf(model);
        std::ranges::sort(all, {}, &Expected::start);
        for (std::size_t i = 1; i < all.size(); ++i)
            EXPECT_LE(all[i - 1].start + all[i - 1].length, all[i].start) << "step " << all[i].step;
        for (const Expected& m : all)
            EXPECT_TRUE(m.start >= modelStretch(model).start &&
                        (m.start + m.length <= modelStretch(model).end || model == 10))
                << "step " << m.step;
    }
}

TEST(TransmissionSchedule, ProgressText) {
    EXPECT_EQ(Transmission::progressText(1, 68), QStringLiteral("2%"));
    EXPECT_EQ(Transmission::progressText(2, 68), QStringLiteral("3%"));
    EXPECT_EQ(Transmission::progressText(34, 68), QStringLiteral("50%"))
        << "50.5 rounds to the even 50";
    EXPECT_EQ(Transmission::progressText(1, 4), QStringLiteral("26%")) << "25.5 rounds to 26";
    EXPECT_EQ(Transmission::progressText(108, 109), QStringLiteral("100%"));
}

TEST_F(TransmissionTest, AWholeTransmissionOfEveryModelSendsTheDescribedMessages) {
    for (int model : {3, 5, 6, 8, 10}) {
        host.blocks.clear();
        plugIn.Format(model);
        SysForm* form = plugIn.editor();
        form->ToggleTransmission();
        ASSERT_EQ(plugIn.state().transmissionStep, 1) << model;
        EXPECT_TRUE(form->transmitted());
        EXPECT_FALSE(form->txWarning()->isHidden());
        int calls = 0;
        while (plugIn.state().transmissionStep != 0 && calls < 1000) {
            plugIn.QueueEmpty();
            ++calls;
            if (plugIn.state().transmissionStep != 0) {
                EXPECT_EQ(form->txProgress()->text(),
                          Transmission::progressText(plugIn.state().transmissionStep,
                                                     TransmissionSchedule::stepTotal(model)));
            }
        }
        EXPECT_EQ(calls, TransmissionSchedule::stepTotal(model))
            << "the call after the last step ends it";
        EXPECT_TRUE(form->txProgress()->isHidden());
        EXPECT_TRUE(form->txWarning()->isHidden());
        EXPECT_EQ(form->commandButton(0)->pictureName(), QStringLiteral("CButton(4)"));

        std::vector<Expected> want = scheduleOf(model);
        // The GT-10's last entry reaches past the image: those blocks are not sent.
        std::erase_if(want, [](const Expected& m) { return m.start + m.length > 43252; });
        ASSERT_EQ(std::size_t(host.blocks.size()), want.size()) << model;
        for (std::size_t i = 0; i < want.size(); ++i) {
            const auto& b = host.blocks[qsizetype(i)];
            EXPECT_EQ(b.address, want[i].address) << model << " #" << i;
            EXPECT_EQ(b.model, model);
            EXPECT_EQ(b.data, dataOf(host.image, want[i])) << model << " step " << want[i].step;
        }
    }
}

TEST_F(TransmissionTest, StopRestartRefusalAndAHostErrorMidStep) {
    plugIn.Format(3);
    SysForm* form = plugIn.editor();
    form->ToggleTransmission();
    plugIn.QueueEmpty();
    const auto sent = host.blocks.size();
    form->ToggleTransmission(); // stop
    EXPECT_EQ(plugIn.state().transmissionStep, 0);
    EXPECT_TRUE(form->txWarning()->isHidden());
    EXPECT_FALSE(form->txProgress()->isHidden()) << "the progress goes at the next QueueEmpty";
    plugIn.QueueEmpty();
    EXPECT_EQ(host.blocks.size(), sent);
    EXPECT_TRUE(form->txProgress()->isHidden());

    // Restart at once: the update check runs again, and a refusal sends nothing.
    host.gtUpdate = false;
    host.refuseUpdate = true;
    form->ToggleTransmission();
    EXPECT_EQ(plugIn.state().transmissionStep, 0);
    EXPECT_EQ(host.blocks.size(), sent);
    EXPECT_EQ(form->commandButton(0)->pictureName(), QStringLiteral("CButton(4)"));
    host.refuseUpdate = false;
    form->ToggleTransmission();
    EXPECT_EQ(plugIn.state().transmissionStep, 1);
    EXPECT_FALSE(host.gtUpdate) << "the flag is set back after the check";

    // An error in the middle of a 13-message step leaves the step; the next call repeats it.
    while (plugIn.state().transmissionStep != 60)
        plugIn.QueueEmpty();
    int sends = 0;
    host.onSend = [&sends] {
        if (++sends == 5) throw std::runtime_error("MIDI output queue full");
    };
    host.blocks.clear();
    EXPECT_THROW(plugIn.QueueEmpty(), std::runtime_error);
    EXPECT_EQ(plugIn.state().transmissionStep, 60);
    EXPECT_EQ(host.blocks.size(), 4);
    plugIn.QueueEmpty();
    EXPECT_EQ(plugIn.state().transmissionStep, 61);
    EXPECT_EQ(host.blocks.size(), 4 + 13);
    EXPECT_EQ(host.blocks[4].address, 0x03000000) << "the whole step again";
    host.onSend = nullptr;
}

TEST_F(TransmissionTest, TransmitButtonPicturesWhileSending) {
    plugIn.Format(8);
    SysForm* form = plugIn.editor();
    ImageButton* transmit = form->commandButton(0);
    QTest::mouseClick(transmit, Qt::LeftButton);
    EXPECT_EQ(plugIn.state().transmissionStep, 1);
    QTest::mousePress(transmit, Qt::LeftButton);
    EXPECT_EQ(transmit->pictureName(), QStringLiteral("CButton(13)"));
    moveTo(transmit, -60, 30); // dragged off
    EXPECT_EQ(transmit->pictureName(), QStringLiteral("CButton(12)"));
    QTest::mouseRelease(transmit, Qt::LeftButton);
    EXPECT_EQ(plugIn.state().transmissionStep, 1) << "dragged off: still sending";
    // Reload keeps its picture while pressed during a transmission, and still reloads.
    ImageButton* reload = form->commandButton(1);
    QTest::mousePress(reload, Qt::LeftButton);
    EXPECT_EQ(reload->pictureName(), QStringLiteral("CButton(5)"));
    const int reads = host.reads;
    QTest::mouseRelease(reload, Qt::LeftButton);
    EXPECT_EQ(host.reads, reads + 43252);
    QTest::mouseClick(transmit, Qt::LeftButton); // stop
    EXPECT_EQ(plugIn.state().transmissionStep, 0);
    EXPECT_EQ(transmit->pictureName(), QStringLiteral("CButton(4)"));
}
