#include <analyzer/filters/FilterList.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/property/InvalidPropertyValueException.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>

#include <tests/support/SmallStudy.h>

using analyzer::FilterList;
using analyzer::ListedFilter;

namespace {

using Rows = std::vector<std::size_t>;
using Range = ListedFilter::Range;
using Filters = std::vector<FilterList::FilterPtr>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double missing = std::numeric_limits<double>::quiet_NaN();

class FilterListTest : public testing::Test
{
protected:
    FilterListTest()
    {
        UndoStack::history().clear();
        m_study.add("Drag", {0.1, 0.2, 0.3, 0.4, missing});
        m_study.add("Lift", {5.0, 4.0, 3.0, 2.0, 1.0});
        m_study.add("Steel", std::vector<std::string>{"a", "b", "a", "", "b"});
        m_study.open();
        Project& project = Project::project();
        project.addTagGroup("Quality");
        project.addTag("Quality", "good");
        RowBitmap first(5);
        first.set(0);
        project.tagCases("good", first, true);
        m_pipeline = std::make_unique<DataPipelineManager>(project);
        m_list = std::make_unique<FilterList>(*m_pipeline);
        m_pipeline->signalPipelineChanged.connect([this] { ++m_pipelineSignals; });
        m_list->signalListChanged.connect([this] { ++m_listSignals; });
        m_list->signalFilterChanged.connect(
            [this](const FilterList::FilterPtr& filter) { m_changed.push_back(filter); });
    }

    ~FilterListTest() override { UndoStack::history().clear(); }

    [[nodiscard]] Rows rows() const
    {
        Rows result;
        m_pipeline->passingRows().forEach([&result](std::size_t row) { result.push_back(row); });
        return result;
    }

    void expectSignals(int pipelineSignals, int listSignals, const Filters& changed)
    {
        EXPECT_EQ(m_pipelineSignals, pipelineSignals);
        EXPECT_EQ(m_listSignals, listSignals);
        EXPECT_EQ(m_changed, changed);
        m_pipelineSignals = 0;
        m_listSignals = 0;
        m_changed.clear();
    }

    static std::string refusal(const std::function<void()>& change)
    {
        try {
            change();
        } catch (const ExceptionBase& error) {
            return error.what();
        }
        return "(accepted)";
    }

    static QUndoStack& history() { return UndoStack::history(); }

    SmallStudy m_study{5};
    std::unique_ptr<DataPipelineManager> m_pipeline;
    std::unique_ptr<FilterList> m_list;
    int m_pipelineSignals = 0;
    int m_listSignals = 0;
    Filters m_changed;
};

TEST_F(FilterListTest, AddingAndRemovingAreNamedEntriesThatBringTheSameFilterBack)
{
    const auto drag = m_list->addRangeFilter("Drag", {0.2, 0.4});
    const auto tag = m_list->addTagFilter("good");
    const auto lift = m_list->addRangeFilter("Lift", {3.0, 5.0});
    EXPECT_EQ(history().undoText(), "Add Filter on Lift");
    EXPECT_EQ(m_list->filters(), (Filters{drag, tag, lift}));
    expectSignals(3, 3, {});
    tag->inverted()->setValue(true);
    expectSignals(1, 0, {tag});
    EXPECT_EQ(rows(), (Rows{1, 2}));

    m_list->remove(tag);
    m_list->remove(tag);
    EXPECT_EQ(history().undoText(), "Remove Filter on good");
    EXPECT_EQ(m_list->filters(), (Filters{drag, lift}));
    expectSignals(1, 1, {});

    history().undo();
    EXPECT_EQ(m_list->filters(), (Filters{drag, tag, lift}));
    EXPECT_EQ(
        m_pipeline->filters(),
        (std::vector<boost::shared_ptr<FilterInterface>>{
            drag->filter(), tag->filter(), lift->filter()}));
    EXPECT_TRUE(tag->inverted()->value());
    expectSignals(1, 1, {});
    EXPECT_EQ(rows(), (Rows{1, 2}));
}

TEST_F(FilterListTest, EachStepNotifiesOnce)
{
    const auto drag = m_list->addRangeFilter("Drag", {0.2, 0.4});
    const auto steel = m_list->addValuesFilter("Steel");
    EXPECT_EQ(
        steel->values()->value(), (ListedFilter::Values{Variant(), Variant("a"), Variant("b")}));
    expectSignals(2, 2, {});

    const struct
    {
        FilterList::FilterPtr filter;
        std::function<void()> change;
        const char* undoText;
        Rows rows;
    } steps[] = {
        {drag,
         [&] {
             drag->range()->setValue({0.1, 0.3});
         },
         "Change Filter on Drag",
         {0, 1, 2}},
        {drag, [&] { drag->inverted()->setValue(true); }, "Invert Filter on Drag", {3}},
        {drag, [&] { drag->enabled()->setValue(false); }, "Switch Filter on Drag", {0, 1, 2, 3, 4}},
        {steel,
         [&] {
             steel->values()->setValue({Variant(), Variant("a")});
         },
         "Change Filter on Steel",
         {0, 2, 3}},
    };

    Rows before = rows();
    for (const auto& step : steps) {
        SCOPED_TRACE(step.undoText);
        step.change();
        step.change();
        expectSignals(1, 0, {step.filter});
        EXPECT_EQ(rows(), step.rows);
        EXPECT_EQ(history().undoText(), step.undoText);

        history().undo();
        expectSignals(1, 0, {step.filter});
        EXPECT_EQ(rows(), before);
        history().redo();
        expectSignals(1, 0, {step.filter});
        EXPECT_EQ(rows(), step.rows);
        before = step.rows;
    }
    EXPECT_EQ(history().count(), 6);
}

TEST_F(FilterListTest, AGestureIsOneEntryFromItsFirstToItsLastValue)
{
    const auto drag = m_list->addRangeFilter("Drag", {0.1, 0.4});
    const auto moveTo = [&drag](double max) { drag->range()->setValue({0.1, max}); };

    for (const double end : {0.35, 0.25}) {
        drag->beginGesture();
        for (int step = 0; step < 20; ++step) {
            moveTo(end + 0.001 * step);
        }
        moveTo(end);
        drag->endGesture();
    }
    moveTo(0.2);
    moveTo(0.15);
    EXPECT_EQ(history().count(), 5);

    for (const double expected : {0.2, 0.25, 0.35, 0.4}) {
        history().undo();
        EXPECT_EQ(drag->range()->value().max, expected);
    }
    history().redo();
    EXPECT_EQ(drag->range()->value().max, 0.35);

    const int entries = history().index();
    drag->beginGesture();
    for (const double max : {0.3, 0.35, 0.2, 0.35}) {
        moveTo(max);
    }
    drag->endGesture();
    EXPECT_EQ(history().count(), entries) << "it ends where it began";
    history().undo();
    EXPECT_EQ(drag->range()->value().max, 0.4);
}

TEST_F(FilterListTest, RefusesWithASentenceAndChangesNothing)
{
    const auto drag = m_list->addRangeFilter("Drag", {0.2, 0.4});
    history().clear();
    expectSignals(1, 1, {});

    const struct
    {
        std::function<void()> change;
        std::string sentence;
    } refused[] = {
        {[&] {
             m_list->addRangeFilter("Drag", {0.0, 1.0});
         },
         "There is a range filter on \"Drag\" already."},
        {[&] {
             m_list->addRangeFilter("Steel", {0.0, 1.0});
         },
         "Variable \"Steel\" holds texts and cannot be filtered by a range."},
        {[&] {
             m_list->addRangeFilter("Gone", {0.0, 1.0});
         },
         "The study has no variable \"Gone\"."},
        {[&] { m_list->addValuesFilter("Gone"); }, "The study has no variable \"Gone\"."},
        {[&] { m_list->addTagFilter("Gone"); }, "The study has no tag \"Gone\"."},
    };

    for (const auto& attempt : refused) {
        SCOPED_TRACE(attempt.sentence);
        EXPECT_EQ(refusal(attempt.change), attempt.sentence);
    }
    using corvane::InvalidPropertyValueException;
    EXPECT_THROW(m_list->addRangeFilter("Lift", {missing, 1.0}), InvalidPropertyValueException);
    EXPECT_THROW(drag->range()->setValue({0.0, missing}), InvalidPropertyValueException);
    EXPECT_THROW(drag->range()->setValue({0.5, 0.4}), InvalidPropertyValueException);
    EXPECT_EQ(m_list->filters(), Filters{drag});
    EXPECT_EQ(drag->range()->value(), (Range{0.2, 0.4}));
    EXPECT_EQ(history().count(), 0);
    expectSignals(0, 0, {});

    drag->range()->setValue({-infinity, infinity});
    EXPECT_EQ(rows(), (Rows{0, 1, 2, 3}));
    m_list->addValuesFilter("Drag");
    EXPECT_EQ(m_list->filters().size(), 2U);
}

TEST_F(FilterListTest, AFilterWhoseTagIsGoneLeavesAndItsHistoryDoesNothing)
{
    const auto drag = m_list->addRangeFilter("Drag", {0.2, 0.4});
    const auto tag = m_list->addTagFilter("good");
    tag->inverted()->setValue(true);
    m_list->remove(tag);
    history().undo();
    expectSignals(5, 4, {tag});

    Project::project().removeTag("good");

    expectSignals(1, 1, {});
    EXPECT_EQ(m_list->filters(), Filters{drag});
    history().redo();
    history().undo();
    EXPECT_EQ(m_list->filters(), Filters{drag});
    history().undo();
    history().undo();
    EXPECT_EQ(m_list->filters(), Filters{drag});
    history().redo();
    EXPECT_EQ(m_list->filters(), Filters{drag});
    expectSignals(0, 0, {});
    EXPECT_EQ(rows(), (Rows{1, 2, 3}));
}

TEST_F(FilterListTest, AnotherStudyEmptiesItAndTheHistoryDoesNothing)
{
    m_list->addRangeFilter("Drag", {0.2, 0.3});
    m_list->addValuesFilter("Steel");
    Project next;
    next.setCaseCount(2);

    Project::project().replaceStudy(next);

    EXPECT_EQ(m_list->filters(), Filters());
    EXPECT_EQ(m_listSignals, 3);
    while (history().canUndo()) {
        history().undo();
    }
    while (history().canRedo()) {
        history().redo();
    }
    EXPECT_EQ(m_list->filters(), Filters());
    EXPECT_EQ(m_pipeline->passingCount(), 2U);
}

TEST_F(FilterListTest, NothingReachesAListThatIsGone)
{
    const auto drag = m_list->addRangeFilter("Drag", {0.2, 0.3});
    m_list.reset();

    history().undo();
    drag->enabled()->setValue(false);
    Project::project().removeTag("good");

    EXPECT_EQ(m_pipeline->filters().size(), 1U);
    EXPECT_EQ(m_pipeline->passingCount(), 5U);
}

TEST_F(FilterListTest, AFilterThatIsAddedUnrecordedKeepsAnOlderOneFromComingBack)
{
    const auto old = m_list->addRangeFilter("Drag", {0.2, 0.3});
    m_list->remove(old);
    FilterList::FilterPtr present;
    {
        const UndoStack::SuspendUndoRecording noRecording;
        present = m_list->addRangeFilter("Drag", {0.1, 0.2});
    }

    history().undo();

    EXPECT_EQ(m_list->filters(), Filters{present});
}

TEST_F(FilterListTest, ListChangesAreToldEvenIfAViewFailsAtTheNewCases)
{
    const std::string problem = "no memory";
    m_pipeline->signalPipelineChanged.connect([&problem] { throw std::runtime_error(problem); });

    EXPECT_THROW(m_list->addRangeFilter("Drag", {0.2, 0.3}), std::runtime_error);

    EXPECT_EQ(m_listSignals, 1);
    EXPECT_EQ(m_list->filters().size(), 1U);
}

} // namespace
