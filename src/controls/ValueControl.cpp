#include "ValueControl.h"

#include "HostFont.h"
#include "Twips.h"
#include "sysdata/FerruleError.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStaticText>
#include <QWhatsThis>
#include <QWheelEvent>

#include <algorithm>

namespace ferrule {

ValueControl::ValueControl(int poolIndex, QWidget* parent)
    : QWidget(parent)
    , poolIndex_(poolIndex) {
    setProperty("ferruleOwnFont", true);
    QFont f = font();
    f.setPixelSize(11);
    setFont(f);
    setFocusPolicy(Qt::StrongFocus);
}

void ValueControl::applyHostFont(const HostFontSettings& font) {
    ApplyHostFontToControl(this, font);
}

QString ValueControl::valueText() const {
    return text_;
}

void ValueControl::rewriteLabel() {
    QString text = source_ ? source_(value_, format_, type_) : QString::number(value_);
    if (text == text_) return; // the label looks the same: nothing to paint
    text_ = std::move(text);
    update(labelRect_);
}

void ValueControl::storeValue(int v) {
    value_ = v;
    rewriteLabel();
}

void ValueControl::setMax(int m) {
    max_ = m;
    if (value_ > m) storeValue(m);
    rangeChanged();
}

void ValueControl::setOff(bool off) {
    off_ = off;
    // Off changes the whole look (the knob's dot, the slider's thumb), not only the label.
    update();
    if (off)
        text_ = QStringLiteral("off");
    else
        rewriteLabel();
}

void ValueControl::CommitValue(int v) {
    if (v == value_) return;
    setValue(v);
    emit Change(value_);
}

void ValueControl::setValueFromUser(int v) {
    if (!acceptsInput() || dragging_) return;
    const int target = std::clamp(v, minimum(), std::max(minimum(), max_));
    const bool open = gestureOpen_;
    startGesture();
    guarded([this, target] { CommitValue(target); });
    if (!open) finishGesture();
}

void ValueControl::labelPressed(Qt::MouseButton button) {
    if (!acceptsInput()) return;
    if (button == Qt::LeftButton) {
        if (value_ > minimum()) CommitValue(value_ - 1);
    } else if (value_ < max_) {
        CommitValue(value_ + 1);
    }
}

QString ValueControl::helpText() const {
    const QString name = caption_.isEmpty() ? objectName() : caption_;
    return QStringLiteral("<b>%1</b><br>%2").arg(name.toHtmlEscaped(), valueText().toHtmlEscaped());
}

void ValueControl::showHelp(const QPoint& globalPos) {
    QWhatsThis::showText(globalPos, helpText(), this);
}

void ValueControl::setLabelGeometry(int left, int width, int top) {
    update(labelRect_);
    labelRect_ = QRect(twipsToPx(left), twipsToPx(top), twipsToPx(width), twipsToPx(240));
    update(labelRect_);
}

void ValueControl::setLabelInset(int pixels) {
    if (pixels == labelInset_) return;
    labelInset_ = pixels;
    update(labelRect_);
}

void ValueControl::paintValueLabel(QPainter& p) const {
    const QRect box = labelRect_.adjusted(labelInset_, 0, -labelInset_, 0);
    p.fillRect(box, Qt::white);
    p.setPen(Qt::black);
    p.setFont(font());
    // The texts met so far are kept laid out: a drag goes back and forth over the same values.
    if (staticFont_ != font()) {
        staticTexts_.clear();
        staticFont_ = font();
    }
    auto it = staticTexts_.constFind(text_);
    if (it == staticTexts_.cend()) {
        if (staticTexts_.size() >= 512) staticTexts_.clear();
        QStaticText laidOut(text_);
        laidOut.setTextFormat(Qt::PlainText);
        laidOut.prepare(QTransform(), staticFont_);
        it = staticTexts_.insert(text_, laidOut);
    }
    const QSizeF size = it->size();
    p.drawStaticText(QPointF(box.x() + (box.width() - size.width()) / 2,
                             box.y() + (box.height() - size.height()) / 2),
                     *it);
}

bool ValueControl::pressOnLabel(const QMouseEvent* e) {
    // Every press starts a gesture; its release finishes it.
    startGesture();
    pressedOnLabel_ = labelRect_.contains(e->position().toPoint());
    if (!pressedOnLabel_) return false;
    const Qt::MouseButton button = e->button();
    guarded([this, button] { labelPressed(button); });
    return true;
}

void ValueControl::guarded(const std::function<void()>& action) {
    ReportErrors(action, [this](const QString& m) { emit failed(m); });
}

void ValueControl::mouseReleaseEvent(QMouseEvent* e) {
    if (e->button() == Qt::LeftButton)
        dragging_ = false;
    else if (!pressedOnLabel_)
        showHelp(e->globalPosition().toPoint());
    if (e->buttons() == Qt::NoButton) pressedOnLabel_ = false;
    finishGesture();
}

void ValueControl::mouseDoubleClickEvent(QMouseEvent* e) {
    e->accept();
}

void ValueControl::focusOutEvent(QFocusEvent* e) {
    dragging_ = false;
    finishGesture();
    QWidget::focusOutEvent(e);
}

void ValueControl::hideEvent(QHideEvent* e) {
    dragging_ = false;
    finishGesture();
    QWidget::hideEvent(e);
}

void ValueControl::startGesture() {
    if (gestureOpen_) return;
    gestureOpen_ = true;
    emit gestureStarted();
}

void ValueControl::finishGesture() {
    wheelBurst_.stop();
    wheelRemainder_ = 0;
    if (!gestureOpen_) return;
    gestureOpen_ = false;
    emit gestureFinished();
}

int ValueControl::pageStep() const {
    return std::max(1, (max_ - minimum()) / 10);
}

int ValueControl::stepped(int delta) const {
    // As the value label's clicks do: up only from below Max, down only from above the minimum,
    // and never past either; a value outside the range moves from where it is.
    if (delta > 0) return value_ < max_ ? std::min(value_ + delta, max_) : value_;
    if (delta < 0) return value_ > minimum() ? std::max(value_ + delta, minimum()) : value_;
    return value_;
}

std::optional<int> ValueControl::valueForKey(int key) const {
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Right:
        return stepped(1);
    case Qt::Key_Down:
    case Qt::Key_Left:
        return stepped(-1);
    case Qt::Key_PageUp:
        return stepped(pageStep());
    case Qt::Key_PageDown:
        return stepped(-pageStep());
    case Qt::Key_Home:
        return minimum();
    case Qt::Key_End:
        return std::max(minimum(), max_);
    default:
        return std::nullopt;
    }
}

void ValueControl::keyPressEvent(QKeyEvent* e) {
    // Help without a click on the label (whose right button also steps the value).
    if (e->key() == Qt::Key_Menu ||
        (e->key() == Qt::Key_F1 && e->modifiers() == Qt::ShiftModifier)) {
        showHelp(mapToGlobal(labelRect_.center()));
        e->accept();
        return;
    }
    const std::optional<int> v = valueForKey(e->key());
    if (!v || e->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        QWidget::keyPressEvent(e);
        return;
    }
    e->accept();
    if (!acceptsInput() || dragging_) return;
    startGesture();
    guarded([this, v] { CommitValue(*v); });
    // A key held down repeats within one gesture; its release finishes it.
}

void ValueControl::keyReleaseEvent(QKeyEvent* e) {
    if (!e->isAutoRepeat() && valueForKey(e->key())) finishGesture();
    QWidget::keyReleaseEvent(e);
}

void ValueControl::wheelEvent(QWheelEvent* e) {
    e->accept();
    if (!acceptsInput() || dragging_) return;
    const QPoint angle = e->angleDelta();
    // Some platforms turn a vertical wheel with Shift into a horizontal one.
    const int delta = angle.y() != 0 ? angle.y() : angle.x();
    if (e->inverted())
        wheelRemainder_ -= delta;
    else
        wheelRemainder_ += delta;
    // 120 units are one notch; finer wheels and touchpads send parts of one and add up.
    const int notches = wheelRemainder_ / 120;
    wheelRemainder_ -= notches * 120;
    startGesture();
    wheelBurst_.start(400, this);
    if (notches == 0) return;
    const int step = (e->modifiers() & Qt::ShiftModifier) ? pageStep() : 1;
    const int target = stepped(notches * step);
    guarded([this, target] { CommitValue(target); });
}

void ValueControl::timerEvent(QTimerEvent* e) {
    if (e->timerId() == wheelBurst_.timerId()) {
        // The wheel rested: the burst of notches is one edit.
        finishGesture();
        return;
    }
    QWidget::timerEvent(e);
}

} // namespace ferrule
