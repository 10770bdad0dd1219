#include "ParameterIndex.h"

#include "OptionList.h"
#include "PageCatalogue.h"
#include "StepText.h"
#include "device/ModelDescription.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <array>

namespace ferrule {

struct Parameter::Texts {
    QStringList names; // the text of value first + i at i
    int first = 0;
    bool options = false; // an option group's
};

namespace {

// A heading placed on a page: its caption and its frame, in twips, as the primitives draw it.
struct PlacedHeading {
    QString caption;
    int left, top, right, bottom;
    bool contains(int x, int y) const { return x >= left && x < right && y >= top && y < bottom; }
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
        , scratch_(std::size_t(kImageSize), 0) {}

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
    bool doubleByte(int address) const {
        return std::ranges::binary_search(description_.doubleBytes, address);
    }
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
    QHash<int, std::size_t> byAddress_; // first byte → parameter in out_
    QHash<QString, std::shared_ptr<const Parameter::Texts>> texts_;
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
    if (!texts)
        texts = std::make_shared<const Parameter::Texts>(Parameter::Texts{options, 0, true});
    return texts;
}

std::shared_ptr<const Parameter::Texts> IndexBuilder::cellTexts(int row, int max) {
    const QString key = QStringLiteral("cell:%1:%2").arg(row).arg(max);
    auto& texts = texts_[key];
    if (!texts) {
        QStringList names;
        for (int code = 0; code <= max; ++code)
            names << StepText(code, row).trimmed();
        texts = std::make_shared<const Parameter::Texts>(Parameter::Texts{names, 0, false});
    }
    return texts;
}

void IndexBuilder::placeRows(Instance& at, std::span<const PageRow> rows,
                             const PageCatalogue::RowBases& bases, const QString& instance) {
    static const auto switchTexts = std::make_shared<const Parameter::Texts>(
        Parameter::Texts{{QStringLiteral("Off"), QStringLiteral("On")}, 0, false});
    for (const PageRow& r : rows) {
        if (!onModel(r, model_)) continue;
        if (r.control == Control::Heading) {
            const int width = r.width == PageCatalogue::kModelWidth ? bases.headingWidth : r.width;
            at.headings.push_back({QString::fromUtf8(r.caption).trimmed(), r.x - 105, r.y - 75,
                                   r.x - 105 + width, r.y - 75 + r.height});
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
            if (h->contains(r.x, r.y)) {
                under = &*h;
                break;
            }
        if (under) {
            p.heading = under->caption;
            f.headingTop = under->top;
            f.headingLeft = under->left;
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
        // selector shows) is one parameter, named where it shows first.
        const auto same = byAddress_.constFind(f.parameter.address);
        if (same != byAddress_.cend()) {
            const Parameter& first = out_[*same];
            if (first.caption == f.parameter.caption && first.bytes == f.parameter.bytes &&
                first.minimum == f.parameter.minimum && first.maximum == f.parameter.maximum)
                continue;
        }
        byAddress_.insert(f.parameter.address, out_.size());
        out_.push_back(std::move(f.parameter));
    }
}

void IndexBuilder::addGrids(int page) {
    Instance at{QString::fromUtf8(PageCatalogue::tabCaption(tabForPage(page, model_))), {}, {}};
    placeRows(at, PageCatalogue::gridPage(page), {}, {});
    const QString heading = at.headings.empty() ? QString() : at.headings.front().caption;
    auto cell = [&](int address, int row, int max, QString instance) {
        Parameter p;
        p.page = at.page;
        p.heading = heading;
        p.caption = QStringLiteral("Note");
        p.instance = std::move(instance);
        p.address = address;
        p.maximum = max;
        p.texts = cellTexts(row, max);
        byAddress_.insert(address, out_.size());
        out_.push_back(std::move(p));
    };
    auto key = [](int row) { return keyName(row).section(QLatin1Char('/'), 0, 0); };
    if (page == 5 && description_.scaleBase >= 0)
        for (int n = 0; n < kScaleCount; ++n)
            for (int r = 0; r < kScaleLength; ++r)
                cell(description_.scaleBase + n * kScaleLength + r, r, 48,
                     QStringLiteral("Scale %1 / %2").arg(n + 1).arg(key(r)));
    if (page == 6 && description_.phraseBase >= 0)
        for (int n = 0; n < kPhraseCount; ++n)
            for (int k = 0; k < 12; ++k)
                for (int s = 0; s < 16; ++s)
                    cell(description_.phraseBase + n * kPhraseLength + k * 16 + s, k, 50,
                         QStringLiteral("Phrase %1 / Key %2 / Step %3")
                             .arg(n + 1)
                             .arg(key(k))
                             .arg(s + 1));
}

std::vector<Parameter> IndexBuilder::run() {
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

// Tells apart the parameters whose names would be the same: an option group takes its options
// ("Gain (Low/Middle/High)" beside the "Gain" knob), another control the caption of the control
// before it under its heading ("Presence (Level 2)"), and a number where that is not enough.
void makeNamesUnique(std::vector<Parameter>& parameters) {
    const std::vector<Parameter> original = parameters;
    for (int pass = 0; pass < 3; ++pass) {
        QHash<QString, int> count;
        for (const Parameter& p : parameters)
            ++count[p.name()];
        QHash<QString, int> seen;
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            Parameter& p = parameters[i];
            const QString name = p.name();
            if (count.value(name) < 2) continue;
            if (pass == 0) {
                if (p.texts && p.texts->options &&
                    p.caption != p.texts->names.join(QLatin1Char('/')))
                    p.caption += QStringLiteral(" (%1)").arg(p.texts->names.join(QLatin1Char('/')));
            } else if (pass == 1) {
                for (std::size_t j = i; j-- > 0;) {
                    const Parameter& before = original[j];
                    if (before.page != p.page || before.heading != p.heading) break;
                    if (before.caption != original[i].caption && before.instance == p.instance) {
                        p.caption += QStringLiteral(" (%1)").arg(before.caption);
                        break;
                    }
                }
            } else {
                p.caption += QStringLiteral(" %1").arg(++seen[name]);
            }
        }
    }
}

} // namespace

QString Parameter::name() const {
    QString n = joined(joined(page, heading), caption);
    if (!instance.isEmpty()) n += QStringLiteral(" [") + instance + QLatin1Char(']');
    return n;
}

int Parameter::value(ImageBytes image) const {
    const auto at = [&](int i) {
        return i >= 0 && std::size_t(i) < image.size() ? int(image[std::size_t(i)]) : 0;
    };
    return bytes == 2 ? at(address) * 128 + at(address + 1) : at(address);
}

void Parameter::store(std::span<std::uint8_t> image, int v) const {
    if (!canHold(v)) return;
    if (bytes == 2) {
        image[std::size_t(address)] = std::uint8_t(v / 128);
        image[std::size_t(address + 1)] = std::uint8_t(v % 128);
    } else {
        image[std::size_t(address)] = std::uint8_t(v);
    }
}

bool Parameter::canHold(int v) const {
    return v >= 0 && v < (bytes == 2 ? 128 * 128 : 128);
}

QString Parameter::valueText(int v) const {
    if (texts) {
        const int i = v - texts->first;
        if (i >= 0 && i < texts->names.size()) return texts->names[i];
    }
    return QString::number(v);
}

std::optional<int> Parameter::parseValue(QStringView text) const {
    const QStringView t = text.trimmed();
    // A name first: an option may be named by a number ("Input" 1, 2, 3, USB).
    if (texts)
        for (int i = 0; i < texts->names.size(); ++i)
            if (t.compare(texts->names[i], Qt::CaseInsensitive) == 0) return texts->first + i;
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
    makeNamesUnique(index.parameters_);
    index.byName_.reserve(qsizetype(index.parameters_.size()));
    for (std::size_t k = 0; k < index.parameters_.size(); ++k)
        index.byName_.insert(index.parameters_[k].name(), int(k));

    std::vector<bool> sent(std::size_t(kImageSize), false);
    const int steps = TransmissionSchedule::stepTotal(model);
    for (int s = 0; s < steps; ++s)
        for (const ScheduledMessage& m : TransmissionSchedule::messages(model, s)) {
            // A block that would reach past the image is not sent.
            if (m.start + m.length > kImageSize) continue;
            for (int i = m.start; i < m.start + m.length; ++i)
                sent[std::size_t(i)] = true;
        }
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
            int& slot = index.byIndex_[std::size_t(p.address + b - index.start_)];
            if (slot < 0)
                slot = int(k);
            else
                index.shared_.push_back(p.address + b);
        }
    }
    std::ranges::sort(index.shared_);
    for (int i : index.sent_)
        if (!index.covering(i)) index.uncovered_.push_back(i);
    return index;
}

const ParameterIndex& ParameterIndex::of(int model) {
    static const std::array<ParameterIndex, 5> indexes = {build(3), build(5), build(6), build(8),
                                                          build(10)};
    static const ParameterIndex none;
    for (const ParameterIndex& index : indexes)
        if (index.model() == model) return index;
    return none;
}

const Parameter* ParameterIndex::find(QStringView name) const {
    const auto it = byName_.constFind(name.toString());
    return it == byName_.cend() ? nullptr : &parameters_[std::size_t(*it)];
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
        return QStringLiteral("Address %1: %2 -> %3").arg(d.address).arg(d.a).arg(d.b);
    return QStringLiteral("%1: %2 -> %3")
        .arg(d.parameter->name(), d.parameter->valueText(d.a), d.parameter->valueText(d.b));
}

} // namespace ferrule
