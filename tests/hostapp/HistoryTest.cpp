// The history of the device's states: the store's laws over random images, what survives a
// damaged folder, and the History dock in the window on the real plug-in.

#include "document/History.h"
#include "DocumentFiles.h"
#include "HostOptionsForTests.h"
#include "QtPrinters.h"
#include "device/DefaultImage.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"
#include "document/HostSettings.h"
#include "document/SettingsModel.h"
#include "settings/SettingsStore.h"
#include "ui/HistoryDock.h"
#include "ui/HistoryModel.h"
#include "ui/MainWindow.h"
#include "ui/SettingsView.h"

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

#include <random>

using namespace ferrule;

namespace {

using Kind = Snapshot::Kind;

// The default image with the model's own bytes random.
QByteArray randomImage(int model, unsigned start) {
    std::mt19937 random(start);
    QByteArray image = makeDefaultImage();
    for (int i = modelStretch(model).start; i < modelStretch(model).end; ++i)
        image[i] = char(random() & 0x7F);
    return image;
}

// What a snapshot keeps of an image: the model's data as the transmission sends it.
QByteArray modelBytes(const QByteArray& image, int model) {
    return SyxFile::write(
        {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())},
        model, Sysex::defaultHeader(model));
}

QByteArray imageIn(const Snapshot& s) {
    QString error;
    const std::optional<SystemDocument> doc =
        SystemDocument::open(s.path, s.model, Sysex::defaultHeader(s.model), &error);
    EXPECT_TRUE(doc) << qPrintable(error);
    return doc ? doc->image() : QByteArray();
}

bool store(History& history, Kind kind, int model, const QByteArray& image,
           const QStringList& ports = {QStringLiteral("GT port")}) {
    QString error;
    const bool stored =
        history.record(kind, model, image, Sysex::defaultHeader(model), ports, &error).has_value();
    EXPECT_TRUE(error.isEmpty()) << qPrintable(error);
    return stored;
}

} // namespace

TEST(History, NewestFirstEqualStatesOnceTheCapDropsTheOldestAndEachSnapshotOpensAsItsImage) {
    QTemporaryDir dir;
    History history(dir.filePath(QStringLiteral("history")), 4);
    const QByteArray a = randomImage(10, 1), b = randomImage(10, 2);
    EXPECT_TRUE(history.snapshots().isEmpty()) << "a folder not made yet is an empty history";

    EXPECT_TRUE(store(history, Kind::Requested, 10, a, {"GT-10 in", "GT-10 out"}));
    EXPECT_FALSE(store(history, Kind::Sent, 10, a)) << "the same bytes as the newest GT-10";
    EXPECT_TRUE(store(history, Kind::Sent, 8, a)) << "the same image, but another model's bytes";
    EXPECT_FALSE(store(history, Kind::Received, 8, a));
    EXPECT_TRUE(store(history, Kind::Sent, 10, b));
    EXPECT_TRUE(store(history, Kind::Verified, 10, a)) << "equal to an older one, not the newest";

    QList<Snapshot> list = history.snapshots();
    ASSERT_EQ(list.size(), 4);
    const QList<std::pair<int, Kind>> expected = {
        {10, Kind::Verified}, {10, Kind::Sent}, {8, Kind::Sent}, {10, Kind::Requested}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(list[i].model, expected[i].first) << i;
        EXPECT_EQ(list[i].kind, expected[i].second) << i;
        if (i > 0) {
            EXPECT_LT(list[i].time, list[i - 1].time) << "each has a time of its own";
        }
    }
    EXPECT_EQ(list[3].ports, (QStringList{"GT-10 in", "GT-10 out"}));
    EXPECT_EQ(modelBytes(imageIn(list[0]), 10), modelBytes(a, 10));
    EXPECT_EQ(modelBytes(imageIn(list[1]), 10), modelBytes(b, 10));
    EXPECT_EQ(modelBytes(imageIn(list[2]), 8), modelBytes(a, 8));
    EXPECT_EQ(QFileInfo(list[0].path).absolutePath(), history.folder());

    // Beyond the limit the oldest go, with the files beside them.
    const QString oldest = list[3].path;
    QSignalSpy stored(&history, &History::stored);
    EXPECT_TRUE(store(history, Kind::Received, 5, randomImage(5, 3)));
    EXPECT_EQ(stored.size(), 1);
    list = history.snapshots();
    ASSERT_EQ(list.size(), 4);
    EXPECT_EQ(list[0].model, 5);
    EXPECT_FALSE(QFile::exists(oldest));
    EXPECT_EQ(QDir(history.folder()).entryList(QDir::Files | QDir::Hidden).size(), 2 * 4)
        << "four snapshots and their ports; nothing of the dropped one, no temporary file";
}

TEST(History, StrayBrokenAndHalfWrittenFilesAreSkippedAndLeftAlone) {
    QTemporaryDir dir;
    History history(dir.filePath(QStringLiteral("history")), 200);
    ASSERT_TRUE(store(history, Kind::Requested, 6, randomImage(6, 4)));
    const Snapshot good = history.snapshots().first();
    QFile whole(good.path);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    const QDir folder(history.folder());
    const QStringList strays = {
        QStringLiteral("notes.syx"),                        // not a snapshot's name
        QStringLiteral("20991231T235959999-gt6-lost.syx"),  // an unknown kind
        QStringLiteral("20991231T235959998-gt6-sent.syx"),  // cut short
        QStringLiteral("20991231T235959997-gt6-sent.syx"),  // empty
        QStringLiteral("20991231T235959996-gt6-sent.ports") // ports whose snapshot never came
    };
    ASSERT_TRUE(writeFile(folder.filePath(strays[0]), bytes));
    ASSERT_TRUE(writeFile(folder.filePath(strays[1]), bytes));
    ASSERT_TRUE(writeFile(folder.filePath(strays[2]), bytes.left(bytes.size() / 2)));
    ASSERT_TRUE(writeFile(folder.filePath(strays[3]), {}));
    ASSERT_TRUE(writeFile(folder.filePath(strays[4]), "GT port\n"));
    ASSERT_TRUE(folder.mkdir(QStringLiteral("20991231T235959995-gt6-sent.syx")));

    QList<Snapshot> list = history.snapshots();
    ASSERT_EQ(list.size(), 1);
    EXPECT_EQ(list[0].path, good.path);
    EXPECT_FALSE(History::of(folder.filePath(strays[2])));
    // Recording goes on, and a later limit leaves the strays where they are.
    History small(history.folder(), 1);
    ASSERT_TRUE(store(small, Kind::Sent, 6, randomImage(6, 5)));
    list = small.snapshots();
    ASSERT_EQ(list.size(), 1);
    EXPECT_NE(list[0].path, good.path);
    for (const QString& stray : strays)
        EXPECT_TRUE(folder.exists(stray)) << qPrintable(stray);
}

TEST(History, TheFolderFollowsTheUsersDataFolderAndTheLimitIsASetting) {
    QTemporaryDir other;
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", other.path().toLocal8Bit());
    const QString moved = History::defaultFolder();
    qputenv("XDG_DATA_HOME", before);
    EXPECT_TRUE(moved.startsWith(other.path() + QLatin1Char('/'))) << qPrintable(moved);
    EXPECT_TRUE(moved.endsWith(QLatin1String("/history")));
    EXPECT_NE(History::defaultFolder(), moved);

    EXPECT_EQ(History::configuredLimit(), History::kDefaultLimit);
    RegCreateKey(RegRoot::LocalMachine, kHostKey);
    for (const auto& [text, limit] : std::vector<std::pair<QString, int>>{
             {"12", 12}, {"1", 1}, {"0", 200}, {"-5", 200}, {"many", 200}}) {
        RegWrite(RegRoot::LocalMachine, kHostKey, QStringLiteral("HistorySize"), text);
        EXPECT_EQ(History::configuredLimit(), limit) << qPrintable(text);
    }
    RegWrite(RegRoot::LocalMachine, kHostKey, QStringLiteral("HistorySize"), QString());
}

TEST(HistoryDock, ANewSnapshotIsListedAndOpenMakesItANewDocumentAfterAskingAboutChanges) {
    QDir(History::defaultFolder()).removeRecursively();
    MainWindow window(hostOptionsForTests(10), SystemDocument(10, Sysex::defaultHeader(10)));
    History& history = window.history();
    window.show();
    HistoryDock* dock = window.historyDock();
    ASSERT_TRUE(dock->isVisible()) << "shown at start";
    QTreeView* view = dock->view();
    const auto* open = dock->findChild<QPushButton*>(QStringLiteral("historyOpen"));
    const auto* send = dock->findChild<QPushButton*>(QStringLiteral("historySend"));
    auto* compare = dock->findChild<QPushButton*>(QStringLiteral("historyCompare"));
    ASSERT_TRUE(open && send && compare);

    const QByteArray gt8 = randomImage(8, 6);
    ASSERT_TRUE(store(history, Kind::Requested, 8, gt8, {"GT-8 MIDI 1"}));
    ASSERT_TRUE(store(history, Kind::Sent, 10, randomImage(10, 7)));
    ASSERT_EQ(view->model()->rowCount(), 2);
    const auto cell = [view](int row, int column) {
        return view->model()->index(row, column).data().toString();
    };
    const Snapshot requested = history.snapshots()[1];
    EXPECT_EQ(cell(1, HistoryModel::Time), requested.localTime());
    EXPECT_EQ(cell(1, HistoryModel::Model), QStringLiteral("GT-8"));
    EXPECT_EQ(cell(1, HistoryModel::Kind), QStringLiteral("requested"));
    EXPECT_EQ(cell(1, HistoryModel::Port), QStringLiteral("GT-8 MIDI 1"));
    EXPECT_EQ(cell(0, HistoryModel::Kind), QStringLiteral("sent"));
    EXPECT_FALSE(open->isEnabled()) << "nothing selected";

    // The keyboard reaches the older one; without a port, Send says why it cannot.
    view->setFocus();
    view->setCurrentIndex(view->model()->index(0, 0));
    QTest::keyClick(view, Qt::Key_Down);
    ASSERT_EQ(dock->selected()->path, requested.path);
    EXPECT_TRUE(open->isEnabled());
    EXPECT_FALSE(send->isEnabled());
    EXPECT_TRUE(send->toolTip().startsWith(QLatin1String("Not now: ")))
        << qPrintable(send->toolTip());
    // Compare asks the window, which compares only a state of its own model.
    QSignalSpy compared(dock, &HistoryDock::compareRequested);
    ASSERT_TRUE(compare->isEnabled());
    compare->click();
    ASSERT_EQ(compared.size(), 1);
    EXPECT_EQ(compared[0][0].toString(), requested.path);
    EXPECT_TRUE(window.lastResult().startsWith(
        QLatin1String("not compared: the snapshot holds GT-8 system data")))
        << qPrintable(window.lastResult());

    // Another model's state is not sent to this one.
    int confirmations = 0;
    window.setAskSendSnapshot([&](const QString&) { return ++confirmations > 0; });
    EXPECT_FALSE(window.sendSnapshot(requested.path));
    EXPECT_EQ(confirmations, 0);
    EXPECT_TRUE(window.lastResult().startsWith(QLatin1String("not sent: the snapshot holds GT-8")))
        << qPrintable(window.lastResult());

    // A snapshot stored meanwhile keeps the selection where it was.
    ASSERT_TRUE(store(history, Kind::Received, 10, randomImage(10, 8)));
    EXPECT_EQ(view->model()->rowCount(), 3);
    EXPECT_EQ(dock->selected()->path, requested.path);
    // A state of the window's own model fills the Compared column.
    EXPECT_TRUE(window.compareWithSnapshot(history.snapshots().first().path))
        << qPrintable(window.lastResult());
    EXPECT_GT(window.settingsView()->model()->differences(SettingsModel::ComparedSide), 0);

    // Unsaved changes are asked about; Cancel keeps them.
    QByteArray edited = window.document().image();
    edited[modelStretch(10).start] = char(edited[modelStretch(10).start] ^ 1);
    window.takeImage(edited, QStringLiteral("edited"));
    int asked = 0;
    window.setAskSave([&](const QString&) {
        ++asked;
        return QMessageBox::Cancel;
    });
    QTest::keyClick(view, Qt::Key_Return);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(window.document().image(), edited);

    // Discard: the snapshot opens as new data of its model, not as its file.
    window.setAskSave([&](const QString&) {
        ++asked;
        return QMessageBox::Discard;
    });
    QTest::keyClick(view, Qt::Key_Return);
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(window.document().model(), 8);
    EXPECT_EQ(modelBytes(window.document().image(), 8), modelBytes(gt8, 8));
    EXPECT_TRUE(window.documentPath().isEmpty());
    EXPECT_TRUE(window.lastResult().contains(requested.localTime()))
        << qPrintable(window.lastResult());
    EXPECT_EQ(history.snapshots().size(), 3) << "opening stores nothing";
}
