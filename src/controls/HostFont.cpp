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

} // namespace

void ApplyHostFont(QWidget* window, const HostFontSettings& font) {
    if (!window || !font.valid) return;
    applyFields(window, font, false);
    const auto children = window->findChildren<QWidget*>();
    for (QWidget* child : children) {
        // Knobs and sliders apply their own font when they are created.
        if (child->property("ferruleOwnFont").toBool()) continue;
        QWidget* parent = child->parentWidget();
        bool insideControl = false;
        for (; parent && parent != window; parent = parent->parentWidget())
            insideControl = insideControl || parent->property("ferruleOwnFont").toBool();
        if (!insideControl && isLabelOrButton(child)) applyFields(child, font, false);
    }
}

void ApplyHostFontToControl(QWidget* control, const HostFontSettings& font) {
    if (!control || !font.valid) return;
    applyFields(control, font, true);
    const auto labels = control->findChildren<QLabel*>();
    for (QLabel* label : labels)
        applyFields(label, font, true);
}

} // namespace ferrule
