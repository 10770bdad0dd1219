#pragma once

#include <QEvent>
#include <QObject>

// Counts the paint events of the objects it is installed on, so a benchmark can show that it
// measured painting and how much of it.
class PaintCounter : public QObject {
public:
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::Paint) ++paints;
        return false;
    }
};
