#include "HistoryModel.h"

#include <QDir>

namespace ferrule {

HistoryModel::HistoryModel(History* history, QObject* parent)
    : QAbstractTableModel(parent)
    , history_(history) {
    connect(history_, &History::stored, this, &HistoryModel::reload);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &HistoryModel::reload);
    reload();
}

void HistoryModel::watch() {
    // The folder is made by the first snapshot stored; until then there is nothing to watch.
    if (watcher_.directories().isEmpty() && QDir(history_->folder()).exists())
        watcher_.addPath(history_->folder());
}

void HistoryModel::reload() {
    watch();
    QList<Snapshot> rows = history_->snapshots();
    const bool same =
        rows.size() == rows_.size() && std::equal(rows.begin(), rows.end(), rows_.begin(),
                                                  [](const Snapshot& a, const Snapshot& b) {
                                                      return a.path == b.path && a.ports == b.ports;
                                                  });
    if (same) return;
    beginResetModel();
    rows_ = std::move(rows);
    times_.clear();
    for (const Snapshot& s : rows_)
        times_ << s.localTime();
    endResetModel();
}

int HistoryModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(rows_.size());
}

int HistoryModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant HistoryModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows_.size()) return {};
    const Snapshot& s = rows_.at(index.row());
    if (role == Qt::ToolTipRole) return s.path;
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) return {};
    switch (index.column()) {
    case Time:
        return times_.at(index.row());
    case Model:
        return QStringLiteral("GT-%1").arg(s.model);
    case Kind:
        return Snapshot::kindName(s.kind);
    case Port:
        return s.portText();
    default:
        return {};
    }
}

QVariant HistoryModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    switch (section) {
    case Time:
        return QStringLiteral("Time");
    case Model:
        return QStringLiteral("Model");
    case Kind:
        return QStringLiteral("Kind");
    case Port:
        return QStringLiteral("Port");
    default:
        return {};
    }
}

} // namespace ferrule
