#include "controls/HostFont.h"

#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {
QLabel* label(QWidget* parent, int pixels, bool bold) {
    auto* l = new QLabel(QStringLiteral("Text"), parent);
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(pixels);
    f.setBold(bold);
    f.setItalic(false);
    l->setFont(f);
    return l;
}
} // namespace

// The window's labels and buttons, however deep, take the host's face, italic and underline and
// keep their own size and weight; what lies inside a control that sets its own font is left alone.
TEST(HostFont, LabelsAndButtonsAtAnyDepthTakeTheFaceButNotTheSizeAndControlsKeepTheirOwn) {
    QWidget window;
    QLabel* top = label(&window, 10, true);
    auto* panel = new QWidget(&window);
    auto* inner = new QWidget(panel);
    QLabel* deep = label(inner, 11, false);
    auto* button = new QPushButton(QStringLiteral("Go"), panel);
    auto* knob = new QWidget(panel);
    knob->setProperty("ferruleOwnFont", true);
    QLabel* knobLabel = label(new QWidget(knob), 9, false);

    HostFontSettings font;
    font.valid = true;
    font.name = QStringLiteral("DejaVu Serif");
    font.italic = true;
    font.underline = true;
    font.size = 20.0F;
    ApplyHostFont(&window, font);

    for (QWidget* w :
         {static_cast<QWidget*>(top), static_cast<QWidget*>(deep), static_cast<QWidget*>(button)}) {
        EXPECT_EQ(w->font().family(), QStringLiteral("DejaVu Serif"))
            << w->metaObject()->className();
        EXPECT_TRUE(w->font().italic());
        EXPECT_TRUE(w->font().underline());
    }
    EXPECT_EQ(top->font().pixelSize(), 10);
    EXPECT_TRUE(top->font().bold());
    EXPECT_EQ(deep->font().pixelSize(), 11);
    EXPECT_EQ(knobLabel->font().family(), QStringLiteral("DejaVu Sans"));
    EXPECT_FALSE(knobLabel->font().italic());
    EXPECT_EQ(knobLabel->font().pixelSize(), 9);
}
