#pragma once

#include "PageRow.h"

#include <span>

namespace ferrule::PageCatalogue {

// A heading width that the builder takes from the model (the first heading of page 9).
inline constexpr int kModelWidth = -1;

std::span<const PageRow> systemPage(int model, bool page7); // pages 1, 2, 3 and 7
std::span<const PageRow> midiPage(int model);               // page 4
std::span<const PageRow> overdrivePage(int model);          // page 8
std::span<const PageRow> preampPage(int model);             // page 9
std::span<const PageRow> wahPage(int model);                // page 10
std::span<const PageRow> systemPreampHeadings();            // page 11
std::span<const PageRow> systemPreampShared();
std::span<const PageRow> systemPreampChannel();
std::span<const PageRow> inputPage();      // page 12
std::span<const PageRow> outputPage();     // page 13
std::span<const PageRow> expressionPage(); // page 14
std::span<const PageRow> ctlPedalRows();   // page 15

} // namespace ferrule::PageCatalogue
