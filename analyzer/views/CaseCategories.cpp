#include <analyzer/views/CaseCategories.h>
#include <analyzer/views/withNumbers.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/variantDisplayText.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <vtkStringArray.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace analyzer {

namespace {

std::string countText(std::size_t count)
{
    return count > Variable::maxDistinctValues
        ? "more than " + std::to_string(Variable::maxDistinctValues)
        : std::to_string(count);
}

} // namespace

bool CaseCategories::canDivideBy(const Variable& variable)
{
    return variable.distinctValueCount() <= largestCount;
}

CaseCategories::CaseCategories(const Variable& variable)
{
    if (!canDivideBy(variable)) {
        throw ExceptionBase(
            "\"" + variable.name() + "\" has " + countText(variable.distinctValueCount())
            + " different values; colors tell at most " + std::to_string(largestCount) + " apart.");
    }
    const std::vector<Variant> values = variable.distinctValues();
    for (const Variant& value : values) {
        m_names.push_back(value.isNumber() ? variantDisplayText(value) : value.toString());
    }
    const auto rowCount = static_cast<std::size_t>(variable.column().GetNumberOfTuples());
    const auto none = static_cast<std::uint8_t>(missing());
    m_ofRow.assign(rowCount, none);

    if (vtkStringArray* texts = variable.textColumn()) {
        std::unordered_map<std::string, std::uint8_t> categories;
        for (std::size_t i = 0; i < values.size(); ++i) {
            categories.emplace(values[i].toString(), static_cast<std::uint8_t>(i));
        }
        for (std::size_t row = 0; row < rowCount; ++row) {
            const auto found = categories.find(texts->GetValue(static_cast<vtkIdType>(row)));
            m_ofRow[row] = found == categories.end() ? none : found->second;
        }
    } else {
        std::vector<double> numbers;
        for (const Variant& value : values) {
            numbers.push_back(value.toReal());
        }
        withNumbers(&variable.column(), [&](const auto* column) {
            for (std::size_t row = 0; row < rowCount; ++row) {
                const auto number = static_cast<double>(column[row]);
                if (!std::isnan(number)) {
                    m_ofRow[row] = static_cast<std::uint8_t>(
                        std::lower_bound(numbers.begin(), numbers.end(), number) - numbers.begin());
                }
            }
        });
    }
    m_hasMissing = std::find(m_ofRow.begin(), m_ofRow.end(), none) != m_ofRow.end();
}

} // namespace analyzer
