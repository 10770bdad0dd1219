// A stock Qt 6 dialog made of the same kinds and counts of widgets as the editor's first page,
// at the editor's fixed size, rendered to PNG the same way `ferrule-host --screenshot` renders
// the editor: the peer that the editor's start-up is measured against (bench/start_vs_peer.sh).
// With --empty it is the floor: the same dialog with nothing in it. With --page-fonts its texts
// are drawn in the page's seven sizes and weights instead of the one default font, so that a
// comparison can tell the cost of the fonts from the rest. Without --screenshot it stays on the
// screen (FERRULE_FIRST_FRAME says when it is first painted).
//
//   ferrule_stock_peer --knobs N --sliders N --switches N --groups 2,2,4 --headings N
//                      --buttons N --tabs N [--page-fonts] [--empty] [--screenshot FILE.png]

#include <QApplication>
#include <QCheckBox>
#include <QCommandLineParser>
#include <QDial>
#include <QDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabWidget>
#include <QVBoxLayout>

#include "ui/FirstFrameReport.h"

#include <cstdio>

namespace {

// Shows the dialog and, as `ferrule-host --screenshot` does, renders it to `file`; without a
// file it stays on the screen.
int show(QDialog& window, const QString& file) {
    window.show();
    if (file.isEmpty()) return QApplication::exec();
    QApplication::processEvents();
    const QPixmap picture = window.grab();
    if (!picture.save(file, "PNG")) return 2;
    std::printf("screenshot written to %s\n", qPrintable(file));
    return 0;
}

// The page's texts: headings 12 px bold, captions 10 px, values 11 px, switch faces 8 px bold,
// option titles 10 px bold, command and tab buttons 11 px bold, the rest the default 12 px.
enum class Text { Heading, Caption, Value, Switch, OptionTitle, Option, Button };
bool pageFonts = false;
template <typename W> W* styled(W* w, Text text) {
    if (!pageFonts) return w;
    struct Face {
        int pixels;
        bool bold;
    };
    static const Face faces[] = {{12, true}, {10, false}, {11, false}, {8, true},
                                 {10, true}, {11, false}, {11, true}};
    QFont f = w->font();
    f.setPixelSize(faces[int(text)].pixels);
    f.setBold(faces[int(text)].bold);
    w->setFont(f);
    return w;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QCommandLineParser parser;
    const auto number = [&](const char* name) {
        QCommandLineOption o(QString::fromLatin1(name), QString(), QStringLiteral("N"),
                             QStringLiteral("0"));
        parser.addOption(o);
        return o;
    };
    const QCommandLineOption knobs = number("knobs"), sliders = number("sliders"),
                             switches = number("switches"), headings = number("headings"),
                             buttons = number("buttons"), tabs = number("tabs");
    const QCommandLineOption groups(QStringLiteral("groups"), QString(), QStringLiteral("LIST"));
    const QCommandLineOption shot(QStringLiteral("screenshot"), QString(), QStringLiteral("FILE"));
    const QCommandLineOption empty(QStringLiteral("empty"));
    const QCommandLineOption fonts(QStringLiteral("page-fonts"));
    parser.addOptions({groups, shot, empty, fonts});
    parser.process(app);
    pageFonts = parser.isSet(fonts);
    const auto n = [&](const QCommandLineOption& o) { return parser.value(o).toInt(); };

    ferrule::FirstFrameReport::installIfAsked();
    QDialog window;
    window.setWindowTitle(QStringLiteral("Stock peer"));
    // The editor's size: the same pixels to lay out, paint and encode.
    window.setFixedSize(612, 520);
    if (parser.isSet(empty)) return show(window, parser.value(shot));
    auto* outer = new QVBoxLayout(&window);
    auto* top = new QHBoxLayout;
    for (int i = 0; i < n(buttons); ++i)
        top->addWidget(
            styled(new QPushButton(QStringLiteral("Button %1").arg(i + 1)), Text::Button));
    outer->addLayout(top);
    auto* tabWidget = styled(new QTabWidget, Text::Button);
    outer->addWidget(tabWidget);
    auto* page = new QWidget;
    tabWidget->addTab(page, QStringLiteral("Page 1"));
    for (int t = 1; t < n(tabs); ++t)
        tabWidget->addTab(new QWidget, QStringLiteral("Page %1").arg(t + 1));

    // The headings two to a row, as the editor's panels are; in each, a row of knobs and
    // sliders and, at its end, a column of switches and option groups. Sized to fit the window
    // with every widget in sight, as on the editor's page.
    auto* grid = new QGridLayout(page);
    grid->setContentsMargins(4, 4, 4, 4);
    grid->setSpacing(4);
    struct Box {
        QHBoxLayout* row;
        QVBoxLayout* side;
    };
    QList<Box> boxes;
    for (int h = 0; h < std::max(1, n(headings)); ++h) {
        auto* box = styled(new QGroupBox(QStringLiteral("Heading %1").arg(h + 1)), Text::Heading);
        auto* row = new QHBoxLayout(box);
        row->setContentsMargins(4, 2, 4, 2);
        row->setSpacing(2);
        auto* side = new QVBoxLayout;
        side->setSpacing(0);
        row->addLayout(side);
        grid->addWidget(box, h / 2, h % 2);
        boxes << Box{row, side};
    }
    int placed = 0, sided = 0;
    const auto cell = [&](QWidget* control, const QString& caption, const QString& value) {
        auto* column = new QVBoxLayout;
        column->setSpacing(0);
        column->addWidget(styled(new QLabel(caption), Text::Caption), 0, Qt::AlignHCenter);
        column->addWidget(control, 0, Qt::AlignHCenter);
        column->addWidget(styled(new QLabel(value), Text::Value), 0, Qt::AlignHCenter);
        QHBoxLayout* row = boxes[placed++ % boxes.size()].row;
        row->insertLayout(row->count() - 1, column);
    };
    for (int i = 0; i < n(knobs); ++i) {
        auto* dial = new QDial;
        dial->setRange(0, 100);
        dial->setValue(40);
        dial->setFixedSize(36, 36);
        cell(dial, QStringLiteral("Knob %1").arg(i + 1), QStringLiteral("40"));
    }
    for (int i = 0; i < n(sliders); ++i) {
        auto* slider = new QSlider(Qt::Vertical);
        slider->setRange(0, 100);
        slider->setValue(50);
        slider->setFixedHeight(60);
        cell(slider, QStringLiteral("Slider %1").arg(i + 1), QStringLiteral("50"));
    }
    for (int i = 0; i < n(switches); ++i)
        boxes[sided++ % boxes.size()].side->addWidget(
            styled(new QCheckBox(QStringLiteral("Switch %1").arg(i + 1)), Text::Switch));
    int g = 0;
    for (const QString& items : parser.value(groups).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        auto* box = styled(new QGroupBox(QStringLiteral("Options %1").arg(++g)), Text::OptionTitle);
        auto* l = new QVBoxLayout(box);
        l->setContentsMargins(2, 0, 2, 0);
        l->setSpacing(0);
        for (int i = 0; i < items.toInt(); ++i) {
            auto* r =
                styled(new QRadioButton(QStringLiteral("Option %1").arg(i + 1)), Text::Option);
            r->setChecked(i == 0);
            l->addWidget(r);
        }
        boxes[sided++ % boxes.size()].side->addWidget(box);
    }
    return show(window, parser.value(shot));
}
