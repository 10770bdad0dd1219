#include "GridCells.h"

#include <algorithm>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

namespace ferrule {

namespace {
const QColor kBorder(0xa9, 0xb4, 0xc0);
const QColor kHoverBorder(0x2f, 0x7b, 0xd8);
const QColor kText(0x1d, 0x22, 0x28);
} // namespace

GridCells::GridCells(QWidget* parent, QSize cellSize, int column, int row)
    : QWidget(parent)
    , cellSize_(cellSize)
    , column_(column)
    , row_(row) {
    setObjectName(QStringLiteral("GridCells"));
    QFont f = font();
    f.setPixelSize(9);
    setFont(f);
    setMouseTracking(true);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    resize((kColumns - 1) * column_ + cellSize_.width(), (kRows - 1) * row_ + cellSize_.height());
}

QRect GridCells::cellRect(int b) const {
    return {(b % kColumns) * column_, (b / kColumns) * row_, cellSize_.width(), cellSize_.height()};
}

int GridCells::cellAt(QPoint p) const {
    if (p.x() < 0 || p.y() < 0) return -1;
    const int b = (p.y() / row_) * kColumns + p.x() / column_;
    return b < kCells && cellRect(b).contains(p) ? b : -1;
}

void GridCells::setCurrent(int b) {
    current_ = std::clamp(b, 0, kCells - 1);
}

void GridCells::keyPressEvent(QKeyEvent* event) {
    const int column = current_ % kColumns;
    const int row = current_ / kColumns;
    switch (event->key()) {
    case Qt::Key_Left:
        if (column > 0) setCurrent(current_ - 1);
        break;
    case Qt::Key_Right:
        if (column < kColumns - 1) setCurrent(current_ + 1);
        break;
    case Qt::Key_Up:
        if (row > 0) setCurrent(current_ - kColumns);
        break;
    case Qt::Key_Down:
        if (row < kRows - 1) setCurrent(current_ + kColumns);
        break;
    case Qt::Key_Home:
        setCurrent(row * kColumns);
        break;
    case Qt::Key_End:
        setCurrent(row * kColumns + kColumns - 1);
        break;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit clicked(current_, mapToGlobal(cellRect(current_).bottomLeft()));
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

void GridCells::setText(int b, const QString& text) {
    QString& slot = texts_[std::size_t(b)];
    if (slot == text) return;
    slot = text;
    update(cellRect(b));
}

void GridCells::setHover(int b) {
    if (b == hover_) return;
    if (hover_ >= 0) update(cellRect(hover_));
    hover_ = b;
    if (hover_ >= 0) update(cellRect(hover_));
}

const QPixmap& GridCells::box(bool hovered) const {
    // A cell's box, drawn once at the screen's pixel ratio and blitted for every cell.
    QPixmap& pm = hovered ? hoverBox_ : box_;
    const qreal ratio = devicePixelRatioF();
    if (pm.isNull() || pm.devicePixelRatio() != ratio) {
        pm = QPixmap(cellSize_ * ratio);
        pm.setDevicePixelRatio(ratio);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(hovered ? kHoverBorder : kBorder, 1.0));
        p.setBrush(Qt::white);
        p.drawRoundedRect(QRectF(QPointF(0, 0), QSizeF(cellSize_)).adjusted(0.5, 0.5, -0.5, -0.5),
                          2, 2);
    }
    return pm;
}

const QFont& GridCells::tightFont() const {
    if (tightFont_.pixelSize() != font().pixelSize() || tightFont_.family() != font().family()) {
        tightFont_ = font();
        tightFont_.setLetterSpacing(QFont::AbsoluteSpacing, -0.6);
    }
    return tightFont_;
}

void GridCells::paintEvent(QPaintEvent* event) {
    QPainter p(this);
    p.setFont(font());
    p.setPen(kText);
    for (int b = 0; b < kCells; ++b) {
        const QRect r = cellRect(b);
        if (!event->region().intersects(r)) continue;
        p.drawPixmap(r.topLeft(), box(b == hover_));
        const QString& text = texts_[std::size_t(b)];
        // The longest notes ("-Db vv") are set closer so that they stay inside their box.
        const bool tight = p.fontMetrics().horizontalAdvance(text) > r.width() - 3;
        if (tight) p.setFont(tightFont());
        p.drawText(r, Qt::AlignCenter, text);
        if (tight) p.setFont(font());
    }
}

void GridCells::mouseMoveEvent(QMouseEvent* event) {
    setHover(cellAt(event->position().toPoint()));
}

void GridCells::leaveEvent(QEvent*) {
    setHover(-1);
}

void GridCells::mousePressEvent(QMouseEvent* event) {
    const int b = cellAt(event->position().toPoint());
    if (b < 0 || event->button() != Qt::LeftButton) return;
    current_ = b;
    emit clicked(b, event->globalPosition().toPoint());
}

} // namespace ferrule
