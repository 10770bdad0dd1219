#include "PagePrimitives.h"

#include "ControlPools.h"
#include "catalogue/OptionList.h"
#include "controls/ControlArt.h"
#include "controls/RKnob.h"
#include "controls/Twips.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"
#include "sysdata/SystemImage.h"

#include <QFontMetrics>

#include <algorithm>

namespace ferrule {

PagePrimitives::PagePrimitives(ControlPools& pools, const SystemImage& image)
    : pools_(pools)
    , image_(image) {}

QStringList PagePrimitives::splitListOptions(const QString& optionList) {
    QStringList pieces;
    QString rest = optionList;
    while (pieces.size() < 11) {
        const qsizetype bang = rest.indexOf(QLatin1Char('!'));
        if (bang < 0) {
            pieces << rest;
            break;
        }
        pieces << rest.left(bang);
        rest = rest.mid(bang + 1);
    }
    // Title first in the list text; the selector takes captions 0-9 and the title last.
    QStringList texts = pieces.mid(1);
    while (texts.size() < 10)
        texts << QString();
    texts << (pieces.isEmpty() ? QString() : pieces.first());
    return texts;
}

void PagePrimitives::PlaceHeading(int index, int x, int y, int width, int height,
                                  const QString& caption) {
    QLabel* label = pools_.tabLabels.at(std::size_t(index));
    QWidget* box = pools_.tabBoxes.at(std::size_t(index));
    if (x == -1) {
        label->hide();
        box->hide();
        return;
    }
    label->move(twipsToPx(x), twipsToPx(y));
    box->setGeometry(twipsToPx(x - 105), twipsToPx(y - 75), twipsToPx(width), twipsToPx(height));
    pools_.setHeadingCaption(index, caption);
    box->show();
    box->lower();
    label->show();
}

void PagePrimitives::PlaceKnob(int index, int x, int y, int color, int format, int max, int memLoc,
                               const QString& caption, int labelWidth, bool captionAbove) {
    RKnob* knob = pools_.knobs.at(std::size_t(index));
    QLabel* label = pools_.knobLabels.at(std::size_t(index));
    if (x == -1) {
        knob->hide();
        label->hide();
        return;
    }
    knob->setPType(model_);
    const int labelTop = captionAbove ? y - 195 : y;
    // The caption is centred over the knob (whose centre is 517 twips right of x).
    label->setGeometry(twipsToPx(x + 517 - kKnobCaptionWidth / 2), twipsToPx(labelTop),
                       twipsToPx(kKnobCaptionWidth), twipsToPx(240));
    knob->setOff(false);
    knob->move(twipsToPx(x + 135), twipsToPx(y + 270));
    knob->setColor(color);
    knob->setTFormat(format);
    knob->setMax(max);
    knob->setMemLoc(memLoc);
    label->setText(caption);
    knob->setCaption(caption);
    knob->setValue(image_.readParameter(memLoc, model_));
    knob->setLabelWidth(labelWidth);
    knob->show();
    label->show();
}

void PagePrimitives::PlaceSlider(int index, int x, int y, int format, int max, int memLoc,
                                 const QString& caption, int labelWidth) {
    VSlider* slider = pools_.sliders.at(std::size_t(index));
    QLabel* label = pools_.sliderLabels.at(std::size_t(index));
    if (x == -1) {
        slider->hide();
        label->hide();
        return;
    }
    slider->setPType(model_);
    // The caption starts at x + 105 in the window's design; it is centred on the track (x + 645)
    // over the slider's whole width so that longer captions are not cut.
    label->setGeometry(twipsToPx(x + 645 - kSliderCaptionWidth / 2), twipsToPx(y),
                       twipsToPx(kSliderCaptionWidth), twipsToPx(240));
    slider->setOff(false);
    slider->move(twipsToPx(x), twipsToPx(y + 270));
    slider->setMax(max);
    slider->setMin(0);
    slider->setMemLoc(memLoc);
    label->setText(caption);
    slider->setCaption(caption);
    slider->setTFormat(format);
    slider->setValue(image_.readParameter(memLoc, model_));
    slider->setLabelWidth(labelWidth);
    slider->show();
    label->show();
}

void PagePrimitives::PlaceOptions(int group, int x, int y, int memLoc, const QString& optionList) {
    cCheckRadio* g = pools_.groups.at(std::size_t(group));
    if (x == -1) {
        g->setVisible(false);
        return;
    }
    g->SetTextEx(splitGroupOptions(optionList, optionCount(group)), 0);
    g->setLeft(x);
    g->setTop(y);
    g->setTFormat(memLoc);
    g->setEnabled(true);
    g->setSelected(image_.at(memLoc));
    g->setVisible(true);
}

void PagePrimitives::PlaceSwitch(int index, int x, int y, int memLoc, const QString& caption) {
    QLabel* sw = pools_.onOff.at(std::size_t(index));
    QLabel* label = pools_.onOffLabels.at(std::size_t(index));
    if (x == -1) {
        sw->hide();
        label->hide();
        return;
    }
    label->move(twipsToPx(x), twipsToPx(y));
    sw->move(twipsToPx(x), twipsToPx(y + 240));
    label->setText(caption);
    label->adjustSize();
    sw->setProperty("Tag", QString::number(memLoc));
    sw->setProperty("caption", caption);
    pools_.showSwitchPicture(index, 10 + (image_.at(memLoc) & 1));
    sw->show();
    label->show();
}

void PagePrimitives::PlaceCheckList(int x, int y, int count, const QString& optionList, bool wide) {
    cCheckRadio* list = pools_.groups[ControlPools::kSelectorList];
    if (x == -1) {
        list->setVisible(false);
        return;
    }
    // A wide list is one row of items, 630 twips apart as the window is designed, or further
    // apart where a caption needs the room to keep clear of the next item; otherwise a column.
    const QStringList texts = splitListOptions(optionList);
    if (wide) {
        const QFontMetrics metrics(pools_.checkLabels10[0]->font());
        int widest = 0;
        for (int i = 0; i < count && i < 10; ++i)
            widest = std::max(widest, pxToTwips(metrics.horizontalAdvance(texts[i])));
        list->SetStyle(count, std::max(630, 240 + widest + 180), 0);
    } else {
        list->SetStyle(count, 0, 630);
    }
    list->setSelected(0);
    list->SetTextEx(texts, 0);
    list->setLeft(x);
    list->setTop(y);
    list->setVisible(true);
}

void PagePrimitives::ClearPage() {
    for (int i = 0; i < ControlPools::kKnobs; ++i)
        PlaceKnob(i, -1, 0, 0, 0, 0, 0, {}, 0, false);
    for (int i = 0; i < ControlPools::kSliders; ++i)
        PlaceSlider(i, -1, 0, 0, 0, 0, {}, 0);
    for (int g = 0; g <= 8; ++g)
        PlaceOptions(g, -1, 0, 0, {});
    for (int i = 0; i < ControlPools::kSwitches; ++i)
        PlaceSwitch(i, -1, 0, 0, {});
    for (int i = 0; i < ControlPools::kHeadings; ++i)
        PlaceHeading(i, -1, 0, 0, 0, {});
    PlaceCheckList(-1, 0, 0, {}, false);
}

} // namespace ferrule
