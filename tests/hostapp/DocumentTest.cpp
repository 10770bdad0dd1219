// The document and its files: what is accepted, what is refused before anything is read, and
// saves that fail without losing the edits or the old file.

#include "DocumentFiles.h"
#include "QtPrinters.h"
#include "SmallDisk.h"
#include "device/DefaultImage.h"
#include "device/DumpMap.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "document/SaveRecovery.h"
#include "document/SystemDocument.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <random>
#include <sys/stat.h>

using namespace ferrule;

namespace {

std::optional<SystemDocument> open(const QString& path, QString* error, int model = 10) {
    return SystemDocument::open(path, model, Sysex::defaultHeader(model), error);
}

} // namespace

TEST(Document, OpensBothFormsAndRefusesWhatIsNotAFileOfSystemData) {
    QTemporaryDir dir;
    QString error;
    // A raw image and a .syx of it open to the same data, each remembering its form.
    QByteArray image = makeDefaultImage();
    image[19200] = 77;
    const QString raw = dir.filePath(QStringLiteral("gt10.bin"));
    ASSERT_TRUE(writeFile(raw, image));
    std::optional<SystemDocument> doc = open(raw, &error);
    ASSERT_TRUE(doc) << qPrintable(error);
    EXPECT_EQ(doc->format(), DataFormat::Raw);
    const QString syx = dir.filePath(QStringLiteral("gt10.syx"));
    ASSERT_TRUE(writeFile(syx, doc->encode(DataFormat::Syx)));
    std::optional<SystemDocument> fromSyx = open(syx, &error);
    ASSERT_TRUE(fromSyx) << qPrintable(error);
    EXPECT_EQ(fromSyx->format(), DataFormat::Syx);
    EXPECT_EQ(fromSyx->image(), image);

    // Saving keeps the form; an edit changes exactly its bytes in the raw file.
    fromSyx->setImage(changed(fromSyx->image(), 19200));
    EXPECT_TRUE(fromSyx->modified());
    ASSERT_TRUE(fromSyx->save(&error)) << qPrintable(error);
    EXPECT_FALSE(fromSyx->modified());
    EXPECT_TRUE(readFile(syx).startsWith(char(0xF0)));
    EXPECT_EQ(open(syx, &error)->image(), changed(image, 19200));

    // Refused at once, with one line naming the problem.
    const QString fifo = dir.filePath(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const struct {
        QString path;
        QString says;
    } refused[] = {
        {fifo, QStringLiteral("is not a regular file")},
        {QStringLiteral("/dev/zero"), QStringLiteral("is not a regular file")},
        {dir.path(), QStringLiteral("is a folder, not a file")},
        {dir.filePath(QStringLiteral("missing")), QStringLiteral("does not exist")},
        {QString(), QStringLiteral("the data file name is empty")},
    };
    for (const auto& r : refused) {
        EXPECT_FALSE(open(r.path, &error));
        EXPECT_TRUE(error.contains(r.says)) << qPrintable(error);
    }
    // A text of the largest size allowed is read (and refused for what it says); one byte
    // more and it is refused unread.
    const QString text = dir.filePath(QStringLiteral("big.txt"));
    ASSERT_TRUE(writeFile(text, QByteArray(4 << 20, '#')));
    EXPECT_FALSE(open(text, &error));
    EXPECT_TRUE(error.endsWith("line 1: the text ends without a model line (\"# Model: GT-N\")"))
        << qPrintable(error);
    ASSERT_TRUE(writeFile(text, QByteArray((4 << 20) + 1, '#')));
    EXPECT_FALSE(open(text, &error));
    EXPECT_TRUE(error.contains("holds more than 4194304 bytes")) << qPrintable(error);
    ASSERT_TRUE(writeFile(raw, image.left(100)));
    EXPECT_FALSE(open(raw, &error));
    EXPECT_TRUE(error.contains("holds 100 bytes")) << qPrintable(error);
    EXPECT_FALSE(open(syx, &error, 8));
    EXPECT_TRUE(error.contains("holds GT-10 system data, not GT-8")) << qPrintable(error);
}

TEST(Document, ARawImageThatNoMessageCouldCarryIsRefusedNamingTheByte) {
    // Found by the fuzzer: a byte above 7F where a message carries the byte whole would be a
    // status byte inside the message, so the image could be opened but neither saved as .syx
    // (the file would not open again) nor sent. A byte sent as two nibbles, or one no message
    // carries, may be anything.
    QTemporaryDir dir;
    const QString raw = dir.filePath(QStringLiteral("image.bin"));
    QString error;
    for (const int model : kModels) {
        int whole = -1, nibble = -1;
        for (const DumpMap::Block& b : DumpMap::of(model).blocks())
            if (b.inImage) (b.nibbles ? nibble : whole) = b.start;
        ASSERT_GE(whole, 0);
        QByteArray image = makeDefaultImage();
        image[whole] = char(0x9A);
        ASSERT_TRUE(writeFile(raw, image));
        EXPECT_FALSE(open(raw, &error, model)) << model;
        EXPECT_TRUE(error.endsWith(QStringLiteral("byte %1 is 0x9A; GT-%2 system data are 7-bit "
                                                  "values (0-127)")
                                       .arg(whole)
                                       .arg(model)))
            << qPrintable(error);
        if (nibble < 0) continue;
        image = makeDefaultImage();
        image[nibble] = char(0xFF);
        ASSERT_TRUE(writeFile(raw, image));
        const std::optional<SystemDocument> doc = open(raw, &error, model);
        ASSERT_TRUE(doc) << qPrintable(error);
        ASSERT_TRUE(writeFile(raw, doc->encode(DataFormat::Syx)));
        const std::optional<SystemDocument> again = open(raw, &error, model);
        ASSERT_TRUE(again) << qPrintable(error);
        EXPECT_EQ(again->image(), image);
    }
}

TEST(Document, RandomFilesNeverLoadSilentlyOrCrash) {
    // A bounded fuzz of the loader: random sizes and bytes, some dressed as .syx. A file loads
    // only when it is exactly an image's size or a well-formed dump.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("f"));
    std::mt19937 random(3);
    QString error;
    for (int n = 0; n < 300; ++n) {
        QByteArray bytes(qsizetype(random() % 50000), 0);
        for (auto& b : bytes)
            b = char(random());
        if (n % 3 == 0 && !bytes.isEmpty()) bytes[0] = char(0xF0);
        ASSERT_TRUE(writeFile(path, bytes));
        const bool loaded = open(path, &error).has_value();
        if (loaded) {
            EXPECT_TRUE(bytes.size() == kImageSize && bytes[0] != char(0xF0)) << n;
        } else {
            EXPECT_FALSE(error.isEmpty());
        }
    }
}

TEST(Document, AFailedSaveKeepsTheOldFileAndTheEditsUntilTheUserChooses) {
    SmallDisk disk(64);
    if (!disk.available()) GTEST_SKIP() << "cannot mount a tmpfs here";
    const QString path = disk.path(QStringLiteral("gt10.bin"));
    const QByteArray original = makeDefaultImage();
    ASSERT_TRUE(writeFile(path, original));
    // A stale temporary file of ours from an earlier crash.
    ASSERT_TRUE(
        writeFile(disk.path(QStringLiteral(".gt10.bin.ferrule-Ab12Cd")), QByteArray(100, 'x')));
    QString error;
    std::optional<SystemDocument> doc = open(path, &error);
    ASSERT_TRUE(doc);
    // Fill the disk.
    {
        QFile filler(disk.path(QStringLiteral("filler")));
        ASSERT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        const QByteArray block(1024, 'f');
        while (filler.write(block) == block.size()) {
        }
    }
    const QByteArray edits = changed(original, 19300);
    doc->setImage(edits);

    QTemporaryDir elsewhere;
    const QString rescue = elsewhere.filePath(QStringLiteral("rescued.syx"));
    QStringList asked;
    const bool saved = saveWithRecovery(
        *doc,
        [&](const QString& why, bool) {
            asked << why;
            return asked.size() < 2 ? SaveChoice{SaveChoice::Retry, {}}
                                    : SaveChoice{SaveChoice::SaveAs, rescue};
        },
        &error);
    ASSERT_TRUE(saved) << qPrintable(error);
    ASSERT_EQ(asked.size(), 2) << "a retry on a full disk fails again";
    EXPECT_TRUE(asked[0].contains("No space left on device")) << qPrintable(asked[0]);
    EXPECT_EQ(readFile(path), original) << "the old file is intact";
    EXPECT_EQ(QDir(disk.root())
                  .entryList({QStringLiteral(".gt10.bin.ferrule-*")}, QDir::Files | QDir::Hidden),
              QStringList())
        << "no temporary file stays behind, an old one is cleaned";
    EXPECT_EQ(doc->path(), rescue);
    EXPECT_EQ(doc->format(), DataFormat::Syx);
    EXPECT_FALSE(doc->modified());
    EXPECT_EQ(open(rescue, &error)->image(), edits);

    // Discard gives up, saying why, with the document still holding the edits.
    SmallDisk readOnly(64);
    ASSERT_TRUE(readOnly.available());
    const QString ro = readOnly.path(QStringLiteral("gt10.bin"));
    ASSERT_TRUE(writeFile(ro, original));
    ASSERT_TRUE(readOnly.makeReadOnly());
    std::optional<SystemDocument> roDoc = open(ro, &error);
    ASSERT_TRUE(roDoc);
    roDoc->setImage(edits);
    EXPECT_FALSE(saveWithRecovery(
        *roDoc,
        [](const QString&, bool) {
            return SaveChoice{SaveChoice::Discard, {}};
        },
        &error));
    EXPECT_TRUE(error.contains("Read-only file system")) << qPrintable(error);
    EXPECT_TRUE(roDoc->modified());
    EXPECT_EQ(roDoc->image(), edits);
    EXPECT_EQ(readFile(ro), original);
}

TEST(Document, ASaveOverAFileChangedOnDiskAsksAndNothingIsLostWithoutAChoice) {
    QTemporaryDir dir;
    QString error;
    const QString path = dir.filePath(QStringLiteral("gt10.bin"));
    const QByteArray original = makeDefaultImage();
    ASSERT_TRUE(writeFile(path, original));
    std::optional<SystemDocument> doc = open(path, &error);
    ASSERT_TRUE(doc) << qPrintable(error);
    struct Asked {
        QString why;
        bool changedOnDisk;
    };
    QList<Asked> asked;
    SaveChoice answer;
    const AskAfterFailedSave ask = [&](const QString& why, bool changedOnDisk) {
        asked.append({why, changedOnDisk});
        return answer;
    };

    // Written again with the same bytes (a backup tool, a sync): not a change, no question.
    ASSERT_TRUE(writeFile(path, original));
    ASSERT_TRUE(touch(path, 5));
    doc->setImage(changed(original, 19200));
    ASSERT_TRUE(saveWithRecovery(*doc, ask, &error)) << qPrintable(error);
    EXPECT_TRUE(asked.isEmpty());

    // Another program writes other bytes: each answer does what it says.
    const QByteArray theirs = changed(original, 19300);
    const QByteArray ours = changed(doc->image(), 19400);
    const QString rescue = dir.filePath(QStringLiteral("mine.syx"));
    for (const SaveChoice::Kind kind :
         {SaveChoice::Discard, SaveChoice::Overwrite, SaveChoice::SaveAs}) {
        ASSERT_TRUE(writeFile(path, theirs));
        ASSERT_TRUE(touch(path, 10 + int(kind)));
        doc->setImage(ours);
        asked.clear();
        answer = {kind, rescue};
        const bool saved = saveWithRecovery(*doc, ask, &error);
        ASSERT_EQ(asked.size(), 1) << int(kind);
        EXPECT_TRUE(asked[0].changedOnDisk);
        EXPECT_TRUE(asked[0].why.startsWith("gt10.bin was changed on disk after it was read here"))
            << qPrintable(asked[0].why);
        EXPECT_EQ(saved, kind != SaveChoice::Discard);
        EXPECT_EQ(readFile(path), kind == SaveChoice::Overwrite ? ours : theirs) << int(kind);
        EXPECT_EQ(doc->modified(), kind == SaveChoice::Discard);
        EXPECT_EQ(doc->image(), ours);
    }
    EXPECT_EQ(doc->path(), rescue);
    EXPECT_EQ(open(rescue, &error)->image(), ours);
}
