// A stock Qt 6 window made of the same kinds and counts of widgets as the editor's first page,
// rendered to PNG the same way `ferrule-host --screenshot` renders the editor: the peer that the
// editor's start-up is measured against (bench/start_vs_peer.sh).
//
//   ferrule_stock_peer --knobs N --sliders N --switches N --groups 2,2,4 --headings N
//                      --buttons N --tabs N --screenshot FILE.png

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

#include <cstdio>

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
    parser.addOptions({groups, shot});
    parser.process(app);
    const auto n = [&](const QCommandLineOption& o) { return parser.value(o).toInt(); };

    QDialog window;
    window.setWindowTitle(QStringLiteral("Stock peer"));
    auto* outer = new QVBoxLayout(&window);
    auto* top = new QHBoxLayout;
    for (int i = 0; i < n(buttons); ++i)
        top->addWidget(new QPushButton(QStringLiteral("Button %1").arg(i + 1)));
    outer->addLayout(top);
    auto* tabWidget = new QTabWidget;
    outer->addWidget(tabWidget);
    auto* page = new QWidget;
    tabWidget->addTab(page, QStringLiteral("Page 1"));
    for (int t = 1; t < n(tabs); ++t)
        tabWidget->addTab(new QWidget, QStringLiteral("Page %1").arg(t + 1));

    auto* grid = new QGridLayout(page);
    QList<QGroupBox*> boxes;
    for (int h = 0; h < std::max(1, n(headings)); ++h) {
        auto* box = new QGroupBox(QStringLiteral("Heading %1").arg(h + 1));
        box->setLayout(new QGridLayout);
        grid->addWidget(box, h / 2, h % 2);
        boxes << box;
    }
    int placed = 0;
    auto next = [&] { return static_cast<QGridLayout*>(boxes[placed++ % boxes.size()]->layout()); };
    for (int i = 0; i < n(knobs); ++i) {
        auto* cell = new QVBoxLayout;
        auto* dial = new QDial;
        dial->setRange(0, 100);
        dial->setValue(40);
        auto* label = new QLabel(QStringLiteral("40"));
        label->setAlignment(Qt::AlignCenter);
        cell->addWidget(new QLabel(QStringLiteral("Knob %1").arg(i + 1)));
        cell->addWidget(dial);
        cell->addWidget(label);
        QGridLayout* l = next();
        l->addLayout(cell, 0, l->columnCount());
    }
    for (int i = 0; i < n(sliders); ++i) {
        auto* cell = new QVBoxLayout;
        auto* slider = new QSlider(Qt::Vertical);
        slider->setRange(0, 100);
        slider->setValue(50);
        slider->setMinimumHeight(90);
        cell->addWidget(new QLabel(QStringLiteral("Slider %1").arg(i + 1)));
        cell->addWidget(slider);
        cell->addWidget(new QLabel(QStringLiteral("50")));
        QGridLayout* l = next();
        l->addLayout(cell, 1, l->columnCount());
    }
    for (int i = 0; i < n(switches); ++i)
        next()->addWidget(new QCheckBox(QStringLiteral("Switch %1").arg(i + 1)), 2, i);
    int g = 0;
    for (const QString& items : parser.value(groups).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        auto* box = new QGroupBox(QStringLiteral("Options %1").arg(++g));
        auto* l = new QVBoxLayout(box);
        for (int i = 0; i < items.toInt(); ++i) {
            auto* r = new QRadioButton(QStringLiteral("Option %1").arg(i + 1));
            r->setChecked(i == 0);
            l->addWidget(r);
        }
        next()->addWidget(box, 3, g);
    }
    window.show();
    QApplication::processEvents();
    const QPixmap picture = window.grab();
    if (!picture.save(parser.value(shot), "PNG")) return 2;
    std::printf("screenshot written to %s\n", qPrintable(parser.value(shot)));
    return 0;
}
