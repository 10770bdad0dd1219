#include "PageArea.h"

#include <QPainter>

namespace ferrule {

PageArea::PageArea(QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("PageArea"));
}

void PageArea::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), QColor(0xec, 0xee, 0xf1));
    p.setPen(QColor(0xb8, 0xbf, 0xc8));
    p.drawLine(0, 0, width(), 0);
}

} // namespace ferrule
