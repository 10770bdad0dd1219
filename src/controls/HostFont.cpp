#include "HostFont.h"

#include <QAbstractButton>
#include <QFont>
#include <QLabel>
#include <QWidget>

namespace ferrule {
namespace {

// Qt chooses fonts by family and script, so the character-set number has no field of its own
// here; the face name carries it. The bold flag is never applied.
void applyFields(QWidget* target, const HostFontSettings& font, bool withSize) {
    QFont f = target->font();
    if (!font.name.isEmpty()) f.setFamilies({font.name});
    f.setItalic(font.italic);
    if (withSize && font.size > 0.0F) f.setPointSizeF(font.size);
    f.setUnderline(font.underline);
    f.setStrikeOut(font.strikethrough);
    target->setFont(f);
}

bool isLabelOrButton(const QWidget* w) {
    return qobject_cast<const QLabel*>(w) != nullptr ||
           qobject_cast<const QAbstractButton*>(w) != nullptr ||
           w->property("ferruleCommandButton").toBool();
}

// The labels and buttons below `parent`, except inside knobs and sliders, which apply their own
// font when they are created.
void applyToLabelsAndButtons(const QWidget* parent, const HostFontSettings& font) {
    for (QObject* o : parent->children()) {
        auto* child = qobject_cast<QWidget*>(o);
        if (!child || child->property("ferruleOwnFont").toBool()) continue;
        if (isLabelOrButton(child)) applyFields(child, font, false);
        applyToLabelsAndButtons(child, font);
    }
}

} // namespace

void ApplyHostFont(QWidget* window, const HostFontSettings& font) {
    if (!window || !font.valid) return;
    applyFields(window, font, false);
    applyToLabelsAndButtons(window, font);
}

void ApplyHostFontToControl(QWidget* control, const HostFontSettings& font) {
    if (!control || !font.valid) return;
    applyFields(control, font, true);
    const auto labels = control->findChildren<QLabel*>();
    for (QLabel* label : labels)
        applyFields(label, font, true);
}

} // namespace ferrule
