#include "ControlPools.h"

#include "controls/CaptionLabel.h"
#include "controls/ControlArt.h"
#include "controls/HostFont.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"

namespace ferrule {
namespace {

// Glyph and label runs of the option groups in creation order (2a-2f, 3a, 4a, 4b), with their
// title label and style (count, horizontal step, vertical step).
struct GroupDesign {
    const char* name;
    int group;      // group number used by the pages
    int firstCheck; // first index in Check2/CheckLabel
    int count;
    int title; // CheckTitle index
};
constexpr GroupDesign kGroupDesign[] = {
    {"CheckRadio2a", 0, 0, 2, 0},  {"CheckRadio2b", 1, 2, 2, 1},  {"CheckRadio2c", 2, 4, 2, 2},
    {"CheckRadio2d", 3, 6, 2, 3},  {"CheckRadio2e", 4, 8, 2, 4},  {"CheckRadio2f", 5, 10, 2, 5},
    {"CheckRadio3a", 7, 16, 3, 8}, {"CheckRadio4a", 6, 12, 4, 6}, {"CheckRadio4b", 8, 19, 4, 9},
};

// A pool of knobs or sliders, each after its caption label (named `labelName` with the
// index, in `labelSize` points).
template <class Control, std::size_t N>
void makeValueControls(QWidget* pageArea, const QString& labelName, int labelSize,
                       const HostFontSettings& font, const ValueTextSource& valueText,
                       std::array<Control*, N>& controls, std::array<QLabel*, N>& labels) {
    for (std::size_t i = 0; i < N; ++i) {
        labels[i] = makeCaptionLabel(pageArea, labelName.arg(i), labelSize, false);
        labels[i]->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        auto* control = new Control(int(i), pageArea);
        control->setValueTextSource(valueText);
        control->applyHostFont(font);
        control->hide();
        controls[i] = control;
    }
}

} // namespace

QLabel* ControlPools::makeGlyph(QWidget* parent, const QString& name) {
    auto* g = new QLabel(parent);
    g->setObjectName(name);
    g->setFixedSize(13, 13);
    g->setPixmap(ControlArt::checkImage(0, g->devicePixelRatioF()));
    g->setProperty("checkImage", 0);
    g->hide();
    return g;
}

ControlPools::ControlPools(QWidget* pageArea, const HostFontSettings& font,
                           ValueTextSource valueText) {
    for (int i = 0; i < kHeadings; ++i) {
        auto* box = new QWidget(pageArea);
        box->setObjectName(QStringLiteral("TabBox%1").arg(i));
        box->setAttribute(Qt::WA_TransparentForMouseEvents);
        box->setProperty("ferruleKind", QStringLiteral("heading"));
        box->setProperty("poolIndex", i);
        box->hide();
        tabBoxes[std::size_t(i)] = box;
    }
    for (int i = 0; i < kHeadings; ++i)
        tabLabels[std::size_t(i)] =
            makeCaptionLabel(pageArea, QStringLiteral("TabLabel%1").arg(i), 12, true);
    makeValueControls(pageArea, QStringLiteral("KnobLabel%1"), 10, font, valueText, knobs,
                      knobLabels);
    makeValueControls(pageArea, QStringLiteral("SliderLabel%1"), 11, font, valueText, sliders,
                      sliderLabels);
    for (int i : {0, 1, 2, 3, 10, 11}) {
        auto* sw = new QLabel(pageArea);
        sw->setObjectName(QStringLiteral("OnOff%1").arg(i));
        sw->setPixmap(ControlArt::onOffImage(i == 11 ? 11 : 10, sw->devicePixelRatioF()));
        sw->setProperty("picture", i == 11 ? 11 : 10);
        sw->setCursor(Qt::PointingHandCursor);
        if (i < kSwitches) {
            sw->setProperty("ferruleKind", QStringLiteral("switch"));
            sw->setProperty("poolIndex", i);
        }
        sw->hide();
        onOff[std::size_t(i)] = sw;
    }
    for (int i = 0; i < kSwitches; ++i)
        onOffLabels[std::size_t(i)] =
            makeCaptionLabel(pageArea, QStringLiteral("OnOffLabel%1").arg(i), 11, false);
    for (int i = 0; i < kCheck2; ++i) {
        check2[std::size_t(i)] = makeGlyph(pageArea, QStringLiteral("Check2_%1").arg(i));
        checkLabels[std::size_t(i)] =
            makeCaptionLabel(pageArea, QStringLiteral("CheckLabel%1").arg(i), 11, false);
    }
    for (int i = 0; i < kCheckTitles; ++i)
        checkTitles[std::size_t(i)] =
            makeCaptionLabel(pageArea, QStringLiteral("CheckTitle%1").arg(i), 10, true);
    for (int i = 0; i < kCheck10; ++i) {
        check10[std::size_t(i)] = makeGlyph(pageArea, QStringLiteral("Check10_%1").arg(i));
        checkLabels10[std::size_t(i)] =
            makeCaptionLabel(pageArea, QStringLiteral("CheckLabel10_%1").arg(i), 11, false);
    }
}

void ControlPools::createOptionGroups(QObject* owner) {
    for (const GroupDesign& d : kGroupDesign) {
        auto* g = new cCheckRadio(owner);
        g->setObjectName(QString::fromLatin1(d.name));
        g->setProperty("ferruleKind", QStringLiteral("options"));
        g->setProperty("poolIndex", d.group);
        groups[std::size_t(d.group)] = g;
    }
    auto* list = new cCheckRadio(owner);
    list->setObjectName(QStringLiteral("CheckRadio10"));
    list->setProperty("ferruleKind", QStringLiteral("list"));
    groups[kSelectorList] = list;

    for (const GroupDesign& d : kGroupDesign) {
        QVector<QLabel*> glyphs;
        for (int i = 0; i < d.count; ++i)
            glyphs << check2[std::size_t(d.firstCheck + i)];
        groups[std::size_t(d.group)]->SetMyImages(glyphs);
    }
    list->SetMyImages(QVector<QLabel*>(check10.begin(), check10.end()));

    for (const GroupDesign& d : kGroupDesign) {
        QVector<QLabel*> labels;
        for (int i = 0; i < d.count; ++i)
            labels << checkLabels[std::size_t(d.firstCheck + i)];
        labels << checkTitles[std::size_t(d.title)];
        groups[std::size_t(d.group)]->SetMyTexts(labels);
    }
    // The list has no title: the array's last element stays empty.
    QVector<QLabel*> listLabels(checkLabels10.begin(), checkLabels10.end());
    listLabels << nullptr;
    list->SetMyTexts(listLabels);

    for (const GroupDesign& d : kGroupDesign)
        groups[std::size_t(d.group)]->SetStyle(d.count, 0, 210);
    list->SetStyle(5, 630, 0);

    for (int i = 0; i <= 9; ++i)
        sliders[std::size_t(i)]->setEnabledInput(true);
}

void ControlPools::setHeadingCaption(int index, const QString& caption) {
    QLabel* label = tabLabels.at(std::size_t(index));
    label->setText(caption);
    label->adjustSize();
    tabBoxes.at(std::size_t(index))->setProperty("caption", caption);
}

QString ControlPools::headingCaption(int index) const {
    return tabLabels.at(std::size_t(index))->text();
}

void ControlPools::showSwitchPicture(int index, int picture) {
    QLabel* sw = onOff.at(std::size_t(index));
    sw->setPixmap(onOff.at(std::size_t(picture))->pixmap());
    sw->setProperty("picture", picture);
    sw->setProperty("on", picture == 11);
}

std::pair<int, int> ControlPools::groupOfCheck2(int index) {
    for (const GroupDesign& d : kGroupDesign)
        if (index >= d.firstCheck && index < d.firstCheck + d.count)
            return {d.group, index - d.firstCheck};
    return {-1, -1};
}

} // namespace ferrule
