#pragma once

#include "document/History.h"

#include <QAbstractTableModel>
#include <QFileSystemWatcher>

namespace ferrule {

// The history's snapshots as a table, newest first: time, model, kind, port. It follows the
// history: a snapshot this process stores, or another ferrule-host's in the same folder, shows
// at once.
class HistoryModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Time, Model, Kind, Port, ColumnCount };

    explicit HistoryModel(History* history, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    const Snapshot& snapshot(int row) const { return rows_.at(row); }
    // Reads the folder again.
    void reload();

private:
    void watch();

    History* history_;
    QList<Snapshot> rows_;
    QStringList times_; // each row's local time, made once: the zone's rules are slow to apply
    QFileSystemWatcher watcher_;
};

} // namespace ferrule
