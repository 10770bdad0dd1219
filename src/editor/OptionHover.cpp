#include "OptionHover.h"

#include "controls/Twips.h"
#include "controls/cCheckRadio.h"
#include "pages/ControlPools.h"

#include <QLabel>
#include <QMouseEvent>
#include <QWhatsThis>

#include <algorithm>
#include <climits>

namespace ferrule {

OptionHover::OptionHover(QWidget* pageArea, ControlPools& pools, QObject* parent)
    : QObject(parent)
    , pageArea_(pageArea)
    , pools_(pools) {}

void OptionHover::install() {
    auto watch = [this](QWidget* w) {
        w->setMouseTracking(true);
        w->installEventFilter(this);
    };
    for (QLabel* l : pools_.check2)
        watch(l);
    for (QLabel* l : pools_.checkLabels)
        watch(l);
    for (QLabel* l : pools_.check10)
        watch(l);
    for (QLabel* l : pools_.checkLabels10)
        watch(l);
    pageArea_->installEventFilter(this);
}

int OptionHover::MinOf(std::initializer_list<int> values) {
    int m = INT_MAX;
    for (int v : values)
        m = std::min(m, v);
    return m;
}

int OptionHover::MaxOf(std::initializer_list<int> values) {
    int m = INT_MIN;
    for (int v : values)
        m = std::max(m, v);
    return m;
}

void OptionHover::BeginHover(QLabel* glyph, QLabel* label, cCheckRadio* group, int item) {
    glyph_ = glyph;
    group_ = group;
    const QRect g = glyph->geometry();
    const QRect l = label->geometry();
    left_ = MinOf({pxToTwips(g.left()), pxToTwips(l.left())});
    top_ = MinOf({pxToTwips(g.top()), pxToTwips(l.top())});
    right_ = MaxOf({pxToTwips(g.left() + g.width()), pxToTwips(l.left() + l.width())});
    bottom_ = MaxOf({pxToTwips(g.top() + g.height()), pxToTwips(l.top() + l.height())});
    group->setMouseOver(item);
    pageArea_->grabMouse();
}

void OptionHover::TrackHover(int x, int y) {
    if (!active()) return;
    if (!(x >= left_ && y >= top_ && x <= right_ && y <= bottom_)) EndHover();
}

void OptionHover::EndHover() {
    pageArea_->releaseMouse();
    if (group_) group_->setMouseOver(-1);
    glyph_ = nullptr;
    group_ = nullptr;
}

void OptionHover::mouseDown(Qt::MouseButton button) {
    pageArea_->window()->raise();
    if (glyph_ && group_ && button == Qt::LeftButton) group_->MouseDown();
}

void OptionHover::mouseUp(Qt::MouseButton button, const QPoint& globalPos) {
    if (!glyph_) return;
    if (button == Qt::RightButton) {
        // The item's context help: its group's title and its caption.
        QString text;
        if (group_) {
            const int item = group_->hoverIndex();
            const QStringList captions = group_->captions();
            text = QStringLiteral("<b>%1</b><br>%2")
                       .arg(group_->title().trimmed().toHtmlEscaped(),
                            item >= 0 && item < captions.size() ? captions[item].toHtmlEscaped()
                                                                : QString());
        }
        QWhatsThis::showText(globalPos, text, glyph_);
    } else if (button == Qt::LeftButton && group_) {
        group_->ClickOn(-1);
    }
    EndHover();
}

bool OptionHover::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (watched == pageArea_) {
        if (type != QEvent::MouseMove && type != QEvent::MouseButtonPress &&
            type != QEvent::MouseButtonRelease)
            return false;
        const auto* me = static_cast<QMouseEvent*>(event);
        if (type == QEvent::MouseMove && active()) {
            TrackHover(pxToTwips(me->position().x()), pxToTwips(me->position().y()));
            return true;
        }
        if (type == QEvent::MouseButtonPress) {
            mouseDown(me->button());
            return active();
        }
        if (type == QEvent::MouseButtonRelease && active()) {
            mouseUp(me->button(), me->globalPosition().toPoint());
            return true;
        }
        return false;
    }
    if (type != QEvent::MouseMove) return false;
    for (int i = 0; i < ControlPools::kCheck2; ++i) {
        if (watched == pools_.check2[std::size_t(i)] ||
            watched == pools_.checkLabels[std::size_t(i)]) {
            const auto [g, item] = ControlPools::groupOfCheck2(i);
            if (g >= 0)
                BeginHover(pools_.check2[std::size_t(i)], pools_.checkLabels[std::size_t(i)],
                           pools_.groups[std::size_t(g)], item);
            return false;
        }
    }
    for (int i = 0; i < ControlPools::kCheck10; ++i) {
        if (watched == pools_.check10[std::size_t(i)] ||
            watched == pools_.checkLabels10[std::size_t(i)]) {
            BeginHover(pools_.check10[std::size_t(i)], pools_.checkLabels10[std::size_t(i)],
                       pools_.groups[ControlPools::kSelectorList], i);
            return false;
        }
    }
    return false;
}

} // namespace ferrule
