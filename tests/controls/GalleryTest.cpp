// Renders every control in its states to one picture (build/gallery/controls.png) and checks
// that the masked painting keeps the background around the knob and the track.

#include "controls/ControlArt.h"
#include "controls/RKnob.h"
#include "controls/VSlider.h"
#include "controls/cCheckRadio.h"

#include <QDir>
#include <QLabel>
#include <QPainter>
#include <gtest/gtest.h>

using namespace ferrule;

namespace {

const QColor kBackground(0xd5, 0xdd, 0xe6);

class Panel : public QWidget {
protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.fillRect(rect(), kBackground);
    }
};

QLabel* caption(QWidget* parent, const QString& text, int x, int y) {
    auto* l = new QLabel(text, parent);
    QFont f = l->font();
    f.setPixelSize(11);
    l->setFont(f);
    l->move(x, y);
    return l;
}

cCheckRadio* makeGroup(QWidget* parent, int count, int x, int y, const QString& title) {
    auto* g = new cCheckRadio(parent);
    QVector<QLabel*> glyphs;
    QVector<QLabel*> labels;
    for (int i = 0; i < count; ++i) {
        auto* glyph = new QLabel(parent);
        glyph->setFixedSize(13, 13);
        glyphs << glyph;
        labels << caption(parent, QString(), 0, 0);
    }
    QLabel* t = caption(parent, QString(), 0, 0);
    QFont f = t->font();
    f.setBold(true);
    t->setFont(f);
    labels << t;
    g->SetMyImages(glyphs);
    g->SetMyTexts(labels);
    g->SetStyle(count, 0, 210);
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts << QStringLiteral("Option %1").arg(i + 1);
    texts << title;
    g->SetTextEx(texts, 0);
    g->setLeft(x * 15);
    g->setTop(y * 15);
    g->setSelected(count > 1 ? 1 : 1);
    g->setVisible(true);
    return g;
}

} // namespace

TEST(ControlGallery, EveryControlInItsStates) {
    Panel gallery;
    gallery.resize(720, 600);

    // Knobs: five colours at 0, half and Max.
    caption(&gallery, QStringLiteral("Knobs: colours 0-4 at 0, 50 and 100"), 8, 4);
    std::vector<RKnob*> knobs;
    for (int c = 0; c < 5; ++c)
        for (int v = 0; v < 3; ++v) {
            auto* k = new RKnob(0, &gallery);
            k->setColor(c);
            k->setMax(100);
            k->setValue(v * 50);
            k->setLabelWidth(v == 2 ? 1 : 0);
            k->move(8 + (c * 3 + v) * 46, 22);
            knobs.push_back(k);
        }
    auto* off = new RKnob(0, &gallery);
    off->setMax(10);
    off->setValue(4);
    off->setOff(true);
    off->move(8, 100);
    caption(&gallery, QStringLiteral("Off"), 62, 120);

    // Sliders at every label preset.
    caption(&gallery, QStringLiteral("Sliders: label presets -1 to 4"), 8, 176);
    for (int preset = -1; preset <= 4; ++preset) {
        auto* s = new VSlider(0, &gallery);
        s->setMax(10);
        s->setValue(2 * (preset + 1));
        s->setLabelWidth(preset);
        s->move(8 + (preset + 1) * 92, 194);
    }

    // Option groups of one to four items: normal, hovered, pressed, disabled.
    caption(&gallery, QStringLiteral("Groups: normal, hovered, pressed, disabled"), 8, 290);
    const char* states[] = {"normal", "hovered", "pressed", "disabled"};
    for (int count = 1; count <= 4; ++count)
        for (int s = 0; s < 4; ++s) {
            cCheckRadio* g = makeGroup(
                &gallery, count, 8 + s * 176, 310 + (count - 1) * 62 - (4 - count) * 0,
                QStringLiteral("%1 item(s), %2").arg(count).arg(QLatin1String(states[s])));
            if (s == 1) g->setMouseOver(0);
            if (s == 2) {
                g->setMouseOver(0);
                g->MouseDown();
            }
            if (s == 3) g->setEnabled(false);
        }
    for (int i : {10, 11}) {
        auto* sw = new QLabel(&gallery);
        sw->setPixmap(ControlArt::onOffImage(i));
        sw->move(120 + (i - 10) * 50, 110);
    }
    caption(&gallery, QStringLiteral("Switch off / on"), 120, 130);

    gallery.show();
    const QImage shot = gallery.grab().toImage();
    QDir().mkpath(QStringLiteral(FERRULE_GALLERY_DIR));
    ASSERT_TRUE(shot.save(QStringLiteral(FERRULE_GALLERY_DIR "/controls.png")));

    // Around the round knob the panel shows through the mask; on the knob its colour.
    const QPoint knobAt = knobs[0]->pos();
    EXPECT_EQ(QColor(shot.pixel(knobAt + QPoint(1, 1))), kBackground);
    EXPECT_EQ(QColor(shot.pixel(knobAt + QPoint(49, 46))), kBackground);
    for (int c = 0; c < 5; ++c) {
        const QColor centre(shot.pixel(knobs[std::size_t(c * 3)]->pos() + QPoint(26, 20)));
        EXPECT_NE(centre, kBackground) << c;
        EXPECT_NE(centre, QColor(Qt::black)) << c;
    }
    const QColor green(shot.pixel(knobs[6]->pos() + QPoint(20, 18)));
    EXPECT_GT(green.green(), green.red());
    const QColor blue(shot.pixel(knobs[9]->pos() + QPoint(20, 18)));
    EXPECT_GT(blue.blue(), blue.red());
}
