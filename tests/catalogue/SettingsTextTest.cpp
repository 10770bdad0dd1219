// The settings text: image → text → image gives back every byte the transmission sends, for
// random images of every model; a file a person edited reads as they meant it; each fault of a
// bad file is one line naming its line, and nothing else comes back.

#include "catalogue/SettingsText.h"
#include "ImageSpans.h"
#include "QtPrinters.h"
#include "catalogue/ParameterIndex.h"
#include "device/DefaultImage.h"
#include "device/DumpMap.h"
#include "device/ModelDescription.h"

#include <gtest/gtest.h>

#include <random>

using namespace ferrule;

namespace {

// Every image byte the model's transmission sends, with the most it can carry (255 for a byte
// sent as two nibbles, 127 for one sent whole).
std::vector<std::pair<int, int>> sentBytes(int model) {
    std::vector<int> most(kImageSize, 0);
    for (const DumpMap::Block& block : DumpMap::of(model).blocks()) {
        if (!block.inImage) continue;
        for (int i = block.start; i < block.start + (block.nibbles ? block.units / 2 : block.units);
             ++i)
            most[std::size_t(i)] = block.nibbles && most[std::size_t(i)] != 127 ? 255 : 127;
    }
    std::vector<std::pair<int, int>> sent;
    for (int i = 0; i < kImageSize; ++i)
        if (most[std::size_t(i)] != 0) sent.emplace_back(i, most[std::size_t(i)]);
    return sent;
}

SettingsText::Read readText(const QString& text) {
    return SettingsText::read(text);
}

class SettingsTextLaw : public ::testing::TestWithParam<int> {};

} // namespace

TEST_P(SettingsTextLaw, ImageToTextToImageGivesBackEverySentByteAndOnlyChangesAreListed) {
    const int model = GetParam();
    const QByteArray defaults = makeDefaultImage();
    const std::vector<std::pair<int, int>> sent = sentBytes(model);
    ASSERT_FALSE(sent.empty());

    // The defaults have nothing to list.
    const QString plain = SettingsText::write(model, bytesOf(defaults));
    EXPECT_TRUE(
        plain.startsWith(QStringLiteral("# Ferrule system settings\n# Model: GT-%1\n").arg(model)))
        << qPrintable(plain);
    for (const QStringView line : QStringView(plain).tokenize(u'\n'))
        EXPECT_TRUE(line.isEmpty() || line.startsWith(u'#')) << qPrintable(line.toString());

    // Random images, every sent byte anywhere in what the transmission can carry; a few
    // images change only a handful of bytes, most change nearly all.
    std::mt19937 random{unsigned(model)};
    for (int round = 0; round < 12; ++round) {
        QByteArray image = defaults;
        const unsigned every = round < 3 ? 997 : 1;
        for (const auto& [index, most] : sent)
            if (random() % every == 0) image[index] = char(random() % unsigned(most + 1));
        const QString text = SettingsText::write(model, bytesOf(image));
        const SettingsText::Read back = readText(text);
        ASSERT_TRUE(back.error.isEmpty()) << qPrintable(back.error);
        EXPECT_EQ(back.model, model);
        // Every sent byte as it was; every other the default.
        int differing = 0;
        QByteArray expected = defaults;
        for (const auto& [index, most] : sent)
            expected[index] = image[index];
        for (int i = 0; i < kImageSize; ++i)
            differing += back.image[i] != expected[i];
        EXPECT_EQ(differing, 0) << "round " << round;
        // The same text again: nothing is lost or added on the way.
        EXPECT_EQ(SettingsText::write(model, bytesOf(back.image)), text);
        // One line per changed parameter or byte, no more; a setting that shares its bytes
        // with another may be left to that one.
        const std::vector<ParameterDifference> changes =
            compareImages(model, bytesOf(defaults), bytesOf(image));
        qsizetype settings = 0;
        for (const QStringView line : QStringView(text).tokenize(u'\n'))
            settings += !line.isEmpty() && !line.startsWith(u'#');
        EXPECT_LE(settings, qsizetype(changes.size()));
        EXPECT_GE(settings,
                  qsizetype(changes.size()) - 2 * ParameterIndex::of(model).sharedBytes().size());
    }
}

TEST_P(SettingsTextLaw, ASettingChangedAloneIsWrittenAsItselfAndReadsBackWithoutAWarning) {
    // Each parameter at either end of its range, the rest at their defaults: the text names
    // it, and any other line is a setting that shares its bytes and reads back within its own
    // range (no "outside ...; kept"), giving back the same image.
    const int model = GetParam();
    const ParameterIndex& index = ParameterIndex::of(model);
    const QByteArray defaults = makeDefaultImage();
    for (const Parameter& p : index.parameters())
        for (const int v : {p.minimum, p.maximum}) {
            QByteArray image = defaults;
            p.store(writable(image), v);
            if (image == defaults) continue;
            const QString text = SettingsText::write(model, bytesOf(image));
            EXPECT_TRUE(text.contains(u'\n' + p.name() + QStringLiteral(" = ")))
                << qPrintable(p.name()) << " = " << v << " is not written as itself:\n"
                << qPrintable(text);
            const SettingsText::Read back = readText(text);
            ASSERT_TRUE(back.error.isEmpty()) << qPrintable(back.error);
            EXPECT_TRUE(back.warnings.isEmpty()) << qPrintable(p.name()) << " = " << v << ": "
                                                 << qPrintable(back.warnings.join(u'\n'));
            EXPECT_TRUE(back.image == image) << qPrintable(p.name()) << " = " << v;
        }
}

TEST_P(SettingsTextLaw, EveryValueEveryParameterCanHoldGoesThroughTheText) {
    // Option names may be numbers themselves ("1", "2", "3", "USB"): whatever a value's text
    // is, it reads back as that value. Round v gives every parameter the value v (a two-byte
    // one v × 129, across its whole span).
    const int model = GetParam();
    const ParameterIndex& index = ParameterIndex::of(model);
    for (int v = 0; v < 128; ++v) {
        QByteArray image = makeDefaultImage();
        for (const Parameter& p : index.parameters())
            p.store(writable(image), p.bytes == 2 ? v * 129 : v);
        const SettingsText::Read back = readText(SettingsText::write(model, bytesOf(image)));
        ASSERT_TRUE(back.error.isEmpty()) << qPrintable(back.error);
        for (const Parameter& p : index.parameters())
            ASSERT_EQ(p.value(bytesOf(back.image)), p.value(bytesOf(image)))
                << qPrintable(p.name()) << " " << qPrintable(p.valueText(p.value(bytesOf(image))));
    }
}

INSTANTIATE_TEST_SUITE_P(EveryModel, SettingsTextLaw, ::testing::Values(3, 5, 6, 8, 10),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

namespace {

// Parameters of a model with the traits a hand-edited file uses.
struct Picks {
    const Parameter* option = nullptr;  // values with names of their own
    const Parameter* option2 = nullptr; // another such, set by number
    const Parameter* knob = nullptr;    // plain numbers, one byte with room above its range
    int uncovered = -1;                 // a sent byte no control edits, or -1
};

Picks pick(int model) {
    Picks p;
    const ParameterIndex& index = ParameterIndex::of(model);
    for (const Parameter& q : index.parameters()) {
        bool ok = false;
        q.valueText(q.minimum + 1).toInt(&ok);
        if (!ok && q.maximum > q.minimum) {
            if (p.option == nullptr)
                p.option = &q;
            else if (p.option2 == nullptr)
                p.option2 = &q;
        } else if (ok && p.knob == nullptr && q.bytes == 1 && q.canHold(q.maximum + 1) &&
                   q.maximum > q.minimum)
            p.knob = &q;
    }
    if (!index.uncoveredBytes().empty()) p.uncovered = index.uncoveredBytes().back();
    return p;
}

// A name as a person might type it: more spaces, other case.
QString sloppy(const QString& name) {
    QString s = name;
    s.replace(QStringLiteral(" / "), QStringLiteral("  /   "));
    return s.toLower();
}

class HandEdited : public ::testing::TestWithParam<int> {};

} // namespace

TEST_P(HandEdited, CommentsBlankLinesOrderSpacesAndOptionsByNameOrNumberReadAsMeant) {
    const int model = GetParam();
    const Picks p = pick(model);
    ASSERT_NE(p.option, nullptr);
    ASSERT_NE(p.option2, nullptr);
    ASSERT_NE(p.knob, nullptr);

    QByteArray expected = makeDefaultImage();
    const int optionValue = p.option->maximum;
    const int option2Value = p.option2->minimum + 1;
    const int knobValue = p.knob->maximum + 1; // outside its range, but its bytes hold it
    p.option->store(writable(expected), optionValue);
    p.option2->store(writable(expected), option2Value);
    p.knob->store(writable(expected), knobValue);
    if (p.uncovered >= 0) expected[p.uncovered] = 99;

    // Settings in reverse order of the pages, comments between, blank and indented lines,
    // Windows line ends.
    QStringList lines = {
        QStringLiteral("# my backup, edited by hand"),
        QStringLiteral("#Model:GT-%1").arg(model),
        QString(),
        QStringLiteral("   # the last first"),
    };
    if (p.uncovered >= 0) lines << QStringLiteral("  address   %1=99  ").arg(p.uncovered);
    lines << QStringLiteral("%1=%2").arg(sloppy(p.knob->name())).arg(knobValue);
    const int knobLine = int(lines.size());
    lines << QString()
          << QStringLiteral("\t%1   =   %2\t")
                 .arg(p.option->name(), p.option->valueText(optionValue));
    lines << QStringLiteral("%1 = %2").arg(p.option2->name()).arg(option2Value);
    const SettingsText::Read read = readText(lines.join(QStringLiteral("\r\n")));
    ASSERT_TRUE(read.error.isEmpty()) << qPrintable(read.error);
    EXPECT_EQ(read.model, model);
    EXPECT_EQ(read.image, expected);
    ASSERT_EQ(read.warnings.size(), 1) << qPrintable(read.warnings.join(u'\n'));
    EXPECT_EQ(read.warnings.first(), QStringLiteral("line %1: %2 = %3 is outside %4-%5; kept")
                                         .arg(knobLine)
                                         .arg(p.knob->name())
                                         .arg(knobValue)
                                         .arg(p.knob->minimum)
                                         .arg(p.knob->maximum));
    // Written again, the options go by their names and the file reads the same.
    const QString text = SettingsText::write(model, bytesOf(expected));
    EXPECT_TRUE(text.contains(p.option2->name() + QStringLiteral(" = ") +
                              p.option2->valueText(option2Value)))
        << qPrintable(text);
    EXPECT_EQ(readText(text).image, expected);
}

INSTANTIATE_TEST_SUITE_P(EveryModel, HandEdited, ::testing::Values(3, 5, 6, 8, 10),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

TEST(SettingsTextFaults, EachFaultIsOneLineNamingItsLineAndNothingComesBack) {
    const Picks p = pick(10);
    const QString option = p.option->name();
    const QString knob = p.knob->name();
    const Parameter* twoBytes = nullptr;
    for (const Parameter& q : ParameterIndex::of(10).parameters())
        if (q.bytes == 2) twoBytes = &q;
    ASSERT_NE(twoBytes, nullptr);
    const int covered = p.knob->address;
    const QString head = QStringLiteral("# Ferrule system settings\n# Model: GT-10\n");
    struct Case {
        QString text;
        QString error;
    };
    const Case cases[] = {
        {head + QStringLiteral("System / Nowhere / Nothing = 1"),
         QStringLiteral("line 3: unknown setting \"System / Nowhere / Nothing\" for the GT-10")},
        {head + knob + QStringLiteral(" = 300"),
         QStringLiteral("line 3: 300 does not fit in the one 7-bit byte of \"%1\"").arg(knob)},
        {head + twoBytes->name() + QStringLiteral(" = 16384"),
         QStringLiteral("line 3: 16384 does not fit in the two 7-bit bytes of \"%1\"")
             .arg(twoBytes->name())},
        {head + QStringLiteral("\n%1 = no such thing").arg(option),
         QStringLiteral("line 4: \"no such thing\" is not a value of \"%1\"").arg(option)},
        {head + QStringLiteral("just some words"),
         QStringLiteral("line 3: \"just some words\" is not \"Page / Heading / Caption "
                        "[instance] = value\" or \"Address N = value\"")},
        {head + knob + QStringLiteral(" ="), QStringLiteral("line 3: no value after \"=\"")},
        {head + QStringLiteral("%1 = 1\n# again\n%2 = 2").arg(knob, sloppy(knob)),
         QStringLiteral("line 5: \"%1\" is set again (first on line 3)").arg(knob)},
        {knob + QStringLiteral(" = 1\n# Model: GT-10"),
         QStringLiteral("line 1: a setting before the model line (\"# Model: GT-N\", N one of 3, "
                        "5, 6, 8, 10)")},
        {QStringLiteral("# Ferrule system settings\n\n"),
         QStringLiteral("line 2: the text ends without a model line (\"# Model: GT-N\")")},
        {QStringLiteral("# Model: GT-7\n"),
         QStringLiteral("line 1: unknown model \"GT-7\" (GT-3, GT-5, GT-6, GT-8 or GT-10)")},
        {head + QStringLiteral("# Model: GT-8\n"), QStringLiteral("line 3: a second model line")},
        {head + QStringLiteral("Address 0 = 1"),
         QStringLiteral("line 3: address 0 is not a byte the GT-10 sends")},
        {head + QStringLiteral("Address x = 1"), QStringLiteral("line 3: \"x\" is not an address")},
        {head + QStringLiteral("Address %1 = 1").arg(covered),
         QStringLiteral("line 3: address %1 is a byte of \"%2\"; set it by name")
             .arg(covered)
             .arg(knob)},
    };
    for (const Case& c : cases) {
        const SettingsText::Read read = readText(c.text);
        EXPECT_EQ(read.error, c.error) << qPrintable(c.text);
        EXPECT_TRUE(read.image.isEmpty()) << qPrintable(c.text);
        EXPECT_EQ(read.model, 0) << qPrintable(c.text);
        EXPECT_TRUE(read.warnings.isEmpty()) << qPrintable(c.text);
    }
    // A byte no control edits: only what the transmission can carry, once.
    if (p.uncovered >= 0) {
        const QString address = QStringLiteral("Address %1 = ").arg(p.uncovered);
        int most = 0;
        for (const auto& [index, m] : sentBytes(10))
            if (index == p.uncovered) most = m;
        EXPECT_EQ(readText(head + address + QString::number(most + 1)).error,
                  QStringLiteral("line 3: address %1 holds 0-%2, not %3")
                      .arg(p.uncovered)
                      .arg(most)
                      .arg(most + 1));
        EXPECT_EQ(
            readText(head + address + QStringLiteral("1\n") + address + QStringLiteral("2")).error,
            QStringLiteral("line 4: address %1 is set again (first on line 3)").arg(p.uncovered));
    }
}

TEST(SettingsTextFaults, TwoSettingsOfOneByteMayAgreeButNeverUndoEachOther) {
    // Where two controls edit one byte, a text that gives it one value through both reads; one
    // that gives it two values is refused, whichever comes first.
    int shared = 0;
    for (const int model : kModels) {
        const ParameterIndex& index = ParameterIndex::of(model);
        const QByteArray defaults = makeDefaultImage();
        for (const int b : index.sharedBytes()) {
            ++shared;
            // Each of the two settings' lines for the byte at x, their values as numbers.
            const auto lines = [&](int x) {
                QByteArray image = defaults;
                image[b] = char(x);
                QStringList found;
                for (const Parameter& p : index.parameters())
                    if (b >= p.address && b < p.address + p.bytes)
                        found << p.name() + QStringLiteral(" = ") +
                                     QString::number(p.value(bytesOf(image)));
                return found;
            };
            const int x = defaults[b] ^ 1, y = defaults[b] ^ 2;
            const QStringList atX = lines(x), atY = lines(y);
            ASSERT_EQ(atX.size(), 2) << "GT-" << model << " byte " << b;
            ASSERT_EQ(atY.size(), 2);
            const QString head = QStringLiteral("# Model: GT-%1\n").arg(model);
            const SettingsText::Read agree = readText(head + atX.join(u'\n'));
            ASSERT_TRUE(agree.error.isEmpty()) << qPrintable(agree.error);
            EXPECT_EQ(agree.image[b], char(x));
            const QString name0 = atX[0].section(QStringLiteral(" = "), 0, 0);
            const QString name1 = atX[1].section(QStringLiteral(" = "), 0, 0);
            EXPECT_EQ(readText(head + atX[0] + u'\n' + atY[1]).error,
                      QStringLiteral("line 3: \"%1\" shares a byte with \"%2\" (line 2) and gives "
                                     "it another value")
                          .arg(name1, name0));
            EXPECT_EQ(readText(head + atY[1] + u'\n' + atX[0]).error,
                      QStringLiteral("line 3: \"%1\" shares a byte with \"%2\" (line 2) and gives "
                                     "it another value")
                          .arg(name0, name1));
        }
    }
    EXPECT_GT(shared, 0);
}
