#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#include <fast_float/fast_float.h>

namespace analyzer {

/// What the text of a field is, taken alone.
enum class FieldKind
{
    Blank, ///< nothing, or blanks only
    Number, ///< a number, or a spelling of infinity
    NaN, ///< "NaN" in any case: a number that is missing
    MissingWord, ///< "NA", "null" (any case) or "-": missing among numbers, a text among texts
    LeadingZeros, ///< a whole number such as "03", which a number would not give back
    BeyondExact, ///< a whole number beyond 2^53, or a number beyond the largest: reals do not hold it
    BothDecimalSigns, ///< digits with points and commas, such as "1.234,5"; told only by those who allow commas
    Text
};

namespace fields {

inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

inline bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// Whether the letters from \p first on spell \p word, which is lower case, in any case.
inline bool spell(const char* first, const char* last, const char* word)
{
    const std::size_t length = std::strlen(word);
    return static_cast<std::size_t>(last - first) == length
        && std::equal(first, last, word, [](char c, char expected) {
               return (c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) == expected;
           });
}

/// Whether \p text holds nothing but digits, commas, points and a sign; some of the first three at least.
inline bool isDigitsWithBothSigns(const char* text, std::size_t size)
{
    const char* first = size > 0 && (*text == '-' || *text == '+') ? text + 1 : text;
    const char* last = text + size;
    return std::find(first, last, '.') != last && std::find(first, last, ',') != last
        && std::any_of(first, last, isDigit)
        && std::all_of(first, last, [](char c) { return isDigit(c) || c == '.' || c == ','; });
}

/// A field that does not begin like a number. \p letters is behind its sign.
inline FieldKind parseWord(const char* first, const char* letters, const char* last, double& value)
{
    if (spell(letters, last, "nan")) {
        return FieldKind::NaN;
    }
    if (spell(letters, last, "inf") || spell(letters, last, "infinity")) {
        value = std::numeric_limits<double>::infinity();
        value = *first == '-' ? -value : value;
        return FieldKind::Number;
    }
    const bool isMissing = spell(first, last, "na") || spell(first, last, "null")
        || (last - first == 1 && *first == '-');
    return isMissing ? FieldKind::MissingWord : FieldKind::Text;
}

/// What a number is, spelled by all from \p digits, behind the sign, to \p last.
inline FieldKind kindOfNumber(const char* digits, const char* last, double value)
{
    constexpr std::ptrdiff_t digitsAlwaysExact = 15;
    const bool mayHaveZeros = *digits == '0' && last - digits > 1 && isDigit(digits[1]);
    if (mayHaveZeros || last - digits > digitsAlwaysExact) {
        constexpr double largestExact = 9007199254740992.0; // 2^53
        const bool isWhole = std::all_of(digits, last, isDigit);
        if (isWhole && mayHaveZeros) {
            return FieldKind::LeadingZeros;
        }
        // 2^53 + 1 is rounded to 2^53, hence the look at the last digit.
        if (isWhole
            && (std::abs(value) > largestExact
                || (std::abs(value) == largestExact && last[-1] != '2'))) {
            return FieldKind::BeyondExact;
        }
    }
    return std::isinf(value) ? FieldKind::BeyondExact : FieldKind::Number;
}

} // namespace fields

/// Tells what \p text is and sets \p value where it is a number. \p decimal is the sign between the whole and the
/// broken part. Blanks around a number do not matter.
inline FieldKind parseField(const char* text, std::size_t size, char decimal, double& value)
{
    const char* first = text;
    const char* last = text + size;
    while (first != last && fields::isBlank(*first)) {
        ++first;
    }
    while (first != last && fields::isBlank(last[-1])) {
        --last;
    }
    if (first == last) {
        return FieldKind::Blank;
    }
    const char* digits = *first == '-' || *first == '+' ? first + 1 : first;
    if (digits == last || (!fields::isDigit(*digits) && *digits != decimal)) {
        return fields::parseWord(first, digits, last, value);
    }
    const auto result = fast_float::from_chars_advanced(
        *first == '+' ? digits : first,
        last,
        value,
        fast_float::parse_options{fast_float::chars_format::general, decimal});
    if (result.ec == std::errc::invalid_argument || result.ptr != last) {
        return FieldKind::Text;
    }
    return fields::kindOfNumber(digits, last, value);
}

/// Sets \p value to the number that the text from \p text to \p end begins with, and returns the end of it. Null where
/// parseField() has to look: at blanks, a plus sign, a word, and numbers that are no FieldKind::Number.
inline const char* parsePlainNumber(const char* text, const char* end, double& value)
{
    const char* digits = text != end && *text == '-' ? text + 1 : text;
    if (digits == end || (!fields::isDigit(*digits) && *digits != '.')) {
        return nullptr;
    }
    const auto result = fast_float::from_chars(text, end, value);
    const bool isNumber = result.ec != std::errc::invalid_argument
        && fields::kindOfNumber(digits, result.ptr, value) == FieldKind::Number;
    return isNumber ? result.ptr : nullptr;
}

} // namespace analyzer
