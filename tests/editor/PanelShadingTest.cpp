#include "editor/PanelShading.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

using namespace ferrule;

TEST(PanelShading, BlendColourGoldenValues) {
    const int white = 0xFFFFFF;
    const int c = BlendColour(white, 0x000000, 700);
    EXPECT_EQ(RedOf(c), 179);
    EXPECT_EQ(GreenOf(c), 179);
    EXPECT_EQ(BlueOf(c), 179);
    const int d = BlendColour(white, RgbColour(32, 64, 128), 700);
    EXPECT_EQ(RedOf(d), 189);
    EXPECT_EQ(GreenOf(d), 198);
    EXPECT_EQ(BlueOf(d), 217);
    EXPECT_EQ(BlendColour(white, RgbColour(32, 64, 128), 70), d) << "per cent below 100";
    EXPECT_EQ(BlendColour(white, white, 700), white) << "256 counts as 255";
    // Halves go to the even neighbour: (1 × 500 + 0 × 500 + 500) / 1000 = 1.0; (3×50+0+50)/100 = 2.
    EXPECT_EQ(RedOf(BlendColour(RgbColour(1, 0, 0), 0, 500)), 1);
    EXPECT_EQ(RedOf(BlendColour(RgbColour(3, 0, 0), 0, 50)), 2);
    EXPECT_EQ(RedOf(BlendColour(RgbColour(5, 0, 0), 0, 50)), 3) << "(250+50)/100 = 3";
    EXPECT_EQ(RedOf(BlendColour(RgbColour(1, 0, 0), 0, 250)), 1)
        << "(250+500)/1000 = 0.75 rounds to 1";
}

TEST(PanelShading, FillGradientDirections) {
    QImage img(40, 40, QImage::Format_RGB32);
    img.fill(Qt::black);
    {
        QPainter p(&img);
        EXPECT_FALSE(FillGradient(p, 0, 0, 600, 600, 0xFFFFFF, 0x0000FF, 4));
    }
    EXPECT_EQ(img.pixel(20, 20), QColor(Qt::black).rgb()) << "direction 4 draws nothing";
    {
        QPainter p(&img);
        EXPECT_TRUE(
            FillGradient(p, 0, 0, 600, 600, 0xFFFFFF, 0x0000FF, 2)); // white top, red bottom
    }
    EXPECT_GT(QColor(img.pixel(20, 0)).green(), 240);
    EXPECT_LT(QColor(img.pixel(20, 39)).green(), 20);
    EXPECT_GT(QColor(img.pixel(20, 39)).red(), 230);
    {
        QPainter p(&img);
        FillGradient(p, 0, 0, 600, 600, 0xFFFFFF, 0x0000FF, 1); // white at the right
    }
    EXPECT_GT(QColor(img.pixel(39, 20)).green(), 240);
    EXPECT_LT(QColor(img.pixel(0, 20)).green(), 20);
}
