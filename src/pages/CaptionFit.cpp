#include "CaptionFit.h"

#include "ControlPools.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"

#include <QFontMetrics>
#include <QLabel>

#include <algorithm>
#include <vector>

namespace ferrule {
namespace {

bool shown(const QWidget* w) {
    return w && w->isVisibleTo(w->parentWidget());
}

// Where a label's text is drawn, in the page area.
QRect textRect(const QLabel* l) {
    const QFontMetrics m(l->font());
    const int width = m.horizontalAdvance(l->text());
    const QRect r = l->geometry();
    int left = r.left();
    if (l->alignment() & Qt::AlignHCenter)
        left = r.center().x() - width / 2;
    else if (l->alignment() & Qt::AlignRight)
        left = r.right() - width;
    return {left, r.top(), width, r.height()};
}

void setSpacing(QLabel* l, qreal spacing) {
    QFont f = l->font();
    if (f.letterSpacing() == spacing && f.letterSpacingType() == QFont::AbsoluteSpacing) return;
    f.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
    l->setFont(f);
    l->adjustSize();
}

} // namespace

void fitCaptions(ControlPools& pools) {
    std::vector<QLabel*> fitted; // titles and item labels, placed left-aligned by their group
    for (QLabel* l : pools.checkTitles)
        fitted.push_back(l);
    for (QLabel* l : pools.checkLabels)
        fitted.push_back(l);
    for (QLabel* l : pools.checkLabels10)
        fitted.push_back(l);
    std::vector<const QLabel*> others;
    for (const QLabel* l : pools.knobLabels)
        others.push_back(l);
    for (const QLabel* l : pools.sliderLabels)
        others.push_back(l);
    for (const QLabel* l : pools.onOffLabels)
        others.push_back(l);
    others.insert(others.end(), fitted.begin(), fitted.end());

    for (QLabel* l : fitted) {
        setSpacing(l, 0);
        if (!shown(l) || l->text().isEmpty()) continue;
        const QRect text = textRect(l);
        int limit = INT_MAX;
        for (const QWidget* box : pools.tabBoxes)
            if (shown(box) && box->geometry().contains(text.topLeft()))
                limit = std::min(limit, box->geometry().right() - 3);
        for (const QLabel* o : others) {
            if (o == l || !shown(o) || o->text().isEmpty()) continue;
            const QRect r = textRect(o);
            if (r.left() > text.left() && r.top() < text.bottom() && r.bottom() > text.top())
                limit = std::min(limit, r.left() - 4);
        }
        const int over = text.right() - limit;
        if (limit == INT_MAX || over <= 0) continue;
        // The gaps between letters take up the difference, at most a pixel each.
        const int gaps = std::max(1, int(l->text().size()) - 1);
        setSpacing(l, -std::min(1.0, (over + 0.5) / gaps));
    }

    std::vector<ValueControl*> values;
    for (RKnob* k : pools.knobs)
        values.push_back(k);
    for (VSlider* s : pools.sliders)
        values.push_back(s);
    auto box = [](const ValueControl* c) { return c->valueLabelRect().translated(c->pos()); };
    for (ValueControl* c : values) {
        int inset = 0;
        if (shown(c))
            for (const ValueControl* o : values)
                if (o != c && shown(o) && box(c).adjusted(-3, 0, 3, 0).intersects(box(o)))
                    inset = 1;
        c->setLabelInset(inset);
    }
}

} // namespace ferrule
