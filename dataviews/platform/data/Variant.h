#pragma once

#include <dataviews/platform/data/PlatformDataExport.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <variant>

/// One value of a case: nothing, a whole number, a real number, or a text.
///
/// Ordered totally, fit for sorted sets: empty, then numbers by value (integers and reals together, compared
/// exactly; all NaNs are equal and come after every other number), then texts by their bytes.
class DATAVIEWS_PLATFORM_DATA_EXPORT Variant
{
public:
    enum class Type
    {
        Empty,
        Integer,
        Real,
        Text
    };

    /// The empty value.
    Variant() = default;

    /// A whole number.
    /// \throws std::out_of_range for an unsigned value above the largest signed 64-bit number.
    template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    explicit Variant(Integer value)
        : m_value(toSigned(value))
    {}

    explicit Variant(double value)
        : m_value(value)
    {}

    /// \p value is UTF-8.
    explicit Variant(std::string value)
        : m_value(std::move(value))
    {}

    explicit Variant(const char* value)
        : m_value(std::string(value))
    {}

    [[nodiscard]] Type type() const { return static_cast<Type>(m_value.index()); }

    [[nodiscard]] bool isEmpty() const { return type() == Type::Empty; }

    [[nodiscard]] bool isNumber() const { return type() == Type::Integer || type() == Type::Real; }

    /// The shortest text that reads back to the same value, independent of the locale: "0.1", "1e+22", "nan",
    /// "inf"; nothing for the empty value.
    [[nodiscard]] std::string toString() const;

    /// A number truncated toward zero, or the whole number that a text spells in full.
    /// \throws ExceptionBase for the empty value, a text that is no whole number, NaN, and what does not fit into
    /// 64 bits.
    [[nodiscard]] std::int64_t toInteger() const;

    /// A number as a real, or the number that a text spells in full.
    /// \throws ExceptionBase for the empty value and a text that is no number.
    [[nodiscard]] double toReal() const;

    /// Negative, zero or positive as \p left comes before, with or after \p right.
    [[nodiscard]] static int compare(const Variant& left, const Variant& right);

    /// The same for values that are equal, whatever their types.
    [[nodiscard]] std::size_t hash() const;

private:
    template <class Integer>
    static std::int64_t toSigned(Integer value)
    {
        if constexpr (std::is_unsigned_v<Integer> && sizeof(Integer) >= sizeof(std::int64_t)) {
            return toSignedChecked(value);
        } else {
            return static_cast<std::int64_t>(value);
        }
    }

    static std::int64_t toSignedChecked(std::uint64_t value);

    // In the order of Type.
    std::variant<std::monostate, std::int64_t, double, std::string> m_value;
};

inline bool operator==(const Variant& left, const Variant& right)
{
    return Variant::compare(left, right) == 0;
}

inline bool operator!=(const Variant& left, const Variant& right)
{
    return Variant::compare(left, right) != 0;
}

inline bool operator<(const Variant& left, const Variant& right)
{
    return Variant::compare(left, right) < 0;
}

inline bool operator<=(const Variant& left, const Variant& right)
{
    return Variant::compare(left, right) <= 0;
}

inline bool operator>(const Variant& left, const Variant& right)
{
    return Variant::compare(left, right) > 0;
}

inline bool operator>=(const Variant& left, const Variant& right)
{
    return Variant::compare(left, right) >= 0;
}

/// For Boost's unordered containers.
// NOLINTNEXTLINE(readability-identifier-naming): the name that Boost looks for
inline std::size_t hash_value(const Variant& value)
{
    return value.hash();
}
