#pragma once

#include "EditorFixture.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "device/ModelDescription.h"
#include "pages/ControlPools.h"

#include <functional>
#include <string>

// Opens every page of the model but the grids' in every state of its selector and of the bytes
// its placements follow (a channel, the GT-10's "Preamp Mode", a pedal's function), and hands
// each over with its name for messages.
inline void everyPageState(EditorFixture& f, int model,
                           const std::function<void(const std::string&)>& visit) {
    using namespace ferrule;
    ControlPools& pools = f.form->pools();
    cCheckRadio* selector = pools.groups[ControlPools::kSelectorList];
    const ModelDescription& d = describeModel(model);
    auto channel = [&](int c) {
        for (const SystemPreampLayout& p : d.systemPreamps)
            f.state.image.set(p.channelByte, c);
    };
    for (int page : pagesOf(model)) {
        const std::string at = "GT-" + std::to_string(model) + " page " + std::to_string(page);
        if (page == 9 && model != 5) {
            for (int c = 0; c < 2; ++c)
                for (int n = 0; n < 3; ++n) {
                    channel(c);
                    f.open(model, 9);
                    selector->ClickOn(n);
                    visit(at + " tone " + std::to_string(n + 1));
                }
        } else if (page == 11 || page == 15) {
            // Page 11's shared rows follow the GT-10's "Preamp Mode" when the page is built,
            // its channel rows the selector.
            const int count = page == 15 ? 2 : int(d.systemPreamps.size());
            const int modes = page == 11 && model == 10 ? 4 : 1;
            for (int c = 0; c < 2; ++c)
                for (int mode = 0; mode < modes; ++mode)
                    for (int k = 0; k < count; ++k) {
                        channel(c);
                        if (modes > 1) f.state.image.set(kGt10PreampMode, mode);
                        f.open(model, page);
                        if (count > 1) selector->ClickOn(k);
                        visit(at + " selection " + std::to_string(k));
                    }
        } else if (page == 14) {
            for (int function = 0; function <= 6; ++function) {
                f.open(model, page);
                for (int i : {0, 2})
                    f.state.image.writeParameter(pools.sliders[std::size_t(i)]->MemLoc(), model,
                                                 function);
                f.rebuild(page);
                visit(at + " function " + std::to_string(function));
            }
        } else if (page != 5 && page != 6) {
            f.open(model, page);
            visit(at);
        }
    }
}
