#include "FocusRing.h"

#include <QEvent>
#include <QFocusEvent>
#include <QPainter>
#include <QTimer>

namespace ferrule {

FocusRing::FocusRing(QWidget* window)
    : QWidget(window) {
    setObjectName(QStringLiteral("FocusRing"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    hide();
}

void FocusRing::watch(QWidget* w) {
    w->installEventFilter(this);
}

void FocusRing::follow() {
    // The window's focus widget has the focus, or gets it the moment the window is activated
    // (a window that opens shows where it will be).
    if (!target_ || !keyboard_ || !target_->isVisible() ||
        target_->window()->focusWidget() != target_) {
        hide();
        return;
    }
    const QVariant named = target_->property("focusRect");
    const QRect inside = named.isValid() ? named.toRect() : target_->rect();
    const QPoint topLeft = target_->mapTo(parentWidget(), inside.topLeft());
    setGeometry(QRect(topLeft, inside.size()).adjusted(-3, -3, 3, 3));
    raise();
    show();
    update();
}

void FocusRing::showForKeyboard(QWidget* target) {
    keyboard_ = true;
    target_ = target;
    follow();
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
    auto* w = static_cast<QWidget*>(watched);
    switch (event->type()) {
    case QEvent::FocusIn: {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
            reason == Qt::ShortcutFocusReason)
            keyboard_ = true;
        target_ = w;
        follow();
        break;
    }
    case QEvent::FocusOut:
    case QEvent::Hide:
        if (w == target_) hide();
        break;
    case QEvent::KeyPress:
        keyboard_ = true;
        // After the key has done its work: the target may have moved its focus rectangle.
        QTimer::singleShot(0, this, &FocusRing::follow);
        break;
    case QEvent::MouseButtonPress:
        keyboard_ = false;
        hide();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (w == target_ && isVisible()) follow();
        break;
    default:
        break;
    }
    return false;
}

void FocusRing::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(0xf2, 0xa3, 0x3a), 1.5));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 3, 3);
}

} // namespace ferrule
