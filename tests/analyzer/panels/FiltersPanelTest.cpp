#include <analyzer/filters/FilterList.h>
#include <analyzer/panels/FiltersPanel.h>
#include <analyzer/panels/RangeHandle.h>
#include <analyzer/panels/RangeSlider.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include <tests/support/SmallStudy.h>
#include <tests/support/mouseMoves.h>

using analyzer::FilterList;
using analyzer::ListedFilter;

namespace {

using Range = ListedFilter::Range;

constexpr std::size_t caseCount = 4047;
constexpr double infinity = std::numeric_limits<double>::infinity();

class FiltersPanelTest : public testing::Test
{
protected:
    FiltersPanelTest()
    {
        UndoStack::history().clear();
        std::vector<double> drag;
        std::vector<double> ring;
        std::vector<std::string> steel;
        std::vector<std::string> note;
        for (std::size_t row = 0; row < caseCount; ++row) {
            drag.push_back(
                row % 100 == 0 ? std::numeric_limits<double>::quiet_NaN()
                               : static_cast<double>(row % 101) / 100.0);
            ring.push_back(static_cast<double>(row % 5));
            steel.push_back(row % 3 == 0 ? "" : (row % 3 == 1 ? "hard & dear" : "soft"));
            note.push_back("note " + std::to_string(row));
        }
        m_study.add("Drag", drag)
            .add("Ring", ring)
            .add("Steel", steel)
            .add("Note", note)
            .add("Same", std::vector<double>(caseCount, 7.0))
            .open();
        Project& project = Project::project();
        project.addTagGroup("Quality");
        project.addTag("Quality", "good");
        project.addTag("Quality", "empty");
        RowBitmap some(caseCount);
        some.setRange(0, 1000);
        project.tagCases("good", some, true);
        m_pipeline = std::make_unique<DataPipelineManager>(project);
        m_list = std::make_unique<FilterList>(*m_pipeline);
        m_panel = std::make_unique<analyzer::FiltersPanel>(*m_list, project);
        m_panel->resize(360, 900);
        m_panel->show();
        m_panel->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_panel.get()));
        m_pipeline->signalPipelineChanged.connect([this] { ++m_executions; });
    }

    ~FiltersPanelTest() override { UndoStack::history().clear(); }

    template <class Widget>
    Widget& widget(const char* name)
    {
        auto* found = m_panel->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) {
            throw std::logic_error("there is no " + std::string(name));
        }
        return *found;
    }

    bool has(const char* name)
    {
        return m_panel->findChild<QWidget*>(QString::fromLatin1(name)) != nullptr;
    }

    /// Runs what is queued, the deletion of rows too.
    static void settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    FilterList::FilterPtr addRange(const char* name, const Range& range)
    {
        const FilterList::FilterPtr filter = m_list->addRangeFilter(name, range);
        settle();
        m_executions = 0;
        return filter;
    }

    static void type(QLineEdit& field, const QString& text)
    {
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text);
    }

    static void press(QWidget& receiver, int x)
    {
        QTest::mousePress(&receiver, Qt::LeftButton, {}, {x, receiver.height() / 2});
    }

    static void moveTo(QWidget& receiver, int x)
    {
        sendMouseMove(receiver, {x, receiver.height() / 2}, Qt::LeftButton);
    }

    static void release(QWidget& receiver, int x)
    {
        QTest::mouseRelease(&receiver, Qt::LeftButton, {}, {x, receiver.height() / 2});
    }

    QStringList menuTexts(const QString& submenu)
    {
        QStringList texts;
        for (const QAction* action : submenuOf(submenu).actions()) {
            texts.append(action->isEnabled() ? action->text() : "(" + action->text() + ")");
        }
        return texts;
    }

    QMenu& submenuOf(const QString& text)
    {
        auto& menu = widget<QMenu>("AddFilterMenu");
        Q_EMIT menu.aboutToShow();
        for (const QAction* action : menu.actions()) {
            if (action->text() == text) {
                return *action->menu();
            }
        }
        throw std::logic_error("there is no such menu");
    }

    void choose(const QString& submenu, const QString& text)
    {
        for (QAction* action : submenuOf(submenu).actions()) {
            if (action->text() == text) {
                action->trigger();
                settle();
                return;
            }
        }
        FAIL() << text.toStdString() << " is not in the menu";
    }

    QString shown() { return widget<QLabel>("FiltersShown").text(); }

    static QUndoStack& history() { return UndoStack::history(); }

    SmallStudy m_study{caseCount};
    std::unique_ptr<DataPipelineManager> m_pipeline;
    std::unique_ptr<FilterList> m_list;
    std::unique_ptr<analyzer::FiltersPanel> m_panel;
    int m_executions = 0;
};

TEST_F(FiltersPanelTest, TheMenuOffersWhatCanBeFilteredBy)
{
    EXPECT_EQ(menuTexts("&Range of"), (QStringList{"Drag", "Ring", "Same"}));
    EXPECT_EQ(menuTexts("&Values of"), (QStringList{"Ring", "Steel", "Note", "Same"}));
    EXPECT_EQ(menuTexts("&Tag"), (QStringList{"good"}));
    EXPECT_EQ(shown(), "shown 4,047 of 4,047");

    choose("&Range of", "Drag");
    choose("&Values of", "Steel");
    choose("&Tag", "good");

    ASSERT_EQ(m_list->filters().size(), 3U);
    EXPECT_EQ(m_list->filters()[0]->range()->value(), (Range{0.0, 1.0}));
    EXPECT_EQ(m_list->filters()[1]->values()->value().size(), 3U);
    EXPECT_EQ(menuTexts("&Range of"), (QStringList{"(Drag)", "Ring", "Same"}));
    EXPECT_EQ(shown(), "shown 990 of 4,047");
    EXPECT_TRUE(widget<QCheckBox>("filter3-enabled").hasFocus());
    EXPECT_EQ(history().undoText(), "Add Filter on good");
}

TEST_F(FiltersPanelTest, SaysWhyAFilterCannotBeAdded)
{
    std::vector<std::string> texts;
    constexpr std::size_t many = 20000;
    for (std::size_t row = 0; row < many; ++row) {
        texts.push_back(std::to_string(row) + "x");
    }
    SmallStudy large(many);
    large.add("Long <b>", texts).add("Lift", std::vector<double>(many, 1.0)).open();
    EXPECT_EQ(shown(), "shown 20,000 of 20,000");

    choose("&Values of", "Long <b>");

    const auto& problem = widget<QLabel>("FiltersProblem");
    EXPECT_TRUE(problem.isVisible());
    EXPECT_TRUE(problem.text().startsWith("Variable \"Long <b>\" has more than 10000 different"))
        << problem.text().toStdString();
    EXPECT_EQ(problem.textFormat(), Qt::PlainText);
    EXPECT_TRUE(m_list->filters().empty());

    choose("&Range of", "Lift");
    EXPECT_FALSE(problem.isVisible());
    EXPECT_EQ(m_list->filters().size(), 1U);
}

TEST_F(FiltersPanelTest, RowsFollowTheListThroughUndoAndRedo)
{
    addRange("Drag", {0.2, 0.4});
    m_list->addTagFilter("good");
    addRange("Ring", {1.0, 2.0});
    EXPECT_EQ(widget<QLineEdit>("filter3-min").text(), "1");
    auto* ring = &widget<QLineEdit>("filter3-min");

    QTest::mouseClick(&widget<QToolButton>("filter1-remove"), Qt::LeftButton);
    settle();
    EXPECT_EQ(history().undoText(), "Remove Filter on Drag");
    EXPECT_FALSE(has("filter3"));
    EXPECT_EQ(&widget<QLineEdit>("filter2-min"), ring);
    EXPECT_TRUE(widget<QToolButton>("filter1-remove").hasFocus());

    history().undo();
    settle();
    EXPECT_EQ(widget<QLineEdit>("filter1-min").text(), "0.2");
    EXPECT_EQ(&widget<QLineEdit>("filter3-min"), ring);
    const int first = widget<QWidget>("filter1").y();
    EXPECT_LT(first, widget<QWidget>("filter2").y());
    EXPECT_LT(widget<QWidget>("filter2").y(), widget<QWidget>("filter3").y());

    Project nothing;
    Project::project().replaceStudy(nothing);
    settle();
    EXPECT_FALSE(has("filter1"));
    EXPECT_EQ(shown(), "No study is open");
    EXPECT_FALSE(widget<QPushButton>("AddFilter").isEnabled());
}

TEST_F(FiltersPanelTest, SwitchesAreEntriesAndShowWhatOthersDo)
{
    const auto filter = addRange("Drag", {0.2, 0.4});
    auto& enabled = widget<QCheckBox>("filter1-enabled");
    auto& invert = widget<QCheckBox>("filter1-invert");
    const QString inForce = shown();

    QTest::keyClick(&enabled, Qt::Key_Space);
    EXPECT_FALSE(filter->enabled()->value());
    EXPECT_EQ(shown(), "shown 4,047 of 4,047");
    QTest::keyClick(&invert, Qt::Key_Space);
    EXPECT_TRUE(filter->inverted()->value());
    EXPECT_EQ(history().count(), 3);

    history().undo();
    history().undo();
    EXPECT_TRUE(enabled.isChecked());
    EXPECT_FALSE(invert.isChecked());
    EXPECT_EQ(shown(), inForce);
    EXPECT_EQ(history().count(), 3);
}

TEST_F(FiltersPanelTest, FieldsApplyWhatIsTyped)
{
    const auto filter = addRange("Drag", {0.1, 1.0 / 3.0});
    auto& min = widget<QLineEdit>("filter1-min");
    auto& max = widget<QLineEdit>("filter1-max");
    EXPECT_EQ(max.text(), "0.3333333333");

    const struct
    {
        const char* typed;
        double min;
        const char* shown;
    } typed[] = {
        {"0.25", 0.25, "0.25"},
        {" +1e-3 ", 0.001, "0.001"},
        {"-inf", -infinity, "-inf"},
    };

    for (const auto& text : typed) {
        SCOPED_TRACE(text.typed);
        type(min, text.typed);
        QTest::keyClick(&min, Qt::Key_Return);
        EXPECT_EQ(filter->range()->value(), (Range{text.min, 1.0 / 3.0}));
        EXPECT_EQ(min.text(), text.shown);
        EXPECT_FALSE(widget<QLabel>("filter1-problem").isVisible());
    }
    EXPECT_EQ(history().count(), 4);

    m_executions = 0;
    type(max, max.text());
    QTest::keyClick(&max, Qt::Key_Return);
    min.setFocus();
    EXPECT_EQ(filter->range()->value().max, 1.0 / 3.0);
    type(max, "inf");
    min.setFocus();
    EXPECT_EQ(filter->range()->value().max, infinity);
    EXPECT_EQ(m_executions, 1);
}

TEST_F(FiltersPanelTest, WhatIsRefusedIsSaidAndChangesNothing)
{
    const auto filter = addRange("Drag", {0.2, 0.4});
    auto& min = widget<QLineEdit>("filter1-min");
    auto& max = widget<QLineEdit>("filter1-max");
    auto& problem = widget<QLabel>("filter1-problem");

    for (const char* text : {"abc", "", "nan", "0.5"}) {
        SCOPED_TRACE(text);
        type(min, "x");
        type(min, text);
        if (*text == '\0') {
            QTest::keyClick(&min, Qt::Key_Delete);
        }
        QTest::keyClick(&min, Qt::Key_Return);
        EXPECT_TRUE(problem.isVisible());
        EXPECT_GT(problem.text().size(), 20);
        EXPECT_EQ(min.text(), text);
        EXPECT_EQ(filter->range()->value(), (Range{0.2, 0.4}));

        QTest::keyClick(&min, Qt::Key_Escape);
        EXPECT_FALSE(problem.isVisible());
        EXPECT_EQ(min.text(), "0.2");
    }
    EXPECT_EQ(history().count(), 1);
    EXPECT_EQ(m_executions, 0);

    // A range above the present one goes through a moment at which its ends do not fit.
    type(min, "0.6");
    QTest::keyClick(&min, Qt::Key_Return);
    EXPECT_TRUE(problem.isVisible());
    type(max, "0.8");
    QTest::keyClick(&max, Qt::Key_Return);
    EXPECT_EQ(filter->range()->value(), (Range{0.6, 0.8}));
    EXPECT_FALSE(problem.isVisible());
    EXPECT_EQ(m_executions, 1);
}

TEST_F(FiltersPanelTest, DraggingAHandleFiltersLiveAndIsOneEntry)
{
    const auto filter = addRange("Drag", {0.0, 1.0});
    auto& slider = widget<analyzer::RangeSlider>("filter1-slider");
    auto& upper = widget<analyzer::RangeHandle>("filter1-upper");
    auto& lower = widget<analyzer::RangeHandle>("filter1-lower");
    const int width = upper.x() - (lower.x() + lower.width() - 1);
    ASSERT_GT(width, 100);

    press(upper, 3);
    EXPECT_TRUE(upper.hasFocus());
    for (int part = 1; part <= 5; ++part) {
        // A handle follows at once, and its moves are told in its own coordinates.
        const int before = upper.x();
        for (int move = 0; move < 4; ++move) {
            moveTo(upper, 3 - width / 40);
        }
        EXPECT_LT(upper.x(), before);
        EXPECT_EQ(m_executions, part - 1);
        settle();
        EXPECT_EQ(m_executions, part);
        EXPECT_LT(filter->range()->value().max, 1.0 - 0.08 * part);
    }
    EXPECT_NEAR(filter->range()->value().max, 0.5, 0.05);
    EXPECT_EQ(filter->range()->value().min, 0.0);
    moveTo(upper, 3 - 10 * width);
    release(upper, 3);
    EXPECT_EQ(m_executions, 6);
    EXPECT_EQ(filter->range()->value(), (Range{0.0, 0.0}));
    EXPECT_EQ(history().count(), 2);
    EXPECT_EQ(upper.geometry().left(), lower.geometry().right());

    // Both handles are at the same place and both can still be taken.
    press(upper, 3);
    moveTo(upper, 3 + width / 2);
    release(upper, 3);
    press(lower, 1);
    moveTo(lower, 1 + 10 * width);
    release(lower, 1);
    const double middle = filter->range()->value().max;
    EXPECT_NEAR(middle, 0.5, 0.02);
    EXPECT_EQ(filter->range()->value().min, middle);

    history().undo();
    EXPECT_EQ(filter->range()->value(), (Range{0.0, middle}));
    EXPECT_EQ(widget<QLineEdit>("filter1-max").text(), QString::number(middle, 'g', 10));
    history().undo();
    history().undo();
    EXPECT_EQ(filter->range()->value(), (Range{0.0, 1.0}));
    EXPECT_EQ(lower.value(), 0);
    EXPECT_EQ(upper.value(), analyzer::RangeHandle::steps);
    EXPECT_EQ(slider.width(), width + 1 + 2 * upper.width());
}

TEST_F(FiltersPanelTest, APressOnTheHistogramMovesTheNearerEnd)
{
    const auto filter = addRange("Drag", {0.0, 1.0});
    auto& slider = widget<analyzer::RangeSlider>("filter1-slider");

    press(slider, slider.width() / 4);
    moveTo(slider, slider.width() / 3);
    release(slider, slider.width() / 3);
    press(slider, slider.width() * 3 / 4);
    release(slider, slider.width() * 3 / 4);

    EXPECT_NEAR(filter->range()->value().min, 1.0 / 3.0, 0.05);
    EXPECT_NEAR(filter->range()->value().max, 0.75, 0.05);
    EXPECT_EQ(history().count(), 3);
    EXPECT_TRUE(widget<analyzer::RangeHandle>("filter1-upper").hasFocus());
}

TEST_F(FiltersPanelTest, HandlesMoveByKeyboard)
{
    const auto filter = addRange("Drag", {0.2, 0.6});
    auto& lower = widget<analyzer::RangeHandle>("filter1-lower");
    auto& upper = widget<analyzer::RangeHandle>("filter1-upper");

    const struct
    {
        QWidget& handle;
        Qt::Key key;
        Range expected;
    } keys[] = {
        {lower, Qt::Key_Right, {0.21, 0.6}},
        {lower, Qt::Key_Up, {0.22, 0.6}},
        {lower, Qt::Key_PageUp, {0.32, 0.6}},
        {lower, Qt::Key_Left, {0.31, 0.6}},
        {lower, Qt::Key_PageDown, {0.21, 0.6}},
        {lower, Qt::Key_Home, {0.0, 0.6}},
        {upper, Qt::Key_Down, {0.0, 0.59}},
        {upper, Qt::Key_End, {0.0, 1.0}},
        {upper, Qt::Key_Home, {0.0, 0.0}},
        {upper, Qt::Key_PageUp, {0.0, 0.1}},
        {lower, Qt::Key_End, {0.1, 0.1}},
    };

    int entries = 1;
    for (const auto& key : keys) {
        SCOPED_TRACE(++entries);
        QTest::keyClick(&key.handle, key.key);
        EXPECT_EQ(filter->range()->value(), key.expected);
        EXPECT_EQ(history().count(), entries);
    }

    QKeyEvent first(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, QString(), true);
    QKeyEvent released(QEvent::KeyRelease, Qt::Key_Right, Qt::NoModifier);
    for (QKeyEvent* event : {&first, &repeated, &repeated, &repeated, &released}) {
        QCoreApplication::sendEvent(&upper, event);
    }
    EXPECT_EQ(filter->range()->value(), (Range{0.1, 0.14}));
    EXPECT_EQ(history().count(), entries + 1);

    // What assistive programs do.
    upper.setValue(900);
    settle();
    EXPECT_EQ(filter->range()->value(), (Range{0.1, 0.9}));
}

TEST_F(FiltersPanelTest, EverythingIsReachedByTabInOrderAndHasAName)
{
    m_list->addTagFilter("good");
    addRange("Drag", {0.2, 0.6});
    m_list->addValuesFilter("Note");
    m_list->remove(m_list->filters()[0]);
    history().undo(); // the first row is the newest
    settle();

    const QStringList expected{
        "AddFilter",
        "filter1-enabled",
        "filter1-invert",
        "filter1-remove",
        "filter2-enabled",
        "filter2-invert",
        "filter2-remove",
        "filter2-min",
        "filter2-max",
        "filter2-lower",
        "filter2-upper",
        "filter3-enabled",
        "filter3-invert",
        "filter3-remove",
        "filter3-search",
        "filter3-values",
        "filter3-all",
        "filter3-none"};
    widget<QPushButton>("AddFilter").setFocus();
    for (const QString& name : expected) {
        QWidget* focused = QApplication::focusWidget();
        ASSERT_NE(focused, nullptr);
        EXPECT_EQ(focused->objectName(), name);
        if (name != "AddFilter") {
            EXPECT_FALSE(focused->accessibleName().isEmpty()) << name.toStdString();
        }
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    EXPECT_EQ(widget<QWidget>("filter1-remove").accessibleName(), "Remove filter on good");
    EXPECT_EQ(widget<QWidget>("filter2-lower").accessibleName(), "Lower end of Drag");
    EXPECT_EQ(widget<QWidget>("filter2-upper").accessibleName(), "Upper end of Drag");
}

TEST_F(FiltersPanelTest, ValuesAreTickedSearchedAndChangedAtOnce)
{
    const auto filter = m_list->addValuesFilter("Note");
    settle();
    auto& list = widget<QListView>("filter1-values");
    auto& search = widget<QLineEdit>("filter1-search");
    EXPECT_EQ(list.model()->rowCount(), static_cast<int>(caseCount));
    EXPECT_EQ(widget<QLabel>("filter1-count").text(), "4,047 of 4,047");

    QTest::mouseClick(&widget<QPushButton>("filter1-none"), Qt::LeftButton);
    EXPECT_EQ(shown(), "shown 0 of 4,047");
    type(search, "NOTE 40");
    EXPECT_EQ(list.model()->rowCount(), 58); // 40, 400 to 409 and 4000 to 4046
    QTest::mouseClick(&widget<QPushButton>("filter1-all"), Qt::LeftButton);
    EXPECT_EQ(shown(), "shown 58 of 4,047");

    QTest::keyClick(&search, Qt::Key_Down);
    EXPECT_TRUE(list.hasFocus());
    QTest::keyClick(&list, Qt::Key_Space);
    EXPECT_EQ(filter->values()->value().count(Variant("note 40")), 0U);
    EXPECT_EQ(list.model()->index(0, 0).data(Qt::CheckStateRole), Qt::Unchecked);
    EXPECT_EQ(shown(), "shown 57 of 4,047");
    QTest::mouseClick(
        list.viewport(),
        Qt::LeftButton,
        Qt::NoModifier,
        list.visualRect(list.model()->index(0, 0)).center());
    EXPECT_EQ(shown(), "shown 58 of 4,047");
    EXPECT_EQ(history().count(), 5);

    history().undo();
    history().undo();
    history().undo();
    EXPECT_EQ(shown(), "shown 0 of 4,047");
    EXPECT_EQ(list.model()->index(5, 0).data(Qt::CheckStateRole), Qt::Unchecked);
}

TEST_F(FiltersPanelTest, AMissingValueIsOneToTick)
{
    const auto filter = m_list->addValuesFilter("Steel");
    settle();
    const QAbstractItemModel& model = *widget<QListView>("filter1-values").model();
    ASSERT_EQ(model.rowCount(), 3);
    EXPECT_EQ(model.index(0, 0).data().toString(), "(missing)");
    EXPECT_FALSE(widget<QLineEdit>("filter1-search").isVisible());

    widget<QListView>("filter1-values")
        .model()
        ->setData(model.index(0, 0), Qt::Unchecked, Qt::CheckStateRole);

    EXPECT_EQ(
        filter->values()->value(), (ListedFilter::Values{Variant("hard & dear"), Variant("soft")}));
    EXPECT_EQ(shown(), "shown 2,698 of 4,047");
}

TEST_F(FiltersPanelTest, BarsThatAreLeftOutAreHatched)
{
    const auto ring = addRange("Ring", {1.0, 3.0});
    const QColor keptColor = m_panel->palette().color(QPalette::Highlight);
    // Whether the bar of each whole number, from 0 to 4, has the color of what is kept somewhere at its foot.
    const auto bars = [&] {
        auto& slider = widget<analyzer::RangeSlider>("filter1-slider");
        const QImage image = slider.grab().toImage();
        const double ratio = image.devicePixelRatio();
        const int handle = slider.upperHandle().width();
        const int top = slider.upperHandle().y() - 5;
        std::vector<bool> kept;
        for (int number = 0; number <= 4; ++number) {
            const int x = handle + number * (slider.width() - 2 * handle - 1) / 4;
            bool isKept = false;
            for (int dx = -4; dx <= 4; ++dx) {
                for (int dy = 0; dy < 4; ++dy) {
                    const QPoint place(
                        static_cast<int>((x + dx) * ratio), static_cast<int>((top - dy) * ratio));
                    isKept = isKept || image.pixelColor(place) == keptColor;
                }
            }
            kept.push_back(isKept);
        }
        return kept;
    };

    EXPECT_EQ(bars(), (std::vector<bool>{false, true, true, true, false}));
    ring->inverted()->setValue(true);
    EXPECT_EQ(bars(), (std::vector<bool>{true, false, false, false, true}));
    ring->range()->setValue({2.5, infinity});
    EXPECT_EQ(bars(), (std::vector<bool>{true, true, true, false, false}));
}

TEST_F(FiltersPanelTest, AVariableWithoutASpanHasNoSlider)
{
    const auto filter = addRange("Same", {7.0, 7.0});

    EXPECT_FALSE(has("filter1-slider"));
    type(widget<QLineEdit>("filter1-max"), "8");
    QTest::keyClick(&widget<QLineEdit>("filter1-max"), Qt::Key_Return);
    EXPECT_EQ(filter->range()->value(), (Range{7.0, 8.0}));
}

TEST_F(FiltersPanelTest, WhatIsNotAppliedYetIsForgottenWithItsFilter)
{
    const auto filter = addRange("Drag", {0.0, 1.0});
    auto& upper = widget<analyzer::RangeHandle>("filter1-upper");
    press(upper, 3);
    moveTo(upper, -40);
    history().undo();
    settle();
    EXPECT_TRUE(m_list->filters().empty());
    EXPECT_TRUE(history().canRedo());

    history().redo();
    settle();
    type(widget<QLineEdit>("filter1-min"), "0.5");
    history().undo();
    settle();
    EXPECT_EQ(filter->range()->value(), (Range{0.0, 1.0}));
    EXPECT_EQ(history().index(), 0);
    EXPECT_TRUE(history().canRedo());
}

TEST_F(FiltersPanelTest, UndoKeyIsTheWindowsUnlessSomethingIsTyped)
{
    const auto filter = addRange("Drag", {0.2, 1.0});
    QAction undo;
    undo.setShortcut(QKeySequence::Undo);
    QObject::connect(&undo, &QAction::triggered, [] { history().undo(); });
    m_panel->addAction(&undo);
    auto& min = widget<QLineEdit>("filter1-min");
    type(min, "0.3");
    QTest::keyClick(&min, Qt::Key_Return);

    QTest::keyClicks(&min, "7");
    QTest::keyClick(&min, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(filter->range()->value().min, 0.3);
    QTest::keyClick(&min, Qt::Key_Escape);
    QTest::keyClick(&min, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(filter->range()->value().min, 0.2);
}

} // namespace
