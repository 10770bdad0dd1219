#pragma once

namespace ferrule {

// Gives the editor's drawn controls to screen readers: knobs as dials and sliders as sliders
// with their caption, value text and range; option items as radio buttons (a single item as a
// check box) with the group's title; switches as check boxes; the tab buttons as page tabs and
// the mode and command buttons as push buttons; the grid as a table of cells with their row and
// column headings. Installed once per process.
void installEditorAccessibility();

} // namespace ferrule
