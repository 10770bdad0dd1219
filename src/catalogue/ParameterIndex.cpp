#include "ParameterIndex.h"

#include "OptionList.h"
#include "PageCatalogue.h"
#include "StepText.h"
#include "device/ModelDescription.h"
#include "device/ModelMap.h"

#include <QHash>
#include <QSet>
#include <QStringBuilder>
#include <QStringList>

#include <algorithm>
#include <array>
#include <mutex>

namespace ferrule {

struct Parameter::Texts {
    QStringList names;    // the text of value v at v
    bool options = false; // an option group's
};

namespace {

// A heading placed on a page: its caption and its frame, as the primitives draw it.
struct PlacedHeading {
    QString caption;
    HeadingFrame frame;
};

// A parameter found while running a page's rows, with where its control sits.
struct Found {
    Parameter parameter;
    int headingTop = 0, headingLeft = 0, x = 0, y = 0;
    int knob = -1; // the knob's pool index, for the ranges a function slider adapts
};

// Runs every page of a model through its rows for every instance of its selector, and expands
// the grids, collecting each control's parameter.
class IndexBuilder {
public:
    explicit IndexBuilder(int model)
        : model_(model)
        , description_(describeModel(model))
        , scratch_(std::size_t(kImageSize), 0)
        , byAddress_(std::size_t(kImageSize), -1) {}

    std::vector<Parameter> run();

private:
    // One instance of a page: the headings placed so far and the parameters found.
    struct Instance {
        QString page;
        std::vector<PlacedHeading> headings;
        std::vector<Found> found;
    };

    void placeRows(Instance& at, std::span<const PageRow> rows,
                   const PageCatalogue::RowBases& bases, const QString& instance);
    void addGrids(int page);
    void finish(Instance& at);
    std::shared_ptr<const Parameter::Texts> optionTexts(const PageRow& row, QString* caption);
    std::shared_ptr<const Parameter::Texts> cellTexts(int row, int max);
    bool doubleByte(int address) const { return IsDoubleByte(address, model_); }
    // The bytes as the GT-10's custom tones and system preamps read them: channel c of each.
    ImageBytes withChannel(int c) {
        for (const SystemPreampLayout& p : description_.systemPreamps)
            scratch_[std::size_t(p.channelByte)] = std::uint8_t(c);
        return scratch_;
    }

    int model_;
    const ModelDescription& description_;
    std::vector<std::uint8_t> scratch_;
    std::vector<Parameter> out_;
    std::vector<std::int16_t> byAddress_; // first byte → parameter in out_, or -1
    QHash<QString, std::shared_ptr<const Parameter::Texts>> texts_;
    std::array<std::array<std::shared_ptr<const Parameter::Texts>, 2>, 12> cells_; // row, phrase
};

QString channelName(int c) {
    return c == 0 ? QStringLiteral("Channel A") : QStringLiteral("Channel B");
}

QString joined(const QString& a, const QString& b) {
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return a + QStringLiteral(" / ") + b;
}

// Whether a row's address follows the page's selector (else the row edits one byte whatever
// the selector shows).
bool followsSelector(const PageRow& row) {
    return row.address.base != Base::None && row.address.base != Base::ModelBlock;
}

std::shared_ptr<const Parameter::Texts> IndexBuilder::optionTexts(const PageRow& row,
                                                                  QString* caption) {
    const QString list = QString::fromUtf8(row.caption);
    QStringList options = splitGroupOptions(list, optionCount(row.index));
    const QString title = options.takeLast().trimmed();
    // A group without a title is named by its options ("Patch/System").
    *caption = title.isEmpty() ? options.join(QLatin1Char('/')) : title;
    const QString key = QString::number(row.index) + QLatin1Char(':') + list;
    auto& texts = texts_[key];
    if (!texts) texts = std::make_shared<const Parameter::Texts>(Parameter::Texts{options, true});
    return texts;
}

std::shared_ptr<const Parameter::Texts> IndexBuilder::cellTexts(int row, int max) {
    auto& texts = cells_[std::size_t(row)][max > 48 ? 1 : 0];
    if (!texts) {
        QStringList names;
        for (int code = 0; code <= max; ++code)
            names << StepText(code, row).trimmed();
        texts = std::make_shared<const Parameter::Texts>(Parameter::Texts{names, false});
    }
    return texts;
}

void IndexBuilder::placeRows(Instance& at, std::span<const PageRow> rows,
                             const PageCatalogue::RowBases& bases, const QString& instance) {
    static const auto switchTexts = std::make_shared<const Parameter::Texts>(
        Parameter::Texts{{QStringLiteral("Off"), QStringLiteral("On")}, false});
    for (const PageRow& r : rows) {
        if (!onModel(r, model_)) continue;
        if (r.control == Control::Heading) {
            const int width = r.width == PageCatalogue::kModelWidth ? bases.headingWidth : r.width;
            at.headings.push_back(
                {QString::fromUtf8(r.caption).trimmed(), headingFrame(r.x, r.y, width, r.height)});
            continue;
        }
        if (r.control == Control::List) continue;
        if (r.control == Control::DependentRanges) {
            // The Min and Max knobs take the widest range the function slider gives them.
            int widest = -1;
            PageCatalogue::DependentRange d;
            for (int f = 0; f <= 127; ++f) {
                d = PageCatalogue::dependentRange(r.index, f);
                widest = std::max(widest, d.max);
            }
            for (Found& f : at.found)
                if (widest >= 0 && (f.knob == d.knobs[0] || f.knob == d.knobs[1]))
                    f.parameter.maximum = std::max(f.parameter.maximum, widest);
            continue;
        }
        Found f;
        Parameter& p = f.parameter;
        p.page = at.page;
        p.address = bases.resolve(r.address);
        p.instance = followsSelector(r) ? instance : QString();
        p.caption = QString::fromUtf8(r.caption).trimmed();
        switch (r.control) {
        case Control::Knob:
        case Control::Slider:
            p.bytes = doubleByte(p.address) ? 2 : 1;
            p.minimum = (r.flags & MinOne) ? 1 : 0;
            p.maximum = r.max;
            p.format = r.format;
            if (r.control == Control::Knob) f.knob = r.index;
            break;
        case Control::Options:
            p.texts = optionTexts(r, &p.caption);
            p.maximum = int(p.texts->names.size()) - 1;
            break;
        case Control::Switch:
            p.texts = switchTexts;
            p.maximum = 1;
            break;
        default:
            break;
        }
        // The heading whose frame holds the control, else the last one placed before it.
        const PlacedHeading* under = at.headings.empty() ? nullptr : &at.headings.back();
        for (auto h = at.headings.rbegin(); h != at.headings.rend(); ++h)
            if (h->frame.contains(r.x, r.y)) {
                under = &*h;
                break;
            }
        if (under) {
            p.heading = under->caption;
            f.headingTop = under->frame.top;
            f.headingLeft = under->frame.left;
        }
        f.x = r.x;
        f.y = r.y;
        at.found.push_back(std::move(f));
    }
}

void IndexBuilder::finish(Instance& at) {
    // Reading order: heading by heading, top to bottom and left to right, then the controls
    // row by row (a knob's caption sits lower than a slider's beside it), left to right.
    constexpr int kRowHeight = 700;
    std::ranges::stable_sort(at.found, [](const Found& a, const Found& b) {
        return std::tuple(a.headingTop, a.headingLeft, a.y / kRowHeight, a.x) <
               std::tuple(b.headingTop, b.headingLeft, b.y / kRowHeight, b.x);
    });
    for (Found& f : at.found) {
        // A byte that several placements of one control edit (a setting every instance of the
        // selector shows) is one parameter, named where it shows first; two different controls
        // bound to one byte stay two parameters (see sharedBytes).
        std::int16_t& same = byAddress_[std::size_t(f.parameter.address)];
        if (same >= 0) {
            const Parameter& first = out_[std::size_t(same)];
            if (first.caption == f.parameter.caption && first.bytes == f.parameter.bytes &&
                first.minimum == f.parameter.minimum && first.maximum == f.parameter.maximum)
                continue;
        }
        same = std::int16_t(out_.size());
        out_.push_back(std::move(f.parameter));
    }
}

void IndexBuilder::addGrids(int page) {
    Instance at{QString::fromUtf8(PageCatalogue::tabCaption(tabForPage(page, model_))), {}, {}};
    placeRows(at, PageCatalogue::gridPage(page), {}, {});
    const QString heading = at.headings.empty() ? QString() : at.headings.front().caption;
    const QString note = QStringLiteral("Note");
    auto cell = [&](int address, int row, int max, QString instance) {
        Parameter p;
        p.page = at.page;
        p.heading = heading;
        p.caption = note;
        p.instance = std::move(instance);
        p.address = address;
        p.maximum = max;
        p.texts = cellTexts(row, max);
        byAddress_[std::size_t(address)] = std::int16_t(out_.size());
        out_.push_back(std::move(p));
    };
    std::array<QString, 12> keys; // "C#", the first name of the row's key
    for (int r = 0; r < 12; ++r)
        keys[std::size_t(r)] = keyName(r).section(QLatin1Char('/'), 0, 0);
    const auto number = [](int n) { return QString::number(n); };
    if (page == 5 && description_.scaleBase >= 0)
        for (int n = 0; n < kScaleCount; ++n)
            for (int r = 0; r < kScaleLength; ++r)
                cell(description_.scaleBase + n * kScaleLength + r, r, 48,
                     u"Scale " % number(n + 1) % u" / " % keys[std::size_t(r)]);
    if (page == 6 && description_.phraseBase >= 0)
        for (int n = 0; n < kPhraseCount; ++n)
            for (int k = 0; k < 12; ++k)
                for (int s = 0; s < 16; ++s)
                    cell(description_.phraseBase + n * kPhraseLength + k * 16 + s, k, 50,
                         u"Phrase " % number(n + 1) % u" / Key " % keys[std::size_t(k)] %
                             u" / Step " % number(s + 1));
}

std::vector<Parameter> IndexBuilder::run() {
    // The grids' cells and room for the pages' controls.
    out_.reserve(std::size_t(kScaleCount * kScaleLength + kPhraseCount * kPhraseLength + 512));
    for (int page : pagesOf(model_)) {
        const QString caption =
            QString::fromUtf8(PageCatalogue::tabCaption(tabForPage(page, model_)));
        auto instance = [&] { return Instance{caption, {}, {}}; };
        switch (page) {
        case 1:
        case 7: {
            Instance at = instance();
            placeRows(at, PageCatalogue::systemPage(model_, page == 7), {}, {});
            finish(at);
            break;
        }
        case 4:
        case 8:
        case 10:
        case 12:
        case 13:
        case 14: {
            const auto rows = page == 4    ? PageCatalogue::midiPage(model_)
                              : page == 8  ? PageCatalogue::overdrivePage(model_)
                              : page == 10 ? PageCatalogue::wahPage(model_)
                              : page == 12 ? PageCatalogue::inputPage()
                              : page == 13 ? PageCatalogue::outputPage()
                                           : PageCatalogue::expressionPage();
            Instance at = instance();
            placeRows(at, rows, PageCatalogue::pageBases(page, model_, 0, scratch_), {});
            finish(at);
            break;
        }
        case 5:
        case 6:
            addGrids(page);
            break;
        case 9: {
            const bool selector = model_ == 6 || model_ == 8 || model_ == 10;
            const int tones = selector ? 3 : 1;
            const int channels = model_ == 10 ? 2 : 1;
            for (int n = 1; n <= tones; ++n)
                for (int c = 0; c < channels; ++c) {
                    Instance at = instance();
                    QString name = selector ? QStringLiteral("Custom Tone %1").arg(n) : QString();
                    if (channels > 1) name = joined(name, channelName(c));
                    auto rows = PageCatalogue::preampPage(model_);
                    std::vector<PageRow> shown;
                    for (const PageRow& r : rows)
                        if (r.address.base != Base::CustomSpeaker ||
                            PageCatalogue::hasCustomSpeaker(model_, n))
                            shown.push_back(r);
                    placeRows(at, shown, PageCatalogue::pageBases(9, model_, n - 1, withChannel(c)),
                              name);
                    finish(at);
                }
            break;
        }
        case 11: {
            const int preamps = int(description_.systemPreamps.size());
            for (int k = 0; k < preamps; ++k) {
                const QString preamp =
                    preamps > 1 ? QStringLiteral("System Preamp %1").arg(k + 1) : QString();
                for (int c = 0; c < 2; ++c) {
                    Instance at = instance();
                    const auto bases = PageCatalogue::pageBases(11, model_, k, withChannel(c));
                    placeRows(at, PageCatalogue::systemPreampHeadings(), bases, preamp);
                    placeRows(at, PageCatalogue::systemPreampShared(), bases, preamp);
                    placeRows(at, PageCatalogue::systemPreampChannel(), bases,
                              joined(preamp, channelName(c)));
                    finish(at);
                }
            }
            break;
        }
        case 15:
            for (int m = 0; m < 2; ++m) {
                Instance at = instance();
                placeRows(at, PageCatalogue::ctlPedalHeadings(m), {}, {});
                placeRows(at, PageCatalogue::ctlPedalRows(),
                          PageCatalogue::pageBases(15, model_, m, scratch_),
                          QStringLiteral("CTL %1-%2").arg(2 * m + 1).arg(2 * m + 2));
                finish(at);
            }
            break;
        default:
            break;
        }
    }
    return std::move(out_);
}

// Spells a parameter's name, "Page / Heading / Caption [instance]" without the parts that are
// empty, piece by piece into `add`.
template <typename Add> void spellName(const Parameter& p, Add&& add) {
    bool first = true;
    for (const QString* part : {&p.page, &p.heading, &p.caption}) {
        if (part->isEmpty()) continue;
        if (!first) add(u" / ");
        add(*part);
        first = false;
    }
    if (!p.instance.isEmpty()) {
        add(u" [");
        add(p.instance);
        add(u"]");
    }
}

// FNV-1a over the UTF-16 code units, fed piece by piece: a name's hash without writing the name.
class NameHash {
public:
    void operator()(QStringView piece) {
        for (const QChar c : piece)
            value = (value ^ c.unicode()) * 1099511628211u;
    }
    std::uint64_t value = 14695981039346656037u;
};

std::uint64_t nameHash(const Parameter& p) {
    NameHash h;
    spellName(p, h);
    return h.value;
}

// The name table: each parameter's name's hash with the parameter, sorted. The names
// themselves are not kept; a look-up compares the few whose hash matches.
std::vector<std::pair<std::uint64_t, int>> hashNames(const std::vector<Parameter>& parameters) {
    std::vector<std::pair<std::uint64_t, int>> table(parameters.size());
    for (std::size_t i = 0; i < parameters.size(); ++i)
        table[i] = {nameHash(parameters[i]), int(i)};
    std::ranges::sort(table);
    return table;
}

// The parameters that share their name with another, by the table's equal hashes, ascending.
std::vector<std::size_t> clashing(const std::vector<Parameter>& parameters,
                                  const std::vector<std::pair<std::uint64_t, int>>& table) {
    std::vector<std::size_t> out;
    for (std::size_t a = 0; a < table.size();) {
        std::size_t b = a + 1;
        while (b < table.size() && table[b].first == table[a].first)
            ++b;
        if (b - a > 1) {
            QHash<QString, std::vector<std::size_t>> same;
            for (std::size_t k = a; k < b; ++k)
                same[parameters[std::size_t(table[k].second)].name()].push_back(
                    std::size_t(table[k].second));
            for (const std::vector<std::size_t>& group : std::as_const(same))
                if (group.size() > 1) out.insert(out.end(), group.begin(), group.end());
        }
        a = b;
    }
    std::ranges::sort(out);
    return out;
}

// Tells apart the parameters whose names would be the same: an option group takes its options
// ("Gain (Low/Middle/High)" beside the "Gain" knob), another control the caption of the control
// before it under its heading ("Presence (Level 2)"), and a number where that is not enough.
// Gives the name table.
std::vector<std::pair<std::uint64_t, int>> makeNamesUnique(std::vector<Parameter>& parameters) {
    std::vector<std::pair<std::uint64_t, int>> table = hashNames(parameters);
    // Only the parameters that bear a clashing name are worked on.
    const std::vector<std::size_t> involved = clashing(parameters, table);
    if (involved.empty()) return table;
    std::vector<QString> names(parameters.size());
    std::vector<QString> captions(parameters.size());
    for (std::size_t i = 0; i < parameters.size(); ++i)
        captions[i] = parameters[i].caption;
    for (std::size_t i : involved)
        names[i] = parameters[i].name();
    for (int pass = 0; pass < 3; ++pass) {
        QHash<QString, int> count;
        for (std::size_t i : involved)
            ++count[names[i]];
        QHash<QString, int> seen;
        for (std::size_t i : involved) {
            Parameter& p = parameters[i];
            if (count.value(names[i]) < 2) continue;
            if (pass == 0) {
                const QString options =
                    p.texts && p.texts->options ? p.texts->names.join(QLatin1Char('/')) : QString();
                if (!options.isEmpty() && p.caption != options) p.caption += u" (" % options % u')';
            } else if (pass == 1) {
                for (std::size_t j = i; j-- > 0;) {
                    const Parameter& before = parameters[j];
                    if (before.page != p.page || before.heading != p.heading) break;
                    if (captions[j] != captions[i] && before.instance == p.instance) {
                        p.caption += u" (" % captions[j] % u')';
                        break;
                    }
                }
            } else {
                p.caption += u' ' % QString::number(++seen[names[i]]);
            }
        }
        for (std::size_t i : involved)
            names[i] = parameters[i].name();
    }
    // Their entries in the table take their new names' hashes.
    std::erase_if(table, [&](const auto& e) {
        return std::ranges::binary_search(involved, std::size_t(e.second));
    });
    const auto kept = table.size();
    for (std::size_t i : involved)
        table.push_back({nameHash(parameters[i]), int(i)});
    std::ranges::sort(table.begin() + std::ptrdiff_t(kept), table.end());
    std::ranges::inplace_merge(table, table.begin() + std::ptrdiff_t(kept));
    return table;
}

} // namespace

QString Parameter::name() const {
    QString n;
    n.reserve(page.size() + heading.size() + caption.size() + instance.size() + 9);
    spellName(*this, [&n](QStringView piece) { n += piece; });
    return n;
}

int Parameter::value(ImageBytes image) const {
    const auto at = [&](int i) {
        return i >= 0 && std::size_t(i) < image.size() ? int(image[std::size_t(i)]) : 0;
    };
    return bytes == 2 ? joinDoubleByte(at(address), at(address + 1)) : at(address);
}

void Parameter::store(std::span<std::uint8_t> image, int v) const {
    if (!canHold(v)) return;
    if (bytes == 2) {
        const auto [high, low] = splitDoubleByte(v);
        image[std::size_t(address)] = std::uint8_t(high);
        image[std::size_t(address + 1)] = std::uint8_t(low);
    } else {
        image[std::size_t(address)] = std::uint8_t(v);
    }
}

bool Parameter::canHold(int v) const {
    return v >= 0 && v < (bytes == 2 ? 128 * 128 : 128);
}

QString Parameter::valueText(int v) const {
    if (texts && v >= 0 && v < texts->names.size()) return texts->names[v];
    return QString::number(v);
}

std::optional<int> Parameter::parseValue(QStringView text) const {
    const QStringView t = text.trimmed();
    // A name first: an option may be named by a number ("Input" 1, 2, 3, USB).
    if (texts)
        for (int i = 0; i < texts->names.size(); ++i)
            if (t.compare(texts->names[i], Qt::CaseInsensitive) == 0) return i;
    bool ok = false;
    const int v = t.toInt(&ok);
    if (ok) return v;
    return std::nullopt;
}

ParameterIndex ParameterIndex::build(int model) {
    ParameterIndex index;
    index.model_ = model;
    if (describeModel(model).model == 0) return index;
    index.parameters_ = IndexBuilder(model).run();
    // The table of which parameter covers a byte holds 16-bit numbers.
    Q_ASSERT(index.parameters_.size() < 32768);
    index.byName_ = makeNamesUnique(index.parameters_);

    std::vector<std::uint8_t> sent(std::size_t(kImageSize), 0);
    const int steps = TransmissionSchedule::stepTotal(model);
    for (int s = 0; s < steps; ++s)
        for (const ScheduledMessage& m : TransmissionSchedule::messages(model, s)) {
            // A block that would reach past the image is not sent.
            if (m.start + m.length > kImageSize) continue;
            for (int i = m.start; i < m.start + m.length; ++i)
                sent[std::size_t(i)] = 1;
        }
    index.sent_.reserve(std::size_t(std::ranges::count(sent, 1)));
    int low = kImageSize, high = 0;
    for (int i = 0; i < kImageSize; ++i)
        if (sent[std::size_t(i)]) {
            index.sent_.push_back(i);
            low = std::min(low, i);
            high = std::max(high, i + 1);
        }
    for (const Parameter& p : index.parameters_) {
        low = std::min(low, p.address);
        high = std::max(high, p.address + p.bytes);
    }
    index.start_ = std::min(low, high);
    index.byIndex_.assign(std::size_t(high - index.start_), -1);
    for (std::size_t k = 0; k < index.parameters_.size(); ++k) {
        const Parameter& p = index.parameters_[k];
        for (int b = 0; b < p.bytes; ++b) {
            std::int16_t& slot = index.byIndex_[std::size_t(p.address + b - index.start_)];
            if (slot < 0)
                slot = std::int16_t(k);
            else
                index.shared_.push_back(p.address + b);
        }
    }
    std::ranges::sort(index.shared_);
    index.uncovered_.reserve(index.sent_.size());
    for (int i : index.sent_)
        if (!index.covering(i)) index.uncovered_.push_back(i);
    return index;
}

const ParameterIndex& ParameterIndex::of(int model) {
    // Each model's index is built on its first use, by whichever thread asks first.
    constexpr std::size_t n = std::size(kModels);
    static std::array<std::once_flag, n> once;
    static std::array<std::optional<ParameterIndex>, n> indexes;
    static const ParameterIndex none;
    const auto at = std::ranges::find(kModels, model);
    if (at == std::end(kModels)) return none;
    const auto k = std::size_t(at - std::begin(kModels));
    std::call_once(once[k], [&] { indexes[k] = build(model); });
    return *indexes[k];
}

const Parameter* ParameterIndex::find(QStringView name) const {
    NameHash hash;
    hash(name);
    for (auto it = std::ranges::lower_bound(byName_, std::pair(hash.value, 0));
         it != byName_.end() && it->first == hash.value; ++it) {
        const Parameter& p = parameters_[std::size_t(it->second)];
        if (p.name() == name) return &p;
    }
    return nullptr;
}

const Parameter* ParameterIndex::covering(int imageIndex) const {
    const int k = imageIndex - start_;
    if (k < 0 || std::size_t(k) >= byIndex_.size()) return nullptr;
    const int p = byIndex_[std::size_t(k)];
    return p < 0 ? nullptr : &parameters_[std::size_t(p)];
}

std::vector<ParameterDifference> compareImages(int model, ImageBytes a, ImageBytes b) {
    const ParameterIndex& index = ParameterIndex::of(model);
    const std::size_t size = std::min(a.size(), b.size());
    std::vector<bool> differs(size, false);
    for (int i : index.sentBytes())
        if (std::size_t(i) < size && a[std::size_t(i)] != b[std::size_t(i)])
            differs[std::size_t(i)] = true;
    std::vector<ParameterDifference> differences;
    // At most one a parameter and one an uncovered byte; only what is used is touched.
    differences.reserve(index.parameters().size() + index.uncoveredBytes().size());
    // A parameter differs where one of its bytes that the transmission sends does; two bytes
    // that two parameters share make a difference of each.
    for (const Parameter& p : index.parameters())
        for (int k = 0; k < p.bytes; ++k) {
            const int i = p.address + k;
            if (i >= 0 && std::size_t(i) < size && differs[std::size_t(i)]) {
                differences.push_back({&p, p.address, p.value(a), p.value(b)});
                break;
            }
        }
    for (int i : index.uncoveredBytes())
        if (std::size_t(i) < size && differs[std::size_t(i)])
            differences.push_back({nullptr, i, a[std::size_t(i)], b[std::size_t(i)]});
    return differences;
}

QString differenceLine(const ParameterDifference& d) {
    if (!d.parameter)
        return u"Address " % QString::number(d.address) % u": " % QString::number(d.a) % u" -> " %
               QString::number(d.b);
    return d.parameter->name() % u": " % d.parameter->valueText(d.a) % u" -> " %
           d.parameter->valueText(d.b);
}

} // namespace ferrule
