#pragma once

#include "PagePrimitives.h"
#include "catalogue/PageCatalogue.h"

#include <functional>
#include <span>

namespace ferrule {

class ControlPools;
class SystemImage;

// The selector-list views that survive page changes.
struct PageViews {
    int scaleView = 0;
    int phraseView = 0;
    int preampView = 0;
};

// What the grid editors of pages 5 and 6 do when the builder enters or leaves them.
struct GridHooks {
    std::function<void(bool)> showHarmonistGrid;
    std::function<void(bool)> showPhraseGrid;
    std::function<void()> refreshHarmonistGrid;
    std::function<void()> refreshPhraseGrid;
};

// Lays out a page for the current model by running its rows through the primitives, with the
// bases computed per model and per selection; and re-binds the rows of pages 9, 11 and 15 when
// their selector list changes.
class PageBuilder {
public:
    PageBuilder(ControlPools& pools, const SystemImage& image);

    // The model whose pages are built (SetFormat sets it).
    void setModel(int model) {
        model_ = model;
        primitives_.setModel(model);
    }
    void setGridHooks(GridHooks hooks) { grids_ = std::move(hooks); }
    const GridHooks& gridHooks() const { return grids_; }
    PagePrimitives& primitives() { return primitives_; }

    // Builds `page` on a cleared page area.
    void build(int page, const PageViews& views);

    void RebindCustomTone(int n);
    void PlaceSystemPreampRows();
    void PlaceCtlPedalRows();
    void UpdateDependentRanges(int sliderIndex, int currentPage);

    // The custom preamp base P of page 9 for custom tone n (1-3), or -1 where there is none.
    int customPreampBase(int n) const;
    int customSpeakerBase(int n) const;
    // The selector list's selection on page 11 of the GT-10, from the "Preamp Mode" byte.
    int systemPreampSelection() const;

private:
    void place(std::span<const PageRow> rows, const PageCatalogue::RowBases& bases,
               int currentPage);
    void neutralSpeaker();

    ControlPools& pools_;
    const SystemImage& image_;
    int model_ = 0;
    PagePrimitives primitives_;
    GridHooks grids_;
};

} // namespace ferrule
