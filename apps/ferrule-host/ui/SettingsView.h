#pragma once

#include "catalogue/ParameterIndex.h"
#include "document/SettingsModel.h"

#include <QWidget>

#include <vector>

class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QTreeView;

namespace ferrule {

class SettingsFilter;

// The document by parameter: the settings tree with its filter box and "Only differences"
// switch, a line that says what the document is compared with, and the actions that take the
// other side's values into the document (on the selection, its page, or all).
class SettingsView : public QWidget {
    Q_OBJECT
public:
    explicit SettingsView(QWidget* parent = nullptr);

    SettingsModel* model() const { return model_; }
    SettingsFilter* filter() const { return filter_; }
    QTreeView* tree() const { return tree_; }
    QLineEdit* filterBox() const { return filterBox_; }
    QCheckBox* onlyDifferencesBox() const { return onlyDifferences_; }
    QLabel* note() const { return note_; }

    // The side the take actions take from (the device or the compared data) and how the note
    // names it; DocumentSide: nothing to take from.
    void setOtherSide(SettingsModel::Side side, const QString& name);
    SettingsModel::Side otherSide() const { return otherSide_; }
    const QString& otherName() const { return otherName_; }
    // Why the take actions cannot be used now (a transfer runs); empty when they can.
    void setTakeBlocked(const QString& why);

    // Take Value, Take Page and Take All, for the window's menu and the view's context menu.
    QList<QAction*> takeActions() const;
    // What each takes now: the selected parameters, those of the current row's page, all.
    std::vector<const Parameter*> selectedParameters() const;
    std::vector<const Parameter*> pageParameters() const;
    std::vector<const Parameter*> allParameters() const;

signals:
    // Enter or a double-click on a parameter: its page in the editor.
    void openRequested(const QString& page);
    // A take action, with what it takes and the step's name.
    void takeRequested(const std::vector<const Parameter*>& parameters, const QString& step);

private:
    void expand();
    void updateNote();
    void updateColumns();
    void updateActions();

    SettingsModel* model_;
    SettingsFilter* filter_;
    QLineEdit* filterBox_;
    QCheckBox* onlyDifferences_;
    QLabel* note_;
    QTreeView* tree_;
    QAction *takeValue_, *takePage_, *takeAll_;
    SettingsModel::Side otherSide_ = SettingsModel::DocumentSide;
    QString otherName_;
    QString blocked_;
};

} // namespace ferrule
