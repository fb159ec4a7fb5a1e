#include <analyzer/views/realText.h>

#include <array>
#include <charconv>

namespace analyzer {

std::string realText(double value)
{
    constexpr int digits = 10;
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(
        buffer.data(),
        buffer.data() + buffer.size(),
        value == 0 ? 0.0 : value,
        std::chars_format::general,
        digits);
    return {buffer.data(), end.ptr};
}

std::errc readReal(const std::string& text, double& value)
{
    const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    const char* const end = text.data() + text.size();
    double number = 0;
    const auto [rest, error] = std::from_chars(text.data() + (hasPlus ? 1 : 0), end, number);
    if (error != std::errc() || rest != end) {
        return error == std::errc() ? std::errc::invalid_argument : error;
    }
    value = number;
    return error;
}

} // namespace analyzer
