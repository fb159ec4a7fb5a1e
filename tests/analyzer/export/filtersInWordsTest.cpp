#include <analyzer/export/filtersInWords.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/filters/ListedFilter.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include <tests/support/SmallStudy.h>

namespace analyzer {

namespace {

using Range = ListedFilter::Range;

constexpr double infinity = std::numeric_limits<double>::infinity();

class FiltersInWordsTest : public testing::Test
{
protected:
    FiltersInWordsTest()
    {
        constexpr std::size_t cases = 20;
        std::vector<double> drags;
        std::vector<std::string> names;
        for (std::size_t i = 0; i < cases; ++i) {
            drags.push_back(static_cast<double>(i % 16) / 3.0);
            names.push_back(i == 0 ? "" : i % 2 == 0 ? "a\nb" : "c");
        }
        m_study.add("Drag", drags).add("Na\nme", names).open();
        Project::project().addTagGroup("Quality");
        Project::project().addTag("Quality", "very good");
    }

    ~FiltersInWordsTest() override { UndoStack::history().clear(); }

    SmallStudy m_study{20};
    DataPipelineManager m_pipeline{Project::project()};
    FilterList m_list{m_pipeline};
};

} // namespace

TEST_F(FiltersInWordsTest, SaysRanges)
{
    const auto filter = m_list.addRangeFilter("Drag", {1, 2});

    const struct
    {
        Range range;
        bool isInverted;
        const char* words;
    } cases[] = {
        {{1, 2}, false, "Drag between 1 and 2"},
        {{1.0 / 3.0, 1e7}, true, "Drag not between 0.333333 and 1e+07"},
        {{-1, infinity}, false, "Drag at least -1"},
        {{-1, infinity}, true, "Drag below -1"},
        {{-infinity, 2}, false, "Drag at most 2"},
        {{-infinity, 2}, true, "Drag above 2"},
        {{-infinity, infinity}, false, "Drag is any number"},
        {{-infinity, infinity}, true, "Drag outside of all numbers"},
    };

    for (const auto& [range, isInverted, words] : cases) {
        filter->range()->setValue(range);
        filter->inverted()->setValue(isInverted);

        EXPECT_EQ(filterInWords(*filter), words);
    }
}

TEST_F(FiltersInWordsTest, SaysValuesOnOneLine)
{
    const auto filter = m_list.addValuesFilter("Na\nme");

    const struct
    {
        ListedFilter::Values values;
        bool isInverted;
        const char* words;
    } cases[] = {
        {{Variant("c")}, false, "Na me is c (1 of 3 values)"},
        {{Variant("c"), Variant("a\nb")}, false, "Na me is one of a b, c (2 of 3 values)"},
        {{Variant(), Variant("c")}, true, "Na me is not one of (missing), c (2 of 3 values)"},
        {{}, false, "Na me has none of the values (0 of 3 values)"},
        {{}, true, "Na me has any value (0 of 3 values)"},
    };

    for (const auto& [values, isInverted, words] : cases) {
        filter->values()->setValue(values);
        filter->inverted()->setValue(isInverted);

        EXPECT_EQ(filterInWords(*filter), words);
    }
}

TEST_F(FiltersInWordsTest, NamesTheFirstOfManyValues)
{
    const auto filter = m_list.addValuesFilter("Drag");

    EXPECT_EQ(
        filterInWords(*filter),
        "Drag is one of 0, 0.333333, 0.666667, 1, 1.33333, 1.66667, 2, 2.33333, 2.66667, 3, "
        "3.33333, 3.66667 and 4 more (16 of 16 values)");
}

TEST_F(FiltersInWordsTest, ListsFiltersInOrderAndMarksThoseThatAreOff)
{
    m_list.addTagFilter("very good")->inverted()->setValue(true);
    m_list.addRangeFilter("Drag", {0, 1})->enabled()->setValue(false);

    EXPECT_EQ(
        filtersInWords(m_list),
        (std::vector<std::string>{"not tagged very good", "Drag between 0 and 1 (switched off)"}));
}

} // namespace analyzer
