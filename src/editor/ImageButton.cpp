#include "ImageButton.h"

#include "controls/Twips.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace ferrule {

ImageButton::ImageButton(int index, QWidget* parent)
    : QWidget(parent)
    , index_(index) {
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
}

void ImageButton::keyPressEvent(QKeyEvent* e) {
    const int key = e->key();
    if (e->modifiers() == Qt::NoModifier &&
        (key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter)) {
        emit keyActivated(index_);
        return;
    }
    if (e->modifiers() == Qt::NoModifier || e->modifiers() == Qt::KeypadModifier) {
        if (key == Qt::Key_Left || key == Qt::Key_Up) {
            emit keyStep(index_, -1);
            return;
        }
        if (key == Qt::Key_Right || key == Qt::Key_Down) {
            emit keyStep(index_, 1);
            return;
        }
    }
    QWidget::keyPressEvent(e);
}

void ImageButton::setPicture(QSize size, Picture picture, const QString& name) {
    picture_ = std::move(picture);
    pictureName_ = name;
    resize(size);
    update();
}

int ImageButton::widthTwips() const {
    return pxToTwips(width());
}
int ImageButton::heightTwips() const {
    return pxToTwips(height());
}

void ImageButton::paintEvent(QPaintEvent*) {
    if (!picture_) return;
    QPainter p(this);
    p.drawPixmap(0, 0, picture_());
}

void ImageButton::mousePressEvent(QMouseEvent* e) {
    emit mouseDown(index_, e->button(), pxToTwips(e->position().x()), pxToTwips(e->position().y()));
}

void ImageButton::mouseMoveEvent(QMouseEvent* e) {
    emit mouseMove(index_, e->buttons(), pxToTwips(e->position().x()),
                   pxToTwips(e->position().y()));
}

void ImageButton::mouseDoubleClickEvent(QMouseEvent* e) {
    // Qt's default would report it as a press; the row would arm again and act on its release.
    e->accept();
}

void ImageButton::mouseReleaseEvent(QMouseEvent* e) {
    emit mouseUp(index_, e->button(), pxToTwips(e->position().x()), pxToTwips(e->position().y()));
}

} // namespace ferrule
