#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace {

constexpr double largestExactWhole = 9007199254740992.0; // 2^53

bool isExactWhole(double value)
{
    return std::abs(value) <= largestExactWhole && std::trunc(value) == value;
}

/// Counts different values until there are more than Variable::maxDistinctValues. Columns with few values are long
/// runs of repetitions, and others are given up after a few rows: a search among at most 50 sorted values is fast.
template <class Value>
class DistinctValues
{
public:
    /// False once there are too many.
    bool add(const Value& value)
    {
        Value* const end = m_values.data() + m_count;
        Value* const place = std::lower_bound(m_values.data(), end, value);
        if (place != end && *place == value) {
            return true;
        }
        if (m_count == Variable::maxDistinctValues) {
            ++m_count;
            return false;
        }
        std::move_backward(place, end, end + 1);
        *place = value;
        ++m_count;
        return true;
    }

    [[nodiscard]] std::size_t count() const { return m_count; }

    /// In ascending order; only while there are not too many.
    [[nodiscard]] std::vector<Value> values() const
    {
        return {m_values.data(), m_values.data() + m_count};
    }

private:
    std::array<Value, Variable::maxDistinctValues> m_values{};
    std::size_t m_count = 0;
};

} // namespace

Variable::Variable(vtkSmartPointer<vtkAbstractArray> column, Nature nature)
    : m_column(std::move(column))
    , m_reals(vtkDoubleArray::SafeDownCast(m_column))
    , m_texts(vtkStringArray::SafeDownCast(m_column))
    , m_integers(vtkIntArray::SafeDownCast(m_column))
    , m_nature(nature)
{
    if (m_column == nullptr || m_column->GetName() == nullptr || *m_column->GetName() == '\0') {
        throw ExceptionBase("A variable needs a name.");
    }
    m_name = m_column->GetName();
    if ((m_reals == nullptr && m_texts == nullptr && m_integers == nullptr)
        || m_column->GetNumberOfComponents() != 1) {
        throw ExceptionBase(
            "The column of variable \"" + m_name
            + "\" holds neither numbers nor texts with one value a case.");
    }
}

Variable::~Variable() = default;

bool Variable::isWhole() const
{
    return isNumeric() && statistics().whole;
}

Variant Variable::value(std::size_t row) const
{
    const auto index = static_cast<vtkIdType>(row);
    if (m_integers != nullptr) {
        return Variant(m_integers->GetValue(index));
    }
    if (m_texts != nullptr) {
        const std::string& text = m_texts->GetValue(index);
        return text.empty() ? Variant() : Variant(text);
    }
    const double number = m_reals->GetValue(index);
    if (std::isnan(number)) {
        return Variant();
    }
    return isWhole() ? Variant(static_cast<std::int64_t>(number)) : Variant(number);
}

Variant Variable::firstValue() const
{
    const Statistics& s = statistics();
    if (s.missing == rowCount()) {
        return Variant();
    }
    if (m_texts != nullptr) {
        return value(s.smallestText);
    }
    return s.whole ? Variant(static_cast<std::int64_t>(s.smallest)) : Variant(s.smallest);
}

ValueRange_s<double> Variable::range() const
{
    return statistics().finiteRange;
}

std::size_t Variable::missingCount() const
{
    return statistics().missing;
}

std::size_t Variable::distinctValueCount() const
{
    if (m_distinctValues) {
        return *m_distinctValues;
    }
    if (m_texts != nullptr) {
        // The column keeps its texts where they are.
        DistinctValues<std::string_view> distinct;
        forEachText([&distinct](const std::string& text) { return distinct.add(text); });
        m_distinctValues = distinct.count();
        if (distinct.count() <= maxDistinctValues) {
            m_fewValues = variantsOf(distinct.values());
        }
    } else {
        DistinctValues<double> distinct;
        forEachNumber([&distinct](double number) { return distinct.add(number); });
        m_distinctValues = distinct.count();
        if (distinct.count() <= maxDistinctValues) {
            m_fewValues = variantsOf(distinct.values());
        }
    }
    return *m_distinctValues;
}

std::vector<Variant> Variable::distinctValues() const
{
    if (distinctValueCount() <= maxDistinctValues) {
        return m_fewValues;
    }
    if (m_texts != nullptr) {
        std::unordered_set<std::string_view> distinct;
        forEachText([&distinct](const std::string& text) {
            distinct.insert(text);
            return true;
        });
        std::vector<std::string_view> texts(distinct.begin(), distinct.end());
        std::sort(texts.begin(), texts.end());
        return variantsOf(texts);
    }
    std::vector<double> numbers;
    numbers.reserve(rowCount());
    forEachNumber([&numbers](double number) {
        numbers.push_back(number);
        return true;
    });
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return variantsOf(numbers);
}

std::vector<Variant> Variable::variantsOf(const std::vector<double>& numbers) const
{
    const bool whole = isWhole();
    std::vector<Variant> result;
    result.reserve(numbers.size());
    for (const double number : numbers) {
        if (whole) {
            result.emplace_back(static_cast<std::int64_t>(number));
        } else {
            result.emplace_back(number);
        }
    }
    return result;
}

std::vector<Variant> Variable::variantsOf(const std::vector<std::string_view>& texts)
{
    std::vector<Variant> result;
    result.reserve(texts.size());
    for (const std::string_view text : texts) {
        result.emplace_back(std::string(text));
    }
    return result;
}

template <class Take>
void Variable::forEachNumber(Take take) const
{
    const std::size_t rows = rowCount();
    for (std::size_t row = 0; row < rows; ++row) {
        const auto index = static_cast<vtkIdType>(row);
        const double number =
            m_reals != nullptr ? m_reals->GetValue(index) : m_integers->GetValue(index);
        if (!std::isnan(number) && !take(number)) {
            return;
        }
    }
}

template <class Take>
void Variable::forEachText(Take take) const
{
    const std::size_t rows = rowCount();
    for (std::size_t row = 0; row < rows; ++row) {
        const std::string& text = m_texts->GetValue(static_cast<vtkIdType>(row));
        if (!text.empty() && !take(text)) {
            return;
        }
    }
}

const Variable::Statistics& Variable::statistics() const
{
    if (m_statistics) {
        return *m_statistics;
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    Statistics s;
    s.finiteRange = {nan, nan};
    const std::size_t rows = rowCount();
    if (m_texts != nullptr) {
        s.whole = false;
        const std::string* smallest = nullptr;
        for (std::size_t row = 0; row < rows; ++row) {
            const std::string& text = m_texts->GetValue(static_cast<vtkIdType>(row));
            if (text.empty()) {
                ++s.missing;
            } else if (smallest == nullptr || text < *smallest) {
                smallest = &text;
                s.smallestText = row;
            }
        }
    } else {
        double finiteMin = infinity;
        double finiteMax = -infinity;
        s.smallest = infinity;
        const auto add = [&](double number) {
            if (std::isnan(number)) {
                ++s.missing;
                return;
            }
            s.smallest = std::min(s.smallest, number);
            s.whole = s.whole && isExactWhole(number);
            if (std::isfinite(number)) {
                finiteMin = std::min(finiteMin, number);
                finiteMax = std::max(finiteMax, number);
            }
        };
        if (m_reals != nullptr) {
            std::for_each(m_reals->GetPointer(0), m_reals->GetPointer(0) + rows, add);
        } else {
            std::for_each(m_integers->GetPointer(0), m_integers->GetPointer(0) + rows, add);
        }
        if (finiteMin <= finiteMax) {
            s.finiteRange = {finiteMin, finiteMax};
        }
    }
    m_statistics = s;
    return *m_statistics;
}

std::size_t Variable::rowCount() const
{
    return static_cast<std::size_t>(m_column->GetNumberOfTuples());
}
