#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <stdexcept>
#include <system_error>

namespace {

// The smallest and the first too large real for 64-bit integers; both are exact.
constexpr double integerBegin = -9223372036854775808.0;
constexpr double integerEnd = 9223372036854775808.0;

template <class Number>
int threeWay(Number left, Number right)
{
    return left < right ? -1 : (right < left ? 1 : 0);
}

int compareReals(double left, double right)
{
    if (std::isnan(left) || std::isnan(right)) {
        return threeWay(std::isnan(left) ? 1 : 0, std::isnan(right) ? 1 : 0);
    }
    return threeWay(left, right);
}

/// Exact: converting the integer to a real would make neighbours above 2^53 equal.
int compareIntegerWithReal(std::int64_t integer, double real)
{
    if (std::isnan(real) || real >= integerEnd) {
        return -1;
    }
    if (real < integerBegin) {
        return 1;
    }
    const double whole = std::trunc(real);
    const int result = threeWay(integer, static_cast<std::int64_t>(whole));
    return result != 0 ? result : threeWay(whole, real);
}

/// Empty, number, text.
int rank(Variant::Type type)
{
    switch (type) {
    case Variant::Type::Empty:
        return 0;
    case Variant::Type::Integer:
    case Variant::Type::Real:
        return 1;
    case Variant::Type::Text:
        break;
    }
    return 2;
}

template <class Number>
bool readWhole(const std::string& text, Number& number)
{
    const char* begin = text.data();
    const char* end = begin + text.size();
    if (text.size() > 1 && *begin == '+' && begin[1] != '-') {
        ++begin;
    }
    const auto [rest, error] = std::from_chars(begin, end, number);
    return error == std::errc() && rest == end;
}

} // namespace

std::string Variant::toString() const
{
    constexpr std::size_t enough = 40;
    char text[enough];
    if (const auto* integer = std::get_if<std::int64_t>(&m_value)) {
        return {text, std::to_chars(text, text + enough, *integer).ptr};
    }
    if (const auto* real = std::get_if<double>(&m_value)) {
        if (std::isnan(*real)) {
            return "nan"; // without the sign that some processors give to 0/0
        }
        return {text, std::to_chars(text, text + enough, *real).ptr};
    }
    if (const auto* string = std::get_if<std::string>(&m_value)) {
        return *string;
    }
    return {};
}

std::int64_t Variant::toInteger() const
{
    if (const auto* integer = std::get_if<std::int64_t>(&m_value)) {
        return *integer;
    }
    if (const auto* real = std::get_if<double>(&m_value)) {
        const double whole = std::trunc(*real);
        if (whole >= integerBegin && whole < integerEnd) {
            return static_cast<std::int64_t>(whole);
        }
        throw ExceptionBase("The number " + toString() + " does not fit into a 64-bit integer.");
    }
    if (const auto* string = std::get_if<std::string>(&m_value)) {
        std::int64_t integer = 0;
        if (readWhole(*string, integer)) {
            return integer;
        }
        throw ExceptionBase("The text \"" + *string + "\" is not a whole number.");
    }
    throw ExceptionBase("A missing value has no whole number.");
}

double Variant::toReal() const
{
    if (const auto* integer = std::get_if<std::int64_t>(&m_value)) {
        return static_cast<double>(*integer);
    }
    if (const auto* real = std::get_if<double>(&m_value)) {
        return *real;
    }
    if (const auto* string = std::get_if<std::string>(&m_value)) {
        double real = 0.0;
        if (readWhole(*string, real)) {
            return real;
        }
        throw ExceptionBase("The text \"" + *string + "\" is not a number.");
    }
    throw ExceptionBase("A missing value has no number.");
}

int Variant::compare(const Variant& left, const Variant& right)
{
    const int leftRank = rank(left.type());
    const int rightRank = rank(right.type());
    if (leftRank != rightRank) {
        return threeWay(leftRank, rightRank);
    }
    switch (leftRank) {
    case 0:
        return 0;
    case 2:
        // char_traits<char> compares as unsigned bytes.
        return std::get<std::string>(left.m_value).compare(std::get<std::string>(right.m_value));
    default:
        break;
    }
    const auto* leftInteger = std::get_if<std::int64_t>(&left.m_value);
    const auto* rightInteger = std::get_if<std::int64_t>(&right.m_value);
    if (leftInteger != nullptr && rightInteger != nullptr) {
        return threeWay(*leftInteger, *rightInteger);
    }
    if (leftInteger != nullptr) {
        return compareIntegerWithReal(*leftInteger, std::get<double>(right.m_value));
    }
    if (rightInteger != nullptr) {
        return -compareIntegerWithReal(*rightInteger, std::get<double>(left.m_value));
    }
    return compareReals(std::get<double>(left.m_value), std::get<double>(right.m_value));
}

std::size_t Variant::hash() const
{
    if (const auto* integer = std::get_if<std::int64_t>(&m_value)) {
        return std::hash<std::int64_t>()(*integer);
    }
    if (const auto* real = std::get_if<double>(&m_value)) {
        if (std::isnan(*real)) {
            return 1;
        }
        const bool whole =
            *real >= integerBegin && *real < integerEnd && std::trunc(*real) == *real;
        return whole ? std::hash<std::int64_t>()(static_cast<std::int64_t>(*real))
                     : std::hash<double>()(*real);
    }
    if (const auto* string = std::get_if<std::string>(&m_value)) {
        return std::hash<std::string>()(*string);
    }
    return 0;
}

std::int64_t Variant::toSignedChecked(std::uint64_t value)
{
    if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        throw std::out_of_range(
            "The number " + std::to_string(value) + " does not fit into a signed 64-bit integer.");
    }
    return static_cast<std::int64_t>(value);
}
