#include "pipelineTestSupport.h"

#include <dataviews/platform/pipeline/ValueSetFilter.h>

#include <gtest/gtest.h>

#include <cstdint>

using namespace pipelineTest;

namespace {

using Rows = std::vector<std::size_t>;

class ValueSetFilterTest : public testing::Test
{
protected:
    ValueSetFilterTest()
    {
        m_project.setCaseCount(6);
        m_whole =
            addNumbers(m_project, "whole", {1.0, 2.0, 9007199254740992.0, missing, -0.0, 2.0});
        m_real =
            addNumbers(m_project, "real", {0.1, infinity, missing, 9007199254740992.0, 0.3, 0.1});
        m_text = addTexts(m_project, "text", {"a", "", "1", "b", "aa", "a"});
    }

    Project m_project;
    WeakPtr<Variable> m_whole;
    WeakPtr<Variable> m_real;
    WeakPtr<Variable> m_text;
};

TEST_F(ValueSetFilterTest, KeepsMembersAndInvertedAllOthers)
{
    constexpr std::int64_t inexact = 9007199254740993; // as a real it would be the one below

    struct Case
    {
        const char* what;
        WeakPtr<Variable> variable;
        std::set<Variant> values;
        Rows members;
    };

    const Case cases[] = {
        {"nothing", m_whole, {}, {}},
        {"integer and real", m_whole, {Variant(2), Variant(1.0)}, {0, 1, 5}},
        {"zero of either sign", m_whole, {Variant(0)}, {4}},
        {"missing", m_whole, {Variant()}, {3}},
        {"missing and number", m_whole, {Variant(), Variant(1)}, {0, 3}},
        {"large", m_whole, {Variant(inexact - 1)}, {2}},
        {"beyond reals", m_whole, {Variant(inexact)}, {}},
        {"beyond reals, real column", m_real, {Variant(inexact), Variant(0.3)}, {4}},
        {"infinite", m_real, {Variant(infinity), Variant(-5), Variant(7)}, {1}},
        {"NaN is not missing", m_real, {Variant(missing), Variant(0.1)}, {0, 5}},
        {"texts for numbers", m_real, {Variant("0.1"), Variant("")}, {}},
        {"text", m_text, {Variant("a"), Variant("b")}, {0, 3, 5}},
        {"missing text", m_text, {Variant()}, {1}},
        {"empty text is no value", m_text, {Variant("")}, {}},
        {"number for text", m_text, {Variant(1), Variant("aa")}, {4}},
        {"case ID",
         m_project.caseIDVariable(),
         {Variant(), Variant(2), Variant(6.0), Variant(2.5)},
         {1, 5}},
        {"case ID, missing only", m_project.caseIDVariable(), {Variant()}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        RowBitmap others = bitmap(6, c.members);
        others.invert();

        EXPECT_EQ(passing(ValueSetFilter(c.variable, c.values), m_project), c.members);
        EXPECT_EQ(passing(ValueSetFilter(c.variable, c.values, true), m_project), rowsOf(others));
    }
}

TEST_F(ValueSetFilterTest, TakesOutOnly)
{
    RowBitmap rows = bitmap(6, {1, 3, 5});

    ValueSetFilter(m_text, {Variant("a"), Variant("b")}).apply(m_project, rows);

    EXPECT_EQ(rowsOf(rows), (Rows{3, 5}));
}

TEST_F(ValueSetFilterTest, TellsOnlyOfOtherValuesAndUsesThem)
{
    ValueSetFilter filter(m_text, {Variant("a")});
    int changes = 0;
    filter.signalFilterChanged.connect([&changes] { ++changes; });

    filter.setValues({Variant("a")});
    EXPECT_EQ(changes, 0);

    filter.setValues({Variant("b"), Variant()});
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(passing(filter, m_project), (Rows{1, 3}));
}

} // namespace
