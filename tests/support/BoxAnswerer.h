#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <functional>

// Answers the message boxes a window shows, as they appear, and notes what each showed: the
// button `choose` picks is clicked; a box it picks none from is closed.
class BoxAnswerer {
public:
    using Choice = std::function<QAbstractButton*(QMessageBox&)>;

    explicit BoxAnswerer(Choice choose) {
        timer_.setInterval(5);
        QObject::connect(&timer_, &QTimer::timeout, [this, choose = std::move(choose)] {
            for (QWidget* w : QApplication::topLevelWidgets()) {
                auto* box = qobject_cast<QMessageBox*>(w);
                if (!box || !box->isVisible()) continue;
                names << box->objectName();
                titles << box->windowTitle();
                texts << box->text();
                icons << box->icon();
                buttons << box->standardButtons();
                if (QAbstractButton* b = choose(*box))
                    b->click();
                else
                    box->reject();
            }
        });
        timer_.start();
    }
    // Each box answered with its button `answer`, or closed when it has none.
    explicit BoxAnswerer(QMessageBox::StandardButton answer)
        : BoxAnswerer([answer](QMessageBox& box) { return box.button(answer); }) {}
    // Only the box named `name` answered, with the button whose text is `answer`.
    BoxAnswerer(const QString& name, const QString& answer)
        : BoxAnswerer([name, answer](QMessageBox& box) -> QAbstractButton* {
            for (QAbstractButton* b : box.buttons())
                if (box.objectName() == name && b->text() == answer) return b;
            return nullptr;
        }) {}

    void start() { timer_.start(); }
    void stop() { timer_.stop(); }
    qsizetype asked() const { return texts.size(); }

    QStringList names, titles, texts;
    QList<QMessageBox::Icon> icons;
    QList<QMessageBox::StandardButtons> buttons;

private:
    QTimer timer_;
};
