#include "GridEditor.h"

#include "controls/Twips.h"

#include "GridCells.h"
#include "catalogue/StepText.h"
#include "controls/CaptionLabel.h"
#include "controls/cCheckRadio.h"
#include "sysdata/FerruleError.h"
#include "sysdata/SystemImage.h"

#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>

namespace ferrule {
namespace {

// The grid's place in the page area, in twips like every control: a column of row headings,
// then 16 columns. The pixel values below are what the painting uses.
const int kLeft = twipsToPx(750);
const int kHeadTop = twipsToPx(420);
const int kTop = twipsToPx(690);
const int kColumn = twipsToPx(510);
const int kRow = twipsToPx(360);
const int kCellWidth = twipsToPx(495);
const int kCellHeight = twipsToPx(330);

template <std::size_t N> QStringList textsOf(const std::array<QLabel*, N>& labels) {
    QStringList texts;
    for (const QLabel* label : labels)
        texts << label->text();
    return texts;
}

QWidget* band(QWidget* parent, const QRect& r, const QColor& colour) {
    auto* w = new QWidget(parent);
    w->setGeometry(r);
    w->setAutoFillBackground(true);
    QPalette pal = w->palette();
    pal.setColor(QPalette::Window, colour);
    w->setPalette(pal);
    w->setAttribute(Qt::WA_TransparentForMouseEvents);
    w->hide();
    return w;
}

} // namespace

GridEditor::GridEditor(QWidget* pageArea, SystemImage& image, cCheckRadio& selector,
                       QObject* parent)
    : QObject(parent)
    , image_(image)
    , selector_(selector) {
    setObjectName(QStringLiteral("Grid"));
    setProperty("ferruleKind", QStringLiteral("grid"));
    pageArea_ = pageArea;
}

void GridEditor::ensureBuilt() const {
    // The grid's widgets are made the first time a grid is shown or read: a window that never
    // shows its grid pages (the GT-10 has none) never pays for them.
    if (!built()) const_cast<GridEditor*>(this)->build(pageArea_);
}

void GridEditor::build(QWidget* pageArea) {
    const int width = kLeft + 16 * kColumn - 6;
    // Shaded bands: 0-10 behind rows 1-11, 11 behind the column headings.
    for (int i = 0; i < 11; ++i)
        shapes_[std::size_t(i)] =
            band(pageArea, QRect(6, kTop + (i + 1) * kRow - 1, width, kRow),
                 i % 2 == 0 ? QColor(0xdc, 0xe4, 0xee) : QColor(0xe8, 0xee, 0xf4));
    shapes_[11] = band(pageArea, QRect(6, kHeadTop - 2, width, kRow - 4), QColor(0x3a, 0x41, 0x4a));
    // Ruling lines: 0 under the headings, 1-12 under each row.
    lines_[0] = band(pageArea, QRect(6, kTop - 3, width, 1), QColor(0x5c, 0x66, 0x72));
    for (int r = 0; r < 12; ++r)
        lines_[std::size_t(r + 1)] =
            band(pageArea, QRect(6, kTop + (r + 1) * kRow - 2, width, 1), QColor(0xb5, 0xbf, 0xcb));

    for (int i = 0; i < 13; ++i) {
        QLabel* k = makeCaptionLabel(pageArea, QStringLiteral("ARKeyLabel%1").arg(i),
                                     i == 12 ? 9 : 10, true);
        k->setText(i == 12 ? QStringLiteral("In >> ") : keyName(i));
        k->setGeometry(i == 12 ? QRect(8, kHeadTop, 40, 16)
                               : QRect(8, kTop + i * kRow + 3, 42, 16));
        if (i == 12) k->setStyleSheet(QStringLiteral("color: #e9edf1;"));
        keyLabels_[std::size_t(i)] = k;
    }
    for (int c = 0; c < 16; ++c) {
        QLabel* s = makeCaptionLabel(pageArea, QStringLiteral("StepLabel%1").arg(c), 9, true);
        // The first heading reads "Scale 1 " or "Step 1 ": it reaches left over its row heading.
        s->setGeometry(c == 0 ? QRect(kLeft - 20, kHeadTop, kCellWidth + 20, 16)
                              : QRect(kLeft + c * kColumn, kHeadTop, kCellWidth, 16));
        s->setAlignment(c == 0 ? Qt::AlignRight | Qt::AlignVCenter : Qt::AlignCenter);
        s->setStyleSheet(QStringLiteral("color: #e9edf1;"));
        stepLabels_[std::size_t(c)] = s;
    }
    cells_ = new GridCells(pageArea, QSize(kCellWidth, kCellHeight), kColumn, kRow);
    cells_->move(kLeft, kTop);
    cells_->hide();
    connect(cells_, &GridCells::clicked, this,
            [this](int b, const QPoint& at) { cellClicked(b, at); });
    autoFill_ = new QPushButton(QStringLiteral("Auto-fill from C"), pageArea);
    autoFill_->setObjectName(QStringLiteral("ARautoFill"));
    autoFill_->setGeometry(width - 118, kTop + 12 * kRow + 2, 124, 20);
    autoFill_->setToolTip(QStringLiteral("Copy the phrase of key C to the other eleven keys"));
    autoFill_->hide();
    connect(autoFill_, &QPushButton::clicked, this, [this] { edit([this] { autoFill(); }); });
}

void GridEditor::guarded(const std::function<void()>& action) {
    ReportErrors(action, [this](const QString& m) {
        if (report_) report_(m);
    });
}

void GridEditor::edit(const std::function<void()>& action) {
    emit editStarting();
    guarded(action);
    emit editFinished();
}

bool GridEditor::showGrid(int page, bool visible, const QString& firstStep, int first) {
    if (!visible && !built()) {
        page_ = page_ == page ? 0 : page_;
        return false;
    }
    ensureBuilt();
    cells_->setVisible(visible);
    if (visible) {
        stepLabels_[0]->setText(firstStep);
        for (int i = 1; i < 16; ++i)
            stepLabels_[std::size_t(i)]->setText(QLatin1Char(' ') + QString::number(first + i));
    }
    for (QLabel* l : stepLabels_)
        l->setVisible(visible);
    for (QLabel* l : keyLabels_)
        l->setVisible(visible);
    page_ = visible ? page : (page_ == page ? 0 : page_);
    return true;
}

void GridEditor::ShowHarmonistGrid(bool visible) {
    const int view = selector_.Selected();
    if (!showGrid(5, visible, view == 0 ? QStringLiteral("Scale 1 ") : QStringLiteral("14 "),
                  view * 13 + 1))
        return;
    for (int i = 0; i <= 10; ++i)
        shapes_[std::size_t(i)]->hide();
    shapes_[11]->setVisible(visible);
    lines_[0]->setVisible(visible);
    for (int i = 1; i <= 12; ++i)
        lines_[std::size_t(i)]->hide();
    autoFill_->hide();
    if (visible) giveHeadings();
}

void GridEditor::ShowPhraseGrid(bool visible) {
    if (!showGrid(6, visible, QStringLiteral("Step 1 "), 1)) return;
    for (QWidget* s : shapes_)
        s->setVisible(visible);
    for (QWidget* l : lines_)
        l->setVisible(visible);
    autoFill_->setVisible(visible);
    if (visible) giveHeadings();
}

void GridEditor::giveHeadings() {
    QStringList rows;
    for (int i = 0; i < 12; ++i)
        rows << keyLabels_[std::size_t(i)]->text().trimmed();
    QStringList columns;
    for (const QLabel* l : stepLabels_)
        columns << l->text().trimmed();
    cells_->setHeadings(rows, columns);
}

void GridEditor::RefreshHarmonistGrid() {
    ensureBuilt();
    const int view = selector_.Selected();
    for (int s = 0; s < 16; ++s)
        for (int r = 0; r < 12; ++r)
            cells_->setText(r * 16 + s,
                            StepText(image_.at(dataAddress_ + view * 156 + s * 12 + r), r));
}

void GridEditor::RefreshPhraseGrid() {
    ensureBuilt();
    const int phrase = selector_.Selected();
    for (int k = 0; k < 12; ++k)
        for (int s = 0; s < 16; ++s)
            cells_->setText(k * 16 + s,
                            StepText(image_.at(dataAddress_ + phrase * 192 + k * 16 + s), k));
}

int GridEditor::cellAddress(int b) const {
    if (page_ == 5) return dataAddress_ + selector_.Selected() * 156 + (b % 16) * 12 + b / 16;
    return dataAddress_ + selector_.Selected() * 192 + b;
}

QMenu* GridEditor::cellClicked(int b, const QPoint& globalPos) {
    ensureBuilt();
    clicked_ = b;
    const int r = b / 16;
    if (menu_) menu_->deleteLater();
    auto* menu = new QMenu(cells_);
    menu->setObjectName(QStringLiteral("Popup"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // The cell's value is checked, and the keyboard starts on it.
    const int current = kCodeBase + image_.at(cellAddress(b));
    auto mark = [menu, current](QMenu* in, QAction* a) {
        if (a->data().toInt() != current) return;
        a->setCheckable(true);
        a->setChecked(true);
        if (in != menu) {
            in->menuAction()->setCheckable(true);
            in->menuAction()->setChecked(true);
            in->setActiveAction(a);
        }
        menu->setActiveAction(in == menu ? a : in->menuAction());
    };
    // One sub-menu per note that a code sounds, highest note first.
    for (int i = 11; i >= 0; --i) {
        QMenu* sub = menu->addMenu(StepText(24, r + i));
        QList<int> codes;
        if (i == 0) codes << 48;
        codes << 36 + i << 24 + i << 12 + i << i;
        for (int code : codes) {
            QAction* a = sub->addAction(StepText(code, r));
            a->setData(kCodeBase + code);
            mark(sub, a);
        }
    }
    if (page_ == 5 && b < 16) menu->addAction(QStringLiteral("fill-in  ->>"))->setData(kFillIn);
    if (page_ == 6) {
        for (const auto& [text, id] : {std::pair{QStringLiteral("repeat"), kRepeat},
                                       std::pair{QStringLiteral("end"), kEnd}}) {
            QAction* a = menu->addAction(text);
            a->setData(id);
            mark(menu, a);
        }
    }
    connect(menu, &QMenu::triggered, this,
            [this](QAction* a) { edit([this, a] { carryOut(a->data().toInt()); }); });
    menu_ = menu;
    if (!globalPos.isNull()) menu->popup(globalPos);
    return menu;
}

void GridEditor::carryOut(int id) {
    if (clicked_ < 0) return;
    if (id == kFillIn) {
        // The scale becomes one fixed interval: every note takes the interval chosen for C.
        const int start = dataAddress_ + selector_.Selected() * 156 + clicked_ * 12;
        for (int i = 1; i <= 11; ++i)
            image_.set(start + i, image_.at(start));
        RefreshHarmonistGrid();
        return;
    }
    const int code = id - kCodeBase;
    image_.set(cellAddress(clicked_), code);
    cells_->setText(clicked_, StepText(code, clicked_ / 16));
}

void GridEditor::autoFill() {
    const int start = dataAddress_ + selector_.Selected() * 192;
    for (int s = 0; s < 16; ++s)
        for (int k = 1; k <= 11; ++k)
            image_.set(start + k * 16 + s, image_.at(start + s));
    RefreshPhraseGrid();
}

QStringList GridEditor::cells() const {
    ensureBuilt();
    QStringList out;
    for (int b = 0; b < kCells; ++b)
        out << cells_->text(b);
    return out;
}

QString GridEditor::cellText(int b) const {
    ensureBuilt();
    return cells_->text(b);
}

QRect GridEditor::cellGeometry(int b) const {
    ensureBuilt();
    return cells_->cellRect(b).translated(cells_->pos());
}

QWidget* GridEditor::cellsWidget() const {
    ensureBuilt();
    return cells_;
}

QStringList GridEditor::columnHeadings() const {
    ensureBuilt();
    return textsOf(stepLabels_);
}

QStringList GridEditor::rowHeadings() const {
    ensureBuilt();
    return textsOf(keyLabels_);
}

} // namespace ferrule
