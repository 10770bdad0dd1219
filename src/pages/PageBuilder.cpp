#include "PageBuilder.h"

#include "ControlPools.h"
#include "PageCatalogue.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "device/ModelMap.h"
#include "sysdata/ParameterEncoding.h"
#include "sysdata/SystemImage.h"

namespace ferrule {

int PageBuilder::Bases::resolve(const Address& a) const {
    switch (a.base) {
    case Base::None:
        return a.offset;
    case Base::B:
        return b + a.offset;
    case Base::P:
        return p + a.offset;
    case Base::S:
        return s + a.offset;
    case Base::C:
        return c + a.offset;
    case Base::Switch:
        return switchAt + a.offset;
    case Base::X:
        return x + a.offset;
    case Base::Q:
        return q + a.offset;
    case Base::M3:
        return m3 + a.offset;
    }
    return a.offset;
}

PageBuilder::PageBuilder(ControlPools& pools, const SystemImage& image, const int& model)
    : pools_(pools)
    , image_(image)
    , model_(model)
    , primitives_(pools, image, model) {}

int PageBuilder::tabForPage(int page, int model) {
    switch (page) {
    case 1:
    case 2:
    case 3:
        return 0;
    case 4:
        return 1;
    case 5:
        return 2;
    case 6:
        return 3;
    case 7:
        return model == 8 ? 7 : 0;
    case 8:
        return 4;
    case 9:
        return 5;
    case 10:
        return 6;
    case 11:
        return 8;
    case 12:
    case 13:
    case 14:
    case 15:
        return page - 3;
    default:
        return -1;
    }
}

int PageBuilder::scaleBase(int model) {
    return harmonistScaleBase(model);
}

int PageBuilder::phraseBase(int model) {
    return autoRiffPhraseBase(model);
}

void PageBuilder::place(std::span<const PageRow> rows, const Bases& bases, int currentPage) {
    for (const PageRow& r : rows) {
        if ((r.flags & Gt8Only) && model_ != 8) continue;
        if ((r.flags & Gt10Only) && model_ != 10) continue;
        const QString caption = QString::fromUtf8(r.caption);
        const int address = bases.resolve(r.address);
        switch (r.control) {
        case Control::Heading:
            primitives_.PlaceHeading(r.index, r.x, r.y,
                                     r.width == PageCatalogue::kModelWidth ? bases.w : r.width,
                                     r.height, caption);
            break;
        case Control::Knob:
            primitives_.PlaceKnob(r.index, r.x, r.y, r.colour, r.format, r.max, address, caption,
                                  r.labelWidth, (r.flags & CaptionAbove) != 0);
            break;
        case Control::Slider:
            primitives_.PlaceSlider(r.index, r.x, r.y, r.format, r.max, address, caption,
                                    r.labelWidth);
            if (r.flags & MinOne) pools_.sliders.at(std::size_t(r.index))->setMin(1);
            break;
        case Control::Options:
            primitives_.PlaceOptions(r.index, r.x, r.y, address, caption);
            break;
        case Control::Switch:
            primitives_.PlaceSwitch(r.index, r.x, r.y, address, caption);
            break;
        case Control::List:
            primitives_.PlaceCheckList(r.x, r.y, r.max, caption, true);
            break;
        case Control::DependentRanges:
            UpdateDependentRanges(r.index, currentPage);
            break;
        }
    }
}

int PageBuilder::customPreampBase(int n) const {
    switch (model_) {
    case 6:
        return 10342 + 9 * (n - 1);
    case 8:
        return 13779 + 7 * (n - 1);
    case 10: {
        // P lies 17 bytes into the channel's 32-byte block of system preamp n.
        static constexpr int channelByte[] = {19489, 19617, 19694};
        static constexpr int channelA[] = {19520, 19648, 19725};
        static constexpr int channelB[] = {19552, 19680, 19757};
        const auto i = std::size_t(n - 1);
        return image_.at(channelByte[i]) == 0 ? channelA[i] : channelB[i];
    }
    default:
        return -1;
    }
}

int PageBuilder::customSpeakerBase(int n) const {
    if (model_ == 8) return 13800 + 5 * (n - 1);
    if (model_ == 10) return customPreampBase(n) + 7;
    return -1;
}

int PageBuilder::systemPreampSelection() const {
    switch (image_.at(19121)) {
    case 2:
        return 1;
    case 3:
        return 2;
    default:
        return 0; // Patch, System 1, and values the editor cannot set
    }
}

void PageBuilder::build(int page, const PageViews& views, int& dataBase) {
    const int model = model_;
    Bases bases;
    cCheckRadio* list = pools_.groups[ControlPools::kSelectorList];
    switch (page) {
    case 1:
    case 2:
    case 3:
    case 7:
        place(PageCatalogue::systemPage(model, page == 7), bases, page);
        break;
    case 4:
        bases.b = model == 6 ? 7039 : 10428;
        place(PageCatalogue::midiPage(model), bases, page);
        break;
    case 5:
        if (scaleBase(model) >= 0) dataBase = scaleBase(model);
        primitives_.PlaceHeading(0, 135, 105, 8910, 5325, QStringLiteral("Harmonist"));
        primitives_.PlaceCheckList(150, 5430, 2, QStringLiteral("Edit Scale!1-16!14-29"), true);
        list->setSelected(views.scaleView);
        if (grids_.refreshHarmonistGrid) grids_.refreshHarmonistGrid();
        if (grids_.showHarmonistGrid) grids_.showHarmonistGrid(true);
        break;
    case 6:
        if (phraseBase(model) >= 0) dataBase = phraseBase(model);
        primitives_.PlaceHeading(0, 135, 105, 8910, 5325, QStringLiteral("Auto-Riff"));
        primitives_.PlaceCheckList(150, 5430, 10,
                                   QStringLiteral("Edit Phrase!1!2!3!4!5!6!7!8!9!10"), true);
        list->setSelected(views.phraseView);
        if (grids_.refreshPhraseGrid) grids_.refreshPhraseGrid();
        if (grids_.showPhraseGrid) grids_.showPhraseGrid(true);
        break;
    case 8:
        bases.b = model == 6 ? 10369 : 13810;
        place(PageCatalogue::overdrivePage(model), bases, page);
        break;
    case 9: {
        const int n = views.preampView + 1;
        bases.p = customPreampBase(n);
        bases.s = customSpeakerBase(n);
        bases.w = model == 10 ? 8895 : 7530;
        const auto rows = PageCatalogue::preampPage(model);
        place(rows, bases, page);
        if (model == 6 || model == 8 || model == 10) {
            list->setSelected(views.preampView);
            const QString number = QString::number(n);
            pools_.setHeadingCaption(0, pools_.headingCaption(0) + number);
            if (model != 6) pools_.setHeadingCaption(1, pools_.headingCaption(1) + number);
            if (model == 8 && n == 3) neutralSpeaker();
        }
        break;
    }
    case 10:
        bases.b = model == 6 ? 10379 : 13825;
        place(PageCatalogue::wahPage(model), bases, page);
        break;
    case 11:
        if (model != 8 && model != 10) break;
        place(PageCatalogue::systemPreampHeadings(), bases, page);
        if (model == 10) {
            primitives_.PlaceCheckList(6660, 4530, 3, QStringLiteral("Edit Preamp!1!2!3"), true);
            list->setSelected(systemPreampSelection());
        }
        if (model == 8) {
            bases.switchAt = 11465;
            bases.c = 11467;
        } else {
            static constexpr int switches[] = {19487, 19615, 19692};
            bases.switchAt = switches[systemPreampSelection()];
            bases.c = bases.switchAt + 1;
        }
        place(PageCatalogue::systemPreampShared(), bases, page);
        PlaceSystemPreampRows();
        break;
    case 12:
        place(PageCatalogue::inputPage(), bases, page);
        break;
    case 13:
        place(PageCatalogue::outputPage(), bases, page);
        break;
    case 14:
        place(PageCatalogue::expressionPage(), bases, page);
        break;
    case 15:
        primitives_.PlaceCheckList(150, 4530, 2, QStringLiteral("Edit CTL!1-2!3-4"), true);
        PlaceCtlPedalRows();
        break;
    default:
        break;
    }
}

void PageBuilder::neutralSpeaker() {
    VSlider* type = pools_.sliders[1];
    type->setValue(0);
    type->setOff(true);
    for (int k : {6, 7, 8}) {
        pools_.knobs[std::size_t(k)]->setValue(0);
        pools_.knobs[std::size_t(k)]->setOff(true);
    }
    for (int g : {0, 6}) {
        pools_.groups[std::size_t(g)]->setSelected(-1);
        pools_.groups[std::size_t(g)]->setEnabled(false);
    }
}

void PageBuilder::RebindCustomTone(int n) {
    const QString number = QString::number(n);
    pools_.setHeadingCaption(0, QStringLiteral("Custom Preamp ") + number);
    const int p = customPreampBase(n);
    if (p < 0) return;
    const int knobCount = model_ == 6 ? 8 : 6;
    pools_.sliders[0]->setMemLoc(p);
    pools_.sliders[0]->setValue(image_.at(p));
    for (int i = 0; i < knobCount; ++i) {
        RKnob* k = pools_.knobs[std::size_t(i)];
        k->setMemLoc(p + i + 1);
        k->setValue(image_.at(p + i + 1));
    }
    if (model_ == 6) return;
    pools_.setHeadingCaption(1, QStringLiteral("Custom Speaker ") + number);
    if (model_ == 8 && n == 3) {
        neutralSpeaker();
        return;
    }
    const int s = customSpeakerBase(n);
    // The speaker controls become editable again after the GT-8's custom tone 3.
    VSlider* type = pools_.sliders[1];
    type->setMemLoc(s);
    type->setValue(image_.at(s));
    type->setOff(false);
    for (int k = 0; k < 2; ++k) {
        RKnob* knob = pools_.knobs[std::size_t(6 + k)];
        knob->setMemLoc(s + 1 + k);
        knob->setValue(image_.at(s + 1 + k));
        knob->setOff(false);
    }
    cCheckRadio* number4 = pools_.groups[6];
    number4->setTFormat(s + 3);
    number4->setSelected(image_.at(s + 3));
    number4->setEnabled(true);
    cCheckRadio* cabinet = pools_.groups[0];
    cabinet->setTFormat(s + 4);
    cabinet->setSelected(image_.at(s + 4));
    cabinet->setEnabled(true);
}

void PageBuilder::PlaceSystemPreampRows() {
    Bases bases;
    if (model_ == 8) {
        bases.x = image_.at(11468) * 17 + 11471;
    } else {
        const int k = pools_.groups[ControlPools::kSelectorList]->Selected();
        static constexpr int channelByte[] = {19489, 19617, 19694};
        static constexpr int channelBase[] = {19503, 19631, 19708};
        const auto i = std::size_t(std::clamp(k, 0, 2));
        bases.x = image_.at(channelByte[i]) * 32 + channelBase[i];
        pools_.setHeadingCaption(0, QStringLiteral("System Preamp %1").arg(i + 1));
    }
    place(PageCatalogue::systemPreampChannel(), bases, 11);
}

void PageBuilder::PlaceCtlPedalRows() {
    const int m = std::clamp(pools_.groups[ControlPools::kSelectorList]->Selected(), 0, 1);
    primitives_.PlaceHeading(0, 150, 105, 7980, 2010,
                             QStringLiteral("CTL Pedal %1").arg(2 * m + 1));
    primitives_.PlaceHeading(1, 150, 2145, 7980, 2010,
                             QStringLiteral("CTL Pedal %1").arg(2 * m + 2));
    Bases bases;
    bases.q = 48 * m;
    bases.m3 = 3 * m;
    place(PageCatalogue::ctlPedalRows(), bases, 15);
}

void PageBuilder::UpdateDependentRanges(int sliderIndex, int currentPage) {
    if (model_ != 10 || currentPage != 14) return;
    const VSlider* slider = pools_.sliders.at(std::size_t(sliderIndex));
    const int s = image_.readParameter(slider->MemLoc(), model_);
    // A format or maximum of -1 leaves it as it is.
    auto refit = [this](std::initializer_list<int> knobs, int format, int max) {
        for (int k : knobs) {
            RKnob* knob = pools_.knobs[std::size_t(k)];
            if (format >= 0) knob->setTFormat(format);
            if (max >= 0) knob->setMax(max);
            knob->setValue(knob->Value());
        }
    };
    if (sliderIndex == 0) {
        if (s == 2 || s == 4)
            refit({0, 1}, 1, 48);
        else
            refit({0, 1}, 0, 100);
    } else if (sliderIndex == 2) {
        if (s == 0 || s == 1)
            refit({8, 9}, 0, -1);
        else if (s == 2)
            refit({8, 9}, 9, -1);
        else
            refit({8, 9}, -1, -1);
    }
}

} // namespace ferrule
