#include "PageBuilder.h"

#include "CaptionFit.h"
#include "ControlPools.h"
#include "catalogue/PageCatalogue.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "sysdata/ParameterEncoding.h"
#include "sysdata/SystemImage.h"

namespace ferrule {

PageBuilder::PageBuilder(ControlPools& pools, const SystemImage& image)
    : pools_(pools)
    , image_(image)
    , primitives_(pools, image) {}

void PageBuilder::place(std::span<const PageRow> rows, const PageCatalogue::RowBases& bases,
                        int currentPage) {
    for (const PageRow& r : rows) {
        if (!onModel(r, model_)) continue;
        const QString caption = QString::fromUtf8(r.caption);
        const int address = bases.resolve(r.address);
        switch (r.control) {
        case Control::Heading:
            primitives_.PlaceHeading(r.index, r.x, r.y,
                                     r.width == PageCatalogue::kModelWidth ? bases.headingWidth
                                                                           : r.width,
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
    return PageCatalogue::customPreampBase(model_, n, image_.bytes());
}

int PageBuilder::customSpeakerBase(int n) const {
    return PageCatalogue::customSpeakerBase(model_, n, image_.bytes());
}

int PageBuilder::systemPreampSelection() const {
    return PageCatalogue::systemPreampSelection(image_.bytes());
}

void PageBuilder::build(int page, const PageViews& views) {
    const int model = model_;
    // The selector's instance the rows are placed for: custom tone n - 1, system preamp k.
    const int instance = page == 9    ? views.preampView
                         : page == 11 ? (model == 8 ? 0 : systemPreampSelection())
                                      : 0;
    const PageCatalogue::RowBases bases =
        PageCatalogue::pageBases(page, model, instance, image_.bytes());
    cCheckRadio* list = pools_.groups[ControlPools::kSelectorList];
    switch (page) {
    case 1:
    case 2:
    case 3:
    case 7:
        place(PageCatalogue::systemPage(model, page == 7), bases, page);
        break;
    case 4:
        place(PageCatalogue::midiPage(model), bases, page);
        break;
    case 5:
        place(PageCatalogue::gridPage(page), bases, page);
        list->setSelected(views.scaleView);
        if (grids_.refreshHarmonistGrid) grids_.refreshHarmonistGrid();
        if (grids_.showHarmonistGrid) grids_.showHarmonistGrid(true);
        break;
    case 6:
        place(PageCatalogue::gridPage(page), bases, page);
        list->setSelected(views.phraseView);
        if (grids_.refreshPhraseGrid) grids_.refreshPhraseGrid();
        if (grids_.showPhraseGrid) grids_.showPhraseGrid(true);
        break;
    case 8:
        place(PageCatalogue::overdrivePage(model), bases, page);
        break;
    case 9: {
        const int n = views.preampView + 1;
        const auto rows = PageCatalogue::preampPage(model);
        place(rows, bases, page);
        if (model == 6 || model == 8 || model == 10) {
            list->setSelected(views.preampView);
            const QString number = QString::number(n);
            pools_.setHeadingCaption(0, pools_.headingCaption(0) + number);
            if (model != 6) pools_.setHeadingCaption(1, pools_.headingCaption(1) + number);
            if (model != 6 && !PageCatalogue::hasCustomSpeaker(model, n)) neutralSpeaker();
        }
        break;
    }
    case 10:
        place(PageCatalogue::wahPage(model), bases, page);
        break;
    case 11:
        if (model != 8 && model != 10) break;
        place(PageCatalogue::systemPreampHeadings(), bases, page);
        if (model == 10) {
            primitives_.PlaceCheckList(6660, 4530, 3, QStringLiteral("Edit Preamp!1!2!3"), true);
            list->setSelected(systemPreampSelection());
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
    fitCaptions(pools_);
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
    if (!PageCatalogue::hasCustomSpeaker(model_, n)) {
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
    int k = 0;
    if (model_ != 8) {
        k = std::clamp(pools_.groups[ControlPools::kSelectorList]->Selected(), 0, 2);
        pools_.setHeadingCaption(0, QStringLiteral("System Preamp %1").arg(k + 1));
    }
    place(PageCatalogue::systemPreampChannel(),
          PageCatalogue::pageBases(11, model_, k, image_.bytes()), 11);
    fitCaptions(pools_);
}

void PageBuilder::PlaceCtlPedalRows() {
    const int m = std::clamp(pools_.groups[ControlPools::kSelectorList]->Selected(), 0, 1);
    place(PageCatalogue::ctlPedalHeadings(m), {}, 15);
    place(PageCatalogue::ctlPedalRows(), PageCatalogue::pageBases(15, model_, m, image_.bytes()),
          15);
    fitCaptions(pools_);
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
    const PageCatalogue::DependentRange d = PageCatalogue::dependentRange(sliderIndex, s);
    if (d.knobs[0] >= 0) refit({d.knobs[0], d.knobs[1]}, d.format, d.max);
}

} // namespace ferrule
