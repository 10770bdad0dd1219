// The parameter index's laws for every model: the bytes the transmission sends are covered once
// or listed as edited by no control, names are unique and found, value texts read back, and a
// comparison of two images names exactly the sent bytes that differ.

#include "catalogue/ParameterIndex.h"
#include "device/ModelDescription.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
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
        for (int b = 0; b < p.bytes; ++b)
            ++owners[std::size_t(p.address + b)];
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
    std::cout << "GT-" << model() << ": " << parameters.size() << " parameters, "
              << uncovered.size() << " of " << index().sentBytes().size()
              << " sent bytes edited by no control, " << shared.size() << " shared\n";
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

INSTANTIATE_TEST_SUITE_P(Models, IndexLaws, ::testing::ValuesIn(kModels),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

} // namespace
