#include <dataviews/platform/data/variantDisplayText.h>

#include <charconv>

std::string variantDisplayText(const Variant& value)
{
    switch (value.type()) {
    case Variant::Type::Empty:
        return "(missing)";
    case Variant::Type::Real: {
        constexpr int significantDigits = 6;
        constexpr std::size_t enough = 40;
        char text[enough];
        const double real = value.toReal() + 0.0; // without the sign of a negative zero
        if (real != real) {
            return value.toString();
        }
        return {
            text,
            std::to_chars(text, text + enough, real, std::chars_format::general, significantDigits)
                .ptr};
    }
    case Variant::Type::Integer:
    case Variant::Type::Text:
        break;
    }
    return value.toString();
}
