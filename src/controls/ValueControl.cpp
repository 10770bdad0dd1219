#include "ValueControl.h"

#include "HostFont.h"
#include "Twips.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWhatsThis>

#include <exception>

namespace ferrule {

ValueControl::ValueControl(int poolIndex, QWidget* parent)
    : QWidget(parent)
    , poolIndex_(poolIndex) {
    setProperty("ferruleOwnFont", true);
    QFont f = font();
    f.setPixelSize(11);
    setFont(f);
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

void ValueControl::paintValueLabel(QPainter& p) const {
    p.fillRect(labelRect_, Qt::white);
    p.setPen(Qt::black);
    p.setFont(font());
    p.drawText(labelRect_, Qt::AlignCenter, text_);
}

bool ValueControl::pressOnLabel(const QMouseEvent* e) {
    if (!labelRect_.contains(e->position().toPoint())) return false;
    const Qt::MouseButton button = e->button();
    guarded([this, button] { labelPressed(button); });
    return true;
}

void ValueControl::guarded(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& e) {
        emit failed(QString::fromStdString(e.what()));
    }
}

void ValueControl::mouseReleaseEvent(QMouseEvent* e) {
    if (e->button() == Qt::LeftButton)
        dragging_ = false;
    else
        showHelp(e->globalPosition().toPoint());
}

void ValueControl::focusOutEvent(QFocusEvent* e) {
    dragging_ = false;
    QWidget::focusOutEvent(e);
}

} // namespace ferrule
