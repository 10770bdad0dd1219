#include "SettingsModel.h"

#include "catalogue/ParameterIndex.h"

#include <QBrush>
#include <QFont>
#include <QHash>

namespace ferrule {

namespace {

// A value that differs: amber behind dark text, readable on light and dark palettes alike.
const QColor kDifferBackground(0xFF, 0xD5, 0x8F);
const QColor kDifferText(0x20, 0x18, 0x00);

ImageBytes bytesOf(const QByteArray& image) {
    return {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())};
}

constexpr int columnOf(SettingsModel::Side side) {
    return int(side) + 1;
}

} // namespace

QString settingsDiffer(int count) {
    return count == 1 ? QStringLiteral("1 setting differs")
                      : QStringLiteral("%1 settings differ").arg(count);
}

SettingsModel::SettingsModel(QObject* parent)
    : QAbstractItemModel(parent) {}

void SettingsModel::setModel(int model) {
    if (model == model_) return;
    beginResetModel();
    model_ = model;
    for (int s = 0; s < SideCount; ++s) {
        images_[s].clear();
        known_[s] = false;
        values_[s].clear();
    }
    build();
    countDifferences();
    endResetModel();
}

void SettingsModel::build() {
    nodes_.clear();
    pages_.clear();
    parameters_ = ParameterIndex::of(model_).parameters();
    parameterNodes_.assign(parameters_.size(), -1);
    // Made when the filter first asks.
    names_.clear();
    // A node per parameter, and about one per page or heading for every ten.
    nodes_.reserve(parameters_.size() + parameters_.size() / 10 + 16);
    // The index lists a page's parameters together, in reading order: a page node is made where
    // its caption first appears, and a heading node where the heading first appears on the page;
    // the instances of a heading that recurs (a custom tone's preamp, then its speaker, then the
    // next tone's preamp) gather under one node.
    int page = -1;
    QHash<QString, int> headings;
    const auto add = [this](int parent, const QString& text) {
        const int n = int(nodes_.size());
        nodes_.push_back({parent, 0, text, {}, -1});
        std::vector<int>& siblings = parent < 0 ? pages_ : nodes_[std::size_t(parent)].children;
        nodes_.back().row = int(siblings.size());
        siblings.push_back(n);
        return n;
    };
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
        const Parameter& p = parameters_[i];
        if (page < 0 || nodes_[std::size_t(page)].text != p.page) {
            page = add(-1, p.page);
            headings.clear();
        }
        int parent = page;
        if (!p.heading.isEmpty()) {
            auto heading = headings.find(p.heading);
            if (heading == headings.end())
                heading = headings.insert(p.heading, add(page, p.heading));
            parent = *heading;
        }
        const int leaf = add(parent, QString());
        nodes_[std::size_t(leaf)].parameter = int(i);
        parameterNodes_[i] = leaf;
    }
}

std::vector<int> SettingsModel::valuesOf(const QByteArray& image) const {
    std::vector<int> values(parameters_.size());
    const ImageBytes bytes = bytesOf(image);
    for (std::size_t i = 0; i < parameters_.size(); ++i)
        values[i] = parameters_[i].value(bytes);
    return values;
}

void SettingsModel::setImage(Side side, const QByteArray& image) {
    const bool wasKnown = known_[side];
    const bool nowKnown = !image.isEmpty();
    if (wasKnown == nowKnown && image == images_[side]) return;
    const std::vector<int> old = std::move(values_[side]);
    images_[side] = image;
    known_[side] = nowKnown;
    values_[side] = nowKnown ? valuesOf(image) : std::vector<int>();

    // The rows whose shown values changed, told one range per parent.
    std::vector<bool> changed(nodes_.size(), false);
    for (std::size_t p = 0; p < parameters_.size(); ++p)
        changed[std::size_t(parameterNodes_[p])] =
            wasKnown != nowKnown || (nowKnown && old[p] != values_[side][p]);
    const int first = side == DocumentSide ? Value : columnOf(side);
    const int last = side == DocumentSide ? Compared : columnOf(side);
    for (const Node& parent : nodes_) {
        int from = -1, to = -1;
        for (int child : parent.children)
            if (changed[std::size_t(child)]) {
                if (from < 0) from = nodes_[std::size_t(child)].row;
                to = nodes_[std::size_t(child)].row;
            }
        if (from >= 0)
            emit dataChanged(nodeIndex(parent.children[std::size_t(from)], first),
                             nodeIndex(parent.children[std::size_t(to)], last));
    }

    const std::array<std::vector<int>, SideCount> oldCounts = counts_;
    countDifferences();
    for (std::size_t n = 0; n < nodes_.size(); ++n)
        for (Side s : {DeviceSide, ComparedSide})
            if (nodes_[n].parameter < 0 && oldCounts[s][n] != counts_[s][n])
                emit dataChanged(nodeIndex(int(n), columnOf(s)), nodeIndex(int(n), columnOf(s)));
    if (wasKnown != nowKnown)
        emit headerDataChanged(Qt::Horizontal, columnOf(side), columnOf(side));
}

void SettingsModel::countDifferences() {
    for (Side s : {DeviceSide, ComparedSide}) {
        counts_[s].assign(nodes_.size(), 0);
        if (!known_[s]) continue;
        for (std::size_t p = 0; p < parameters_.size(); ++p) {
            if (values_[s][p] == values_[DocumentSide][p]) continue;
            for (int n = nodes_[std::size_t(parameterNodes_[p])].parent; n >= 0;
                 n = nodes_[std::size_t(n)].parent)
                ++counts_[s][std::size_t(n)];
        }
    }
}

bool SettingsModel::differs(const Parameter* parameter, Side side) const {
    if (!parameter || side == DocumentSide || !known_[side] || !known_[DocumentSide]) return false;
    const std::size_t p = std::size_t(parameter - parameters_.data());
    return values_[side][p] != values_[DocumentSide][p];
}

int SettingsModel::differences(Side side) const {
    int count = 0;
    for (int page : pages_)
        count += side == DocumentSide ? 0 : counts_[side][std::size_t(page)];
    return count;
}

const SettingsModel::Node& SettingsModel::node(const QModelIndex& index) const {
    return nodes_[std::size_t(index.internalId())];
}

QModelIndex SettingsModel::nodeIndex(int node, int column) const {
    return createIndex(nodes_[std::size_t(node)].row, column, quintptr(node));
}

const Parameter* SettingsModel::parameter(const QModelIndex& index) const {
    if (!index.isValid()) return nullptr;
    const int p = node(index).parameter;
    return p < 0 ? nullptr : &parameters_[std::size_t(p)];
}

void SettingsModel::collect(int n, std::vector<const Parameter*>& out) const {
    const Node& at = nodes_[std::size_t(n)];
    if (at.parameter >= 0) out.push_back(&parameters_[std::size_t(at.parameter)]);
    for (int child : at.children)
        collect(child, out);
}

std::vector<const Parameter*> SettingsModel::parametersUnder(const QModelIndex& index) const {
    std::vector<const Parameter*> out;
    if (index.isValid()) collect(int(index.internalId()), out);
    return out;
}

QString SettingsModel::page(const QModelIndex& index) const {
    if (!index.isValid()) return {};
    int n = int(index.internalId());
    while (nodes_[std::size_t(n)].parent >= 0)
        n = nodes_[std::size_t(n)].parent;
    return nodes_[std::size_t(n)].text;
}

QModelIndex SettingsModel::indexOf(const Parameter* parameter, int column) const {
    if (!parameter || parameters_.empty()) return {};
    const std::size_t p = std::size_t(parameter - parameters_.data());
    return p < parameters_.size() ? nodeIndex(parameterNodes_[p], column) : QModelIndex();
}

QModelIndex SettingsModel::pageIndex(const QString& page) const {
    for (int n : pages_)
        if (nodes_[std::size_t(n)].text == page) return nodeIndex(n, Setting);
    return {};
}

QModelIndex SettingsModel::index(int row, int column, const QModelIndex& parent) const {
    const std::vector<int>& rows = parent.isValid() ? node(parent).children : pages_;
    if (row < 0 || row >= int(rows.size()) || column < 0 || column >= ColumnCount) return {};
    return createIndex(row, column, quintptr(rows[std::size_t(row)]));
}

QModelIndex SettingsModel::parent(const QModelIndex& child) const {
    if (!child.isValid()) return {};
    const int up = node(child).parent;
    return up < 0 ? QModelIndex() : nodeIndex(up, Setting);
}

int SettingsModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0) return 0;
    return int(parent.isValid() ? node(parent).children.size() : pages_.size());
}

int SettingsModel::columnCount(const QModelIndex&) const {
    return ColumnCount;
}

QString SettingsModel::valueText(int p, Side side) const {
    return parameters_[std::size_t(p)].valueText(values_[side][std::size_t(p)]);
}

QVariant SettingsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Node& at = node(index);
    const int column = index.column();
    const Side side = Side(column - 1);
    if (at.parameter < 0) {
        // A page or a heading: its caption, and how many under it differ.
        const int count = column >= Device ? counts_[side][std::size_t(index.internalId())] : 0;
        switch (role) {
        case Qt::DisplayRole:
            if (column == Setting) return at.text;
            if (count > 0) return QStringLiteral("%1 %2 differ").arg(kDiffers).arg(count);
            return {};
        case Qt::FontRole:
            if (at.parent < 0 && column == Setting) {
                QFont bold;
                bold.setBold(true);
                return bold;
            }
            return {};
        case Qt::BackgroundRole:
            return count > 0 ? QVariant(QBrush(kDifferBackground)) : QVariant();
        case Qt::ForegroundRole:
            return count > 0 ? QVariant(QBrush(kDifferText)) : QVariant();
        default:
            return {};
        }
    }
    const Parameter& p = parameters_[std::size_t(at.parameter)];
    const bool marked = column >= Device && differs(&p, side);
    switch (role) {
    case Qt::DisplayRole:
        if (column == Setting)
            return p.instance.isEmpty() ? p.caption
                                        : QStringLiteral("%1 [%2]").arg(p.caption, p.instance);
        if (!known_[side]) return {};
        return marked ? QStringLiteral("%1 %2").arg(kDiffers, valueText(at.parameter, side))
                      : valueText(at.parameter, side);
    case Qt::ToolTipRole:
        if (column == Setting) return p.name();
        if (marked)
            return QStringLiteral("%1 here, %2 in the document")
                .arg(valueText(at.parameter, side), valueText(at.parameter, DocumentSide));
        return {};
    case Qt::BackgroundRole:
        return marked ? QVariant(QBrush(kDifferBackground)) : QVariant();
    case Qt::ForegroundRole:
        return marked ? QVariant(QBrush(kDifferText)) : QVariant();
    case NameRole:
        if (names_.empty())
            for (const Parameter& each : parameters_)
                names_.push_back(each.name());
        return names_[std::size_t(at.parameter)];
    case DiffersRole:
        return differs(&p, DeviceSide) || differs(&p, ComparedSide);
    default:
        return {};
    }
}

QVariant SettingsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    switch (section) {
    case Setting:
        return QStringLiteral("Setting");
    case Value:
        return QStringLiteral("Value");
    case Device:
        return QStringLiteral("Device");
    case Compared:
        return QStringLiteral("Compared");
    default:
        return {};
    }
}

} // namespace ferrule
