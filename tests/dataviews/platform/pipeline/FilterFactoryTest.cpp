#include "pipelineTestSupport.h"

#include <dataviews/platform/pipeline/FilterFactory.h>
#include <dataviews/platform/pipeline/FilterRangeFinder.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/pipeline/getFilterType.h>

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>

#include <gtest/gtest.h>

#include <cmath>

using namespace pipelineTest;

namespace {

using Rows = std::vector<std::size_t>;

class ForeignFilter : public FilterInterface
{
public:
    [[nodiscard]] WeakPtr<Variable> variable() const override { return {}; }

    [[nodiscard]] std::string tag() const override { return {}; }

    [[nodiscard]] bool isEnabled() const override { return true; }

    void setEnabled(bool /*enabled*/) override {}

    void apply(const Project& /*project*/, RowBitmap& /*rows*/) const override {}
};

class FilterFactoryTest : public testing::Test
{
protected:
    FilterFactoryTest()
    {
        m_project.setCaseCount(3);
        m_x = addNumbers(m_project, "x", {1.0, 2.0, 3.0});
        m_project.addTagGroup("Quality");
        m_project.addTag("Quality", "good");
        m_project.tagCases("good", bitmap(3, {2}), true);
    }

    Project m_project;
    WeakPtr<Variable> m_x;
    FilterFactory m_factory;
};

TEST_F(FilterFactoryTest, MakesEveryType)
{
    using Type = FilterFactoryInterface::FilterType;
    const std::set<Variant> two = {Variant(2)};

    struct Case
    {
        boost::shared_ptr<FilterInterface> filter;
        Type type;
        Rows passing;
    };

    const Case cases[] = {
        {m_factory.createRangeFilter(m_x, {1.0, 2.0}, false), Type::Range, {0, 1}},
        {m_factory.createRangeFilter(m_x, {1.0, 2.0}, true), Type::InvertedRange, {2}},
        {m_factory.createValueSetFilter(m_x, two, false), Type::ValueSet, {1}},
        {m_factory.createValueSetFilter(m_x, two, true), Type::ValueSet, {0, 2}},
        {m_factory.createTagFilter("good", false), Type::Tag, {2}},
        {m_factory.createTagFilter("good", true), Type::Tag, {0, 1}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(getFilterType(c.filter), c.type);
        EXPECT_EQ(passing(*c.filter, m_project), c.passing);
        EXPECT_TRUE(c.filter->isEnabled());
    }
}

TEST_F(FilterFactoryTest, OnlyARangeThatKeepsItsInsideIsZero)
{
    const boost::shared_ptr<FilterInterface> filter =
        m_factory.createRangeFilter(m_x, {1.0, 2.0}, false);
    EXPECT_EQ(static_cast<int>(getFilterType(filter)), 0);

    boost::static_pointer_cast<RangeFilter>(filter)->setInverted(true);
    EXPECT_NE(static_cast<int>(getFilterType(filter)), 0);

    EXPECT_EQ(getFilterType({}), FilterFactoryInterface::NoFilter);
    EXPECT_EQ(getFilterType(boost::make_shared<ForeignFilter>()), FilterFactoryInterface::NoFilter);
}

TEST_F(FilterFactoryTest, TheRangeFinderReadsRangeFiltersOnly)
{
    const boost::shared_ptr<FilterInterface> filter =
        m_factory.createRangeFilter(m_x, {1.0, 2.0}, true);
    const FilterRangeFinder finder(filter);
    EXPECT_EQ(finder.range(), std::make_pair(1.0, 2.0));

    boost::static_pointer_cast<RangeFilter>(filter)->setRange({-1.0, infinity});
    EXPECT_EQ(finder.range(), std::make_pair(-1.0, infinity));

    for (const auto& other :
         {boost::shared_ptr<FilterInterface>(),
          m_factory.createTagFilter("good", false),
          m_factory.createValueSetFilter(m_x, {Variant(1)}, false)}) {
        const std::pair<double, double> range = FilterRangeFinder(other).range();
        EXPECT_TRUE(std::isnan(range.first) && std::isnan(range.second));
    }
}

} // namespace
