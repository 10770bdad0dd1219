#include "EditorFixture.h"
#include "MouseHelpers.h"
#include "catalogue/StepText.h"
#include "controls/cCheckRadio.h"
#include "device/ModelDescription.h"
#include "pages/ControlPools.h"
#include "pages/GridEditor.h"
#include "sysdata/SystemImage.h"

#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <QAction>
#include <algorithm>

#include <set>

using namespace ferrule;

namespace {

const char* const kFlats[12] = {"C", "Db", "D", "Eb", "E", "F", "Gb", "G", "Ab", "A", "Bb", "B"};

// The text a cell must show, from the interval the code stands for.
QString expectedText(int code, int row) {
    if (code == 49) return QStringLiteral("repeat");
    if (code == 50) return QStringLiteral("end");
    if (code < 0 || code > 48) return {};
    const int interval = code - 24;
    const QString name = QString::fromLatin1(kFlats[((row + interval) % 12 + 12) % 12]);
    QString sign = interval < 0   ? QStringLiteral("-")
                   : interval > 0 ? QStringLiteral("+")
                                  : QStringLiteral(" ");
    QString octave;
    if (interval == -24 || interval == 24)
        octave = interval < 0 ? QStringLiteral(" vv") : QStringLiteral(" ^^");
    else if (interval <= -12)
        octave = QStringLiteral(" v");
    else if (interval >= 12)
        octave = QStringLiteral(" ^");
    return sign + name + octave;
}

// Every action of a menu (sub-menus included) with the caption of the menu that holds it.
std::vector<std::tuple<QString, QString, int>> actionsOf(QMenu* menu) {
    std::vector<std::tuple<QString, QString, int>> out;
    for (QAction* a : menu->actions()) {
        if (a->menu()) {
            for (QAction* b : a->menu()->actions())
                out.emplace_back(a->text(), b->text(), b->data().toInt());
        } else {
            out.emplace_back(QString(), a->text(), a->data().toInt());
        }
    }
    return out;
}

} // namespace

TEST(Grid, StepTextForEveryCodeOnSeveralRows) {
    EXPECT_EQ(StepText(24, 0), QStringLiteral(" C"));
    EXPECT_EQ(StepText(36, 0), QStringLiteral("+C ^"));
    EXPECT_EQ(StepText(0, 2), QStringLiteral("-D vv"));
    EXPECT_EQ(StepText(13, 0), QStringLiteral("-Db"));
    EXPECT_EQ(StepText(40, 0), QStringLiteral("+E ^"));
    EXPECT_EQ(StepText(28, 2), QStringLiteral("+Gb"));
    for (int row : {0, 1, 5, 11})
        for (int code = 0; code <= 255; ++code)
            EXPECT_EQ(StepText(code, row), expectedText(code, row))
                << "code " << code << " row " << row;
}

TEST(Grid, TheMenuHoldsEveryCodeOnceUnderTheNoteItSounds) {
    EditorFixture f;
    f.open(8, 5);
    GridEditor* grid = f.form->grid();
    for (int b : {0, 5, 17, 100, 191}) {
        const int row = b / 16;
        QMenu* menu = grid->cellClicked(b, {});
        const auto actions = actionsOf(menu);
        std::set<int> codes;
        QStringList order;
        for (const auto& [submenu, caption, id] : actions) {
            if (submenu.isEmpty()) continue;
            const int code = id - GridEditor::kCodeBase;
            EXPECT_TRUE(codes.insert(code).second) << "code " << code << " twice";
            EXPECT_EQ(caption, expectedText(code, row));
            // Grouped under the note the code sounds.
            EXPECT_EQ(submenu, QLatin1Char(' ') + QString::fromLatin1(kFlats[(row + code) % 12]));
            if (order.isEmpty() || order.last() != submenu) order << submenu;
        }
        EXPECT_EQ(codes.size(), 49u);
        EXPECT_EQ(*codes.rbegin(), 48);
        ASSERT_EQ(order.size(), 12);
        // Highest note first: the note eleven semitones above the row's, down to the row's own.
        for (int i = 0; i < 12; ++i)
            EXPECT_EQ(order[i],
                      QLatin1Char(' ') + QString::fromLatin1(kFlats[(row + 11 - i) % 12]));
        const bool fillIn = std::any_of(actions.begin(), actions.end(), [](const auto& a) {
            return std::get<2>(a) == GridEditor::kFillIn;
        });
        EXPECT_EQ(fillIn, b < 16) << "fill-in only on the first row of the Harmonist page";
        EXPECT_EQ(std::get<1>(actions.back()),
                  b < 16 ? QStringLiteral("fill-in  ->>") : expectedText(0, row));
    }
    f.open(8, 6);
    const auto riff = actionsOf(grid->cellClicked(3, {}));
    EXPECT_EQ(riff.size(), 51u);
    EXPECT_EQ(std::get<1>(riff[49]), QStringLiteral("repeat"));
    EXPECT_EQ(std::get<2>(riff[49]), 4145);
    EXPECT_EQ(std::get<1>(riff[50]), QStringLiteral("end"));
    EXPECT_EQ(std::get<2>(riff[50]), 4146);
    EXPECT_TRUE(std::none_of(riff.begin(), riff.end(),
                             [](const auto& a) { return std::get<2>(a) == GridEditor::kFillIn; }));
}

TEST(Grid, FillInAndAutoFillChangeExactlyTheirBytes) {
    EditorFixture f;
    SystemImage& image = f.state.image;
    GridEditor* grid = f.form->grid();
    cCheckRadio* list = f.form->pools().groups[ControlPools::kSelectorList];
    // `fill` gives `expected`; one undo restores every byte and cell it changed, a redo redoes it.
    const auto oneStep = [&](const SystemImage& expected, const auto& fill) {
        const QByteArray before = image.toByteArray();
        const QStringList cells = grid->cells();
        fill();
        EXPECT_TRUE(image == expected);
        f.form->undo();
        EXPECT_EQ(image.toByteArray(), before);
        EXPECT_EQ(grid->cells(), cells);
        f.form->redo();
        EXPECT_TRUE(image == expected);
    };
    f.open(8, 5);
    // Which byte a cell writes is the parameter index's law (IndexPlacements); the GT-8's two
    // scale views share scale 14.
    list->ClickOn(1);
    grid->cellClicked(0, {});
    grid->carryOut(GridEditor::kCodeBase + 40);
    list->ClickOn(0);
    EXPECT_EQ(grid->cellText(13), QStringLiteral("+E ^"));
    list->ClickOn(1);
    // Scale 16 (view 1, column 2), C set to 28, then filled in.
    grid->cellClicked(2, {});
    grid->carryOut(GridEditor::kCodeBase + 28);
    SystemImage expected = image;
    const int start = 11511 + 156 + 2 * 12;
    for (int i = 1; i < 12; ++i)
        expected.set(start + i, 28);
    oneStep(expected, [&] {
        grid->cellClicked(2, {});
        const QList<QAction*> checked = grid->menu()->findChildren<QAction*>();
        EXPECT_EQ(std::count_if(checked.begin(), checked.end(),
                                [](QAction* a) { return a->isChecked() && !a->menu(); }),
                  1)
            << "the menu marks the cell's value";
        for (QAction* a : checked) // chosen from the menu, as the user does
            if (a->data().toInt() == GridEditor::kFillIn) a->trigger();
    });
    EXPECT_EQ(grid->cellText(2 * 16 + 2), QStringLiteral("+Gb")) << "the D row a major third up";

    f.open(6, 6);
    list->ClickOn(4);
    const int phrase = 8422 + 4 * 192;
    image.set(phrase, 24);
    expected.assign(image);
    for (int k = 1; k < 12; ++k)
        for (int s = 0; s < 16; ++s)
            expected.set(phrase + k * 16 + s, image.at(phrase + s));
    oneStep(expected, [&] { QTest::mouseClick(grid->autoFillButton(), Qt::LeftButton); });
    for (int k = 0; k < 12; ++k)
        EXPECT_EQ(grid->cellText(k * 16), QLatin1Char(' ') + QString::fromLatin1(kFlats[k]));
}

TEST(Grid, ShownOnItsPagesAndHiddenWhenLeavingForPageOne) {
    EditorFixture f;
    GridEditor* grid = f.form->grid();
    f.open(8, 5);
    EXPECT_EQ(grid->page(), 5);
    EXPECT_FALSE(grid->cellsWidget()->isHidden());
    EXPECT_TRUE(grid->autoFillButton()->isHidden());
    EXPECT_EQ(grid->columnHeadings().first(), QStringLiteral("Scale 1 "));
    f.form->pools().groups[ControlPools::kSelectorList]->ClickOn(1);
    EXPECT_EQ(grid->columnHeadings().mid(0, 3), (QStringList{"14 ", " 15", " 16"}));
    EXPECT_EQ(grid->columnHeadings().last(), QStringLiteral(" 29"));
    f.form->ShowTab(1);
    EXPECT_FALSE(grid->isVisible());
    EXPECT_TRUE(grid->cellsWidget()->isHidden());

    f.open(8, 6);
    EXPECT_EQ(grid->columnHeadings().first(), QStringLiteral("Step 1 "));
    EXPECT_FALSE(grid->autoFillButton()->isHidden());
    EXPECT_EQ(grid->rowHeadings().last(), QStringLiteral("In >> "));
    f.form->ShowTab(4);
    EXPECT_TRUE(grid->cellsWidget()->isHidden());

    // Pages 12-15 leave the grid as it was.
    f.open(10, 1);
    f.form->ShowTab(5);
    f.form->ShowTab(12);
    EXPECT_FALSE(grid->cellsWidget()->isHidden());

    // A click on a cell opens its menu at the pointer.
    f.open(3, 6);
    QTest::mouseClick(grid->cellsWidget(), Qt::LeftButton, {},
                      grid->cellsWidget()->mapFrom(grid->cellsWidget()->parentWidget(),
                                                   grid->cellGeometry(20).center()));
    EXPECT_EQ(grid->clickedCell(), 20);
    ASSERT_NE(grid->menu(), nullptr);
    EXPECT_TRUE(grid->menu()->isVisible());
    grid->menu()->close();
}

// The keyboard on the grid: arrows walk the cells and stop at the edges, Enter opens the menu of
// the current cell with its value checked, and a choice writes what a click's choice writes.
TEST(Grid, TheKeyboardWalksTheCellsAndChoosesAsTheMouseDoes) {
    EditorFixture f;
    GridEditor* grid = f.form->grid();
    f.open(8, 6);
    QWidget* cells = grid->cellsWidget();
    cells->setProperty("current", 0);
    for (Qt::Key k : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Right, Qt::Key_Down, Qt::Key_Down})
        QTest::keyClick(cells, k);
    EXPECT_EQ(cells->property("current").toInt(), 2 * 16 + 1) << "left and up stop at the edge";
    QTest::keyClick(cells, Qt::Key_End);
    EXPECT_EQ(cells->property("current").toInt(), 2 * 16 + 15);
    QTest::keyClick(cells, Qt::Key_Home);
    QTest::keyClick(cells, Qt::Key_Right);
    const int b = cells->property("current").toInt();
    EXPECT_EQ(b, 2 * 16 + 1);
    EXPECT_EQ(cells->property("focusRect").toRect(),
              grid->cellGeometry(b).translated(-cells->pos()));

    const int address = grid->cellAddress(b);
    f.state.image.set(address, 31); // a note the menu offers
    const int current = 31;
    QTest::keyClick(cells, Qt::Key_Return);
    ASSERT_NE(grid->menu(), nullptr);
    EXPECT_EQ(grid->clickedCell(), b);
    QAction* checked = nullptr;
    QAction* other = nullptr;
    for (QAction* a : grid->menu()->findChildren<QAction*>()) {
        if (a->menu() || !a->data().isValid()) continue;
        if (a->isChecked())
            checked = a;
        else if (!other && a->data().toInt() - GridEditor::kCodeBase != current)
            other = a;
    }
    ASSERT_NE(checked, nullptr);
    EXPECT_EQ(checked->data().toInt() - GridEditor::kCodeBase, current);
    ASSERT_NE(other, nullptr);
    const QByteArray before = f.state.image.toByteArray();
    other->trigger();
    const QByteArray byKeys = f.state.image.toByteArray();
    f.form->undo();
    EXPECT_EQ(f.state.image.toByteArray(), before);
    grid->cellClicked(b, {});
    grid->carryOut(other->data().toInt());
    EXPECT_EQ(f.state.image.toByteArray(), byKeys);
    EXPECT_EQ(f.state.image.at(address), other->data().toInt() - GridEditor::kCodeBase);
}
