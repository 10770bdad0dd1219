#pragma once

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace ferrule {

// The part of the editor window that holds the page's pooled controls. Positions inside it are
// page positions in twips. It paints a vertical gradient behind each visible heading panel,
// from a light tint at the top to the host's panel colour at the bottom, and the panel frame.
class PageArea : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int panelsPainted READ panelsPainted)
public:
    explicit PageArea(QWidget* parent);

    // The host's panel colour, read at every paint; empty when the host has none.
    void setPanelColourSource(std::function<std::optional<int>()> source) {
        colour_ = std::move(source);
    }
    void setPanels(std::vector<QWidget*> panels) { panels_ = std::move(panels); }
    // How many panels the last paint filled with a gradient.
    int panelsPainted() const { return painted_; }

protected:
    void paintEvent(QPaintEvent*) override;

private:
    std::function<std::optional<int>()> colour_;
    std::vector<QWidget*> panels_;
    int painted_ = 0;
};

} // namespace ferrule
