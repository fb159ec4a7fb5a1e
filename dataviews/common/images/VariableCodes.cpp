#include <dataviews/common/images/VariableCodes.h>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkStringArray.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <numeric>
#include <string_view>
#include <utility>

namespace {

using Code = VariableCodes::Code;

/// The bits of a number: the same for numbers that are equal and for all that are missing.
std::uint64_t bitsOf(double number)
{
    // Adding makes 0.0 of -0.0.
    const double plain =
        std::isnan(number) ? std::numeric_limits<double>::quiet_NaN() : number + 0.0;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &plain, sizeof bits);
    return bits;
}

double numberOf(std::uint64_t bits)
{
    double number = 0.0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

/// Missing ones first.
bool isBefore(std::uint64_t left, std::uint64_t right)
{
    const double leftNumber = numberOf(left);
    const double rightNumber = numberOf(right);
    if (std::isnan(leftNumber) || std::isnan(rightNumber)) {
        return std::isnan(leftNumber) && !std::isnan(rightNumber);
    }
    return leftNumber < rightNumber;
}

/// By bytes, the empty text, which is a missing value, first.
bool isBefore(std::string_view left, std::string_view right)
{
    return left < right;
}

std::size_t hashOf(std::uint64_t bits)
{
    constexpr std::uint64_t goldenRatio = 0x9E3779B97F4A7C15;
    return (bits ^ (bits >> 32U)) * goldenRatio;
}

std::size_t hashOf(std::string_view text)
{
    return std::hash<std::string_view>()(text);
}

/// A hash table that numbers keys in the order of their coming.
template <class Key>
class Numbering
{
public:
    Numbering() { resizeSlots(9); }

    /// The number of \p key, which is new or there already.
    Code number(Key key)
    {
        std::size_t slot = hashOf(key) >> m_shift;
        for (; m_slots[slot] != 0; slot = (slot + 1) & m_mask) {
            if (m_keys[m_slots[slot] - 1] == key) {
                return m_slots[slot] - 1;
            }
        }
        return add(key, slot);
    }

    [[nodiscard]] std::size_t size() const { return m_keys.size(); }

    /// The numbers in ascending order of their keys.
    [[nodiscard]] std::vector<Code> order() const
    {
        std::vector<std::pair<Key, Code>> keys;
        keys.reserve(m_keys.size());
        for (const Key& key : m_keys) {
            keys.emplace_back(key, static_cast<Code>(keys.size()));
        }
        std::sort(keys.begin(), keys.end(), [](const auto& left, const auto& right) {
            return isBefore(left.first, right.first);
        });
        std::vector<Code> codes(keys.size());
        std::transform(
            keys.begin(), keys.end(), codes.begin(), [](const auto& key) { return key.second; });
        return codes;
    }

private:
    Code add(Key key, std::size_t slot)
    {
        m_keys.push_back(key);
        m_slots[slot] = static_cast<Code>(m_keys.size());
        if (m_keys.size() > m_slots.size() / 2) {
            resizeSlots(m_bits + 2);
        }
        return static_cast<Code>(m_keys.size() - 1);
    }

    void resizeSlots(unsigned bits)
    {
        m_bits = bits;
        m_shift = 64 - bits;
        m_mask = (std::size_t(1) << bits) - 1;
        m_slots.assign(m_mask + 1, 0);
        for (std::size_t number = 0; number < m_keys.size(); ++number) {
            std::size_t slot = hashOf(m_keys[number]) >> m_shift;
            while (m_slots[slot] != 0) {
                slot = (slot + 1) & m_mask;
            }
            m_slots[slot] = static_cast<Code>(number + 1);
        }
    }

    std::vector<Key> m_keys; ///< by number
    std::vector<Code> m_slots; ///< a number plus one, 0 where free
    unsigned m_bits = 0;
    unsigned m_shift = 0;
    std::size_t m_mask = 0;
};

/// The numbers of a column, of \p Number, each as the bits of a real.
template <class Number>
class NumberValues
{
public:
    explicit NumberValues(const Number* values)
        : m_values(values)
    {}

    Code number(std::size_t row) { return numbering.number(bitsOf(m_values[row])); }

    Numbering<std::uint64_t> numbering;

private:
    const Number* m_values;
};

class TextValues
{
public:
    explicit TextValues(const vtkStdString* values)
        : m_values(values)
    {}

    Code number(std::size_t row) { return numbering.number(std::string_view(m_values[row])); }

    Numbering<std::string_view> numbering;

private:
    const vtkStdString* m_values;
};

} // namespace

void VariableCodes::assign(const boost::shared_ptr<Variable>& variable)
{
    m_variable = variable;
    const auto rowCount = static_cast<std::size_t>(variable->column().GetNumberOfTuples());
    if (vtkStringArray* texts = variable->textColumn()) {
        TextValues values(texts->GetPointer(0));
        number(rowCount, values);
    } else if (vtkDoubleArray* reals = variable->realColumn()) {
        NumberValues<double> values(reals->GetPointer(0));
        number(rowCount, values);
    } else {
        NumberValues<int> values(vtkIntArray::SafeDownCast(&variable->column())->GetPointer(0));
        number(rowCount, values);
    }
}

template <class Values>
void VariableCodes::number(std::size_t rowCount, Values& values)
{
    constexpr std::size_t maxNarrow = 256;
    m_firstRows.clear();
    m_narrow.resize(rowCount);
    std::size_t row = 0;
    for (; row < rowCount; ++row) {
        const Code code = values.number(row);
        m_narrow[row] = static_cast<std::uint8_t>(code);
        if (code == m_firstRows.size()) {
            if (code == maxNarrow) {
                break;
            }
            m_firstRows.push_back(static_cast<std::uint32_t>(row));
        }
    }
    m_isWide = row < rowCount;
    if (m_isWide) {
        m_wide.resize(rowCount);
        std::copy_n(m_narrow.begin(), row, m_wide.begin());
        for (; row < rowCount; ++row) {
            const Code code = values.number(row);
            m_wide[row] = code;
            if (code == m_firstRows.size()) {
                m_firstRows.push_back(static_cast<std::uint32_t>(row));
            }
        }
    }
    m_order = values.numbering.order();
}

Variant VariableCodes::value(Code code) const
{
    const boost::shared_ptr<Variable> variable = m_variable.lock();
    return variable ? variable->value(m_firstRows[code]) : Variant();
}

std::optional<VariableCodes::Code> VariableCodes::find(const Variant& value) const
{
    const auto place = std::lower_bound(
        m_order.begin(), m_order.end(), value, [this](Code code, const Variant& wanted) {
            return this->value(code) < wanted;
        });
    return place != m_order.end() && this->value(*place) == value ? std::optional<Code>(*place)
                                                                  : std::nullopt;
}
