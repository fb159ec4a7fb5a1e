#include <analyzer/export/filtersInWords.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/filters/ListedFilter.h>
#include <analyzer/study/sentenceText.h>

#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/data/variantDisplayText.h>

#include <cmath>
#include <cstddef>

namespace analyzer {

namespace {

constexpr std::size_t mostValues = 12; ///< that are named

std::string numberText(double number)
{
    return variantDisplayText(Variant(number));
}

std::string rangeInWords(const ListedFilter& filter)
{
    const ListedFilter::Range range = filter.range()->value();
    const bool isInverted = filter.inverted()->value();
    const bool hasMin = !std::isinf(range.min);
    const bool hasMax = !std::isinf(range.max);
    if (hasMin && hasMax) {
        return (isInverted ? " not between " : " between ") + numberText(range.min) + " and "
            + numberText(range.max);
    }
    if (hasMin) {
        return (isInverted ? " below " : " at least ") + numberText(range.min);
    }
    if (hasMax) {
        return (isInverted ? " above " : " at most ") + numberText(range.max);
    }
    return isInverted ? " outside of all numbers" : " is any number";
}

std::string valuesInWords(const ListedFilter& filter)
{
    const ListedFilter::Values values = filter.values()->value();
    const std::string of = " of " + counted(filter.choices().size(), "value", "values") + ')';
    const std::string share = " (" + std::to_string(values.size()) + of;
    const std::string negation = filter.inverted()->value() ? " is not " : " is ";
    if (values.empty()) {
        return (filter.inverted()->value() ? " has any value" : " has none of the values") + share;
    }
    std::string list;
    std::size_t named = 0;
    for (const Variant& value : values) {
        if (named == mostValues && values.size() > mostValues + 1) {
            break;
        }
        list += named == 0 ? "" : ", ";
        list += oneLine(variantDisplayText(value));
        ++named;
    }
    if (named < values.size()) {
        list += " and " + std::to_string(values.size() - named) + " more";
    }
    return negation + (values.size() == 1 ? "" : "one of ") + list + share;
}

} // namespace

std::string filterInWords(const ListedFilter& filter)
{
    switch (filter.kind()) {
    case ListedFilter::Kind::Range:
        return oneLine(filter.name()) + rangeInWords(filter);
    case ListedFilter::Kind::Values:
        return oneLine(filter.name()) + valuesInWords(filter);
    case ListedFilter::Kind::Tag:
        break;
    }
    return (filter.inverted()->value() ? "not tagged " : "tagged ") + oneLine(filter.name());
}

std::vector<std::string> filtersInWords(const FilterList& filters)
{
    std::vector<std::string> words;
    for (const FilterList::FilterPtr& filter : filters.filters()) {
        words.push_back(
            filterInWords(*filter) + (filter->enabled()->value() ? "" : " (switched off)"));
    }
    return words;
}

} // namespace analyzer
