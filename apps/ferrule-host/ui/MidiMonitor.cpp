#include "MidiMonitor.h"

#include "LateClearButton.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"

#include <QAction>
#include <QApplication>
#include <QBrush>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>

namespace ferrule {

MidiMonitorModel::MidiMonitorModel(QObject* parent)
    : QAbstractTableModel(parent) {
    clock_.start();
}

MidiMonitorModel::Entry MidiMonitorModel::decode(double ms, bool incoming,
                                                 const QByteArray& message) {
    Entry e{ms, incoming, message, {}, {}, QString::number(message.size()), {}, {}, true};
    // Which model's header the message carries, data set or request.
    for (int model : kModels) {
        const QByteArray set = Sysex::defaultHeader(model);
        const QByteArray request = Sysex::requestHeaderFor(set);
        const bool isSet = message.mid(1, set.size()) == set;
        const bool isRequest = message.mid(1, request.size()) == request;
        if (!isSet && !isRequest) continue;
        const Sysex::Message m = Sysex::parse(message, isSet ? set : request);
        e.model = QStringLiteral("GT-%1").arg(model);
        e.command = isSet ? QStringLiteral("data set") : QStringLiteral("request");
        if (m.fault == Sysex::Fault::None || m.fault == Sysex::Fault::BadChecksum) {
            e.address = Sysex::hex(message.mid(1 + set.size(), 4));
            e.length =
                isSet ? QString::number(m.payload.size()) : QString::number(Sysex::requestSize(m));
        }
        e.checksum = m.ok() ? QStringLiteral("ok") : Sysex::describe(m, isSet ? set : request);
        e.flagged = !m.ok();
        return e;
    }
    e.command =
        message.startsWith(char(0xF0)) ? QStringLiteral("foreign sysex") : QStringLiteral("other");
    e.checksum = QStringLiteral("-");
    return e;
}

void MidiMonitorModel::add(bool incoming, const QByteArray& message) {
    const int row = int(entries_.size());
    beginInsertRows({}, row, row);
    entries_.push_back(decode(double(clock_.nsecsElapsed()) / 1e6, incoming, message));
    endInsertRows();
}

void MidiMonitorModel::clear() {
    beginResetModel();
    entries_.clear();
    endResetModel();
}

int MidiMonitorModel::count(bool incoming) const {
    return int(std::ranges::count(entries_, incoming, &Entry::incoming));
}

int MidiMonitorModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(entries_.size());
}

int MidiMonitorModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant MidiMonitorModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Entry& e = entries_[std::size_t(index.row())];
    if (role == Qt::ForegroundRole && e.flagged) return QBrush(QColor(0xB0, 0x20, 0x20));
    if (role == Qt::ToolTipRole) return Sysex::hex(e.bytes);
    if (role != Qt::DisplayRole) return {};
    switch (index.column()) {
    case Time:
        return QString::number(e.ms / 1000.0, 'f', 3);
    case Direction:
        return e.incoming ? QStringLiteral("in") : QStringLiteral("out");
    case Command:
        return e.command;
    case Address:
        return e.address;
    case Length:
        return e.length;
    case Checksum:
        return e.checksum;
    case Model:
        return e.model;
    default:
        return {};
    }
}

QVariant MidiMonitorModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    static const char* names[] = {"Time (s)", "Dir",      "Command", "Address",
                                  "Length",   "Checksum", "Model"};
    return QString::fromLatin1(names[section]);
}

MidiMonitor::MidiMonitor(QWidget* parent)
    : QWidget(parent)
    , model_(new MidiMonitorModel(this)) {
    setObjectName(QStringLiteral("MidiMonitor"));
}

void MidiMonitor::buildPanel() {
    if (table_) return;
    filter_ = new QSortFilterProxyModel(this);
    table_ = new QTableView(this);
    filter_->setSourceModel(model_);
    filter_->setFilterKeyColumn(-1);
    filter_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    table_->setModel(filter_);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 6);
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->setAlternatingRowColors(true);
    auto* search = new QLineEdit(this);
    search->setPlaceholderText(QStringLiteral("Filter (any column)"));
    addLateClearButton(search);
    connect(search, &QLineEdit::textChanged, filter_, &QSortFilterProxyModel::setFilterFixedString);
    auto* copy = new QPushButton(QStringLiteral("Copy as hex"), this);
    connect(copy, &QPushButton::clicked, this, &MidiMonitor::copySelection);
    auto* clear = new QPushButton(QStringLiteral("Clear"), this);
    connect(clear, &QPushButton::clicked, model_, &MidiMonitorModel::clear);
    auto* copyAction = new QAction(this);
    copyAction->setShortcut(QKeySequence::Copy);
    copyAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(copyAction, &QAction::triggered, this, &MidiMonitor::copySelection);
    table_->addAction(copyAction);
    auto* bar = new QHBoxLayout;
    bar->addWidget(search, 1);
    bar->addWidget(copy);
    bar->addWidget(clear);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(bar);
    layout->addWidget(table_);
    // Follow new messages while the view is at the bottom.
    connect(model_, &QAbstractItemModel::rowsInserted, table_, [this] {
        if (!table_->selectionModel()->hasSelection()) table_->scrollToBottom();
    });
    // Those that came before are followed too.
    table_->scrollToBottom();
    // Made while the panel may be on the screen already.
    for (QWidget* child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        child->show();
}

void MidiMonitor::copySelection() {
    if (!table_) return;
    QStringList lines;
    for (const QModelIndex& index : table_->selectionModel()->selectedRows())
        lines << Sysex::hex(model_->message(filter_->mapToSource(index).row()));
    if (!lines.isEmpty()) QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

} // namespace ferrule
