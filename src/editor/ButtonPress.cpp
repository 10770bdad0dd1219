#include "ButtonPress.h"

#include "ImageButton.h"

namespace ferrule {

void ButtonPress::attach(ImageButton* button) {
    QObject::connect(button, &ImageButton::mouseDown, button,
                     [this](int index, Qt::MouseButton, int, int) { down(index); });
    QObject::connect(button, &ImageButton::mouseMove, button,
                     [this, button](int, Qt::MouseButtons, int x, int y) { move(button, x, y); });
    QObject::connect(button, &ImageButton::mouseUp, button,
                     [this](int index, Qt::MouseButton, int, int) { up(index); });
    QObject::connect(button, &ImageButton::keyActivated, button, [this](int index) {
        down(index);
        up(index);
    });
}

void ButtonPress::down(int index) {
    if (!row_.mayPress(index)) return;
    row_.showPressed(index);
    pressed_ = true;
}

void ButtonPress::move(const ImageButton* button, int x, int y) {
    if (!pressed_) return;
    if (x >= 0 && y >= 0 && x <= button->widthTwips() && y <= button->heightTwips()) return;
    row_.showNormal(button->index());
    pressed_ = false;
}

void ButtonPress::up(int index) {
    if (!pressed_) return;
    pressed_ = false;
    row_.showNormal(index);
    row_.activate(index);
}

} // namespace ferrule
