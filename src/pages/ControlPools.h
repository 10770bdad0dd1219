#pragma once

#include "controls/ValueControl.h"

#include <QLabel>
#include <QVector>

#include <array>

namespace ferrule {

class RKnob;
class VSlider;
class cCheckRadio;
struct HostFontSettings;

// The pooled controls of the page area, as the window is designed: knobs 0-11 with captions,
// sliders 0-10 with captions, switches 0-3 with captions (10 and 11 hold the off and on
// pictures), headings 0-4 (caption and frame), the option glyphs and labels (Check2 and
// CheckLabel 0-22, CheckTitle 0-9, Check10 and CheckLabel10 0-9) and, after set-up, the ten
// option groups. Everything starts hidden; pages place and bind what they use.
class ControlPools {
public:
    static constexpr int kKnobs = 12;
    static constexpr int kSliders = 11;
    static constexpr int kSwitches = 4;
    static constexpr int kHeadings = 5;
    static constexpr int kCheck2 = 23;
    static constexpr int kCheckTitles = 10;
    static constexpr int kCheck10 = 10;
    // Option groups by group number: 0-5 CheckRadio2a-2f, 6 CheckRadio4a, 7 CheckRadio3a,
    // 8 CheckRadio4b; 9 is the selector list CheckRadio10.
    static constexpr int kGroups = 10;
    static constexpr int kSelectorList = 9;

    ControlPools(QWidget* pageArea, const HostFontSettings& font, ValueTextSource valueText);

    // Set-up steps 4 to 7: create the ten option groups, give them their glyphs, labels and
    // style, and enable sliders 0 to 9.
    void createOptionGroups(QObject* owner);

    std::array<RKnob*, kKnobs> knobs{};
    std::array<QLabel*, kKnobs> knobLabels{};
    std::array<VSlider*, kSliders> sliders{};
    std::array<QLabel*, kSliders> sliderLabels{};
    std::array<QLabel*, 12> onOff{}; // 0-3 switches, 10 and 11 the picture holders
    std::array<QLabel*, kSwitches> onOffLabels{};
    std::array<QLabel*, kHeadings> tabLabels{};
    std::array<QWidget*, kHeadings> tabBoxes{};
    std::array<QLabel*, kCheck2> check2{};
    std::array<QLabel*, kCheck2> checkLabels{};
    std::array<QLabel*, kCheckTitles> checkTitles{};
    std::array<QLabel*, kCheck10> check10{};
    std::array<QLabel*, kCheck10> checkLabels10{};
    std::array<cCheckRadio*, kGroups> groups{};

    // Sets the caption of heading `index` (its label and what the panel reports).
    void setHeadingCaption(int index, const QString& caption);
    QString headingCaption(int index) const;

    // Shows picture 10 (off) or 11 (on) on switch `index`.
    void showSwitchPicture(int index, int picture);

    // The group that owns a Check2/CheckLabel index, and the item number inside it.
    static std::pair<int, int> groupOfCheck2(int index);

private:
    QLabel* makeGlyph(QWidget* parent, const QString& name);
};

} // namespace ferrule
