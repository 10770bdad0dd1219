#include "SettingsFilter.h"

#include "SettingsModel.h"

namespace ferrule {

SettingsFilter::SettingsFilter(QObject* parent)
    : QSortFilterProxyModel(parent) {
    setRecursiveFilteringEnabled(true);
}

void SettingsFilter::setText(const QString& text) {
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (words == words_) return;
    words_ = words;
    invalidateRowsFilter();
}

void SettingsFilter::setOnlyDifferences(bool only) {
    if (only == onlyDifferences_) return;
    onlyDifferences_ = only;
    invalidateRowsFilter();
}

bool SettingsFilter::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const {
    const QModelIndex row = sourceModel()->index(sourceRow, 0, sourceParent);
    // Pages and headings are shown for what they hold.
    if (sourceModel()->hasChildren(row)) return false;
    if (onlyDifferences_ && !row.data(SettingsModel::DiffersRole).toBool()) return false;
    if (words_.isEmpty()) return true;
    const QString name = row.data(SettingsModel::NameRole).toString();
    for (const QString& word : words_)
        if (!name.contains(word, Qt::CaseInsensitive)) return false;
    return true;
}

} // namespace ferrule
