#pragma once

#include <QAbstractTableModel>
#include <QByteArray>
#include <QElapsedTimer>
#include <QWidget>

#include <vector>

class QSortFilterProxyModel;
class QTableView;

namespace ferrule {

// Every MIDI message in and out, decoded as far as the system data's framing allows: time,
// direction, command, address, data length, checksum verdict and model. Messages that are bad
// or foreign are marked.
class MidiMonitorModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Time, Direction, Command, Address, Length, Checksum, Model, ColumnCount };

    explicit MidiMonitorModel(QObject* parent = nullptr);

    void add(bool incoming, const QByteArray& message);
    void clear();
    const QByteArray& message(int row) const { return entries_[std::size_t(row)].bytes; }
    int count(bool incoming) const;
    // Whether a row is bad (checksum, framing) or foreign (not a GT data-set or request).
    bool flagged(int row) const { return entries_[std::size_t(row)].flagged; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Entry {
        double ms;
        bool incoming;
        QByteArray bytes;
        QString command, address, length, checksum, model;
        bool flagged;
    };
    static Entry decode(double ms, bool incoming, const QByteArray& message);

    std::vector<Entry> entries_;
    QElapsedTimer clock_;
};

// The monitor as a panel: the table, a filter, Copy as hex and Clear. The model records from
// the start; the panel's widgets are made by `buildPanel` (the window makes them once it is on
// the screen, with the panel behind the History).
class MidiMonitor : public QWidget {
    Q_OBJECT
public:
    explicit MidiMonitor(QWidget* parent = nullptr);
    MidiMonitorModel* model() const { return model_; }
    // Once; later calls do nothing.
    void buildPanel();

public slots:
    void copySelection();

private:
    MidiMonitorModel* model_;
    QSortFilterProxyModel* filter_ = nullptr;
    QTableView* table_ = nullptr;
};

} // namespace ferrule
