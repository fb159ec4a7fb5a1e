#include <dataviews/platform/pipeline/FilterFactory.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/pipeline/TagFilter.h>
#include <dataviews/platform/pipeline/ValueSetFilter.h>

#include <boost/make_shared.hpp>

boost::shared_ptr<FilterInterface> FilterFactory::createRangeFilter(
    const WeakPtr<Variable>& variable, const ValueRange_s<double>& range, bool inverted) const
{
    return boost::make_shared<RangeFilter>(variable, range, inverted);
}

boost::shared_ptr<FilterInterface> FilterFactory::createValueSetFilter(
    const WeakPtr<Variable>& variable, const std::set<Variant>& values, bool inverted) const
{
    return boost::make_shared<ValueSetFilter>(variable, values, inverted);
}

boost::shared_ptr<FilterInterface> FilterFactory::createTagFilter(
    const std::string& tag, bool inverted) const
{
    return boost::make_shared<TagFilter>(tag, inverted);
}
