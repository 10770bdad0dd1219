// The editor as ferrule-host describes it, read from the widgets' own properties: one row a fact
// of a page of each model.

#include "HostProcess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <map>

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

// The control "kind poolIndex" or named "name" in a description; the description itself for "".
QJsonValue control(const QJsonObject& d, const QString& which) {
    if (which.isEmpty()) return d;
    const QString kind = which.section(u' ', 0, 0), index = which.section(u' ', 1);
    for (const QJsonValue& v : d.value(QStringLiteral("controls")).toArray()) {
        const QJsonObject c = v.toObject();
        if (index.isEmpty() ? c.value(QStringLiteral("name")).toString() == kind
                            : c.value(QStringLiteral("kind")).toString() == kind &&
                                  c.value(QStringLiteral("poolIndex")).toInt() == index.toInt())
            return c;
    }
    return QJsonObject();
}

// Follows a path of keys and array indexes ("position/left", "cells/16"); "#" is an array's
// size, "#kind" how many controls of that kind there are.
QJsonValue at(QJsonValue v, const QString& path) {
    for (const QString& step : path.split(u'/', Qt::SkipEmptyParts)) {
        if (step == u'#') return int(v.toArray().size());
        if (step.startsWith(u'#')) {
            int n = 0;
            for (const QJsonValue& c : v[QStringLiteral("controls")].toArray())
                n += c[QStringLiteral("kind")].toString() == step.mid(1);
            return n;
        }
        bool isIndex = false;
        const int i = step.toInt(&isIndex);
        v = isIndex ? v.toArray().at(i) : v.toObject().value(step);
    }
    return v;
}

} // namespace

TEST(Describe, OnePageOfEachModel) {
    const struct {
        int model, page;
        const char* control;
        const char* path;
        QJsonValue expected;
    } rows[] = {
        // GT-3 page 1: "Pitch" knob 0 at image 0, range 0-10, the default image's tuner pitch.
        {3, 1, "", "CurrentPage", 1},
        {3, 1, "", "caption", "System: GT-3"},
        {3, 1, "knob 0", "caption", "Pitch"},
        {3, 1, "knob 0", "MemLoc", 0},
        {3, 1, "knob 0", "Max", 10},
        {3, 1, "knob 0", "minimum", 0},
        {3, 1, "knob 0", "TFormat", 175},
        {3, 1, "knob 0", "pType", 3},
        {3, 1, "knob 0", "Color", 0},
        {3, 1, "knob 0", "Value", 5},
        {3, 1, "knob 0", "valueText", "5"},
        {3, 1, "knob 0", "Off", false},
        {3, 1, "knob 0", "position/left", 255},
        {3, 1, "knob 0", "position/top", 885},
        {3, 1, "", "#knob", 7},
        {3, 1, "", "#slider", 9},
        {3, 1, "", "#heading", 4},
        // GT-5 MIDI page: "Map Select" and its options.
        {5, 4, "options 0", "title", "Map Select"},
        {5, 4, "options 0", "captions", QJsonArray({"Fixed", "Progammable"})},
        {5, 4, "options 0", "TFormat", 4381},
        {5, 4, "options 0", "Selected", 0},
        {5, 4, "options 0", "left", 4680},
        {5, 4, "", "#switch", 1},
        // GT-6 custom preamp: the selector list and the heading with its size.
        {6, 9, "CheckRadio10", "captions", QJsonArray({"1", "2", "3"})},
        {6, 9, "heading 0", "caption", "Custom Preamp 1"},
        {6, 9, "heading 0", "position/width", 5925},
        // GT-8 page 1: "Sub Exp" slider starts at 1; slider label width 4; no grid.
        {8, 1, "slider 4", "caption", "Sub Exp"},
        {8, 1, "slider 4", "Min", 1},
        {8, 1, "slider 4", "LabelWidth", 4},
        {8, 1, "slider 4", "Enabled", true},
        {8, 1, "grid 0", "", QJsonObject()},
        // Its buttons: a tab for each of the 9 pages, 5 modes, then 4 commands (transmit first).
        {8, 1, "", "buttons/#", 18},
        {8, 1, "", "buttons/0/name", "TabButton0"},
        {8, 1, "", "buttons/8/name", "TabButton8"},
        {8, 1, "", "buttons/14/name", "CButton0"},
        // GT-10 page 1: "Bank High" reads two bytes (the default image holds 0 and 99).
        {10, 1, "knob 3", "MemLoc", 19126},
        {10, 1, "knob 3", "Value", 99},
        {10, 1, "slider 10", "caption", "Knob 4"},
        // GT-8 Auto-Riff: the grid's cells and headings (the default phrase runs up from the root).
        {8, 6, "grid 0", "page", 6},
        {8, 6, "grid 0", "cells/#", 192},
        {8, 6, "grid 0", "cells/0", " C"},
        {8, 6, "grid 0", "cells/1", "+E"},
        {8, 6, "grid 0", "cells/15", "end"},
        {8, 6, "grid 0", "cells/16", " Db"},
        {8, 6, "grid 0", "columnHeadings/0", "Step 1 "},
        {8, 6, "grid 0", "rowHeadings/1", "C#/Db"},
    };
    QTemporaryDir dir;
    std::map<std::pair<int, int>, QJsonObject> described;
    for (const auto& row : rows) {
        QJsonObject& d = described[{row.model, row.page}];
        if (d.isEmpty()) d = describe(row.model, row.page, dir.path());
        EXPECT_EQ(at(control(d, QLatin1String(row.control)), QLatin1String(row.path)), row.expected)
            << "GT-" << row.model << " page " << row.page << ": " << row.control << " " << row.path;
    }
}
