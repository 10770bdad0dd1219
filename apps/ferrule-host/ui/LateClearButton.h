#pragma once

#include <QEvent>
#include <QLineEdit>
#include <QTimer>

namespace ferrule {

// Gives a line edit its clear button once the box has first been painted. Looking up the
// button's icon in the desktop's icon theme costs more than the rest of the main window's
// start; done after the first paint, the window reaches the screen first. The button shows only
// when there is text, so nobody sees the difference.
class LateClearButton : public QObject {
public:
    static void install(QLineEdit* box) { box->installEventFilter(new LateClearButton(box)); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            QTimer::singleShot(0, this, [this] {
                static_cast<QLineEdit*>(parent())->setClearButtonEnabled(true);
                deleteLater();
            });
        }
        return false;
    }

private:
    explicit LateClearButton(QLineEdit* box)
        : QObject(box) {}
};

} // namespace ferrule
