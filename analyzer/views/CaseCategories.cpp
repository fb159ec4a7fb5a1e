#include <analyzer/views/CaseCategories.h>
#include <analyzer/views/withNumbers.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/variantDisplayText.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <QtGlobal>

#include <vtkIntArray.h>
#include <vtkSMPTools.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

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

/// Calls \p function with each row, with several ones at once.
template <class Function>
void forEachAtOnce(std::size_t rowCount, const Function& function)
{
    constexpr vtkIdType rowsWorthThread = 20000;
    vtkSMPTools::For(
        0,
        static_cast<vtkIdType>(rowCount),
        rowsWorthThread,
        [&function](vtkIdType begin, vtkIdType end) {
            for (vtkIdType row = begin; row < end; ++row) {
                function(static_cast<std::size_t>(row));
            }
        });
}

} // namespace

bool CaseCategories::canDivideBy(const Variable& variable)
{
    return variable.distinctValueCount() <= largestCount;
}

void CaseCategories::checkCanDivideBy(const Variable& variable)
{
    if (!canDivideBy(variable)) {
        throw ExceptionBase(
            "\"" + variable.name() + "\" has " + countText(variable.distinctValueCount())
            + " different values; colors tell at most " + std::to_string(largestCount) + " apart.");
    }
}

CaseCategories::CaseCategories(const Variable& variable)
{
    checkCanDivideBy(variable);
    const std::vector<Variant> values = variable.distinctValues();
    m_names.reserve(values.size());
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
        forEachAtOnce(rowCount, [&](std::size_t row) {
            const auto found = categories.find(texts->GetValue(static_cast<vtkIdType>(row)));
            m_ofRow[row] = found == categories.end() ? none : found->second;
        });
    } else {
        std::vector<double> numbers;
        numbers.reserve(values.size());
        for (const Variant& value : values) {
            numbers.push_back(value.toReal());
        }
        withNumbers(&variable.column(), [&](const auto* column) {
            forEachAtOnce(rowCount, [&](std::size_t row) {
                const auto number = static_cast<double>(column[row]);
                if (!std::isnan(number)) {
                    m_ofRow[row] = static_cast<std::uint8_t>(
                        std::lower_bound(numbers.begin(), numbers.end(), number) - numbers.begin());
                }
            });
        });
    }
    m_hasMissing = std::find(m_ofRow.begin(), m_ofRow.end(), none) != m_ofRow.end();
}

std::vector<std::uint8_t> CaseCategories::ofCases(vtkTable& cases) const
{
    auto* const column = vtkIntArray::SafeDownCast(cases.GetColumn(0));
    auto* const all = vtkIntArray::SafeDownCast(Project::project().table().GetColumn(0));
    Q_ASSERT_X(column != nullptr && all != nullptr, "ofCases", "column 0 holds no case IDs");
    const int* next = all->GetPointer(0);
    const int* const end = next + all->GetNumberOfValues();
    Q_ASSERT_X(
        static_cast<std::size_t>(end - next) == m_ofRow.size(),
        "ofCases",
        "the variable is of another study");
    const std::uint8_t* category = m_ofRow.data();
    const int* const ids = column->GetPointer(0);
    std::vector<std::uint8_t> categories(static_cast<std::size_t>(column->GetNumberOfValues()));
    // The orders are the same, so one walk along both is enough; looking up each case would cost a hash.
    for (std::size_t i = 0; i < categories.size(); ++i) {
        while (next != end && *next != ids[i]) {
            ++next;
            ++category;
        }
        Q_ASSERT_X(next != end, "ofCases", "the cases are not in the order of the study");
        categories[i] = *category;
    }
    return categories;
}

} // namespace analyzer
