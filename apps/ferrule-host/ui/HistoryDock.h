#pragma once

#include <QDockWidget>

#include <optional>

class QPushButton;
class QTreeView;

namespace ferrule {

class HistoryModel;
struct Snapshot;

// The History dock: the device's earlier states, newest first, and what can be done with the
// one selected: open it as a new document, send it to the device, or compare it with the
// document. Enter or a double-click opens it.
class HistoryDock : public QDockWidget {
    Q_OBJECT
public:
    HistoryDock(HistoryModel* model, QWidget* parent = nullptr);

    QTreeView* view() const { return view_; }
    std::optional<Snapshot> selected() const;
    // Selects the snapshot of a file, if it is listed.
    void select(const QString& path);
    // Send to Device is not available now, and why ("choose the device's MIDI output port
    // first"); empty when it is.
    void setSendProblem(const QString& why);

signals:
    void openRequested(const QString& path);
    void sendRequested(const QString& path);
    void compareRequested(const QString& path);

protected:
    void connectNotify(const QMetaMethod& signal) override;

private:
    void act(void (HistoryDock::*signal)(const QString&));
    void refreshButtons();

    HistoryModel* model_;
    QTreeView* view_;
    QPushButton *open_, *send_, *compare_;
    QString sendProblem_;
    QString keptSelection_; // across a reload of the list
};

} // namespace ferrule
