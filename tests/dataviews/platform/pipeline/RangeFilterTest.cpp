#include "pipelineTestSupport.h"

#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/property/InvalidPropertyValueException.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

using namespace pipelineTest;

namespace {

using Rows = std::vector<std::size_t>;

TEST(RangeFilterTest, KeepsInsideOrOutsideAndNeverMissing)
{
    Project project;
    project.setCaseCount(8);
    const WeakPtr<Variable> x =
        addNumbers(project, "x", {-infinity, 0.9999, 1.0, 1.5, missing, 2.0, 2.0001, infinity});

    struct Case
    {
        ValueRange_s<double> range;
        Rows inside;
        Rows outside;
    };

    const Case cases[] = {
        {{1.0, 2.0}, {2, 3, 5}, {0, 1, 6, 7}},
        {{1.5, 1.5}, {3}, {0, 1, 2, 5, 6, 7}},
        {{-infinity, 1.0}, {0, 1, 2}, {3, 5, 6, 7}},
        {{2.0, infinity}, {5, 6, 7}, {0, 1, 2, 3}},
        {{-infinity, infinity}, {0, 1, 2, 3, 5, 6, 7}, {}},
        {{1.1, 1.2}, {}, {0, 1, 2, 3, 5, 6, 7}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.range.min << " to " << c.range.max);
        EXPECT_EQ(passing(RangeFilter(x, c.range), project), c.inside);
        EXPECT_EQ(passing(RangeFilter(x, c.range, true), project), c.outside);
    }
}

TEST(RangeFilterTest, TakesOutOnlyAndLeavesNoBitBehindTheLastRow)
{
    for (const std::size_t rowCount : {0U, 1U, 63U, 64U, 65U, 128U, 200U}) {
        SCOPED_TRACE(rowCount);
        Project project;
        project.setCaseCount(rowCount);
        std::vector<double> values(rowCount);
        std::iota(values.begin(), values.end(), 0.0);
        const WeakPtr<Variable> x = addNumbers(project, "x", values);
        RowBitmap rows(rowCount, true);
        RowBitmap expected(rowCount, true);
        for (std::size_t row = 0; row < rowCount; row += 3) {
            rows.set(row, false);
            expected.set(row, false);
        }

        RangeFilter(x, {-1.0, 1000.0}).apply(project, rows);

        EXPECT_EQ(rows, expected);
    }
}

TEST(RangeFilterTest, FiltersTheCaseID)
{
    Project project;
    project.setCaseCount(5);

    EXPECT_EQ(passing(RangeFilter(project.caseIDVariable(), {2.0, 3.5}), project), (Rows{1, 2}));
    EXPECT_EQ(
        passing(RangeFilter(project.caseIDVariable(), {2.0, 3.5}, true), project), (Rows{0, 3, 4}));
}

TEST(RangeFilterTest, RefusesRangesThatAreNone)
{
    Project project;
    project.setCaseCount(1);
    const WeakPtr<Variable> x = addNumbers(project, "x", {1.0});
    RangeFilter filter(x, {1.0, 2.0});
    int changes = 0;
    filter.signalFilterChanged.connect([&changes] { ++changes; });
    const ValueRange_s<double> refused[] = {{2.0, 1.0}, {missing, 1.0}, {1.0, missing}};

    for (const ValueRange_s<double>& range : refused) {
        EXPECT_THROW(filter.setRange(range), corvane::InvalidPropertyValueException);
        EXPECT_THROW(RangeFilter(x, range), corvane::InvalidPropertyValueException);
    }
    EXPECT_EQ(filter.range(), (ValueRange_s<double>{1.0, 2.0}));
    EXPECT_EQ(changes, 0);

    filter.setRange({1.0, 3.0});
    filter.setRange({1.0, 3.0});
    EXPECT_EQ(filter.range(), (ValueRange_s<double>{1.0, 3.0}));
    EXPECT_EQ(changes, 1);
}

TEST(RangeFilterTest, RefusesTextsAndVariablesThatAreGone)
{
    Project project;
    project.setCaseCount(1);
    const WeakPtr<Variable> text = addTexts(project, "text", {"a"});

    EXPECT_THROW(RangeFilter(text, {0.0, 1.0}), ExceptionBase);
    EXPECT_THROW(RangeFilter(WeakPtr<Variable>(), {0.0, 1.0}), ExceptionBase);
}

TEST(RangeFilterTest, TakesNothingOutOnceItsVariableIsNotInTheStudy)
{
    Project project;
    project.setCaseCount(1);
    const WeakPtr<Variable> x = addNumbers(project, "x", {1.0});
    const boost::shared_ptr<Variable> kept = x.lock();
    const RangeFilter filter(x, {5.0, 6.0});
    Project next;
    next.setCaseCount(3);
    addNumbers(next, "x", {1.0, 2.0, 3.0});
    project.replaceStudy(next);

    EXPECT_EQ(passing(filter, project), (Rows{0, 1, 2}));
}

} // namespace
