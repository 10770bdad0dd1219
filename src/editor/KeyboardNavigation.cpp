#include "KeyboardNavigation.h"

#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "pages/ControlPools.h"

#include <QKeyEvent>
#include <QLabel>

#include <algorithm>
#include <tuple>

namespace ferrule {
namespace {

bool isActivation(int key) {
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter ||
           key == Qt::Key_Select;
}

// A group's items as they stand on the page, top to bottom, then left to right (a group lays
// its items out from the bottom up).
std::vector<int> visualOrder(const cCheckRadio* group) {
    std::vector<int> items;
    for (int i = 0; i < group->itemCount(); ++i)
        if (group->glyph(i)) items.push_back(i);
    std::sort(items.begin(), items.end(), [group](int a, int b) {
        const QPoint pa = group->glyph(a)->pos(), pb = group->glyph(b)->pos();
        return std::pair(pa.y(), pa.x()) < std::pair(pb.y(), pb.x());
    });
    return items;
}

} // namespace

KeyboardNavigation::KeyboardNavigation(ControlPools& pools, std::function<void(int)> toggleSwitch,
                                       QObject* parent)
    : QObject(parent)
    , pools_(pools)
    , toggleSwitch_(std::move(toggleSwitch)) {}

void KeyboardNavigation::install() {
    auto take = [this](QWidget* w) {
        w->setFocusPolicy(Qt::StrongFocus);
        w->installEventFilter(this);
    };
    for (QLabel* g : pools_.check2)
        take(g);
    for (QLabel* g : pools_.check10)
        take(g);
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        take(pools_.onOff[std::size_t(i)]);
}

bool KeyboardNavigation::optionKey(cCheckRadio* group, int item, int key) {
    if (isActivation(key)) {
        group->ClickOn(item);
        return true;
    }
    int step = 0;
    if (key == Qt::Key_Up || key == Qt::Key_Left)
        step = -1;
    else if (key == Qt::Key_Down || key == Qt::Key_Right)
        step = 1;
    else
        return false;
    // Up and Left go to the item before on the page, Down and Right to the one after; a check
    // box has no neighbours and a radio group's arrows stop at its ends.
    const std::vector<int> order = visualOrder(group);
    const auto at = std::find(order.begin(), order.end(), item);
    if (group->itemCount() < 2 || at == order.end()) return true;
    const std::ptrdiff_t to = (at - order.begin()) + step;
    if (to < 0 || to >= std::ptrdiff_t(order.size())) return true;
    const int next = order[std::size_t(to)];
    if (QLabel* g = group->glyph(next)) g->setFocus(Qt::OtherFocusReason);
    group->ClickOn(next);
    return true;
}

bool KeyboardNavigation::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        if (watched == pools_.onOff[std::size_t(i)]) {
            if (!isActivation(key->key())) return false;
            toggleSwitch_(i);
            return true;
        }
    // An option glyph knows its group and item.
    if (auto* group =
            qobject_cast<cCheckRadio*>(watched->property("optionGroup").value<QObject*>()))
        return optionKey(group, watched->property("optionItem").toInt(), key->key());
    return false;
}

std::vector<QWidget*> KeyboardNavigation::pageOrder() const {
    // A unit is a control, or an option group whose items stay together; `at` is its top-left
    // corner (the group's first item), page pixels.
    struct Unit {
        QPoint at;
        std::vector<QWidget*> widgets;
    };
    std::vector<Unit> units;
    auto add = [&](QWidget* w) {
        if (w && w->isVisibleTo(w->parentWidget())) units.push_back({w->pos(), {w}});
    };
    for (RKnob* k : pools_.knobs)
        add(k);
    for (VSlider* s : pools_.sliders)
        add(s);
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        add(pools_.onOff[std::size_t(i)]);
    for (cCheckRadio* group : pools_.groups) {
        if (!group || !group->isVisible() || group->itemCount() == 0) continue;
        const std::vector<int> items = visualOrder(group);
        if (items.empty()) continue;
        Unit u{group->glyph(items.front())->pos(), {}};
        for (int i : items)
            u.widgets.push_back(group->glyph(i));
        units.push_back(std::move(u));
    }
    // Panels in reading order; a unit belongs to the first panel that holds its corner.
    std::vector<QRect> panels;
    for (QWidget* box : pools_.tabBoxes)
        if (box && box->isVisibleTo(box->parentWidget())) panels.push_back(box->geometry());
    std::sort(panels.begin(), panels.end(), [](const QRect& a, const QRect& b) {
        return std::pair(a.top(), a.left()) < std::pair(b.top(), b.left());
    });
    auto key = [&](const Unit& u) {
        int panel = int(panels.size());
        for (std::size_t i = 0; i < panels.size(); ++i)
            if (panels[i].contains(u.at)) {
                panel = int(i);
                break;
            }
        // A panel is read column by column, as its controls stand in a row and its option
        // groups stack above one another; each column from the top.
        return std::make_tuple(panel, u.at.x() / 24, u.at.y());
    };
    std::stable_sort(units.begin(), units.end(),
                     [&](const Unit& a, const Unit& b) { return key(a) < key(b); });
    std::vector<QWidget*> out;
    for (const Unit& u : units)
        out.insert(out.end(), u.widgets.begin(), u.widgets.end());
    return out;
}

std::vector<QWidget*> KeyboardNavigation::focusChain(const std::vector<QWidget*>& after) const {
    std::vector<QWidget*> chain = pageOrder();
    for (QWidget* w : after)
        if (w && w->isVisibleTo(w->parentWidget())) chain.push_back(w);
    return chain;
}

} // namespace ferrule
