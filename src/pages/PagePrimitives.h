#pragma once

#include <QString>
#include <QStringList>

namespace ferrule {

class ControlPools;
class SystemImage;

// The six primitives that place one pooled control, bind it to an image index and give it its
// current value, or hide it when given the left position -1. Positions are twips inside the
// page area.
class PagePrimitives {
public:
    PagePrimitives(ControlPools& pools, const SystemImage& image);
    void setModel(int model) { model_ = model; }

    void PlaceHeading(int index, int x, int y, int width, int height, const QString& caption);
    void PlaceKnob(int index, int x, int y, int color, int format, int max, int memLoc,
                   const QString& caption, int labelWidth, bool captionAbove);
    void PlaceSlider(int index, int x, int y, int format, int max, int memLoc,
                     const QString& caption, int labelWidth);
    void PlaceOptions(int group, int x, int y, int memLoc, const QString& optionList);
    void PlaceSwitch(int index, int x, int y, int memLoc, const QString& caption);
    void PlaceCheckList(int x, int y, int count, const QString& optionList, bool wide);
    // Hides every pooled control of the page area.
    void ClearPage();

    // "Title!1!2!…" for the selector list: captions at 0-9, the title at 10.
    static QStringList splitListOptions(const QString& optionList);

    // Caption label widths in twips: centred over the knob and over the slider's track.
    static constexpr int kKnobCaptionWidth = 1215;
    static constexpr int kSliderCaptionWidth = 1290;

private:
    ControlPools& pools_;
    const SystemImage& image_;
    int model_ = 0;
};

} // namespace ferrule
