#include "cCheckRadio.h"

#include "ControlArt.h"
#include "Twips.h"

#include <QLabel>

#include <cmath>

namespace ferrule {

cCheckRadio::cCheckRadio(QObject* parent)
    : QObject(parent) {}

void cCheckRadio::SetMyImages(const QVector<QLabel*>& glyphs) {
    glyphs_.clear();
    for (QLabel* g : glyphs) {
        // A glyph knows its group and item, for the keyboard and for screen readers.
        g->setProperty("optionGroup", QVariant::fromValue(static_cast<QObject*>(this)));
        g->setProperty("optionItem", int(glyphs_.size()));
        glyphs_.push_back(g);
    }
}

void cCheckRadio::SetMyTexts(const QVector<QLabel*>& labels) {
    labels_.clear();
    for (QLabel* l : labels)
        labels_.push_back(l);
}

QLabel* cCheckRadio::glyph(int i) const {
    return i >= 0 && i < glyphs_.size() ? glyphs_[i].data() : nullptr;
}
QLabel* cCheckRadio::label(int i) const {
    return i >= 0 && i < labels_.size() ? labels_[i].data() : nullptr;
}
QLabel* cCheckRadio::titleLabel() const {
    return hasTitle() ? labels_.last().data() : nullptr;
}

int cCheckRadio::glyphPicture(const QLabel* glyph) {
    return glyph ? glyph->property("checkImage").toInt() : -1;
}

QString cCheckRadio::title() const {
    const QLabel* t = titleLabel();
    return t ? t->text() : QString();
}

QStringList cCheckRadio::captions() const {
    QStringList out;
    for (int i = 0; i <= lastIndex_; ++i)
        out << (label(i) ? label(i)->text() : QString());
    return out;
}

void cCheckRadio::SetStyle(int count, int horizontalStep, double verticalStep) {
    const bool wasVisible = glyph(0) && !glyph(0)->isHidden();
    setVisible(false);
    lastIndex_ = count - 1;
    horizontalStep_ = horizontalStep;
    verticalStep_ = int(std::lround(verticalStep));
    setVisible(wasVisible);
}

void cCheckRadio::setTop(int y) {
    if (lastIndex_ < 0) return;
    top_ = y;
    int t = y;
    if (hasTitle()) {
        if (QLabel* title = titleLabel()) title->move(title->x(), twipsToPx(y));
        t = y + (verticalStep_ != 0 ? verticalStep_ : 240) + 30;
    }
    for (int i = lastIndex_; i >= 0; --i) {
        if (QLabel* g = glyph(i)) g->move(g->x(), twipsToPx(t));
        if (QLabel* l = label(i)) l->move(l->x(), twipsToPx(t));
        t += verticalStep_;
    }
}

void cCheckRadio::setLeft(int x) {
    if (lastIndex_ < 0) return;
    left_ = x;
    if (QLabel* title = titleLabel()) title->move(twipsToPx(x), title->y());
    int xi = x;
    for (int i = 0; i <= lastIndex_; ++i) {
        if (QLabel* g = glyph(i)) g->move(twipsToPx(xi), g->y());
        if (QLabel* l = label(i)) l->move(twipsToPx(xi + 240), l->y());
        xi += horizontalStep_;
    }
}

void cCheckRadio::setVisible(bool visible) {
    if (lastIndex_ < 0) return;
    visible_ = visible;
    if (!visible) {
        for (int i = 0; i < glyphs_.size(); ++i) {
            if (QLabel* g = glyph(i)) g->hide();
            if (QLabel* l = label(i)) l->hide();
        }
    } else {
        for (int i = 0; i <= lastIndex_; ++i) {
            if (QLabel* g = glyph(i)) g->show();
            if (QLabel* l = label(i)) {
                l->adjustSize();
                l->show();
            }
        }
    }
    if (labels_.size() > glyphs_.size())
        if (QLabel* title = labels_.last().data()) {
            title->adjustSize();
            title->setVisible(visible);
        }
}

void cCheckRadio::showPicture(int item, int checkImage) {
    if (QLabel* g = glyph(item)) {
        g->setPixmap(ControlArt::checkImage(checkImage, g->devicePixelRatioF()));
        g->setProperty("checkImage", checkImage);
    }
}

void cCheckRadio::redraw() {
    for (int i = 0; i <= lastIndex_; ++i)
        showPicture(i, i == selected_ ? (enabled_ ? 1 : 2) : 0);
}

void cCheckRadio::setEnabled(bool enabled) {
    enabled_ = enabled;
    redraw();
}

void cCheckRadio::SetTextEx(const QStringList& texts, int offset) {
    for (int i = 0; i < labels_.size(); ++i) {
        const int at = offset + i;
        if (at >= texts.size()) break;
        if (QLabel* l = label(i)) {
            l->setText(texts[at]);
            l->adjustSize();
        }
    }
    if (labels_.size() > glyphs_.size() && !texts.isEmpty())
        if (QLabel* title = labels_.last().data()) {
            title->setText(texts.last());
            title->adjustSize();
        }
}

int cCheckRadio::Selected() const {
    return lastIndex_ < 1 ? selected_ + 1 : selected_;
}

void cCheckRadio::setSelected(int value) {
    if (lastIndex_ == 0)
        selected_ = value != 0 ? 0 : -1;
    else
        selected_ = std::min(value, lastIndex_);
    redraw();
}

void cCheckRadio::ClickOn(int index) {
    if (!enabled_ || index > lastIndex_) return;
    if (lastIndex_ < 1) {
        setSelected(-selected_);
        emit Click(selected_ + 1);
        return;
    }
    const int target = index == -1 ? hover_ : index;
    if (target < 0 || target == selected_) return;
    setSelected(target);
    emit Click(selected_);
}

void cCheckRadio::setMouseOver(int item) {
    if (!enabled_) return;
    if (item == -1) {
        if (hover_ != -1) {
            showPicture(hover_, hover_ == selected_ ? 1 : 0);
            hover_ = -1;
        }
    } else if (item >= 0 && item <= lastIndex_) {
        hover_ = item;
        showPicture(item, item == selected_ ? 5 : 4);
    }
}

void cCheckRadio::MouseDown() {
    if (!enabled_ || hover_ == -1) return;
    showPicture(hover_, hover_ == selected_ ? 9 : 8);
}

} // namespace ferrule
