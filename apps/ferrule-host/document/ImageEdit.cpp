#include "ImageEdit.h"

#include "catalogue/ParameterIndex.h"

namespace ferrule {

ImageEdit::ImageEdit(const QString& text, const QByteArray& before, const QByteArray& after,
                     Current current, Apply apply)
    : QUndoCommand(text)
    , current_(std::move(current))
    , apply_(std::move(apply)) {
    for (int i = 0; i < before.size() && i < after.size(); ++i)
        if (before[i] != after[i]) changes_.push_back({i, before[i], after[i]});
}

void ImageEdit::put(bool after, const QString& what) {
    QByteArray image = current_();
    for (const Change& c : changes_)
        image[c.index] = after ? c.after : c.before;
    apply_(image, what);
}

void ImageEdit::undo() {
    put(false, QStringLiteral("undid %1").arg(text()));
}

void ImageEdit::redo() {
    put(true, done_ ? QStringLiteral("redid %1").arg(text()) : text());
    done_ = true;
}

QByteArray takeValues(const QByteArray& image, const QByteArray& other,
                      const std::vector<const Parameter*>& parameters) {
    QByteArray result = image;
    const ImageBytes from(reinterpret_cast<const std::uint8_t*>(other.constData()),
                          std::size_t(other.size()));
    const std::span<std::uint8_t> to(reinterpret_cast<std::uint8_t*>(result.data()),
                                     std::size_t(result.size()));
    for (const Parameter* p : parameters)
        p->store(to, p->value(from));
    return result;
}

} // namespace ferrule
