#include "PageArea.h"

#include "PanelShading.h"
#include "controls/Twips.h"

#include <QPainter>

namespace ferrule {
namespace {
const QColor kPageColour(0xec, 0xee, 0xf1);
constexpr int kWhite = 0xFFFFFF;
} // namespace

PageArea::PageArea(QWidget* parent)
    : QWidget(parent) {
    setObjectName(QStringLiteral("PageArea"));
    // Captions on the page are dark on the light panels, unlike the window's dark top bar.
    QPalette pal = palette();
    pal.setColor(QPalette::WindowText, QColor(0x1d, 0x22, 0x28));
    pal.setColor(QPalette::Window, kPageColour);
    setPalette(pal);
}

void PageArea::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), kPageColour);
    p.setPen(QColor(0xb8, 0xbf, 0xc8));
    p.drawLine(0, 0, width(), 0);

    painted_ = 0;
    const std::optional<int> panelColour = colour_ ? colour_() : std::nullopt;
    const bool shaded = panelColour.has_value();
    const int end = panelColour.value_or(0);
    const int start = BlendColour(kWhite, end, 700);
    for (const QWidget* panel : panels_) {
        if (panel->isHidden()) continue;
        const QRect g = panel->geometry();
        if (shaded) {
            FillGradient(p, g.left() * kTwipsPerPixel, g.top() * kTwipsPerPixel,
                         (g.right() + 1) * kTwipsPerPixel, (g.bottom() + 1) * kTwipsPerPixel, start,
                         end, 2);
            ++painted_;
        }
        p.setPen(QPen(QColor(0x8c, 0x96, 0xa3), 1));
        p.setBrush(Qt::NoBrush);
        p.drawRect(g.adjusted(0, 0, -1, -1));
    }
}

} // namespace ferrule
