#pragma once

#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/pipeline/FilterAbstract.h>

#include <set>
#include <string>
#include <unordered_set>
#include <vector>

/// Keeps the cases whose value is in a set; inverted, all others.
///
/// Values are those that a record gives, compared as variants are. So the empty value in the set
/// stands for a missing one, and values that no case can have, such as NaN, the empty text, or a text
/// where the variable holds numbers, stand for nothing. An empty set keeps no case.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT ValueSetFilter : public FilterAbstract
{
public:
    /// \throws ExceptionBase if \p variable is gone.
    ValueSetFilter(
        const WeakPtr<Variable>& variable, std::set<Variant> values, bool inverted = false);
    ValueSetFilter(const ValueSetFilter&) = delete;
    ValueSetFilter& operator=(const ValueSetFilter&) = delete;
    ~ValueSetFilter() override;

    [[nodiscard]] const std::set<Variant>& values() const;
    void setValues(std::set<Variant> values);

    void apply(const Project& project, RowBitmap& rows) const override;

private:
    void prepareLookup();

    std::set<Variant> m_values;
    // The set once more, in the types of the columns.
    std::vector<double> m_numbers; ///< ascending
    std::unordered_set<std::string> m_texts;
    bool m_missing = false;
};
