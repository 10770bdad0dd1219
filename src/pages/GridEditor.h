#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <array>
#include <functional>

class QLabel;
#include <QMenu>
class QPushButton;
class QWidget;

namespace ferrule {

class SystemImage;
class cCheckRadio;
class GridCells;

// The scale and phrase grid of pages 5 and 6: 12 rows (notes or keys) by 16 columns (scales or
// steps) of cells, each showing one image byte as a note text. A click on a cell opens a menu
// of every value it can take; a choice stores it. The Harmonist page adds "fill-in" for a
// whole scale, the Auto-Riff page an auto-fill that copies key C's phrase to the other keys.
class GridEditor : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool visible READ isVisible)
    Q_PROPERTY(int page READ page)
    Q_PROPERTY(QStringList cells READ cells)
    Q_PROPERTY(QStringList columnHeadings READ columnHeadings)
    Q_PROPERTY(QStringList rowHeadings READ rowHeadings)
    Q_PROPERTY(int clickedCell READ clickedCell)
public:
    static constexpr int kCells = 192;
    static constexpr int kFillIn = 4249;
    static constexpr int kRepeat = 4145;
    static constexpr int kEnd = 4146;
    static constexpr int kCodeBase = 4096;

    // `selector` is the view selector list.
    GridEditor(QWidget* pageArea, SystemImage& image, cCheckRadio& selector, QObject* parent);

    // Where the shown page's scales (page 5) or phrases (page 6) start in the image.
    void setDataAddress(int address) { dataAddress_ = address; }

    void ShowHarmonistGrid(bool visible);
    void ShowPhraseGrid(bool visible);
    void RefreshHarmonistGrid();
    void RefreshPhraseGrid();

    // A click on cell b: remembers it and builds the value menu (shown at `globalPos` unless
    // it is null, which tests use).
    QMenu* cellClicked(int b, const QPoint& globalPos);
    // The menu choice with identifier `id`, for the cell clicked last.
    void carryOut(int id);
    void autoFill();

    // The image address of cell b on the page shown.
    int cellAddress(int b) const;

    bool isVisible() const { return page_ != 0; }
    int page() const { return page_; }
    QStringList cells() const;
    QStringList columnHeadings() const;
    QStringList rowHeadings() const;
    int clickedCell() const { return clicked_; }
    // A cell's note text, its box in the page area, and the widget that paints the cells.
    QString cellText(int b) const;
    QRect cellGeometry(int b) const;
    QWidget* cellsWidget() const;
    QPushButton* autoFillButton() const {
        ensureBuilt();
        return autoFill_;
    }
    QMenu* menu() const { return menu_; }

signals:
    // A choice or an auto-fill starts and finishes writing the image: one edit.
    void editStarting();
    void editFinished();

public:
    // Errors while carrying out a choice are handed here (the window shows them).
    void setErrorReporter(std::function<void(const QString&)> reporter) {
        report_ = std::move(reporter);
    }

private:
    void build(QWidget* pageArea);
    bool built() const { return cells_ != nullptr; }
    void ensureBuilt() const;
    // Shows or hides what both grids have, for page `page`: the cells, the row headings and the
    // column headings, `firstStep` then `first` + 1 to `first` + 15. False when hiding a grid
    // that was never built.
    bool showGrid(int page, bool visible, const QString& firstStep, int first);
    void giveHeadings();
    void guarded(const std::function<void()>& action);
    // Carries out a user's change of the image as one edit.
    void edit(const std::function<void()>& action);

    QWidget* pageArea_ = nullptr;
    SystemImage& image_;
    int dataAddress_ = 0;
    cCheckRadio& selector_;
    int page_ = 0; // 5 or 6 while a grid is shown
    int clicked_ = -1;
    GridCells* cells_ = nullptr;
    std::array<QLabel*, 16> stepLabels_{};
    std::array<QLabel*, 13> keyLabels_{};
    std::array<QWidget*, 12> shapes_{};
    std::array<QWidget*, 13> lines_{};
    QPushButton* autoFill_ = nullptr;
    QPointer<QMenu> menu_;
    std::function<void(const QString&)> report_;
};

} // namespace ferrule
