#pragma once

#include "sysdata/SystemImage.h"

#include <QObject>

#include <array>
#include <cstdint>

class QUndoStack;

namespace ferrule {

// The editor's undo history: the image's edits, one step per user gesture. A gesture runs from
// its first begin() to the matching end() (a knob drag, a wheel burst, a key press, a menu
// choice, a fill-in); what it changed in the image becomes one step. Undo and redo write the
// bytes back through the image, whose change notice refreshes what the window shows.
class EditHistory : public QObject {
    Q_OBJECT
    Q_PROPERTY(int steps READ steps)
    Q_PROPERTY(int position READ position)
public:
    EditHistory(SystemImage& image, QObject* parent);

    void begin();
    void end();
    // A scope that is one edit, or part of the gesture around it.
    class Scope {
    public:
        explicit Scope(EditHistory& history)
            : history_(history) {
            history_.begin();
        }
        ~Scope() { history_.end(); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        EditHistory& history_;
    };
    bool inGesture() const { return depth_ > 0; }
    // Whether gestures are recorded as steps (on by default). Off, gestures are still tracked,
    // so that the window tells a control's own edits from others, but nothing is kept.
    void setRecording(bool on) { recording_ = on; }

    // Undo and redo do nothing while a gesture is open.
    void undo();
    void redo();
    void clear();

    int steps() const;
    int position() const;
    QUndoStack* stack() const { return stack_; }

signals:
    // A gesture changed the image, or an undo or a redo did: the image is settled again.
    void committed();

private:
    SystemImage& image_;
    QUndoStack* stack_;
    int depth_ = 0;
    bool recording_ = true;
    std::array<std::uint8_t, SystemImage::kSize> before_{};
};

} // namespace ferrule
