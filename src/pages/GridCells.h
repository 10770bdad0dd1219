#pragma once

#include <QPixmap>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <array>

namespace ferrule {

// The 192 cells of the scale and phrase grid as one widget that paints them all: each a white
// box with a thin border and its note text, the one under the mouse with a blue border. A left
// click reports the cell, and so do Space and Enter on the current cell. One widget, so that
// showing a grid page is one paint, not 192.
class GridCells : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int current READ current WRITE setCurrent)
    Q_PROPERTY(QRect focusRect READ focusRect)
public:
    static constexpr int kColumns = 16;
    static constexpr int kRows = 12;
    static constexpr int kCells = kColumns * kRows;

    // Cells of `cellSize` pixels, `column` and `row` pixels apart.
    GridCells(QWidget* parent, QSize cellSize, int column, int row);

    void setText(int b, const QString& text);
    const QString& text(int b) const { return texts_[std::size_t(b)]; }
    // A cell's box in this widget, and the cell at a point (-1 between or outside the cells).
    QRect cellRect(int b) const;
    int cellAt(QPoint p) const;
    // The row and column headings the grid shows, for screen readers.
    void setHeadings(const QStringList& rows, const QStringList& columns) {
        rowHeadings_ = rows;
        columnHeadings_ = columns;
    }
    QString rowHeading(int row) const { return rowHeadings_.value(row); }
    QString columnHeading(int column) const { return columnHeadings_.value(column); }
    // The cell the keyboard is on: arrows move it, Space or Enter open its menu.
    int current() const { return current_; }
    void setCurrent(int b);
    QRect focusRect() const { return cellRect(current_); }

signals:
    void clicked(int b, const QPoint& globalPos);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setHover(int b);
    const QPixmap& box(bool hovered) const;
    const QFont& tightFont() const;

    QSize cellSize_;
    int column_;
    int row_;
    int hover_ = -1;
    int current_ = 0;
    QStringList rowHeadings_, columnHeadings_;
    std::array<QString, kCells> texts_;
    mutable QPixmap box_, hoverBox_;
    mutable QFont tightFont_;
};

} // namespace ferrule
