#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/ValueSetFilter.h>
#include <dataviews/platform/pipeline/boundVariable.h>
#include <dataviews/platform/pipeline/keepRows.h>

#include <QtGlobal>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkSMPTools.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace {

/// A binary search without jumps that depend on the value, for values come in no order that a
/// processor could predict. \p sorted are \p count numbers, at least one.
bool isAmong(const double* sorted, std::size_t count, double value)
{
    while (count > 1) {
        const std::size_t half = count / 2;
        sorted += half * static_cast<std::size_t>(sorted[half] <= value);
        count -= half;
    }
    return *sorted == value;
}

template <class Number>
void keepNumbers(
    const Number* values,
    const std::vector<double>& numbers,
    bool missing,
    bool inverted,
    RowBitmap& rows)
{
    if (numbers.empty()) {
        keepRows(rows, [=](std::size_t row) {
            return (missing && std::isnan(static_cast<double>(values[row]))) != inverted;
        });
        return;
    }
    // Joined without short cuts, for whether a value is in the set is as hard to predict.
    keepRows(
        rows,
        [values, sorted = numbers.data(), count = numbers.size(), missing, inverted](
            std::size_t row) {
            const double value = values[row];
            const unsigned inside = static_cast<unsigned>(isAmong(sorted, count, value))
                | (static_cast<unsigned>(missing) & static_cast<unsigned>(std::isnan(value)));
            return inside != static_cast<unsigned>(inverted);
        });
}

/// Finds a text among few by comparing, which takes less time than its hash.
class TextLookup
{
public:
    explicit TextLookup(const std::unordered_set<std::string>& texts)
        : m_texts(texts)
    {
        constexpr std::size_t mostCompared = 8;
        if (texts.size() <= mostCompared) {
            m_few.assign(texts.begin(), texts.end());
        }
    }

    [[nodiscard]] bool contains(const std::string& text) const
    {
        return m_few.size() == m_texts.size()
            ? std::find(m_few.begin(), m_few.end(), text) != m_few.end()
            : m_texts.find(text) != m_texts.end();
    }

private:
    const std::unordered_set<std::string>& m_texts;
    std::vector<std::string> m_few; ///< all of them, or none
};

/// Looks only at the rows that are still in: a text costs more to look up than a jump.
void keepTexts(
    vtkStringArray& values,
    const std::unordered_set<std::string>& texts,
    bool missing,
    bool inverted,
    RowBitmap& rows)
{
    const TextLookup lookup(texts);
    std::vector<std::uint64_t>& words = rows.words();
    constexpr vtkIdType wordsWorthThread = 1024;
    vtkSMPTools::For(
        0,
        static_cast<vtkIdType>(words.size()),
        wordsWorthThread,
        [&](vtkIdType first, vtkIdType last) {
            for (auto word = static_cast<std::size_t>(first); word < static_cast<std::size_t>(last);
                 ++word) {
                for (std::uint64_t bits = words[word]; bits != 0; bits &= bits - 1) {
                    const auto bit = static_cast<std::size_t>(__builtin_ctzll(bits));
                    const std::size_t row = word * 64 + bit;
                    const std::string& text = values.GetValue(static_cast<vtkIdType>(row));
                    const bool inside = text.empty() ? missing : lookup.contains(text);
                    words[word] &= ~(static_cast<std::uint64_t>(inside == inverted) << bit);
                }
            }
        });
}

} // namespace

ValueSetFilter::ValueSetFilter(
    const WeakPtr<Variable>& variable, std::set<Variant> values, bool inverted)
    : FilterAbstract(variable, inverted)
    , m_values(std::move(values))
{
    prepareLookup();
}

ValueSetFilter::~ValueSetFilter() = default;

const std::set<Variant>& ValueSetFilter::values() const
{
    return m_values;
}

void ValueSetFilter::setValues(std::set<Variant> values)
{
    if (values == m_values) {
        return;
    }
    m_values = std::move(values);
    prepareLookup();
    emitFilterChanged();
}

void ValueSetFilter::apply(const Project& project, RowBitmap& rows) const
{
    Q_ASSERT_X(
        rows.rowCount() == project.caseCount(),
        "ValueSetFilter::apply",
        "the bitmap is not of this project's cases");
    const boost::shared_ptr<Variable> bound = boundVariable(project, variable());
    if (!bound) {
        return;
    }
    if (vtkStringArray* texts = bound->textColumn()) {
        keepTexts(*texts, m_texts, m_missing, isInverted(), rows);
    } else if (vtkDoubleArray* reals = bound->realColumn()) {
        keepNumbers(reals->GetPointer(0), m_numbers, m_missing, isInverted(), rows);
    } else {
        auto* integers = vtkIntArray::SafeDownCast(&bound->column());
        keepNumbers(integers->GetPointer(0), m_numbers, m_missing, isInverted(), rows);
    }
}

void ValueSetFilter::prepareLookup()
{
    m_numbers.clear();
    m_texts.clear();
    m_missing = false;
    for (const Variant& value : m_values) {
        if (value.isEmpty()) {
            m_missing = true;
        } else if (value.isNumber()) {
            // Not NaN, which no case has, nor an integer that no real equals: rounded it would match a
            // neighbour.
            const double number = value.toReal();
            if (!std::isnan(number) && Variant(number) == value) {
                m_numbers.push_back(number);
            }
        } else {
            m_texts.insert(value.toString());
        }
    }
}
