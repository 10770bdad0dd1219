// The settings text and --diff through the real ferrule-host: export and read back for every
// model, the exit codes of a comparison, and bad text files that stop the run with one line
// before anything is written.

#include "HostFiles.h"
#include "ParameterLines.h"
#include "QtPrinters.h"
#include "device/DefaultImage.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"

#include <QFileInfo>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

class SettingsTextRun : public HostFiles, public ::testing::WithParamInterface<int> {};
using TextFiles = HostFiles;

} // namespace

TEST_P(SettingsTextRun, ExportedTextReadsBackAsTheSameDataWithItsOwnModel) {
    const int model = GetParam();
    const QString m = QString::number(model);
    const QByteArray image = randomImage(unsigned(model));
    writeFile(path(QStringLiteral("a.bin")), image);

    HostRun r =
        host({QStringLiteral("--model"), m, QStringLiteral("--data"), path(QStringLiteral("a.bin")),
              QStringLiteral("--export"), path(QStringLiteral("a.txt"))});
    ASSERT_EQ(r.exitCode, 0) << r.err.constData();
    EXPECT_TRUE(readFile(path(QStringLiteral("a.txt")))
                    .startsWith("# Ferrule system settings\n# Model: GT-" + m.toLatin1() + "\n"));

    // Read without --model: the text names it.
    r = host({QStringLiteral("--data"), path(QStringLiteral("a.txt")), QStringLiteral("--export"),
              path(QStringLiteral("b.syx"))});
    ASSERT_EQ(r.exitCode, 0) << r.err.constData();
    EXPECT_TRUE(r.out.startsWith("exported GT-" + m.toLatin1())) << r.out.constData();
    const SyxFile::Loaded b = SyxFile::read(readFile(path(QStringLiteral("b.syx"))), model,
                                            Sysex::defaultHeader(model), makeDefaultImage());
    ASSERT_TRUE(b.error.isEmpty()) << qPrintable(b.error);
    EXPECT_EQ(mappedDifferences(b.image, image, model), 0);

    // The raw image and its text hold the same settings.
    r = host({QStringLiteral("--model"), m, QStringLiteral("--data"), path(QStringLiteral("a.bin")),
              QStringLiteral("--diff"), path(QStringLiteral("a.txt"))});
    EXPECT_EQ(r.exitCode, 0) << r.err.constData() << r.out.constData();
    EXPECT_TRUE(r.out.isEmpty()) << r.out.constData();
}

INSTANTIATE_TEST_SUITE_P(EveryModel, SettingsTextRun, ::testing::Values(3, 5, 6, 8, 10),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

TEST_F(TextFiles, DiffSaysWhatDiffersByNameAndExitsZeroOrOne) {
    const ParameterIndex& index = ParameterIndex::of(10);
    const QByteArray a = randomImage(21);
    writeFile(path(QStringLiteral("a.syx")),
              SyxFile::write(bytesOf(a), 10, Sysex::defaultHeader(10)));

    // B: two parameters changed (one of two bytes) and one byte no control edits.
    QByteArray b = a;
    const Parameter* one = nullptr;
    const Parameter* two = nullptr;
    for (const Parameter& p : index.parameters()) {
        if (p.bytes == 1 && one == nullptr) one = &p;
        if (p.bytes == 2) two = &p; // the last, after `one` in the index's order
    }
    ASSERT_NE(one, nullptr);
    ASSERT_NE(two, nullptr);
    const int oneA = one->value(bytesOf(a)), twoA = two->value(bytesOf(a));
    const int oneB = oneA == one->minimum ? one->maximum : one->minimum;
    const int twoB = (twoA + 200) % 16384;
    one->store(writable(b), oneB);
    two->store(writable(b), twoB);
    ASSERT_FALSE(index.uncoveredBytes().empty());
    const int loose = index.uncoveredBytes().front();
    b[loose] = char((a[loose] + 1) & 0x7F);
    writeFile(path(QStringLiteral("b.bin")), b);

    const QStringList diff = {QStringLiteral("--data"), path(QStringLiteral("a.syx")),
                              QStringLiteral("--diff")};
    HostRun r = host(diff + QStringList{path(QStringLiteral("b.bin"))});
    EXPECT_EQ(r.exitCode, 1) << r.err.constData();
    const QStringList expected = {
        QStringLiteral("%1: %2 -> %3").arg(one->name(), one->valueText(oneA), one->valueText(oneB)),
        QStringLiteral("%1: %2 -> %3").arg(two->name(), two->valueText(twoA), two->valueText(twoB)),
        QStringLiteral("Address %1: %2 -> %3").arg(loose).arg(int(a[loose])).arg(int(b[loose])),
    };
    EXPECT_EQ(QString::fromUtf8(r.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts), expected);
    EXPECT_TRUE(r.err.contains("3 differences")) << r.err.constData();

    // The same data in another form: nothing differs.
    writeFile(path(QStringLiteral("a.bin")), a);
    r = host(diff + QStringList{path(QStringLiteral("a.bin"))});
    EXPECT_EQ(r.exitCode, 0) << r.err.constData() << r.out.constData();
    EXPECT_TRUE(r.out.isEmpty());
}

// Bad input, to --diff or in a text to export: one line, exit 2, nothing on standard output and
// nothing written; the text file is left as it was.
TEST_F(TextFiles, BadInputStopsTheRunWithOneLineAndWritesNothing) {
    const QString out = path(QStringLiteral("out.syx"));
    const QByteArray edited = "# Model: GT-10\n# a comment\nAddress 19105 = 300\n";
    writeFile(path(QStringLiteral("edited.txt")), edited);
    writeFile(path(QStringLiteral("bad.txt")), "# Model: GT-10\n\nSystem / No / Such = 1\n");
    writeFile(path(QStringLiteral("gt8.txt")), "# Model: GT-8\n");
    writeFile(path(QStringLiteral("gt10.txt")), "# Model: GT-10\n");
    writeFile(path(QStringLiteral("a.bin")), randomImage(21));
    const QStringList diff = {QStringLiteral("--model"), QStringLiteral("10"),
                              QStringLiteral("--data"), path(QStringLiteral("a.bin")),
                              QStringLiteral("--diff")};
    const QStringList text = {QStringLiteral("--data"), path(QStringLiteral("edited.txt")),
                              QStringLiteral("--export"), out};
    const struct {
        QStringList args;
        const char* says;
    } cases[] = {
        {diff + QStringList{path(QStringLiteral("missing.syx"))}, "does not exist"},
        {diff + QStringList{path(QStringLiteral("bad.txt"))}, "line 3: unknown setting"},
        {diff + QStringList{path(QStringLiteral("gt8.txt"))}, "holds GT-8 system data, not GT-10"},
        {{QStringLiteral("--diff"), path(QStringLiteral("a.bin"))}, "--diff needs the other side"},
        {text, "edited.txt\" is not usable: line 3:"},
        {{QStringLiteral("--model"), QStringLiteral("8"), QStringLiteral("--data"),
          path(QStringLiteral("gt10.txt")), QStringLiteral("--export"), out},
         "holds GT-10 system data, not GT-8"},
    };
    for (const auto& c : cases) {
        const HostRun r = host(c.args);
        EXPECT_EQ(r.exitCode, 2) << qPrintable(c.args.join(u' '));
        ASSERT_EQ(r.errLines().size(), 1) << r.err.constData();
        EXPECT_TRUE(r.errLines().first().contains(QLatin1String(c.says))) << r.err.constData();
        EXPECT_TRUE(r.out.isEmpty()) << r.out.constData();
        EXPECT_FALSE(QFileInfo::exists(out));
    }
    EXPECT_EQ(readFile(path(QStringLiteral("edited.txt"))), edited);
}

// A value outside its range that its byte holds is kept, and said.
TEST_F(TextFiles, AValueOutsideItsRangeIsKeptAndSaid) {
    const Parameter* knob = nullptr;
    for (const Parameter& p : ParameterIndex::of(10).parameters())
        if (knob == nullptr && p.bytes == 1 && p.maximum < 127) knob = &p;
    ASSERT_NE(knob, nullptr);
    const QString out = path(QStringLiteral("out.syx"));
    writeFile(path(QStringLiteral("edited.txt")),
              "# Model: GT-10\n" + knob->name().toUtf8() + " = 127\n");
    const HostRun r = host({QStringLiteral("--data"), path(QStringLiteral("edited.txt")),
                            QStringLiteral("--export"), out});
    EXPECT_EQ(r.exitCode, 0) << r.err.constData();
    EXPECT_EQ(r.errLines(),
              QStringList{QStringLiteral("ferrule-host: edited.txt: line 2: %1 = 127 is outside "
                                         "%2-%3; kept")
                              .arg(knob->name())
                              .arg(knob->minimum)
                              .arg(knob->maximum)});
    const SyxFile::Loaded loaded =
        SyxFile::read(readFile(out), 10, Sysex::defaultHeader(10), makeDefaultImage());
    EXPECT_EQ(knob->value(bytesOf(loaded.image)), 127);
}
