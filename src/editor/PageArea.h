#pragma once

#include <QWidget>

namespace ferrule {

// The part of the editor window that holds the page's pooled controls. Positions inside it are
// the page positions in twips.
class PageArea : public QWidget {
    Q_OBJECT
public:
    explicit PageArea(QWidget* parent);

protected:
    void paintEvent(QPaintEvent*) override;
};

} // namespace ferrule
