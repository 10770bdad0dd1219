#include "HistoryDock.h"

#include "HistoryModel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QMetaMethod>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace ferrule {

namespace {

// Enter and Return open the current snapshot, as a double-click does.
class SnapshotView : public QTreeView {
public:
    using QTreeView::QTreeView;
    std::function<void()> activate;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
            currentIndex().isValid()) {
            activate();
            return;
        }
        QTreeView::keyPressEvent(event);
    }
};

} // namespace

HistoryDock::HistoryDock(HistoryModel* model, QWidget* parent)
    : QDockWidget(QStringLiteral("History"), parent)
    , model_(model) {
    setObjectName(QStringLiteral("HistoryDock"));
    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 4, 4, 4);

    auto* view = new SnapshotView(body);
    view_ = view;
    view_->setObjectName(QStringLiteral("historyView"));
    view_->setAccessibleName(QStringLiteral("History of the device's states"));
    view_->setModel(model_);
    view_->setRootIsDecorated(false);
    view_->setUniformRowHeights(true);
    view_->setAlternatingRowColors(true);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setSelectionMode(QAbstractItemView::SingleSelection);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // The columns fit their widest text from the start; measuring every row instead would cost
    // a full history's start dearly.
    QHeaderView* header = view_->header();
    header->setStretchLastSection(true);
    const QFontMetrics metrics = view_->fontMetrics();
    const int padding = 2 * metrics.horizontalAdvance(QLatin1Char('M'));
    for (const auto& [column, widest] :
         {std::pair{HistoryModel::Time, QStringLiteral("2026-11-24 12:27:44")},
          std::pair{HistoryModel::Model, QStringLiteral("Model")},
          std::pair{HistoryModel::Kind, QStringLiteral("requested")}})
        header->resizeSection(column, metrics.horizontalAdvance(widest) + padding);
    view->activate = [this] { act(&HistoryDock::openRequested); };
    connect(view_, &QTreeView::doubleClicked, this, [this] { act(&HistoryDock::openRequested); });
    layout->addWidget(view_);

    auto* buttons = new QHBoxLayout;
    open_ = new QPushButton(QStringLiteral("Open"), body);
    open_->setObjectName(QStringLiteral("historyOpen"));
    send_ = new QPushButton(QStringLiteral("Send to Device"), body);
    send_->setObjectName(QStringLiteral("historySend"));
    compare_ = new QPushButton(QStringLiteral("Compare"), body);
    compare_->setObjectName(QStringLiteral("historyCompare"));
    connect(open_, &QPushButton::clicked, this, [this] { act(&HistoryDock::openRequested); });
    connect(send_, &QPushButton::clicked, this, [this] { act(&HistoryDock::sendRequested); });
    connect(compare_, &QPushButton::clicked, this, [this] { act(&HistoryDock::compareRequested); });
    for (QPushButton* b : {open_, send_, compare_})
        buttons->addWidget(b);
    buttons->addStretch();
    layout->addLayout(buttons);
    setWidget(body);

    // The same actions on the view's context menu.
    view_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        if (!view_->indexAt(at).isValid()) return;
        QMenu menu(this);
        for (QPushButton* b : {open_, send_, compare_})
            menu.addAction(b->text(), b, &QPushButton::click)->setEnabled(b->isEnabled());
        menu.exec(view_->viewport()->mapToGlobal(at));
    });

    // A new snapshot reloads the list; the one selected stays selected.
    connect(model_, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        const std::optional<Snapshot> s = selected();
        keptSelection_ = s ? s->path : QString();
    });
    connect(model_, &QAbstractItemModel::modelReset, this, [this] {
        select(keptSelection_);
        refreshButtons();
    });
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &HistoryDock::refreshButtons);
    refreshButtons();
}

std::optional<Snapshot> HistoryDock::selected() const {
    const QModelIndexList rows = view_->selectionModel()->selectedRows();
    if (rows.isEmpty()) return std::nullopt;
    return model_->snapshot(rows.first().row());
}

void HistoryDock::select(const QString& path) {
    for (int row = 0; row < model_->rowCount(); ++row)
        if (model_->snapshot(row).path == path) {
            view_->setCurrentIndex(model_->index(row, 0));
            return;
        }
}

void HistoryDock::setSendProblem(const QString& why) {
    sendProblem_ = why;
    refreshButtons();
}

void HistoryDock::connectNotify(const QMetaMethod& signal) {
    if (signal == QMetaMethod::fromSignal(&HistoryDock::compareRequested)) refreshButtons();
}

void HistoryDock::act(void (HistoryDock::*signal)(const QString&)) {
    const std::optional<Snapshot> s = selected();
    if (!s) return;
    if (signal == &HistoryDock::sendRequested && !sendProblem_.isEmpty()) return;
    emit(this->*signal)(s->path);
}

void HistoryDock::refreshButtons() {
    const bool chosen = selected().has_value();
    const QString none = QStringLiteral("Not now: select a snapshot first");
    open_->setEnabled(chosen);
    open_->setToolTip(chosen ? QStringLiteral("Open the snapshot as a new document") : none);
    const QString sendWhy = !chosen ? none
                            : sendProblem_.isEmpty()
                                ? QString()
                                : QStringLiteral("Not now: %1").arg(sendProblem_);
    send_->setEnabled(sendWhy.isEmpty());
    send_->setToolTip(sendWhy.isEmpty()
                          ? QStringLiteral("Send the snapshot to the device, replacing all of "
                                           "its system settings")
                          : sendWhy);
    // Compare is offered once something in the window takes it up.
    const bool comparable =
        isSignalConnected(QMetaMethod::fromSignal(&HistoryDock::compareRequested));
    compare_->setEnabled(chosen && comparable);
    compare_->setToolTip(!comparable ? QStringLiteral("Not now: no comparison in this window")
                         : chosen    ? QStringLiteral("Compare the snapshot with the document")
                                     : none);
}

} // namespace ferrule
