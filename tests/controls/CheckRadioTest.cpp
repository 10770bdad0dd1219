#include "MouseHelpers.h"
#include "controls/cCheckRadio.h"

#include <QLabel>
#include <QSignalSpy>
#include <QWidget>
#include <gtest/gtest.h>

#include <memory>

using namespace ferrule;

namespace {

// A window with glyphs and labels for one group of `count` items, optionally with a title.
struct Group {
    Group(int count, bool withTitle, int h = 0, double v = 210) {
        QVector<QLabel*> glyphs;
        QVector<QLabel*> labels;
        for (int i = 0; i < count; ++i) {
            glyphs << new QLabel(&window);
            labels << new QLabel(&window);
        }
        if (withTitle) labels << new QLabel(&window);
        group.SetMyImages(glyphs);
        group.SetMyTexts(labels);
        group.SetStyle(count, h, v);
        window.show();
    }
    int glyphTop(int i) const { return group.glyph(i)->y(); }
    int picture(int i) const { return cCheckRadio::glyphPicture(group.glyph(i)); }
    std::vector<int> pictures() const {
        std::vector<int> out;
        for (int i = 0; i < group.itemCount(); ++i)
            out.push_back(picture(i));
        return out;
    }

    QWidget window;
    cCheckRadio group;
    QSignalSpy spy{&group, &cCheckRadio::Click};
};

int px(int twips) {
    return twips / 15;
}

} // namespace

TEST(CheckRadio, AGroupWithoutItemsIgnoresPlacement) {
    cCheckRadio group;
    group.setTop(100);
    group.setLeft(100);
    group.setVisible(true);
    EXPECT_FALSE(group.isVisible());
    EXPECT_EQ(group.top(), 0);
}

// Items stand from the last (the highest) down, or along a row; a title stands above them.
TEST(CheckRadio, ItemsAndTitleStandWhereTheStyleAndThePlacementPutThem) {
    const struct {
        int count;
        bool title;
        int h, v;
        std::vector<QPoint> glyphs; // in twips, item 0 first, for left 300 and top 1000
    } cases[] = {{3, false, 0, 210, {{300, 1420}, {300, 1210}, {300, 1000}}},
                 {3, true, 0, 210, {{300, 1660}, {300, 1450}, {300, 1240}}},
                 {4, true, 630, 0, {{300, 1270}, {930, 1270}, {1560, 1270}, {2190, 1270}}}};
    for (const auto& c : cases) {
        Group g(c.count, c.title, c.h, c.v);
        g.group.setTop(1000);
        g.group.setLeft(300);
        for (int i = 0; i < c.count; ++i) {
            const QPoint at = c.glyphs[std::size_t(i)];
            EXPECT_EQ(g.group.glyph(i)->pos(), px(at.x(), at.y())) << c.count << " " << i;
            if (c.h == 0) {
                EXPECT_EQ(g.group.label(i)->x(), px(540)) << "beside its glyph";
            }
        }
        if (c.title && c.h == 0) {
            EXPECT_EQ(g.group.label(c.count)->pos(), px(300, 1000));
        }
    }
}

TEST(CheckRadio, TextsVisibilityAndTitle) {
    Group g(2, true);
    g.group.SetTextEx(
        {QStringLiteral("Mute"), QStringLiteral("Bypass"), QStringLiteral("Tuner out")}, 0);
    EXPECT_EQ(g.group.title(), QStringLiteral("Tuner out"));
    EXPECT_EQ(g.group.captions(), (QStringList{QStringLiteral("Mute"), QStringLiteral("Bypass")}));
    g.group.setVisible(true);
    EXPECT_FALSE(g.group.glyph(1)->isHidden());
    EXPECT_FALSE(g.group.label(2)->isHidden()) << "the title shows with the group";
    g.group.setVisible(false);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(g.group.glyph(i)->isHidden());
        EXPECT_TRUE(g.group.label(i)->isHidden());
    }
    EXPECT_TRUE(g.group.label(2)->isHidden());
    // SetStyle keeps the visibility the group had.
    g.group.setVisible(true);
    g.group.SetStyle(2, 0, 210);
    EXPECT_FALSE(g.group.glyph(0)->isHidden());
}

TEST(CheckRadio, RadioSelectionAndClicks) {
    Group g(3, false);
    g.group.setSelected(7);
    EXPECT_EQ(g.group.Selected(), 2);
    EXPECT_EQ(g.pictures(), (std::vector<int>{0, 0, 1}));
    g.group.setSelected(-1);
    EXPECT_EQ(g.pictures(), (std::vector<int>{0, 0, 0}));
    g.group.setSelected(1);

    g.group.ClickOn(-1); // nothing hovered
    g.group.ClickOn(1);  // already selected
    g.group.ClickOn(3);  // beyond the items
    EXPECT_TRUE(g.spy.isEmpty());
    g.group.ClickOn(0);
    EXPECT_EQ(reported(g.spy), QList<int>{0});

    // Hover and press pictures, then a click on the hovered item.
    g.group.setMouseOver(2);
    EXPECT_EQ(g.picture(2), 4);
    g.group.MouseDown();
    EXPECT_EQ(g.picture(2), 8);
    g.group.ClickOn(-1);
    EXPECT_EQ(reported(g.spy), (QList<int>{0, 2}));
    EXPECT_EQ(g.pictures(), (std::vector<int>{0, 0, 1})) << "a new selection redraws plainly";
    g.group.setMouseOver(2);
    EXPECT_EQ(g.picture(2), 5);
    g.group.MouseDown();
    EXPECT_EQ(g.picture(2), 9);
    g.group.setMouseOver(-1);
    EXPECT_EQ(g.picture(2), 1);
    EXPECT_EQ(g.group.hoverIndex(), -1);
    g.group.setMouseOver(5); // not an item
    EXPECT_EQ(g.group.hoverIndex(), -1);
}

TEST(CheckRadio, CheckBox) {
    Group g(1, true);
    g.group.setSelected(5);
    EXPECT_EQ(g.group.Selected(), 1);
    EXPECT_EQ(g.picture(0), 1);
    g.group.ClickOn(0);
    EXPECT_EQ(g.group.Selected(), 0);
    g.group.ClickOn(0);
    EXPECT_EQ(g.group.Selected(), 1);
    EXPECT_EQ(reported(g.spy), (QList<int>{0, 1}));
    g.group.setSelected(0);
    EXPECT_EQ(g.picture(0), 0);
}

TEST(CheckRadio, ADisabledGroupIgnoresTheMouse) {
    Group g(2, false);
    g.group.setSelected(1);
    g.group.setEnabled(false);
    EXPECT_EQ(g.pictures(), (std::vector<int>{0, 2}));
    g.group.setMouseOver(0);
    EXPECT_EQ(g.group.hoverIndex(), -1);
    g.group.MouseDown();
    g.group.ClickOn(0);
    EXPECT_EQ(g.group.Selected(), 1);
    EXPECT_TRUE(g.spy.isEmpty());
    g.group.setEnabled(true);
    EXPECT_EQ(g.pictures(), (std::vector<int>{0, 1}));
}
