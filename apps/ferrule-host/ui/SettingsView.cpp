#include "SettingsView.h"

#include "LateClearButton.h"
#include "document/SettingsFilter.h"

#include <QAction>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>
#include <QVBoxLayout>

#include <set>

namespace ferrule {

SettingsView::SettingsView(QWidget* parent)
    : QWidget(parent)
    , model_(new SettingsModel(this))
    , filter_(new SettingsFilter(this))
    , filterBox_(new QLineEdit(this))
    , onlyDifferences_(new QCheckBox(QStringLiteral("Only &differences"), this))
    , note_(new QLabel(this))
    , tree_(new QTreeView(this)) {
    setObjectName(QStringLiteral("settingsView"));
    filter_->setSourceModel(model_);
    filterBox_->setObjectName(QStringLiteral("settingsFilter"));
    filterBox_->setPlaceholderText(QStringLiteral("Filter by name"));
    addLateClearButton(filterBox_);
    filterBox_->setAccessibleName(QStringLiteral("Filter the settings by name"));
    onlyDifferences_->setObjectName(QStringLiteral("onlyDifferences"));
    onlyDifferences_->setToolTip(
        QStringLiteral("Show only the settings whose value differs from the device's or the "
                       "compared data's"));
    note_->setObjectName(QStringLiteral("comparison"));
    note_->setWordWrap(true);
    note_->hide();

    tree_->setObjectName(QStringLiteral("settings"));
    tree_->setModel(filter_);
    tree_->setUniformRowHeights(true);
    tree_->setAlternatingRowColors(true);
    tree_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tree_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tree_->setAccessibleName(QStringLiteral("Settings"));
    // The values next to their captions; the last column shown takes what is left.
    tree_->header()->resizeSection(SettingsModel::Setting, 380);
    for (int c = SettingsModel::Value; c < SettingsModel::ColumnCount; ++c)
        tree_->header()->resizeSection(c, 160);
    tree_->setContextMenuPolicy(Qt::ActionsContextMenu);

    takeValue_ = new QAction(QStringLiteral("Take &Value"), this);
    takePage_ = new QAction(QStringLiteral("Take &Page"), this);
    takeAll_ = new QAction(QStringLiteral("Take &All"), this);
    takeValue_->setObjectName(QStringLiteral("takeValue"));
    takePage_->setObjectName(QStringLiteral("takePage"));
    takeAll_->setObjectName(QStringLiteral("takeAll"));
    tree_->addActions({takeValue_, takePage_, takeAll_});
    connect(takeValue_, &QAction::triggered, this,
            [this] { emit takeRequested(selectedParameters(), QStringLiteral("Take Value")); });
    connect(takePage_, &QAction::triggered, this,
            [this] { emit takeRequested(pageParameters(), QStringLiteral("Take Page")); });
    connect(takeAll_, &QAction::triggered, this,
            [this] { emit takeRequested(allParameters(), QStringLiteral("Take All")); });

    auto* bar = new QHBoxLayout;
    bar->addWidget(filterBox_, 1);
    bar->addWidget(onlyDifferences_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(bar);
    layout->addWidget(note_);
    layout->addWidget(tree_, 1);

    connect(filterBox_, &QLineEdit::textChanged, this, [this](const QString& text) {
        filter_->setText(text);
        expand();
    });
    connect(onlyDifferences_, &QCheckBox::toggled, this, [this](bool only) {
        filter_->setOnlyDifferences(only);
        expand();
    });
    connect(tree_, &QTreeView::activated, this, [this](const QModelIndex& index) {
        const QModelIndex source = filter_->mapToSource(index);
        if (model_->parameter(source)) emit openRequested(model_->page(source));
    });
    connect(model_, &QAbstractItemModel::modelReset, this, [this] {
        expand();
        updateColumns();
        updateNote();
    });
    connect(model_, &QAbstractItemModel::headerDataChanged, this, &SettingsView::updateColumns);
    connect(model_, &QAbstractItemModel::dataChanged, this, &SettingsView::updateNote);
    connect(tree_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &SettingsView::updateActions);
    updateColumns();
    updateActions();
}

void SettingsView::expand() {
    // What the filter lets through is shown whole; unfiltered, the pages are an overview with
    // the first one open.
    if (!filter_->text().isEmpty() || filter_->onlyDifferences()) {
        tree_->expandAll();
        return;
    }
    tree_->collapseAll();
    tree_->expandRecursively(filter_->index(0, 0));
}

void SettingsView::setOtherSide(SettingsModel::Side side, const QString& name) {
    otherSide_ = side;
    otherName_ = name;
    updateNote();
    updateActions();
}

void SettingsView::updateColumns() {
    tree_->setColumnHidden(SettingsModel::Device, !model_->known(SettingsModel::DeviceSide));
    tree_->setColumnHidden(SettingsModel::Compared, !model_->known(SettingsModel::ComparedSide));
}

void SettingsView::updateNote() {
    const bool comparing = otherSide_ != SettingsModel::DocumentSide && model_->known(otherSide_);
    note_->setVisible(comparing);
    if (!comparing) return;
    const int count = model_->differences(otherSide_);
    note_->setText(count == 0
                       ? QStringLiteral("Compared with %1: no setting differs.").arg(otherName_)
                       : QStringLiteral("Compared with %1: %2 (marked %3). Take Value, Take "
                                        "Page or Take All brings its values into the document.")
                             .arg(otherName_, settingsDiffer(count), SettingsModel::kDiffers));
}

void SettingsView::setTakeBlocked(const QString& why) {
    if (why == blocked_) return;
    blocked_ = why;
    updateActions();
}

void SettingsView::updateActions() {
    // A greyed action says why.
    const bool comparing = otherSide_ != SettingsModel::DocumentSide && model_->known(otherSide_);
    const QString why = !blocked_.isEmpty() ? blocked_
                        : !comparing ? QStringLiteral("compare with a file or the device first")
                                     : QString();
    const bool current = tree_->currentIndex().isValid();
    const auto enable = [&](QAction* action, const QString& what, bool needsRow) {
        const QString itsWhy =
            why.isEmpty() && needsRow && !current ? QStringLiteral("select a setting first") : why;
        action->setEnabled(itsWhy.isEmpty());
        action->setToolTip(itsWhy.isEmpty() ? QStringLiteral("%1 from %2").arg(what, otherName_)
                                            : QStringLiteral("Not now: %1").arg(itsWhy));
    };
    enable(takeValue_, QStringLiteral("Take the selected settings' values"), true);
    enable(takePage_, QStringLiteral("Take the values of the current row's page"), true);
    enable(takeAll_, QStringLiteral("Take every setting's value"), false);
}

QList<QAction*> SettingsView::takeActions() const {
    return {takeValue_, takePage_, takeAll_};
}

std::vector<const Parameter*> SettingsView::selectedParameters() const {
    std::vector<const Parameter*> out;
    std::set<const Parameter*> seen;
    QModelIndexList rows = tree_->selectionModel()->selectedRows();
    if (rows.isEmpty() && tree_->currentIndex().isValid()) rows << tree_->currentIndex();
    for (const QModelIndex& row : rows)
        for (const Parameter* p : model_->parametersUnder(filter_->mapToSource(row)))
            if (seen.insert(p).second) out.push_back(p);
    return out;
}

std::vector<const Parameter*> SettingsView::pageParameters() const {
    const QModelIndex current = filter_->mapToSource(tree_->currentIndex());
    return model_->parametersUnder(model_->pageIndex(model_->page(current)));
}

std::vector<const Parameter*> SettingsView::allParameters() const {
    std::vector<const Parameter*> out;
    for (int row = 0; row < model_->rowCount(); ++row) {
        const std::vector<const Parameter*> page = model_->parametersUnder(model_->index(row, 0));
        out.insert(out.end(), page.begin(), page.end());
    }
    return out;
}

} // namespace ferrule
