#pragma once

#include <QFont>
#include <QLabel>

namespace ferrule {

// A caption label of the page area, hidden until a page places it.
inline QLabel* makeCaptionLabel(QWidget* parent, const QString& name, int pixelSize, bool bold) {
    auto* l = new QLabel(parent);
    l->setObjectName(name);
    QFont f = l->font();
    f.setPixelSize(pixelSize);
    f.setBold(bold);
    l->setFont(f);
    l->hide();
    return l;
}

} // namespace ferrule
