#pragma once

#include <QSortFilterProxyModel>
#include <QStringList>

namespace ferrule {

// Which parameters of a SettingsModel are shown: those whose name holds every word of the
// filter text (in any case), and, when asked, only those that differ from the device or the
// compared data. A page or heading shows while a parameter under it does.
class SettingsFilter : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit SettingsFilter(QObject* parent = nullptr);

    void setText(const QString& text);
    QString text() const { return words_.join(QLatin1Char(' ')); }
    void setOnlyDifferences(bool only);
    bool onlyDifferences() const { return onlyDifferences_; }

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    QStringList words_;
    bool onlyDifferences_ = false;
};

} // namespace ferrule
