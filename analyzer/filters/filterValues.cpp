#include <analyzer/filters/filterValues.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>

namespace analyzer {

namespace {

/// The different values among the \p count from \p first on, in ascending order. Given up once there are too many, so
/// that a column of unique values costs no more than the limit.
template <class Value, class Element>
std::vector<Value> distinct(const Element* first, std::size_t count, const Variable& variable)
{
    std::unordered_set<Value> found;
    for (const Element* element = first; element != first + count; ++element) {
        const Value value = *element;
        if constexpr (std::is_same_v<Value, double>) {
            if (std::isnan(value)) {
                continue;
            }
        } else if (value.empty()) {
            continue;
        }
        if (found.insert(value).second && found.size() > maxFilterValues) {
            throw ExceptionBase(
                "Variable \"" + variable.name() + "\" has more than "
                + std::to_string(maxFilterValues)
                + " different values, too many for a filter by values.");
        }
    }
    std::vector<Value> sorted(found.begin(), found.end());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

} // namespace

std::vector<Variant> filterValues(const Variable& variable)
{
    vtkAbstractArray& column = variable.column();
    const auto count = static_cast<std::size_t>(column.GetNumberOfTuples());
    std::vector<Variant> values;
    if (variable.missingCount() > 0) {
        values.emplace_back();
    }
    if (vtkStringArray* texts = variable.textColumn()) {
        for (const std::string_view text :
             distinct<std::string_view>(texts->GetPointer(0), count, variable)) {
            values.emplace_back(std::string(text));
        }
        return values;
    }
    vtkDoubleArray* reals = variable.realColumn();
    const std::vector<double> numbers = reals != nullptr
        ? distinct<double>(reals->GetPointer(0), count, variable)
        : distinct<double>(vtkIntArray::SafeDownCast(&column)->GetPointer(0), count, variable);
    const bool whole = variable.isWhole();
    for (const double number : numbers) {
        if (whole) {
            values.emplace_back(static_cast<std::int64_t>(number));
        } else {
            values.emplace_back(number);
        }
    }
    return values;
}

} // namespace analyzer
