// The parameter index's laws for every model: the bytes the transmission sends are covered once
// or listed as edited by no control, names are unique and found, value texts read back, a
// comparison of two images names exactly the sent bytes that differ, and every control the
// real editor places, on every page in every selector state, is exactly one parameter.

#include "catalogue/ParameterIndex.h"
#include "PageStates.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "device/DefaultImage.h"
#include "device/ModelDescription.h"
#include "device/ModelMap.h"
#include "pages/ControlPools.h"
#include "pages/GridEditor.h"
#include "sysdata/SystemImage.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <set>

using namespace ferrule;

namespace {

class IndexLaws : public ::testing::TestWithParam<int> {
protected:
    int model() const { return GetParam(); }
    const ParameterIndex& index() const { return ParameterIndex::of(model()); }
    std::string where(const Parameter& p) const {
        return "GT-" + std::to_string(model()) + " " + p.name().toStdString();
    }
};

TEST_P(IndexLaws, EverySentByteIsCoveredOnceOrListedAsEditedByNoControl) {
    const auto parameters = index().parameters();
    ASSERT_FALSE(parameters.empty());
    std::vector<int> owners(std::size_t(kImageSize), 0);
    for (const Parameter& p : parameters) {
        ASSERT_TRUE(p.bytes == 1 || p.bytes == 2) << where(p);
        ASSERT_GE(p.address, 0) << where(p);
        ASSERT_LE(p.address + p.bytes, kImageSize) << where(p);
        for (int b = 0; b < p.bytes; ++b) {
            ++owners[std::size_t(p.address + b)];
            // The transmission carries every byte of a parameter in the model's stretch (the
            // GT-10's "Map Select" is bound outside it).
            const ModelStretch stretch = modelStretch(model());
            EXPECT_TRUE(p.address < stretch.start || p.address >= stretch.end ||
                        std::ranges::binary_search(index().sentBytes(), p.address + b))
                << where(p) << " byte " << b << " is never sent";
        }
    }
    const std::set<int> uncovered(index().uncoveredBytes().begin(), index().uncoveredBytes().end());
    const std::set<int> shared(index().sharedBytes().begin(), index().sharedBytes().end());
    EXPECT_TRUE(std::ranges::is_sorted(index().uncoveredBytes()));
    EXPECT_EQ(uncovered.size(), index().uncoveredBytes().size());
    for (int i : index().sentBytes()) {
        const int n = owners[std::size_t(i)];
        if (uncovered.contains(i)) {
            EXPECT_EQ(n, 0) << "GT-" << model() << " byte " << i << " is listed and covered";
            EXPECT_EQ(index().covering(i), nullptr);
            continue;
        }
        EXPECT_EQ(n, shared.contains(i) ? 2 : 1) << "GT-" << model() << " byte " << i;
        const Parameter* p = index().covering(i);
        ASSERT_NE(p, nullptr) << "GT-" << model() << " byte " << i;
        EXPECT_TRUE(i >= p->address && i < p->address + p->bytes) << where(*p);
    }
    for (int i : index().uncoveredBytes())
        EXPECT_TRUE(std::ranges::binary_search(index().sentBytes(), i)) << i;
}

TEST_P(IndexLaws, TheDefaultImageHoldsEveryParameterWithinItsRange) {
    const QByteArray image = makeDefaultImage();
    const ImageBytes bytes{reinterpret_cast<const std::uint8_t*>(image.constData()),
                           std::size_t(image.size())};
    for (const Parameter& p : index().parameters()) {
        const int v = p.value(bytes);
        EXPECT_TRUE(v >= p.minimum && v <= p.maximum)
            << where(p) << " (byte " << p.address << ") is " << v << ", outside " << p.minimum
            << "-" << p.maximum;
    }
}

TEST_P(IndexLaws, NamesAreUniqueAndFindFindsThem) {
    std::set<QString> names;
    for (const Parameter& p : index().parameters()) {
        EXPECT_TRUE(names.insert(p.name()).second) << "twice: " << where(p);
        EXPECT_EQ(index().find(p.name()), &p) << where(p);
        EXPECT_FALSE(p.page.isEmpty() || p.caption.isEmpty()) << where(p);
    }
    EXPECT_EQ(index().find(u"No / Such / Setting"), nullptr);
}

TEST_P(IndexLaws, EveryValueInRangeReadsBackFromItsTextAndItsBytes) {
    std::vector<std::uint8_t> image(std::size_t(kImageSize), 0x55);
    for (const Parameter& p : index().parameters()) {
        // The bytes on either side stay as they are.
        const int low = std::max(p.address - 2, 0),
                  high = std::min(p.address + p.bytes + 2, kImageSize);
        ASSERT_LE(p.minimum, p.maximum) << where(p);
        ASSERT_TRUE(p.canHold(p.maximum)) << where(p);
        for (int v = p.minimum; v <= p.maximum; ++v) {
            const QString text = p.valueText(v);
            ASSERT_FALSE(text.trimmed().isEmpty()) << where(p) << " " << v;
            ASSERT_EQ(p.parseValue(text), v) << where(p) << " '" << text.toStdString() << "'";
            p.store(image, v);
            ASSERT_EQ(p.value(image), v) << where(p);
            for (int i = low; i < high; ++i) {
                if (i < p.address || i >= p.address + p.bytes) {
                    ASSERT_EQ(image[std::size_t(i)], 0x55) << where(p);
                }
            }
        }
        for (int b = 0; b < p.bytes; ++b)
            image[std::size_t(p.address + b)] = 0x55;
        EXPECT_EQ(p.parseValue(u"not a value"), std::nullopt) << where(p);
        EXPECT_FALSE(p.canHold(p.bytes == 2 ? 16384 : 128)) << where(p);
        EXPECT_FALSE(p.canHold(-1)) << where(p);
    }
}

TEST_P(IndexLaws, ComparisonNamesExactlyTheSentBytesThatDifferEachOnce) {
    std::mt19937 random(20261124u + unsigned(model()));
    const auto sent = index().sentBytes();
    const auto parameters = index().parameters();
    for (int round = 0; round < 40; ++round) {
        std::vector<std::uint8_t> a(static_cast<std::size_t>(kImageSize)), b;
        for (auto& x : a)
            x = std::uint8_t(random() % 128);
        b = a;
        // A few sent bytes, a run of them, and bytes anywhere (sent or not).
        const int changes = int(random() % 12);
        for (int k = 0; k < changes; ++k) {
            const int i = sent[random() % sent.size()];
            b[std::size_t(i)] = std::uint8_t((b[std::size_t(i)] + 1 + random() % 127) % 128);
        }
        if (round % 4 == 0)
            for (int i = 0; i < kImageSize; ++i)
                if (random() % 50 == 0) b[std::size_t(i)] = std::uint8_t(random() % 128);

        std::set<int> expected;
        for (int i : sent)
            if (a[std::size_t(i)] != b[std::size_t(i)]) expected.insert(i);
        std::set<int> found;
        std::set<const Parameter*> listed;
        const auto differences = compareImages(model(), a, b);
        bool uncoveredPart = false;
        const Parameter* last = nullptr;
        for (const ParameterDifference& d : differences) {
            if (!d.parameter) {
                uncoveredPart = true;
                EXPECT_TRUE(found.insert(d.address).second) << d.address;
                EXPECT_EQ(d.a, a[std::size_t(d.address)]);
                EXPECT_EQ(d.b, b[std::size_t(d.address)]);
                EXPECT_EQ(differenceLine(d),
                          QStringLiteral("Address %1: %2 -> %3").arg(d.address).arg(d.a).arg(d.b));
                continue;
            }
            const Parameter& p = *d.parameter;
            EXPECT_FALSE(uncoveredPart) << "parameters come first";
            EXPECT_TRUE(listed.insert(&p).second) << "twice: " << where(p);
            EXPECT_TRUE(last == nullptr || last < &p) << "in the index's order: " << where(p);
            last = &p;
            EXPECT_EQ(d.address, p.address);
            EXPECT_EQ(d.a, p.value(a));
            EXPECT_EQ(d.b, p.value(b));
            EXPECT_EQ(differenceLine(d), p.name() + QStringLiteral(": ") + p.valueText(d.a) +
                                             QStringLiteral(" -> ") + p.valueText(d.b));
            bool any = false;
            for (int k = 0; k < p.bytes; ++k)
                if (expected.contains(p.address + k)) {
                    found.insert(p.address + k);
                    any = true;
                }
            EXPECT_TRUE(any) << "no sent byte of " << where(p) << " differs";
        }
        EXPECT_EQ(found, expected) << "GT-" << model() << " round " << round;
        // Parameters that share a differing byte are each listed.
        for (const Parameter& p : parameters)
            for (int k = 0; k < p.bytes; ++k)
                if (expected.contains(p.address + k)) {
                    EXPECT_TRUE(listed.contains(&p)) << where(p);
                }
    }
    const std::vector<std::uint8_t> same(std::size_t(kImageSize), 5);
    EXPECT_TRUE(compareImages(model(), same, same).empty());
}

// A control as the editor places it: its byte, its range, its caption and the heading whose
// frame the user sees it in.
struct Placed {
    int address, minimum, maximum;
    QString caption;
    QString heading;
};

// The caption of the innermost shown heading frame that holds the widget's centre; empty when
// none does.
QString headingOver(const ControlPools& pools, const QWidget* w) {
    const QPoint centre = w->geometry().center();
    QString caption;
    int area = 1 << 30;
    for (int h = 0; h < ControlPools::kHeadings; ++h) {
        const QWidget* box = pools.tabBoxes[std::size_t(h)];
        const QRect frame = box->geometry();
        if (box->isHidden() || !frame.contains(centre) || frame.width() * frame.height() >= area)
            continue;
        area = frame.width() * frame.height();
        caption = pools.headingCaption(h).trimmed();
    }
    return caption;
}

std::vector<Placed> placedControls(ControlPools& pools) {
    std::vector<Placed> out;
    auto value = [&](const ValueControl* c) {
        if (!c->isHidden() && !c->Off())
            out.push_back({c->MemLoc(), c->property("minimum").toInt(), c->Max(), c->caption(),
                           headingOver(pools, c)});
    };
    for (const RKnob* k : pools.knobs)
        value(k);
    for (const VSlider* s : pools.sliders)
        value(s);
    for (int g = 0; g <= 8; ++g) {
        const cCheckRadio* group = pools.groups[std::size_t(g)];
        if (!group->isVisible() || !group->Enabled()) continue;
        const QString title = group->title().trimmed();
        out.push_back({group->TFormat(), 0, group->itemCount() - 1,
                       title.isEmpty() ? group->captions().join(QLatin1Char('/')) : title,
                       headingOver(pools, group->glyph(0))});
    }
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        if (const QLabel* sw = pools.onOff[std::size_t(i)]; !sw->isHidden())
            out.push_back({sw->property("Tag").toString().toInt(), 0, 1,
                           sw->property("caption").toString(), headingOver(pools, sw)});
    return out;
}

class IndexPlacements : public IndexLaws {
protected:
    EditorFixture f;
};

TEST_P(IndexPlacements, EveryPlacedControlIsExactlyOneParameterWithItsAddressRangeAndCaption) {
    struct Seen {
        int minimum = 1 << 20, maximum = -1;
    };
    std::map<const Parameter*, Seen> seen;
    everyPageState(f, model(), [&](const std::string& at) {
        const auto placed = placedControls(f.form->pools());
        ASSERT_FALSE(placed.empty()) << at;
        for (const Placed& c : placed) {
            std::vector<const Parameter*> matches;
            for (const Parameter& p : index().parameters())
                if (p.address == c.address &&
                    (p.caption == c.caption ||
                     p.caption.startsWith(c.caption + QStringLiteral(" ("))))
                    matches.push_back(&p);
            ASSERT_EQ(matches.size(), 1u)
                << at << " '" << c.caption.toStdString() << "' at " << c.address;
            const Parameter& p = *matches.front();
            // A page with a selector numbers its heading ("Custom Preamp 2"); the number is the
            // parameter's instance, the heading the same for all.
            const QString number = c.heading.section(QLatin1Char(' '), -1);
            const bool numbered = c.heading == p.heading + u' ' + number && number.toInt() > 0 &&
                                  (p.instance.isEmpty() || p.instance.contains(number));
            EXPECT_TRUE(c.heading == p.heading || numbered)
                << at << " '" << c.caption.toStdString() << "' at " << c.address << " is under '"
                << c.heading.toStdString() << "', not '" << p.heading.toStdString() << "'";
            Seen& s = seen[matches.front()];
            s.minimum = std::min(s.minimum, c.minimum);
            s.maximum = std::max(s.maximum, c.maximum);
        }
    });
    // The other way round: every parameter outside the grids is placed somewhere, with the
    // widest range its placements give it.
    for (const Parameter& p : index().parameters()) {
        if (p.page == QStringLiteral("Harmonist") || p.page == QStringLiteral("Auto-Riff"))
            continue;
        const auto it = seen.find(&p);
        ASSERT_NE(it, seen.end()) << "never placed: " << where(p);
        EXPECT_EQ(it->second.minimum, p.minimum) << where(p);
        EXPECT_EQ(it->second.maximum, p.maximum) << where(p);
    }
    EXPECT_TRUE(f.errors.isEmpty()) << f.errors.join(QLatin1Char('\n')).toStdString();
}

TEST_P(IndexPlacements,
       EveryGridCellIsTheParameterOfItsScaleOrPhraseRowAndColumnAndAChoiceWritesIt) {
    const auto pages = pagesOf(model());
    // Cells the grid can show (codes 0-48, 49 and 50 in phrases).
    for (const Parameter& p : index().parameters())
        if (p.page == QStringLiteral("Harmonist") || p.page == QStringLiteral("Auto-Riff"))
            f.state.image.set(p.address, (p.address * 7) % (p.maximum + 1));
    cCheckRadio* selector = f.form->pools().groups[ControlPools::kSelectorList];
    GridEditor* grid = f.form->grid();
    int cells = 0;
    std::set<const Parameter*> hit;
    for (int page : {5, 6}) {
        if (std::ranges::find(pages, page) == pages.end()) continue;
        f.open(model(), page);
        for (int view = 0; view < (page == 5 ? 2 : kPhraseCount); ++view) {
            selector->ClickOn(view);
            const QStringList columns = grid->columnHeadings();
            const QStringList rows = grid->rowHeadings();
            for (int b = 0; b < GridEditor::kCells; ++b) {
                const int address = grid->cellAddress(b);
                const Parameter* p = index().covering(address);
                ASSERT_NE(p, nullptr) << page << " cell " << b;
                ++cells;
                hit.insert(p);
                const QString column =
                    QRegularExpression(QStringLiteral("\\d+")).match(columns[b % 16]).captured();
                const QString row = rows[b / 16].trimmed().section(QLatin1Char('/'), 0, 0);
                EXPECT_EQ(p->address, address);
                EXPECT_EQ(p->instance, page == 5 ? QStringLiteral("Scale %1 / %2").arg(column, row)
                                                 : QStringLiteral("Phrase %1 / Key %2 / Step %3")
                                                       .arg(view + 1)
                                                       .arg(row, column));
                EXPECT_EQ(p->valueText(f.state.image.at(address)), grid->cellText(b).trimmed())
                    << where(*p);
            }
            // A choice from a cell's menu writes that cell's byte alone, and the cell shows it.
            for (int b : {0, 13, 31, 191}) {
                const int id = page == 6 && b == 31 ? GridEditor::kRepeat
                               : page == 6 && b == 191
                                   ? GridEditor::kEnd
                                   : GridEditor::kCodeBase + (b * 7 + view) % 49;
                SystemImage expected = f.state.image;
                expected.set(grid->cellAddress(b), id - GridEditor::kCodeBase);
                grid->cellClicked(b, {});
                grid->carryOut(id);
                EXPECT_TRUE(f.state.image == expected) << page << " " << view << " " << b;
                EXPECT_EQ(
                    index().covering(grid->cellAddress(b))->valueText(id - GridEditor::kCodeBase),
                    grid->cellText(b).trimmed());
            }
        }
    }
    std::size_t gridParameters = 0;
    for (const Parameter& p : index().parameters())
        if (p.page == QStringLiteral("Harmonist") || p.page == QStringLiteral("Auto-Riff"))
            ++gridParameters;
    EXPECT_EQ(hit.size(), gridParameters) << "every grid parameter is a cell";
    EXPECT_EQ(cells > 0, gridParameters > 0);
}

INSTANTIATE_TEST_SUITE_P(Models, IndexPlacements, ::testing::ValuesIn(kModels),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

INSTANTIATE_TEST_SUITE_P(Models, IndexLaws, ::testing::ValuesIn(kModels),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

} // namespace
