// The editor as ferrule-host describes it, read from the widgets' own properties.

#include "HostProcess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

QJsonObject describe(int model, int page, const QString& root) {
    const HostRun r =
        runHost({QStringLiteral("--model"), QString::number(model), QStringLiteral("--page"),
                 QString::number(page), QStringLiteral("--describe")},
                root);
    EXPECT_EQ(r.exitCode, 0) << r.err.constData();
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(r.out, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << r.out.constData();
    return doc.object();
}

QJsonObject find(const QJsonObject& d, const QString& kind, int poolIndex) {
    for (const QJsonValue& v : d.value(QStringLiteral("controls")).toArray()) {
        const QJsonObject c = v.toObject();
        if (c.value(QStringLiteral("kind")).toString() == kind &&
            c.value(QStringLiteral("poolIndex")).toInt() == poolIndex)
            return c;
    }
    return {};
}

int count(const QJsonObject& d, const QString& kind) {
    int n = 0;
    for (const QJsonValue& v : d.value(QStringLiteral("controls")).toArray()) {
        const QJsonObject c = v.toObject();
        n += c.value(QStringLiteral("kind")).toString() == kind;
    }
    return n;
}

} // namespace

TEST(Describe, OnePageOfEachModel) {
    QTemporaryDir dir;
    const QString root = dir.path();

    // GT-3 page 1: "Pitch" knob 0 at image 0, range 0-10, format 175, colour 0, at (255, 885).
    QJsonObject d = describe(3, 1, root);
    EXPECT_EQ(d.value(QStringLiteral("CurrentPage")).toInt(), 1);
    EXPECT_EQ(d.value(QStringLiteral("caption")).toString(), QStringLiteral("System: GT-3"));
    QJsonObject pitch = find(d, QStringLiteral("knob"), 0);
    EXPECT_EQ(pitch.value(QStringLiteral("caption")).toString(), QStringLiteral("Pitch"));
    EXPECT_EQ(pitch.value(QStringLiteral("MemLoc")).toInt(), 0);
    EXPECT_EQ(pitch.value(QStringLiteral("Max")).toInt(), 10);
    EXPECT_EQ(pitch.value(QStringLiteral("minimum")).toInt(), 0);
    EXPECT_EQ(pitch.value(QStringLiteral("TFormat")).toInt(), 175);
    EXPECT_EQ(pitch.value(QStringLiteral("pType")).toInt(), 3);
    EXPECT_EQ(pitch.value(QStringLiteral("Color")).toInt(), 0);
    EXPECT_EQ(pitch.value(QStringLiteral("Value")).toInt(), 5) << "the default image's tuner pitch";
    EXPECT_EQ(pitch.value(QStringLiteral("valueText")).toString(), QStringLiteral("5"));
    EXPECT_FALSE(pitch.value(QStringLiteral("Off")).toBool());
    const QJsonObject at = pitch.value(QStringLiteral("position")).toObject();
    EXPECT_EQ(at.value(QStringLiteral("left")).toInt(), 255);
    EXPECT_EQ(at.value(QStringLiteral("top")).toInt(), 885);
    EXPECT_EQ(count(d, QStringLiteral("knob")), 7);
    EXPECT_EQ(count(d, QStringLiteral("slider")), 9);
    EXPECT_EQ(count(d, QStringLiteral("heading")), 4);

    // GT-5 MIDI page: "Map Select" and its options.
    d = describe(5, 4, root);
    const QJsonObject map = find(d, QStringLiteral("options"), 0);
    EXPECT_EQ(map.value(QStringLiteral("title")).toString(), QStringLiteral("Map Select"));
    EXPECT_EQ(map.value(QStringLiteral("captions")).toArray(),
              QJsonArray({"Fixed", "Progammable"}));
    EXPECT_EQ(map.value(QStringLiteral("TFormat")).toInt(), 4381);
    EXPECT_EQ(map.value(QStringLiteral("Selected")).toInt(), 0);
    EXPECT_EQ(map.value(QStringLiteral("left")).toInt(), 4680);
    EXPECT_EQ(count(d, QStringLiteral("switch")), 1);

    // GT-6 custom preamp: the selector list and the heading with its size.
    d = describe(6, 9, root);
    bool listSeen = false;
    for (const QJsonValue& v : d.value(QStringLiteral("controls")).toArray())
        if (v.toObject().value(QStringLiteral("name")).toString() ==
            QLatin1String("CheckRadio10")) {
            listSeen = true;
            EXPECT_EQ(v.toObject().value(QStringLiteral("captions")).toArray(),
                      QJsonArray({"1", "2", "3"}));
        }
    EXPECT_TRUE(listSeen);
    const QJsonObject heading = find(d, QStringLiteral("heading"), 0);
    EXPECT_EQ(heading.value(QStringLiteral("caption")).toString(),
              QStringLiteral("Custom Preamp 1"));
    EXPECT_EQ(
        heading.value(QStringLiteral("position")).toObject().value(QStringLiteral("width")).toInt(),
        5925);

    // GT-8 page 1: "Sub Exp" slider starts at 1; slider label width 4. The window's buttons:
    // a tab for each of its 9 pages, 5 modes and 4 commands.
    d = describe(8, 1, root);
    QStringList buttons;
    for (const QJsonValue& v : d.value(QStringLiteral("buttons")).toArray())
        buttons << v.toObject().value(QStringLiteral("name")).toString();
    EXPECT_EQ(buttons.size(), 18) << buttons.join(u' ').toStdString();
    EXPECT_EQ(buttons.filter(QStringLiteral("TabButton")).size(), 9);
    EXPECT_TRUE(buttons.contains(QStringLiteral("CButton0"))) << "the transmit button";
    const QJsonObject subExp = find(d, QStringLiteral("slider"), 4);
    EXPECT_EQ(subExp.value(QStringLiteral("caption")).toString(), QStringLiteral("Sub Exp"));
    EXPECT_EQ(subExp.value(QStringLiteral("Min")).toInt(), 1);
    EXPECT_EQ(subExp.value(QStringLiteral("LabelWidth")).toInt(), 4);
    EXPECT_TRUE(subExp.value(QStringLiteral("Enabled")).toBool());

    // GT-10 page 1: "Bank High" reads two bytes (the default image holds 0 and 99).
    d = describe(10, 1, root);
    const QJsonObject bankHigh = find(d, QStringLiteral("knob"), 3);
    EXPECT_EQ(bankHigh.value(QStringLiteral("MemLoc")).toInt(), 19126);
    EXPECT_EQ(bankHigh.value(QStringLiteral("Value")).toInt(), 99);
    const QJsonObject knob4 = find(d, QStringLiteral("slider"), 10);
    EXPECT_EQ(knob4.value(QStringLiteral("caption")).toString(), QStringLiteral("Knob 4"));

    // GT-8 Auto-Riff: the grid's cells and headings (the default phrase runs up from the root).
    d = describe(8, 6, root);
    const QJsonObject grid = find(d, QStringLiteral("grid"), 0);
    ASSERT_FALSE(grid.isEmpty());
    EXPECT_EQ(grid.value(QStringLiteral("page")).toInt(), 6);
    const QJsonArray cells = grid.value(QStringLiteral("cells")).toArray();
    ASSERT_EQ(cells.size(), 192);
    EXPECT_EQ(cells[0].toString(), QStringLiteral(" C"));
    EXPECT_EQ(cells[1].toString(), QStringLiteral("+E"));
    EXPECT_EQ(cells[16].toString(), QStringLiteral(" Db"));
    EXPECT_EQ(cells[15].toString(), QStringLiteral("end"));
    EXPECT_EQ(grid.value(QStringLiteral("columnHeadings")).toArray().first().toString(),
              QStringLiteral("Step 1 "));
    EXPECT_EQ(grid.value(QStringLiteral("rowHeadings")).toArray()[1].toString(),
              QStringLiteral("C#/Db"));
    d = describe(8, 1, root);
    EXPECT_TRUE(find(d, QStringLiteral("grid"), 0).isEmpty()) << "no grid on page 1";
}
