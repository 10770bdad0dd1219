#include "Accessibility.h"

#include "ImageButton.h"
#include "controls/ValueControl.h"
#include "controls/cCheckRadio.h"
#include "pages/GridCells.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>

#include <vector>

namespace ferrule {
namespace {

// What an assistive tool's "press" or "toggle" does: the Space key, through the same path as a
// user's key.
void pressSpace(QWidget* w) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
    QCoreApplication::sendEvent(w, &press);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
    QCoreApplication::sendEvent(w, &release);
}

// A widget that a press or toggle action works through the Space key.
class PressableAccessible : public QAccessibleWidget {
public:
    PressableAccessible(QWidget* w, QAccessible::Role role)
        : QAccessibleWidget(w, role) {}

    QStringList actionNames() const override {
        return {role() == QAccessible::PushButton || role() == QAccessible::PageTab
                    ? pressAction()
                    : toggleAction()};
    }
    void doAction(const QString& name) override {
        if (actionNames().contains(name)) pressSpace(widget());
    }
};

class ValueControlAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit ValueControlAccessible(ValueControl* c)
        : QAccessibleWidget(c, c->property("ferruleKind").toString() == QLatin1String("knob")
                                   ? QAccessible::Dial
                                   : QAccessible::Slider) {}

    ValueControl* control() const { return static_cast<ValueControl*>(widget()); }

    QString text(QAccessible::Text t) const override {
        switch (t) {
        case QAccessible::Name:
            return control()->caption();
        case QAccessible::Value:
            return control()->valueText();
        default:
            return QAccessibleWidget::text(t);
        }
    }
    QAccessible::State state() const override {
        QAccessible::State s = QAccessibleWidget::state();
        if (!control()->property("inputEnabled").toBool()) s.disabled = true;
        return s;
    }
    void* interface_cast(QAccessible::InterfaceType t) override {
        if (t == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(t);
    }

    QVariant currentValue() const override { return control()->Value(); }
    void setCurrentValue(const QVariant& value) override {
        control()->setValueFromUser(value.toInt());
    }
    QVariant maximumValue() const override { return control()->Max(); }
    QVariant minimumValue() const override { return control()->property("minimum"); }
    QVariant minimumStepSize() const override { return 1; }
};

class OptionItemAccessible : public PressableAccessible {
public:
    OptionItemAccessible(QLabel* glyph, cCheckRadio* group)
        : PressableAccessible(glyph, group->itemCount() > 1 ? QAccessible::RadioButton
                                                            : QAccessible::CheckBox)
        , group_(group)
        , item_(glyph->property("optionItem").toInt()) {}

    QString text(QAccessible::Text t) const override {
        switch (t) {
        case QAccessible::Name: {
            const QLabel* label = group_->label(item_);
            return label ? label->text() : QString();
        }
        case QAccessible::Description:
            return group_->title();
        default:
            return PressableAccessible::text(t);
        }
    }
    QAccessible::State state() const override {
        QAccessible::State s = PressableAccessible::state();
        s.checkable = true;
        s.checked = group_->selectedIndex() == item_;
        if (!group_->Enabled()) s.disabled = true;
        return s;
    }

private:
    cCheckRadio* group_;
    int item_;
};

class SwitchAccessible : public PressableAccessible {
public:
    explicit SwitchAccessible(QLabel* sw)
        : PressableAccessible(sw, QAccessible::CheckBox) {}

    QString text(QAccessible::Text t) const override {
        if (t == QAccessible::Name) return widget()->property("caption").toString();
        return PressableAccessible::text(t);
    }
    QAccessible::State state() const override {
        QAccessible::State s = PressableAccessible::state();
        s.checkable = true;
        s.checked = widget()->property("picture").toInt() == 11;
        return s;
    }
};

class GridAccessible;

// One cell of the grid: its note text, with its row and column headings.
class GridCellAccessible : public QAccessibleInterface, public QAccessibleTableCellInterface {
public:
    GridCellAccessible(GridCells* cells, int b)
        : cells_(cells)
        , b_(b) {}

    bool isValid() const override { return cells_ != nullptr; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return cells_->window()->windowHandle(); }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(cells_);
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QString text(QAccessible::Text t) const override {
        const QString value = cells_->text(b_).trimmed();
        if (t == QAccessible::Value) return value;
        if (t != QAccessible::Name) return {};
        return QStringLiteral("%1, %2: %3")
            .arg(cells_->rowHeading(rowIndex()), cells_->columnHeading(columnIndex()), value);
    }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override {
        const QRect r = cells_->cellRect(b_);
        return QRect(cells_->mapToGlobal(r.topLeft()), r.size());
    }
    QAccessible::Role role() const override { return QAccessible::Cell; }
    QAccessible::State state() const override {
        QAccessible::State s;
        s.focusable = true;
        s.focused = cells_->hasFocus() && cells_->current() == b_;
        s.invisible = !cells_->isVisible();
        return s;
    }
    void* interface_cast(QAccessible::InterfaceType t) override {
        if (t == QAccessible::TableCellInterface)
            return static_cast<QAccessibleTableCellInterface*>(this);
        return nullptr;
    }

    bool isSelected() const override { return false; }
    QList<QAccessibleInterface*> columnHeaderCells() const override { return {}; }
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return b_ % GridCells::kColumns; }
    int rowIndex() const override { return b_ / GridCells::kColumns; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

private:
    GridCells* cells_;
    int b_;
};

// The grid as a table of 12 rows and 16 columns.
class GridAccessible : public QAccessibleWidget, public QAccessibleTableInterface {
public:
    explicit GridAccessible(GridCells* cells)
        : QAccessibleWidget(cells, QAccessible::Table) {}
    ~GridAccessible() override {
        for (QAccessible::Id id : ids_)
            if (id) QAccessible::deleteAccessibleInterface(id);
    }

    GridCells* cells() const { return static_cast<GridCells*>(widget()); }

    int childCount() const override { return GridCells::kCells; }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= GridCells::kCells) return nullptr;
        QAccessible::Id& id = ids_[std::size_t(index)];
        if (!id)
            id = QAccessible::registerAccessibleInterface(new GridCellAccessible(cells(), index));
        return QAccessible::accessibleInterface(id);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        for (std::size_t i = 0; i < ids_.size(); ++i)
            if (ids_[i] && QAccessible::accessibleInterface(ids_[i]) == child) return int(i);
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        return child(cells()->cellAt(cells()->mapFromGlobal(QPoint(x, y))));
    }
    QAccessibleInterface* focusChild() const override {
        return cells()->hasFocus() ? child(cells()->current()) : nullptr;
    }
    void* interface_cast(QAccessible::InterfaceType t) override {
        if (t == QAccessible::TableInterface) return static_cast<QAccessibleTableInterface*>(this);
        return QAccessibleWidget::interface_cast(t);
    }

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    QAccessibleInterface* cellAt(int row, int column) const override {
        if (row < 0 || row >= GridCells::kRows || column < 0 || column >= GridCells::kColumns)
            return nullptr;
        return child(row * GridCells::kColumns + column);
    }
    int selectedCellCount() const override { return 0; }
    QList<QAccessibleInterface*> selectedCells() const override { return {}; }
    QString columnDescription(int column) const override { return cells()->columnHeading(column); }
    int columnCount() const override { return GridCells::kColumns; }
    QString rowDescription(int row) const override { return cells()->rowHeading(row); }
    int rowCount() const override { return GridCells::kRows; }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent*) override {}

private:
    mutable std::vector<QAccessible::Id> ids_ = std::vector<QAccessible::Id>(GridCells::kCells);
};

QAccessibleInterface* editorAccessible(const QString&, QObject* object) {
    if (auto* c = qobject_cast<ValueControl*>(object)) return new ValueControlAccessible(c);
    if (auto* b = qobject_cast<ImageButton*>(object))
        return new PressableAccessible(b, b->objectName().startsWith(QLatin1String("TabButton"))
                                              ? QAccessible::PageTab
                                              : QAccessible::Button);
    if (auto* g = qobject_cast<GridCells*>(object)) return new GridAccessible(g);
    if (auto* label = qobject_cast<QLabel*>(object)) {
        if (auto* group =
                qobject_cast<cCheckRadio*>(label->property("optionGroup").value<QObject*>()))
            return new OptionItemAccessible(label, group);
        if (label->objectName().startsWith(QLatin1String("OnOff")) &&
            label->focusPolicy() != Qt::NoFocus)
            return new SwitchAccessible(label);
    }
    return nullptr;
}

} // namespace

void installEditorAccessibility() {
    static const bool installed = [] {
        QAccessible::installFactory(editorAccessible);
        return true;
    }();
    (void)installed;
}

} // namespace ferrule
