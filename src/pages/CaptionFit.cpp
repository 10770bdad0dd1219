#include "CaptionFit.h"

#include "ControlPools.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"

#include <QFontMetrics>
#include <QHash>
#include <QLabel>

#include <algorithm>
#include <vector>

namespace ferrule {
namespace {

bool shown(const QLabel* l) {
    return l && !l->isHidden() && !l->text().isEmpty();
}

// The width of a text in a font without letter spacing; the pages show the same few hundred
// captions again and again, so each is measured once.
int naturalWidth(const QString& text, const QFont& font) {
    static QHash<QString, int> widths;
    const QString key = font.key() + QLatin1Char('|') + text;
    auto it = widths.constFind(key);
    if (it != widths.cend()) return *it;
    QFont natural = font;
    natural.setLetterSpacing(QFont::AbsoluteSpacing, 0);
    return *widths.insert(key, QFontMetrics(natural).horizontalAdvance(text));
}

// Where a label's text is drawn in the page area, at the letter spacing it would have unfitted.
QRect textRect(const QLabel* l) {
    const int width = naturalWidth(l->text(), l->font());
    const QRect r = l->geometry();
    int left = r.left();
    if (l->alignment() & Qt::AlignHCenter)
        left = r.center().x() - width / 2;
    else if (l->alignment() & Qt::AlignRight)
        left = r.right() - width;
    return {left, r.top(), width, r.height()};
}

void setSpacing(QLabel* l, qreal spacing) {
    const QFont current = l->font();
    if (current.letterSpacing() == spacing) return; // unset spacing reads 0 as well
    QFont f = current;
    f.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
    l->setFont(f);
    l->adjustSize();
}

} // namespace

void fitCaptions(ControlPools& pools) {
    // Titles and item labels are placed left-aligned by their group; captions are centred.
    std::vector<QLabel*> fitted;
    for (const auto* run : {&pools.checkTitles, &pools.checkLabels10})
        for (QLabel* l : *run)
            fitted.push_back(l);
    for (QLabel* l : pools.checkLabels)
        fitted.push_back(l);
    struct Placed {
        const QLabel* label;
        QRect text;
    };
    std::vector<Placed> others;
    auto place = [&](const QLabel* l) {
        if (shown(l)) others.push_back({l, textRect(l)});
    };
    for (const QLabel* l : pools.knobLabels)
        place(l);
    for (const QLabel* l : pools.sliderLabels)
        place(l);
    for (const QLabel* l : pools.onOffLabels)
        place(l);
    for (const QLabel* l : fitted)
        place(l);
    std::vector<QRect> panels;
    for (const QWidget* box : pools.tabBoxes)
        if (box && box->isVisibleTo(box->parentWidget())) panels.push_back(box->geometry());

    for (QLabel* l : fitted) {
        if (!shown(l)) continue;
        const QRect text = textRect(l);
        int limit = INT_MAX;
        for (const QRect& panel : panels)
            if (panel.contains(text.topLeft())) limit = std::min(limit, panel.right() - 3);
        for (const Placed& o : others)
            if (o.label != l && o.text.left() > text.left() && o.text.top() < text.bottom() &&
                o.text.bottom() > text.top())
                limit = std::min(limit, o.text.left() - 4);
        const int over = limit == INT_MAX ? 0 : text.right() - limit;
        // The gaps between letters take up the difference, at most a pixel each.
        const int gaps = std::max(1, int(l->text().size()) - 1);
        setSpacing(l, over > 0 ? -std::min(1.0, (over + 0.5) / gaps) : 0.0);
    }

    std::vector<ValueControl*> values;
    for (RKnob* k : pools.knobs)
        values.push_back(k);
    for (VSlider* s : pools.sliders)
        values.push_back(s);
    auto box = [](const ValueControl* c) { return c->valueLabelRect().translated(c->pos()); };
    for (ValueControl* c : values) {
        int inset = 0;
        if (c->isVisibleTo(c->parentWidget()))
            for (const ValueControl* o : values)
                if (o != c && o->isVisibleTo(o->parentWidget()) &&
                    box(c).adjusted(-3, 0, 3, 0).intersects(box(o)))
                    inset = 1;
        c->setLabelInset(inset);
    }
}

} // namespace ferrule
