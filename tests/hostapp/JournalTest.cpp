// The recovery journal: what it keeps and what it refuses to read, and the window that writes it
// after each edit (in the editor too, before OK) and recovers it on the next start.

#include "DocumentFiles.h"
#include "EditorDriver.h"
#include "HostOptionsForTests.h"
#include "HostProcess.h"
#include "QtPrinters.h"
#include "device/DefaultImage.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "io/RecoveryJournal.h"
#include "ui/MainWindow.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <random>
#include <tuple>

using namespace ferrule;

namespace {

SystemDocument reopen(const QString& path, int model) {
    QString error;
    return *SystemDocument::open(path, model, Sysex::defaultHeader(model), &error);
}

} // namespace

TEST(RecoveryJournal, KeepsAnEntryWholeAndReadsNothingElse) {
    QTemporaryDir dir;
    const RecoveryJournal journal(dir.filePath(QStringLiteral("recovery")));
    const QString path = saveMidRange(dir.filePath(QStringLiteral("a.bin")), 8, DataFormat::Raw);
    ASSERT_TRUE(QFile::link(path, dir.filePath(QStringLiteral("link.bin"))));
    JournalEntry entry{path,
                       8,
                       1,
                       QDateTime::currentDateTime(),
                       43252,
                       QDateTime::currentDateTime().addSecs(-60),
                       QByteArray(32, 'h'),
                       changed(makeDefaultImage(), 10500)};
    QString error;
    ASSERT_TRUE(journal.write(entry, &error)) << qPrintable(error);
    // The file is known by its canonical path: through a link it is the same journal.
    const auto back = journal.read(dir.filePath(QStringLiteral("link.bin")), 3);
    ASSERT_TRUE(back.has_value());
    EXPECT_TRUE(back->image == entry.image);
    EXPECT_EQ(back->written, entry.written);
    EXPECT_EQ(back->diskModified, entry.diskModified);
    EXPECT_EQ(std::tie(back->model, back->form, back->diskSize, back->diskHash),
              std::tie(entry.model, entry.form, entry.diskSize, entry.diskHash));
    // A document without a file has one journal per model.
    entry.path.clear();
    ASSERT_TRUE(journal.write(entry, &error));
    EXPECT_TRUE(journal.read({}, 8).has_value());
    EXPECT_FALSE(journal.read({}, 10).has_value());

    // Damaged bytes (cut short, any byte changed) and foreign files read as nothing, and stay.
    const QByteArray good = readFile(journal.fileFor(path, 8));
    std::mt19937 random(23);
    for (int round = 0; round < 300; ++round) {
        QByteArray bad = good;
        if (round % 3 == 0)
            bad.truncate(int(random() % std::uint32_t(good.size())));
        else
            bad[int(random() % std::uint32_t(good.size()))] ^= char(1 + random() % 255);
        ASSERT_FALSE(RecoveryJournal::decode(bad).has_value()) << "round " << round;
    }
    const QString slot = journal.fileFor(path, 8);
    for (const QByteArray& foreign :
         {QByteArray(), QByteArray("[General]\nx=1\n"), good.left(40)}) {
        ASSERT_TRUE(writeFile(slot, foreign));
        EXPECT_FALSE(journal.read(path, 8).has_value());
        EXPECT_TRUE(QFile::exists(slot));
    }
    // Another document's journal in this one's place is not this document's.
    ASSERT_TRUE(QFile::remove(slot));
    ASSERT_TRUE(QFile::copy(journal.fileFor({}, 8), slot));
    EXPECT_FALSE(journal.read(path, 8).has_value());
}

// An edit, a death before saving, and a new window: each answer, and a file changed meanwhile.
class WindowJournal : public ::testing::TestWithParam<int> {
protected:
    struct Next {
        QStringList asked;
        std::unique_ptr<MainWindow> window;
    };

    // A window that edits and then dies: its journal is all that is left.
    void editAndDie(const QByteArray& image) {
        const QByteArray before = readFile(path);
        MainWindow window(hostOptionsForTests(model), reopen(path, model));
        window.takeImage(image, QStringLiteral("edited"));
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                const auto e = journal.read(path, model);
                return e && e->image == image;
            },
            120000));
        ASSERT_TRUE(readFile(path) == before);
    }
    // The next window, answering the question about recovering with `recover`.
    Next nextStart(bool recover) {
        Next next{{},
                  std::make_unique<MainWindow>(hostOptionsForTests(model), reopen(path, model))};
        next.window->setAskRecover([&asked = next.asked, recover](const QString& q) {
            asked << q;
            return recover;
        });
        next.window->offerRecovery();
        return next;
    }

    const int model = GetParam();
    QTemporaryDir dir;
    const QString path =
        saveMidRange(dir.filePath(QStringLiteral("data.bin")), model, DataFormat::Raw);
    const QByteArray original = readFile(path);
    const QByteArray edited = changed(original, 10500);
    const RecoveryJournal journal;
    const QString journalFile = journal.fileFor(path, model);
};

TEST_P(WindowJournal, DiscardRemovesTheJournalAndADamagedOneIsNotAskedAbout) {
    ASSERT_NO_FATAL_FAILURE(editAndDie(edited));
    Next discard = nextStart(false);
    ASSERT_EQ(discard.asked.size(), 1);
    const auto question = QRegularExpression(
        QStringLiteral("^Ferrule closed before your changes to data.bin were saved "
                       "\\(\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\)\\. Recover them\\?$"));
    EXPECT_TRUE(question.match(discard.asked[0]).hasMatch()) << qPrintable(discard.asked[0]);
    EXPECT_FALSE(discard.window->documentModified());
    EXPECT_FALSE(QFile::exists(journalFile)) << "Discard removes the journal";
    EXPECT_TRUE(readFile(path) == original);
    discard.window.reset();
    // A damaged journal is not asked about, and is left where it is.
    ASSERT_TRUE(writeFile(journalFile, QByteArray("Ferrule recovery journal 1\n") + "cut"));
    EXPECT_TRUE(nextStart(true).asked.isEmpty());
    EXPECT_TRUE(QFile::exists(journalFile));
}

TEST_P(WindowJournal, RecoverShowsTheEditsUnsavedAndASaveRemovesTheJournal) {
    ASSERT_NO_FATAL_FAILURE(editAndDie(edited));
    Next recover = nextStart(true);
    ASSERT_EQ(recover.asked.size(), 1);
    EXPECT_TRUE(recover.window->documentModified());
    EXPECT_TRUE(recover.window->windowTitle().startsWith("data.bin[*]"));
    EXPECT_TRUE(recover.window->document().image() == edited);
    EXPECT_TRUE(readFile(path) == original) << "recovered, not saved";
    ASSERT_TRUE(recover.window->save());
    EXPECT_TRUE(readFile(path) == edited);
    EXPECT_FALSE(QFile::exists(journalFile)) << "a save removes the journal";
}

// Another program writes the file after the edits began: the question says so, and a save over
// it asks first.
TEST_P(WindowJournal, AFileChangedMeanwhileIsNamedInTheQuestionAndASaveOverItAsks) {
    ASSERT_NO_FATAL_FAILURE(editAndDie(edited));
    ASSERT_TRUE(writeFile(path, changed(original, 10700)));
    ASSERT_TRUE(touch(path, 5)) << "as a write a while later: a time of its own";
    Next meanwhile = nextStart(true);
    ASSERT_EQ(meanwhile.asked.size(), 1);
    EXPECT_TRUE(
        meanwhile.asked[0].contains("\n\ndata.bin was changed on disk after it was read here"))
        << qPrintable(meanwhile.asked[0]);
    EXPECT_TRUE(meanwhile.window->document().image() == edited);
    bool askedOverwrite = false;
    meanwhile.window->setAskAfterFailedSave([&](const QString&, bool changedOnDisk) {
        askedOverwrite = changedOnDisk;
        return SaveChoice{SaveChoice::Overwrite, {}};
    });
    ASSERT_TRUE(meanwhile.window->save());
    EXPECT_TRUE(askedOverwrite);
    EXPECT_TRUE(readFile(path) == edited);
}

// The edits made inside the editor are journaled before OK; Cancel discards them and the
// journal with them.
TEST_P(WindowJournal, EditsInsideTheEditorAreJournaledBeforeOk) {
    const int model = GetParam();
    QTemporaryDir dir;
    const QString path =
        saveMidRange(dir.filePath(QStringLiteral("editor.bin")), model, DataFormat::Raw);
    const RecoveryJournal journal;
    for (const bool cancel : {false, true}) {
        MainWindow window(hostOptionsForTests(model), reopen(path, model));
        EditorDriver driver;
        driver.cancel = cancel;
        QByteArray journaled;
        driver.beforeClose = [&] {
            if (QTest::qWaitFor([&] { return journal.read(path, model).has_value(); }, 120000))
                journaled = journal.read(path, model)->image;
        };
        driver.arm();
        window.edit();
        ASSERT_TRUE(driver.done);
        ASSERT_GE(driver.memLoc, 0);
        ASSERT_FALSE(journaled.isEmpty()) << "no journal while the editor was open";
        EXPECT_TRUE(journaled != readFile(path));
        EXPECT_EQ(window.documentModified(), !cancel);
        if (!cancel) {
            EXPECT_TRUE(window.document().image() == journaled);
            window.setAskSave([](const QString&) { return QMessageBox::Discard; });
            EXPECT_TRUE(window.close());
        }
        EXPECT_FALSE(QFile::exists(journal.fileFor(path, model)))
            << (cancel ? "Cancel" : "closing with Discard") << " leaves a journal";
    }
}

INSTANTIATE_TEST_SUITE_P(Models, WindowJournal, ::testing::Values(3, 10),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

// Runs without a display never ask and leave a journal where it is.
TEST(WindowJournal, HeadlessRunsNeitherAskNorTouchTheJournal) {
    QTemporaryDir dir;
    const QString path =
        saveMidRange(dir.filePath(QStringLiteral("headless.bin")), 8, DataFormat::Raw);
    const QString dataHome = qEnvironmentVariable("XDG_DATA_HOME");
    // The child's data folder is this process's: the journal is where both look.
    const RecoveryJournal journal(QDir(dataHome).filePath(QStringLiteral("ferrule-host/recovery")));
    QString error;
    ASSERT_TRUE(journal.write(
        {path, 8, 0, QDateTime::currentDateTime(), 1, {}, {}, changed(makeDefaultImage(), 10500)},
        &error));
    const QByteArray before = readFile(journal.fileFor(path, 8));
    for (const QStringList& args :
         {QStringList{QStringLiteral("--export"), dir.filePath(QStringLiteral("out.syx"))},
          QStringList{QStringLiteral("--describe")},
          QStringList{QStringLiteral("--screenshot"), dir.filePath(QStringLiteral("s.png"))}}) {
        const HostRun r = runHost(
            QStringList{QStringLiteral("--model"), QStringLiteral("8"), QStringLiteral("--data"),
                        path, QStringLiteral("--plugin"), QStringLiteral(FERRULE_PLUGIN_FILE)} +
                args,
            dataHome);
        EXPECT_EQ(r.exitCode, 0) << qPrintable(args.join(' ')) << r.err.constData();
        EXPECT_TRUE(readFile(journal.fileFor(path, 8)) == before) << qPrintable(args.join(' '));
    }
}
