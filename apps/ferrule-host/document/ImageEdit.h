#pragma once

#include <QByteArray>
#include <QUndoCommand>

#include <functional>
#include <vector>

namespace ferrule {

struct Parameter;

// One undoable change of the document's image: the bytes it changed, before and after. Undo and
// redo hand the image with one or the other to `apply`, over the image `current` gives then.
class ImageEdit : public QUndoCommand {
public:
    using Current = std::function<QByteArray()>;
    using Apply = std::function<void(const QByteArray& image, const QString& what)>;

    ImageEdit(const QString& text, const QByteArray& before, const QByteArray& after,
              Current current, Apply apply);

    // How many bytes the step changes.
    int size() const { return int(changes_.size()); }

    void undo() override;
    void redo() override;

private:
    struct Change {
        int index;
        char before, after;
    };
    void put(bool after, const QString& what);

    std::vector<Change> changes_;
    bool done_ = false; // redone once: the push
    Current current_;
    Apply apply_;
};

// `image` with the given parameters' values taken from `other`.
QByteArray takeValues(const QByteArray& image, const QByteArray& other,
                      const std::vector<const Parameter*>& parameters);

} // namespace ferrule
