#pragma once

#include <functional>

namespace ferrule {

class ImageButton;

// The press of one row of picture buttons, as the window's mode, tab and command rows share it.
// A press the row allows shows the pressed picture; moving off the button before the release
// restores the normal picture and drops the press; a release on the pressed button restores the
// normal picture and carries out the button's action.
class ButtonPress {
public:
    struct Row {
        std::function<bool(int)> mayPress;
        std::function<void(int)> showPressed;
        std::function<void(int)> showNormal;
        std::function<void(int)> activate;
    };

    explicit ButtonPress(Row row)
        : row_(std::move(row)) {}

    // Wires a button's mouse reports to this row.
    void attach(ImageButton* button);

    void down(int index);
    // The pointer at (x, y) twips in the button's own coordinates.
    void move(const ImageButton* button, int x, int y);
    void up(int index);
    bool pressed() const { return pressed_; }

private:
    Row row_;
    bool pressed_ = false;
};

} // namespace ferrule
