#include <analyzer/study/sentenceText.h>

#include <algorithm>

namespace analyzer {

namespace {

constexpr std::size_t maxShownBytes = 160;

bool continuesCharacter(char byte)
{
    constexpr unsigned char continuationMask = 0xc0;
    constexpr unsigned char continuation = 0x80;
    return (static_cast<unsigned char>(byte) & continuationMask) == continuation;
}

} // namespace

bool isControl(char byte)
{
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char deleteCharacter = 0x7f;
    const auto value = static_cast<unsigned char>(byte);
    return value < firstPrintable || value == deleteCharacter;
}

std::string oneLine(std::string text)
{
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return text;
}

std::string inQuotes(const std::string& text)
{
    if (text.size() <= maxShownBytes) {
        return '"' + oneLine(text) + '"';
    }
    std::size_t end = maxShownBytes;
    while (end > 0 && continuesCharacter(text[end])) {
        --end;
    }
    return '"' + oneLine(text.substr(0, end)) + "…\"";
}

std::string counted(std::size_t count, const std::string& one, const std::string& many)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

} // namespace analyzer
