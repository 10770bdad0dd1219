#include "EditHistory.h"

#include <QUndoStack>

#include <vector>

namespace ferrule {
namespace {

// One gesture's bytes, as they were and as they became.
class ImageEdit : public QUndoCommand {
public:
    ImageEdit(SystemImage& image, std::vector<ByteWrite> before, std::vector<ByteWrite> after)
        : image_(image)
        , before_(std::move(before))
        , after_(std::move(after)) {
        setText(QStringLiteral("Edit"));
    }

    void undo() override { image_.apply(before_); }
    void redo() override {
        // The edit is in the image already when it is pushed.
        if (pushed_) image_.apply(after_);
        pushed_ = true;
    }

private:
    SystemImage& image_;
    std::vector<ByteWrite> before_;
    std::vector<ByteWrite> after_;
    bool pushed_ = false;
};

} // namespace

EditHistory::EditHistory(SystemImage& image, QObject* parent)
    : QObject(parent)
    , image_(image)
    , stack_(new QUndoStack(this)) {
    stack_->setUndoLimit(1000);
}

void EditHistory::begin() {
    if (depth_++ == 0 && recording_) before_ = image_.bytes();
}

void EditHistory::end() {
    if (depth_ == 0 || --depth_ > 0 || !recording_) return;
    const auto& now = image_.bytes();
    std::vector<ByteWrite> before;
    std::vector<ByteWrite> after;
    for (int i = 0; i < SystemImage::kSize; ++i) {
        const auto at = std::size_t(i);
        if (before_[at] == now[at]) continue;
        before.push_back({i, before_[at]});
        after.push_back({i, now[at]});
    }
    if (before.empty()) return;
    stack_->push(new ImageEdit(image_, std::move(before), std::move(after)));
    emit committed();
}

void EditHistory::undo() {
    if (inGesture() || !stack_->canUndo()) return;
    stack_->undo();
    emit committed();
}

void EditHistory::redo() {
    if (inGesture() || !stack_->canRedo()) return;
    stack_->redo();
    emit committed();
}

void EditHistory::clear() {
    stack_->clear();
}

int EditHistory::steps() const {
    return stack_->count();
}

int EditHistory::position() const {
    return stack_->index();
}

} // namespace ferrule
