#include "SettingsText.h"

#include "ParameterIndex.h"
#include "device/DefaultImage.h"
#include "device/DumpMap.h"
#include "device/ModelMap.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace ferrule::SettingsText {

namespace {

// What each image byte of a model can hold as the transmission carries it: 127 for a byte a
// message carries whole, 255 for one it carries as two nibbles, 0 for a byte it does not send.
class SentBytes {
public:
    explicit SentBytes(int model)
        : most_(kImageSize, 0) {
        for (const DumpMap::Block& block : DumpMap::of(model).blocks()) {
            if (!block.inImage) continue;
            const int length = block.nibbles ? block.units / 2 : block.units;
            for (int i = block.start; i < block.start + length && i < kImageSize; ++i) {
                int& most = most_[std::size_t(i)];
                // A byte that some message carries whole must stay a 7-bit value.
                most = !block.nibbles ? 127 : most == 0 ? 255 : most;
            }
        }
    }
    int most(int index) const {
        return index >= 0 && index < kImageSize ? most_[std::size_t(index)] : 0;
    }

private:
    std::vector<int> most_;
};

// The parameters of a model by a name as a person may type it: without regard to case or to
// the spaces around and between its words. Two names that would read the same so are left to
// the exact name.
class LooseNames {
public:
    explicit LooseNames(int model)
        : index_(ParameterIndex::of(model)) {
        for (const Parameter& p : index_.parameters()) {
            const QString key = keyOf(p.name());
            const auto it = names_.find(key);
            if (it == names_.end())
                names_.insert(key, &p);
            else
                it.value() = nullptr;
        }
    }
    const Parameter* find(QStringView name) const {
        if (const Parameter* exact = index_.find(name)) return exact;
        return names_.value(keyOf(name), nullptr);
    }

private:
    static QString keyOf(QStringView name) {
        QString key;
        key.reserve(name.size());
        for (const QChar c : name)
            if (!c.isSpace()) key += c;
        return key.toCaseFolded();
    }

    const ParameterIndex& index_;
    QHash<QString, const Parameter*> names_;
};

// Built once per model, as the index is.
template <typename Table> const Table& perModel(int model) {
    switch (model) {
    case 3: {
        static const Table t(3);
        return t;
    }
    case 5: {
        static const Table t(5);
        return t;
    }
    case 6: {
        static const Table t(6);
        return t;
    }
    case 8: {
        static const Table t(8);
        return t;
    }
    default: {
        static const Table t(10);
        return t;
    }
    }
}

ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
}

// A value as the text names it: the parameter's own text when that reads back as the same
// value, otherwise the plain number (which always does).
QString textOf(const Parameter& p, int value) {
    const QString text = p.valueText(value);
    if (!text.isEmpty() && text.trimmed() == text && p.parseValue(text) == value) return text;
    return QString::number(value);
}

bool withinRange(const Parameter& p, ImageBytes image) {
    const int v = p.value(image);
    return v >= p.minimum && v <= p.maximum;
}

// Two settings may lie in one byte (the GT-10's "USB Driver" in "EXP Pedal 2 (external) /
// Min"). A setting whose value is outside its range there is not the one the byte was set
// through: it is left out when other settings listed, within their ranges, carry every byte
// of it that changed. "Min = 40" is not also written as "USB Driver = 40".
bool carriedByAnother(const Parameter& p, std::span<const Parameter* const> listed,
                      std::span<const int> shared, ImageBytes image, ImageBytes base) {
    if (withinRange(p, image)) return false;
    for (int i = p.address; i < p.address + p.bytes; ++i) {
        if (image[std::size_t(i)] == base[std::size_t(i)]) continue;
        if (!std::ranges::binary_search(shared, i)) return false;
        const bool carried = std::ranges::any_of(listed, [&](const Parameter* q) {
            return q != &p && i >= q->address && i < q->address + q->bytes &&
                   withinRange(*q, image);
        });
        if (!carried) return false;
    }
    return true;
}

const QRegularExpression& modelLine() {
    static const QRegularExpression re(QStringLiteral("^#\\s*model\\s*:\\s*(.*?)\\s*$"),
                                       QRegularExpression::CaseInsensitiveOption);
    return re;
}

// "GT-10" or "10" → 10; 0 for anything else.
int modelNamed(const QString& text) {
    static const QRegularExpression re(QStringLiteral("^(?:GT-?\\s*)?(\\d{1,2})$"),
                                       QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = re.match(text);
    const int model = m.hasMatch() ? m.captured(1).toInt() : 0;
    return isKnownModel(model) ? model : 0;
}

// The embedded default image, made once.
const QByteArray& defaultImage() {
    static const QByteArray image = makeDefaultImage();
    return image;
}

// Appends a number 0 or above without a string of its own: a long text has thousands.
void appendNumber(QString& out, int v) {
    char16_t digits[12];
    int n = std::size(digits);
    do {
        digits[--n] = char16_t(u'0' + v % 10);
        v /= 10;
    } while (v > 0);
    out += QStringView(digits + n, std::size(digits) - std::size_t(n));
}

// "Address N" (any case, any spaces) → N as written; nullopt for any other name.
std::optional<QStringView> addressOf(QStringView name) {
    constexpr QStringView word = u"address";
    if (name.size() <= word.size() || !name.startsWith(word, Qt::CaseInsensitive) ||
        !name[word.size()].isSpace())
        return std::nullopt;
    return name.mid(word.size()).trimmed();
}

std::optional<int> plainNumber(QStringView text) {
    bool ok = false;
    const int v = text.toInt(&ok, 10);
    return ok ? std::optional<int>(v) : std::nullopt;
}

} // namespace

QString write(int model, ImageBytes image) {
    const ImageBytes base = bytesOf(defaultImage());
    const ParameterIndex& index = ParameterIndex::of(model);
    QString out;
    out.reserve(64 * 1024);
    out += QStringLiteral("# Ferrule system settings\n");
    out += QLatin1String(kModelLine) + QString::number(model) + QLatin1Char('\n');
    out += QStringLiteral(
        "# One setting a line, \"Page / Heading / Caption [instance] = value\", grouped by page.\n"
        "# A setting that is not listed holds its default value. \"Address N = value\" sets\n"
        "# byte N of the system data, which no control edits. Lines that start with # are\n"
        "# comments; blank lines and the order of the lines do not matter.\n");
    std::vector<const Parameter*> listed;
    for (const Parameter& p : index.parameters())
        if (p.value(image) != p.value(base)) listed.push_back(&p);
    const QString* page = nullptr;
    for (const Parameter* at : listed) {
        const Parameter& p = *at;
        const int value = p.value(image);
        if (carriedByAnother(p, listed, index.sharedBytes(), image, base)) continue;
        if (page == nullptr || *page != p.page) {
            page = &p.page;
            out += QStringLiteral("\n# ") + p.page + QLatin1Char('\n');
        }
        out += p.name() + QStringLiteral(" = ") + textOf(p, value) + QLatin1Char('\n');
    }
    bool first = true;
    for (const int i : index.uncoveredBytes()) {
        if (image[std::size_t(i)] == base[std::size_t(i)]) continue;
        if (first) out += QStringLiteral("\n# Bytes no control edits\n");
        first = false;
        out += u"Address ";
        appendNumber(out, i);
        out += u" = ";
        appendNumber(out, image[std::size_t(i)]);
        out += u'\n';
    }
    return out;
}

int modelOf(QStringView text) {
    for (const QStringView line : text.tokenize(u'\n')) {
        const QRegularExpressionMatch m = modelLine().match(line.trimmed().toString());
        if (m.hasMatch()) return modelNamed(m.captured(1));
    }
    return 0;
}

Read read(QStringView text) {
    Read out;
    int lineNumber = 0;
    const auto fail = [&](const QString& fault) {
        Read failed;
        failed.error = QStringLiteral("line %1: %2").arg(lineNumber).arg(fault);
        return failed;
    };
    std::span<std::uint8_t> image;
    const Parameter* first = nullptr;
    std::vector<int> setOn;        // parameter (by its place in the index) → the line that set it
    std::vector<int> addressSetOn; // image index → the line that set it
    std::vector<const Parameter*> byteSetBy; // image index → the setting that set it

    for (const QStringView raw : text.tokenize(u'\n')) {
        ++lineNumber;
        const QStringView line = raw.trimmed();
        if (line.isEmpty()) continue;
        if (line.startsWith(u'#')) {
            const QRegularExpressionMatch m = modelLine().match(line.toString());
            if (!m.hasMatch()) continue;
            if (out.model != 0) return fail(QStringLiteral("a second model line"));
            out.model = modelNamed(m.captured(1));
            if (out.model == 0)
                return fail(QStringLiteral("unknown model \"%1\" (GT-3, GT-5, GT-6, GT-8 or GT-10)")
                                .arg(m.captured(1)));
            out.image = defaultImage();
            out.image.detach();
            image = {reinterpret_cast<std::uint8_t*>(out.image.data()),
                     std::size_t(out.image.size())};
            const std::span<const Parameter> all = ParameterIndex::of(out.model).parameters();
            first = all.data();
            setOn.assign(all.size(), 0);
            addressSetOn.assign(kImageSize, 0);
            byteSetBy.assign(kImageSize, nullptr);
            continue;
        }
        if (out.model == 0)
            return fail(QStringLiteral("a setting before the model line (\"%1N\", N one of 3, 5, "
                                       "6, 8, 10)")
                            .arg(QLatin1String(kModelLine)));
        const qsizetype equals = line.indexOf(u'=');
        const QStringView name = line.left(std::max<qsizetype>(equals, 0)).trimmed();
        const QStringView valueText = line.mid(equals + 1).trimmed();
        if (equals < 0 || name.isEmpty())
            return fail(QStringLiteral("\"%1\" is not \"Page / Heading / Caption [instance] = "
                                       "value\" or \"Address N = value\"")
                            .arg(line));
        if (valueText.isEmpty()) return fail(QStringLiteral("no value after \"=\""));

        if (const std::optional<QStringView> number = addressOf(name)) {
            const std::optional<int> address = plainNumber(*number);
            if (!address) return fail(QStringLiteral("\"%1\" is not an address").arg(*number));
            const int most = perModel<SentBytes>(out.model).most(*address);
            if (most == 0)
                return fail(QStringLiteral("address %1 is not a byte the GT-%2 sends")
                                .arg(*address)
                                .arg(out.model));
            if (const Parameter* p = ParameterIndex::of(out.model).covering(*address))
                return fail(QStringLiteral("address %1 is a byte of \"%2\"; set it by name")
                                .arg(*address)
                                .arg(p->name()));
            const std::optional<int> value = plainNumber(valueText);
            if (!value) return fail(QStringLiteral("\"%1\" is not a number").arg(valueText));
            if (*value < 0 || *value > most)
                return fail(QStringLiteral("address %1 holds 0-%2, not %3")
                                .arg(*address)
                                .arg(most)
                                .arg(*value));
            int& setBefore = addressSetOn[std::size_t(*address)];
            if (setBefore != 0)
                return fail(QStringLiteral("address %1 is set again (first on line %2)")
                                .arg(*address)
                                .arg(setBefore));
            setBefore = lineNumber;
            image[std::size_t(*address)] = std::uint8_t(*value);
            continue;
        }

        const Parameter* p = perModel<LooseNames>(out.model).find(name);
        if (p == nullptr)
            return fail(
                QStringLiteral("unknown setting \"%1\" for the GT-%2").arg(name).arg(out.model));
        const std::optional<int> value = p->parseValue(valueText);
        if (!value)
            return fail(
                QStringLiteral("\"%1\" is not a value of \"%2\"").arg(valueText, p->name()));
        if (!p->canHold(*value))
            return fail(QStringLiteral("%1 does not fit in the %2 of \"%3\"")
                            .arg(*value)
                            .arg(p->bytes == 2 ? QStringLiteral("two 7-bit bytes")
                                               : QStringLiteral("one 7-bit byte"))
                            .arg(p->name()));
        int& setBefore = setOn[std::size_t(p - first)];
        if (setBefore != 0)
            return fail(QStringLiteral("\"%1\" is set again (first on line %2)")
                            .arg(p->name())
                            .arg(setBefore));
        setBefore = lineNumber;
        if (*value < p->minimum || *value > p->maximum)
            out.warnings << QStringLiteral("line %1: %2 = %3 is outside %4-%5; kept")
                                .arg(lineNumber)
                                .arg(p->name())
                                .arg(*value)
                                .arg(p->minimum)
                                .arg(p->maximum);
        // Two settings may lie in one byte (the GT-10's "USB Driver" in "EXP Pedal 2 (external)
        // / Min"): the later may repeat what the earlier gave it, but not undo it unseen.
        const std::span<std::uint8_t> bytes = image.subspan(std::size_t(p->address), p->bytes);
        const std::array<std::uint8_t, 2> before = {bytes.front(), bytes.back()};
        p->store(image, *value);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const Parameter*& by = byteSetBy[std::size_t(p->address) + i];
            if (by != nullptr && bytes[i] != before[i])
                return fail(QStringLiteral("\"%1\" shares a byte with \"%2\" (line %3) and gives "
                                           "it another value")
                                .arg(p->name(), by->name())
                                .arg(setOn[std::size_t(by - first)]));
            by = p;
        }
    }
    if (out.model == 0) {
        // The empty piece after a last line end is no line of its own.
        if (text.endsWith(u'\n')) --lineNumber;
        lineNumber = std::max(lineNumber, 1);
        return fail(QStringLiteral("the text ends without a model line (\"%1N\")")
                        .arg(QLatin1String(kModelLine)));
    }
    return out;
}

} // namespace ferrule::SettingsText
