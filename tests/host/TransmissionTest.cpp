#include "host/Transmission.h"
#include "EditorSession.h"
#include "TestHost.h"
#include "editor/ImageButton.h"
#include "host/SettingsStore.h"
#include "host/TransmissionSchedule.h"
#include "sysdata/ModuleState.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMessageBox>
#include <QTest>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

// What a transmission must send, written out step by step from the models' tables.
struct Expected {
    int step;
    int address;
    int start;
    int length;
    bool nibbles;
};

int pack(int a, int b, int c, int d) {
    return (a << 24) | (b << 16) | (c << 8) | d;
}
int addLinear(int packed, int units) {
    int lin = ((packed >> 24) & 127) * 2097152 + ((packed >> 16) & 127) * 16384 +
              ((packed >> 8) & 127) * 128 + (packed & 127);
    lin += units;
    return pack((lin >> 21) & 127, (lin >> 14) & 127, (lin >> 7) & 127, lin & 127);
}

std::vector<Expected> describe(int model) {
    std::vector<Expected> e;
    auto one = [&](int s, int addr, int from, int to) {
        e.push_back({s, addr, from, to - from + 1, false});
    };
    switch (model) {
    case 3: {
        one(0, 0, 0, 1);
        one(1, 0x01000000, 2, 6);
        one(2, 0x01020000, 7, 13);
        one(3, 0x01030000, 14, 23);
        for (int s = 4; s <= 19; ++s)
            e.push_back({s, 0x01031000 + 0x40 * ((s - 4) % 2) + 0x100 * ((s - 4) / 2),
                         24 + 64 * (s - 4), 64, false});
        for (int s = 20; s <= 48; ++s)
            e.push_back({s, 0x01040000 + 0x100 * (s - 20), 1048 + 12 * (s - 20), 12, false});
        for (int s = 49; s <= 58; ++s)
            e.push_back({s, 0x01050000 + 0x200 * (s - 49), 1396 + 192 * (s - 49), 192, false});
        one(59, 0x02000000, 3316, 3321);
        const int lengths[] = {10, 5, 9, 5, 12, 9, 19, 7, 6, 7, 6, 7, 15};
        for (int s = 60; s <= 63; ++s) {
            int at = 3322 + 117 * (s - 60);
            for (int f = 0; f < 13; ++f) {
                e.push_back({s, 0x03000000 + 0x10000 * (s - 60) + 0x100 * f, at, lengths[f], true});
                at += lengths[f];
            }
        }
        for (int s = 64; s <= 67; ++s)
            for (int c = 0; c < 13; ++c)
                e.push_back({s, 0x05000000 + 0x10000 * (s - 64) + 0x100 * c,
                             3790 + 143 * (s - 64) + 11 * c, 11, false});
        break;
    }
    case 5: {
        one(0, 0, 4362, 4364);
        one(1, 0x01000000, 4365, 4370);
        one(2, 0x01010000, 4371, 4375);
        one(3, 0x01020000, 4376, 4381);
        for (int s = 4; s <= 9; ++s)
            e.push_back({s, 0x01021000 + 0x100 * (s - 4), 4382 + 128 * (s - 4), 128, false});
        for (int s = 10; s <= 11; ++s)
            e.push_back({s, 0x01030000 + 0x100 * (s - 10), 5150 + 128 * (s - 10), 128, false});
        one(12, 0x01030200, 5406, 5497);
        one(13, 0x01040000, 5498, 5511);
        one(14, 0x01050000, 5512, 5531);
        one(15, 0x02000000, 5532, 5536);
        const int fields[15][2] = {{0, 7},  {7, 5},  {12, 9},  {21, 5},  {26, 9},
                                   {35, 4}, {39, 9}, {48, 22}, {71, 13}, {84, 6},
                                   {90, 5}, {95, 7}, {102, 6}, {108, 8}, {116, 16}};
        for (int s = 16; s <= 30; ++s)
            for (int en = 0; en < 5; ++en)
                e.push_back({s, 0x03000000 + 0x10000 * en + 0x100 * (s - 16),
                             5537 + 132 * en + fields[s - 16][0], fields[s - 16][1], false});
        for (int s = 31; s <= 45; ++s)
            for (int en = 0; en < 5; ++en)
                e.push_back({s, 0x05000000 + 0x10000 * en + 0x100 * (s - 31),
                             6197 + 165 * en + 11 * (s - 31), 11, false});
        break;
    }
    case 6: {
        one(0, 0, 7022, 7023);
        one(1, 0x01000000, 7024, 7024);
        one(2, 0x02000000, 7025, 7028);
        one(3, 0x02010000, 7029, 7038);
        one(4, 0x02020000, 7039, 7049);
        for (int s = 5; s <= 20; ++s)
            e.push_back({s, 0x02021000 + 0x40 * ((s - 5) % 2) + 0x100 * ((s - 5) / 2),
                         7050 + 64 * (s - 5), 64, false});
        for (int s = 21; s <= 49; ++s)
            e.push_back({s, 0x02040000 + 0x100 * (s - 21), 8074 + 12 * (s - 21), 12, false});
        for (int s = 50; s <= 59; ++s)
            e.push_back({s, 0x02050000 + 0x200 * (s - 50), 8422 + 192 * (s - 50), 192, false});
        for (int s = 60; s <= 62; ++s)
            e.push_back({s, 0x02060000 + 0x100 * (s - 60), 10342 + 9 * (s - 60), 9, false});
        for (int s = 63; s <= 64; ++s)
            e.push_back({s, 0x02070000 + 0x100 * (s - 63), 10369 + 5 * (s - 63), 5, false});
        for (int s = 65; s <= 67; ++s)
            e.push_back({s, 0x02080000 + 0x100 * (s - 65), 10379 + 5 * (s - 65), 5, false});
        one(68, 0x03000000, 10394, 10399);
        break;
    }
    case 8: {
        one(0, 0, 10400, 10401);
        one(1, 0x01000000, 10402, 10402);
        one(2, 0x01000001, 10403, 10408);
        one(3, 0x01030000, 10409, 10427);
        one(4, 0x01040000, 10428, 10439);
        for (int s = 5; s <= 20; ++s)
            e.push_back({s, 0x01041000 + 0x40 * ((s - 5) % 2) + 0x100 * ((s - 5) / 2),
                         10440 + 64 * (s - 5), 64, false});
        one(21, 0x01050000, 11464, 11464);
        one(22, 0x01100000, 11465, 11504);
        one(23, 0x02000000, 11505, 11510);
        for (int s = 24; s <= 52; ++s)
            e.push_back({s, 0x03000000 + 0x100 * (s - 24), 11511 + 12 * (s - 24), 12, false});
        for (int s = 53; s <= 62; ++s)
            e.push_back({s, 0x03010000 + 0x200 * (s - 53), 11859 + 192 * (s - 53), 192, false});
        for (int s = 63; s <= 65; ++s)
            e.push_back({s, 0x03020000 + 0x100 * (s - 63), 13779 + 7 * (s - 63), 7, false});
        for (int s = 66; s <= 67; ++s)
            e.push_back({s, 0x03030000 + 0x100 * (s - 66), 13800 + 5 * (s - 66), 5, false});
        for (int s = 68; s <= 70; ++s)
            e.push_back({s, 0x03040000 + 0x100 * (s - 68), 13810 + 5 * (s - 68), 5, false});
        for (int s = 71; s <= 73; ++s)
            e.push_back({s, 0x03050000 + 0x100 * (s - 71), 13825 + 5 * (s - 71), 5, false});
        const std::vector<int> five = {5, 6, 7, 7, 5,  5,  3,  8, 8, 3, 4, 3, 4,  2, 7, 7, 7,
                                       6, 8, 3, 8, 11, 12, 13, 5, 3, 6, 9, 9, 17, 7, 3, 4};
        int fieldStart = 13840;
        for (int f = 0; f < 33; ++f) {
            for (int en = 0; en < 5; ++en)
                e.push_back({74 + f, 0x04000000 + 0x10000 * en + 0x100 * f,
                             fieldStart + en * five[f], five[f], true});
            fieldStart += 5 * five[f];
        }
        EXPECT_EQ(fieldStart, 14915) << "the second table follows the first";
        const std::vector<int> ten = {7, 3, 3, 6, 17, 11, 24, 7, 8, 15};
        fieldStart = 14915;
        for (int f = 0; f < 10; ++f) {
            for (int en = 0; en < 10; ++en)
                e.push_back({107 + f, 0x04004000 + 0x10000 * en + 0x200 * f,
                             fieldStart + en * ten[f], ten[f], true});
            fieldStart += 10 * ten[f];
        }
        for (int s = 117; s <= 149; ++s)
            for (int en = 0; en < 5; ++en)
                e.push_back({s, 0x06000000 + 0x100 * (s - 117) + 0x10000 * en,
                             15925 + 60 * (s - 117) + 12 * en, 12, false});
        for (int s = 150; s <= 159; ++s)
            for (int en = 0; en < 10; ++en)
                e.push_back({s, 0x06000000 + 0x200 * (s - 118) + 0x10000 * en,
                             17905 + 120 * (s - 150) + 12 * en, 12, false});
        break;
    }
    case 10: {
        e.push_back({0, 0, 19105, 241, false});
        e.push_back({1, 0x00000171, 19346, 141, false});
        e.push_back({2, 0x00010000, 19487, 205, false});
        e.push_back({3, 0x00010200, 19692, 77, false});
        for (int s = 4; s <= 7; ++s)
            e.push_back(
                {s, addLinear(0x00020000, 242 * (s - 4)), 19769 + 242 * (s - 4), 242, false});
        e.push_back({8, addLinear(0x00020000, 4 * 242), 20737, 184, false});
        for (int s = 9; s <= 108; ++s) {
            const int p = (s - 9) / 10, k = (s - 9) % 10, b = 2293 * p;
            const int entry = 0x10000 * p;
            if (k <= 2)
                e.push_back(
                    {s, addLinear(0x30000000 + entry, 242 * k), 20922 + b + 242 * k, 242, false});
            else if (k <= 4)
                e.push_back({s, addLinear(0x30000600 + entry, 242 * (k - 3)), 20922 + b + 242 * k,
                             242, false});
            else if (k == 5)
                e.push_back({s, 0x30000A00 + entry, 20922 + b + 1210, 241, false});
            else if (k == 6)
                e.push_back({s, 0x30000B71 + entry, 20921 + b + 1452, 242, false});
            else if (k <= 8)
                e.push_back({s, addLinear(0x30004000 + entry, 242 * (k - 7)), 20921 + b + 242 * k,
                             242, false});
            else
                e.push_back(
                    {s, addLinear(0x30004000 + entry, 2 * 242), 20921 + b + 2178, 84, false});
        }
        break;
    }
    default:
        break;
    }
    return e;
}

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

class TransmissionTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegCreateKey(RegRoot::LocalMachine, kEditorKey);
        host.fillPattern();
        plugIn.Interface(&host);
    }
    TestHost host;
    PlugIn plugIn;
};

} // namespace

TEST(TransmissionSchedule, AddressArithmeticAndNibbles) {
    EXPECT_EQ(AddressAdd(0x00000000, 1, 241), 0x00000171);
    EXPECT_EQ(AddressAdd(0x00020000, 0, 242), 0x00020000);
    EXPECT_EQ(AddressAdd(0x00020000, 1, 242), 0x00020172);
    EXPECT_EQ(AddressAdd(0x0000007F, 1, 1), 0x00000100);
    EXPECT_EQ(AddressAdd(0x00007F7F, 1, 1), 0x00010000);
    EXPECT_EQ(AddressAdd(0x30000A00, 1, 241), 0x30000B71) << "parts 5 and 6 join seamlessly";
    EXPECT_EQ(linearAddress(packedAddress(123456789 & 0x0FFFFFFF)), 123456789 & 0x0FFFFFFF);
    SystemImage image;
    image.set(10, 0xA7);
    image.set(11, 0x05);
    QByteArray out;
    SplitNibbles(out, image, 10, 2);
    EXPECT_EQ(out, QByteArray::fromHex("0a070005"));
}

TEST(TransmissionSchedule, MatchesTheTablesForEveryModel) {
    for (int model : {3, 5, 6, 8, 10}) {
        std::vector<Expected> want = describe(model);
        std::vector<Expected> got;
        const int total = TransmissionSchedule::stepTotal(model);
        for (int s = 0; s <= total; ++s)
            for (const ScheduledMessage& m : TransmissionSchedule::messages(model, s))
                got.push_back({s, m.address, m.start, m.length, m.nibbles});
        ASSERT_EQ(got.size(), want.size()) << model;
        for (std::size_t i = 0; i < got.size(); ++i) {
            EXPECT_EQ(got[i].step, want[i].step) << model << " #" << i;
            EXPECT_EQ(got[i].address, want[i].address) << model << " step " << want[i].step;
            EXPECT_EQ(got[i].start, want[i].start) << model << " step " << want[i].step;
            EXPECT_EQ(got[i].length, want[i].length) << model << " step " << want[i].step;
            EXPECT_EQ(got[i].nibbles, want[i].nibbles) << model << " step " << want[i].step;
        }
    }
    // Spot checks of the tables' own examples.
    const auto step60 = TransmissionSchedule::messages(3, 60);
    ASSERT_EQ(step60.size(), 13u);
    const int sizes[] = {20, 10, 18, 10, 24, 18, 38, 14, 12, 14, 12, 14, 30};
    SystemImage image;
    for (int f = 0; f < 13; ++f)
        EXPECT_EQ(step60[std::size_t(f)].data(image).size(), sizes[f]);
    EXPECT_EQ(step60.back().address, 0x03000C00);
    EXPECT_EQ(TransmissionSchedule::messages(8, 150).front().address, 0x06004000);
    EXPECT_EQ(TransmissionSchedule::messages(8, 150).size(), 10u);
    EXPECT_EQ(TransmissionSchedule::messages(10, 5).front().address, 0x00020172);
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
        EXPECT_EQ(form->commandButton(0)->pictureName(), QStringLiteral("CButton(13)"));
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

        std::vector<Expected> want = describe(model);
        // The GT-10's last entry reaches past the image: those blocks are not sent.
        std::erase_if(want, [](const Expected& m) { return m.start + m.length > 43252; });
        if (model == 10) {
            EXPECT_EQ(describe(10).size() - want.size(), 3u);
        }
        ASSERT_EQ(std::size_t(host.blocks.size()), want.size()) << model;
        for (std::size_t i = 0; i < want.size(); ++i) {
            const auto& b = host.blocks[qsizetype(i)];
            EXPECT_EQ(b.address, want[i].address) << model << " #" << i;
            EXPECT_EQ(b.model, model);
            EXPECT_EQ(b.data, dataOf(host.image, want[i])) << model << " step " << want[i].step;
        }
        if (model == 5) {
            // Byte 70 of each user entry is never sent.
            for (int en = 0; en < 5; ++en) {
                const int never = 5537 + 132 * en + 70;
                for (const Expected& m : want)
                    EXPECT_FALSE(never >= m.start && never < m.start + m.length);
            }
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
    QMouseEvent off(QEvent::MouseMove, QPointF(-4, 2), transmit->mapToGlobal(QPointF(-4, 2)),
                    Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(transmit, &off);
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

// Answers the cancel question when it appears, noting what it showed.
struct QuestionAnswerer {
    explicit QuestionAnswerer(QMessageBox::StandardButton answer) {
        timer.setInterval(5);
        QObject::connect(&timer, &QTimer::timeout, [this, answer] {
            for (QWidget* w : QApplication::topLevelWidgets()) {
                auto* box = qobject_cast<QMessageBox*>(w);
                if (!box || !box->isVisible() ||
                    box->objectName() != QLatin1String("CancelQuestion"))
                    continue;
                ++asked;
                text = box->text();
                title = box->windowTitle();
                icon = box->icon();
                buttons = box->standardButtons();
                box->button(answer)->click();
            }
        });
        timer.start();
    }
    QTimer timer;
    int asked = 0;
    QString text;
    QString title;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
};

TEST_F(TransmissionTest, CancelAsksOnlyAfterSendingChangedData) {
    plugIn.Format(8);
    SysForm* form = plugIn.editor();
    auto& image = const_cast<SystemImage&>(form->state().image);
    auto change = [&image] { image.set(10400, (image.at(10400) + 1) % 128); };

    {
        // Without a transmission, cancel closes at once even with changes.
        QuestionAnswerer yes(QMessageBox::Yes);
        whileEditorOpen(plugIn, [&](SysForm& f) {
            change();
            f.CancelEdit();
            EXPECT_FALSE(f.isVisible());
        });
        EXPECT_EQ(yes.asked, 0);
    }
    {
        // After a transmission, an image equal to the host's data closes at once. (The change
        // cancelled above is still in the image: the window keeps it until a reload.)
        QuestionAnswerer yes(QMessageBox::Yes);
        whileEditorOpen(plugIn, [&](SysForm& f) {
            f.ReloadFromHost();
            f.ToggleTransmission();
            f.ToggleTransmission();
            f.CancelEdit();
            EXPECT_FALSE(f.isVisible());
        });
        EXPECT_EQ(yes.asked, 0);
    }
    {
        // After a transmission with a change: No keeps the window open.
        QuestionAnswerer no(QMessageBox::No);
        whileEditorOpen(plugIn, [&](SysForm& f) {
            change();
            f.CancelEdit();
            EXPECT_TRUE(f.isVisible());
            no.timer.stop();
            QuestionAnswerer yes(QMessageBox::Yes);
            f.CancelEdit();
            EXPECT_FALSE(f.isVisible());
            EXPECT_EQ(yes.asked, 1);
        });
        EXPECT_EQ(no.asked, 1);
        EXPECT_EQ(
            no.text,
            QStringLiteral(
                "Are you sure you want to cancel?\r\nThis will discard the changes you made in "
                "Tonebench,\r\nbut you transmitted new data to the GT-8.\r\nClick on 'Yes' to "
                "cancel anyway."));
        EXPECT_EQ(no.title, QStringLiteral("Marwick"));
        EXPECT_EQ(no.icon, QMessageBox::Question);
        EXPECT_EQ(no.buttons, QMessageBox::Yes | QMessageBox::No);
    }
    EXPECT_NE(host.image[10400], char(image.at(10400))) << "cancel gives the host nothing";
}
