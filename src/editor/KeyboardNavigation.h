#pragma once

#include <QObject>

#include <functional>
#include <vector>

class QWidget;

namespace ferrule {

class ControlPools;
class cCheckRadio;

// The keyboard's way through the editor window. The page's controls take the focus in reading
// order (panel by panel, each panel column by column, an option group's items together) before
// the window's buttons. On an option item Space or Enter clicks it and the arrows move to the
// group's next or previous item and select it, as radio buttons do; on a switch Space or Enter
// toggles.
class KeyboardNavigation : public QObject {
    Q_OBJECT
public:
    KeyboardNavigation(ControlPools& pools, std::function<void(int)> toggleSwitch, QObject* parent);

    // Gives the option glyphs and the switches the focus and watches their keys.
    void install();
    // The focus chain: the page's visible controls, then `after` where visible (the grid's
    // cells and its button, the window's buttons).
    std::vector<QWidget*> focusChain(const std::vector<QWidget*>& after) const;

    // The page's focusable controls in reading order.
    std::vector<QWidget*> pageOrder() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool optionKey(cCheckRadio* group, int item, int key);

    ControlPools& pools_;
    std::function<void(int)> toggleSwitch_;
};

} // namespace ferrule
