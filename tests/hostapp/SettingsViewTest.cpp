// The main window's settings view on the real plug-in: every parameter of every model with its
// value, kept up to date by edits and undo; the filter; a comparison with a file marks exactly
// the parameters that differ, and taking values changes exactly their bytes, one undo each; Enter
// opens the editor on the parameter's page.

#include "ui/SettingsView.h"
#include "DocumentFiles.h"
#include "EditorDriver.h"
#include "HostOptionsForTests.h"
#include "ImageSpans.h"
#include "QtPrinters.h"
#include "catalogue/ParameterIndex.h"
#include "controls/ButtonArt.h"
#include "device/ModelDescription.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "document/SettingsFilter.h"
#include "settings/SettingsStore.h"
#include "ui/MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <QUndoStack>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

using namespace ferrule;

namespace {

using Parameters = std::set<const Parameter*>;

// Every parameter of the model at a random value in its range.
QByteArray randomValues(int model, QByteArray image, std::mt19937& random) {
    for (const Parameter& p : ParameterIndex::of(model).parameters())
        p.store(writable(image), std::uniform_int_distribution(p.minimum, p.maximum)(random));
    return image;
}

// `image` with about one parameter in `every` moved to another value of its range.
QByteArray changeSome(int model, QByteArray image, int every, std::mt19937& random,
                      Parameters* changed) {
    const QByteArray before = image;
    for (const Parameter& p : ParameterIndex::of(model).parameters()) {
        if (p.maximum == p.minimum || random() % unsigned(every) != 0) continue;
        const int now = p.value(bytesOf(image));
        p.store(writable(image), now == p.maximum ? p.minimum : now + 1);
    }
    // Two parameters may share a byte: what changed is what reads differently now.
    for (const Parameter& p : ParameterIndex::of(model).parameters())
        if (p.value(bytesOf(image)) != p.value(bytesOf(before))) changed->insert(&p);
    return image;
}

// The parameters the tree shows (through the filter), and every row's parameter.
Parameters shown(const SettingsView& view, const QModelIndex& parent = {}) {
    Parameters out;
    const QAbstractItemModel* m = view.tree()->model();
    for (int row = 0; row < m->rowCount(parent); ++row) {
        const QModelIndex at = m->index(row, 0, parent);
        if (const Parameter* p = view.model()->parameter(view.filter()->mapToSource(at)))
            out.insert(p);
        out.merge(shown(view, at));
    }
    return out;
}

QString cell(const SettingsModel& model, const Parameter* p, int column) {
    return model.indexOf(p, column).data().toString();
}

std::set<int> differingBytes(const QByteArray& a, const QByteArray& b) {
    std::set<int> out;
    for (int i = 0; i < a.size(); ++i)
        if (a[i] != b[i]) out.insert(i);
    return out;
}

std::set<int> both(const std::set<int>& a, const std::set<int>& b) {
    std::set<int> out;
    std::ranges::set_intersection(a, b, std::inserter(out, out.end()));
    return out;
}

std::set<int> addressesOf(const Parameters& parameters) {
    std::set<int> out;
    for (const Parameter* p : parameters)
        for (int i = 0; i < p->bytes; ++i)
            out.insert(p->address + i);
    return out;
}

class SettingsViewTest : public ::testing::TestWithParam<int> {
protected:
    int model() const { return GetParam(); }
    std::unique_ptr<MainWindow> window() const {
        auto w = std::make_unique<MainWindow>(
            hostOptionsForTests(model()), SystemDocument(model(), Sysex::defaultHeader(model())));
        w->setAskSave([](const QString&) { return QMessageBox::Discard; });
        return w;
    }
};

} // namespace

TEST_P(SettingsViewTest, ListsEveryParameterUnderItsPageAndHeadingWithItsValueText) {
    std::mt19937 random{unsigned(model())};
    auto w = window();
    const QByteArray image = randomValues(model(), w->document().image(), random);
    w->takeImage(image, QStringLiteral("values"));
    const SettingsView& view = *w->settingsView();
    const SettingsModel& m = *view.model();
    const std::span<const Parameter> all = ParameterIndex::of(model()).parameters();
    EXPECT_EQ(shown(view).size(), all.size()) << "every parameter once";
    for (const Parameter& p : all) {
        const QModelIndex at = m.indexOf(&p);
        ASSERT_EQ(m.parameter(at), &p);
        // Under its heading (when it has one), under its page.
        QModelIndex up = at.parent();
        if (!p.heading.isEmpty()) {
            EXPECT_EQ(up.data().toString(), p.heading) << qPrintable(p.name());
            up = up.parent();
        }
        EXPECT_EQ(up.data().toString(), p.page) << qPrintable(p.name());
        EXPECT_FALSE(up.parent().isValid());
        EXPECT_EQ(cell(m, &p, SettingsModel::Setting),
                  p.instance.isEmpty() ? p.caption : p.caption + " [" + p.instance + "]");
        EXPECT_EQ(cell(m, &p, SettingsModel::Value), p.valueText(p.value(bytesOf(image))))
            << qPrintable(p.name());
    }
    EXPECT_TRUE(view.tree()->isColumnHidden(SettingsModel::Device)) << "nothing known of it";
    EXPECT_TRUE(view.tree()->isColumnHidden(SettingsModel::Compared));
}

TEST_P(SettingsViewTest, AnEditUpdatesItsRowAndUndoRedoFollowWithoutAReset) {
    auto w = window();
    const SettingsModel& m = *w->settingsView()->model();
    const QByteArray before = w->document().image();
    std::mt19937 random(unsigned(model()) * 7);
    Parameters changed;
    const QByteArray after = changeSome(model(), before, 50, random, &changed);
    ASSERT_FALSE(changed.empty());
    QSignalSpy resets(&m, &QAbstractItemModel::modelReset);
    QSignalSpy rows(&m, &QAbstractItemModel::dataChanged);
    w->takeImage(after, QStringLiteral("edited"), QStringLiteral("Edit System Settings"));
    EXPECT_EQ(resets.count(), 0);
    // Every changed row was said to have changed, and shows its new value.
    for (const Parameter* p : changed) {
        EXPECT_EQ(cell(m, p, SettingsModel::Value), p->valueText(p->value(bytesOf(after))));
        const QModelIndex at = m.indexOf(p, SettingsModel::Value);
        const bool told = std::any_of(rows.begin(), rows.end(), [&](const QList<QVariant>& s) {
            const auto from = s[0].value<QModelIndex>(), to = s[1].value<QModelIndex>();
            return from.parent() == at.parent() && from.row() <= at.row() && at.row() <= to.row();
        });
        EXPECT_TRUE(told) << qPrintable(p->name());
    }
    w->undoStack()->undo();
    EXPECT_EQ(w->document().image(), before);
    for (const Parameter* p : changed)
        EXPECT_EQ(cell(m, p, SettingsModel::Value), p->valueText(p->value(bytesOf(before))));
    w->undoStack()->redo();
    EXPECT_EQ(w->document().image(), after);
    EXPECT_EQ(resets.count(), 0);
}

TEST_P(SettingsViewTest, AComparedFileMarksExactlyTheParametersThatDifferAndTakingThemIsUndoable) {
    QTemporaryDir dir;
    auto w = window();
    SettingsView& view = *w->settingsView();
    const SettingsModel& m = *view.model();
    std::mt19937 random(unsigned(model()) * 13);
    const QByteArray mine = randomValues(model(), w->document().image(), random);
    w->takeImage(mine, QStringLiteral("values"));
    Parameters changed;
    QByteArray theirs = changeSome(model(), mine, 20, random, &changed);
    // A byte no parameter covers differs too: it is not a setting, so it is not marked.
    const std::span<const int> uncovered = ParameterIndex::of(model()).uncoveredBytes();
    if (!uncovered.empty()) theirs[uncovered[0]] = char(theirs[uncovered[0]] ^ 1);
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("theirs.bin")), theirs));
    ASSERT_TRUE(w->compareWithFile(dir.filePath(QStringLiteral("theirs.bin"))))
        << qPrintable(w->lastResult());
    EXPECT_FALSE(view.tree()->isColumnHidden(SettingsModel::Compared));

    Parameters marked;
    for (const Parameter& p : ParameterIndex::of(model()).parameters()) {
        const QString text = cell(m, &p, SettingsModel::Compared);
        if (m.indexOf(&p).data(SettingsModel::DiffersRole).toBool()) {
            marked.insert(&p);
            EXPECT_EQ(text, SettingsModel::kDiffers + " " + p.valueText(p.value(bytesOf(theirs))));
            EXPECT_TRUE(m.indexOf(&p, SettingsModel::Compared).data(Qt::BackgroundRole).isValid());
        } else {
            EXPECT_EQ(text, p.valueText(p.value(bytesOf(theirs))));
        }
    }
    EXPECT_EQ(marked, changed);
    EXPECT_TRUE(view.note()->text().contains(settingsDiffer(int(changed.size()))))
        << qPrintable(view.note()->text());

    // Only differences: exactly the marked ones.
    view.onlyDifferencesBox()->setChecked(true);
    EXPECT_EQ(shown(view), changed);
    if (model() == 10) {
        // For the gallery (and the README).
        w->show();
        QApplication::processEvents();
        QDir().mkpath(QStringLiteral(FERRULE_GALLERY_DIR));
        w->grab().save(QStringLiteral(FERRULE_GALLERY_DIR "/compare.png"));
    }

    // Take Value on one, Take Page on another's page, Take All: each changes exactly the bytes
    // of the differing parameters it takes, to the file's, and one undo restores them.
    const Parameter* one = *changed.begin();
    const Parameter* other = nullptr;
    for (const Parameter* p : changed)
        if (p->page != one->page) other = p;
    const auto take = [&](const Parameter* at, const char* action, const Parameters& expected) {
        SCOPED_TRACE(action);
        const QByteArray before = w->document().image();
        if (at) view.tree()->setCurrentIndex(view.filter()->mapFromSource(m.indexOf(at)));
        auto* a = view.findChild<QAction*>(QString::fromLatin1(action));
        ASSERT_TRUE(a && a->isEnabled()) << (a ? qPrintable(a->toolTip()) : "");
        a->trigger();
        const QByteArray after = w->document().image();
        EXPECT_EQ(differingBytes(before, after),
                  both(differingBytes(before, theirs), addressesOf(expected)));
        for (int i : addressesOf(expected))
            EXPECT_EQ(after[i], theirs[i]) << i;
        for (const Parameter* p : expected)
            EXPECT_FALSE(m.differs(p, SettingsModel::ComparedSide)) << qPrintable(p->name());
        w->undoStack()->undo();
        EXPECT_EQ(w->document().image(), before);
        w->undoStack()->redo();
        EXPECT_EQ(w->document().image(), after);
    };
    take(one, "takeValue", {one});
    if (other) {
        Parameters page;
        for (const Parameter* p : changed)
            if (p->page == other->page) page.insert(p);
        take(other, "takePage", page);
    }
    take(nullptr, "takeAll", changed);
    EXPECT_EQ(m.differences(SettingsModel::ComparedSide), 0);
    EXPECT_TRUE(shown(view).empty()) << "nothing differs any more";
    if (!uncovered.empty()) {
        EXPECT_NE(w->document().image()[uncovered[0]], theirs[uncovered[0]]);
    }
    EXPECT_EQ(w->undoStack()->count(), other ? 4 : 3) << "one step each";
}

INSTANTIATE_TEST_SUITE_P(Models, SettingsViewTest, ::testing::ValuesIn(kModels),
                         [](const auto& info) { return "GT" + std::to_string(info.param); });

TEST(SettingsView, TheFilterShowsTheParametersWhoseNamesHoldEveryWordTyped) {
    const int model = 10;
    MainWindow w(hostOptionsForTests(model), SystemDocument(model, Sysex::defaultHeader(model)));
    SettingsView& view = *w.settingsView();
    const std::span<const Parameter> all = ParameterIndex::of(model).parameters();
    // Words from the names themselves: a page, a caption, a caption and an instance, in
    // another case; and one that no name holds.
    const Parameter& last = all.back();
    const QStringList typed = {all[0].page.toUpper(), last.caption.toLower(),
                               last.caption + " " + last.instance.section(' ', 0, 0),
                               QStringLiteral("no-such-setting")};
    for (const QString& text : typed) {
        SCOPED_TRACE(text.toStdString());
        view.filterBox()->clear();
        QTest::keyClicks(view.filterBox(), text);
        Parameters expected;
        for (const Parameter& p : all) {
            bool holds = true;
            for (const QString& word : text.split(' ', Qt::SkipEmptyParts))
                holds = holds && p.name().contains(word, Qt::CaseInsensitive);
            if (holds) expected.insert(&p);
        }
        EXPECT_EQ(shown(view), expected);
        EXPECT_EQ(expected.empty(), text == QLatin1String("no-such-setting"));
    }
    view.filterBox()->clear();
    EXPECT_EQ(shown(view).size(), all.size());
}

// The filter's clear button comes once the window is on the screen (its icon is looked up after
// the first paint) and empties the filter like any clear button.
TEST(SettingsView, TheFilterBoxGetsAClearButtonOnceShownThatShowsEverySettingAgain) {
    const int model = 8;
    MainWindow w(hostOptionsForTests(model), SystemDocument(model, Sysex::defaultHeader(model)));
    SettingsView& view = *w.settingsView();
    QLineEdit& box = *view.filterBox();
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));
    ASSERT_TRUE(QTest::qWaitFor([&] { return box.isClearButtonEnabled(); }));
    QTest::keyClicks(&box, QStringLiteral("pitch"));
    ASSERT_LT(shown(view).size(), ParameterIndex::of(model).parameters().size());
    QToolButton* clear = nullptr;
    for (QToolButton* b : box.findChildren<QToolButton*>())
        if (b->isVisibleTo(&box)) clear = b;
    ASSERT_NE(clear, nullptr) << "no clear button beside the typed text";
    QTest::mouseClick(clear, Qt::LeftButton);
    EXPECT_TRUE(box.text().isEmpty());
    EXPECT_EQ(shown(view).size(), ParameterIndex::of(model).parameters().size());
}

TEST(SettingsView, AFileThatCannotBeComparedIsSaidInOneLineAndChangesNothing) {
    QTemporaryDir dir;
    const int model = 8;
    MainWindow w(hostOptionsForTests(model), SystemDocument(model, Sysex::defaultHeader(model)));
    const QByteArray image = w.document().image();
    ASSERT_TRUE(writeFile(dir.filePath(QStringLiteral("short.bin")), QByteArray(100, 0)));
    for (const QString& path :
         {dir.filePath(QStringLiteral("missing.syx")), dir.filePath(QStringLiteral("short.bin"))}) {
        EXPECT_FALSE(w.compareWithFile(path));
        EXPECT_TRUE(w.lastResult().startsWith(QLatin1String("not compared: ")))
            << qPrintable(w.lastResult());
        EXPECT_FALSE(w.lastResult().contains('\n'));
    }
    EXPECT_EQ(w.document().image(), image);
    EXPECT_FALSE(w.settingsView()->model()->known(SettingsModel::ComparedSide));
    EXPECT_FALSE(w.settingsView()->takeActions()[2]->isEnabled());
}

TEST(SettingsView, EnterOnAParameterOpensTheEditorOnItsPage) {
    for (int model : kModels) {
        // The editor's remembered page is left as it was, for the tests that follow.
        QVariant remembered = 0;
        const bool had =
            RegRead(RegRoot::LocalMachine, kEditorKey, lastPageValue(model), remembered);
        const auto restore = qScopeGuard([&] {
            RegWrite(RegRoot::LocalMachine, kEditorKey, lastPageValue(model),
                     had ? remembered.toInt() : 1);
        });
        MainWindow w(hostOptionsForTests(model),
                     SystemDocument(model, Sysex::defaultHeader(model)));
        w.show();
        SettingsView& view = *w.settingsView();
        // The first parameter of each page.
        std::map<QString, const Parameter*> firsts;
        for (const Parameter& p : ParameterIndex::of(model).parameters())
            firsts.try_emplace(p.page, &p);
        for (const auto& [page, first] : firsts) {
            SCOPED_TRACE(QStringLiteral("GT-%1 %2").arg(model).arg(page).toStdString());
            int expected = -1;
            for (int tab = 0; tab < kTabCount; ++tab)
                if (ButtonArt::tabCaption(tab) == page) expected = kTabPages[std::size_t(tab)];
            ASSERT_GT(expected, 0);
            view.tree()->setCurrentIndex(
                view.filter()->mapFromSource(view.model()->indexOf(first)));
            // The editor, once open, says which page it shows and is cancelled.
            int shownPage = -1;
            QString said;
            EditorDriver look;
            look.cancel = true;
            look.step = false;
            look.beforeClose = [&] {
                shownPage = look.editor->property("CurrentPage").toInt();
                said = w.lastResult();
            };
            look.arm();
            QTest::keyClick(view.tree(), Qt::Key_Return);
            // The editor takes the pages it remembers, up to 10; others are a tab away.
            EXPECT_EQ(shownPage, expected <= 10 ? expected : 1);
            if (expected > 10) {
                EXPECT_TRUE(said.contains(page)) << qPrintable(said);
            }
        }
    }
}
