#include <analyzer/views/RealSetting.h>
#include <analyzer/views/realText.h>

#include <algorithm>
#include <cmath>
#include <system_error>
#include <utility>

namespace analyzer {

namespace {

std::string withoutBlanksAround(const std::string& text)
{
    constexpr const char* blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos
        ? std::string()
        : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

[[noreturn]] void refuse(const std::string& text, std::errc error)
{
    if (text.empty()) {
        throw ExceptionBase("An empty text is not a number.");
    }
    const std::string quoted = "\"" + text + "\"";
    if (error == std::errc()) {
        throw ExceptionBase(quoted + " is not a finite number.");
    }
    if (error == std::errc::result_out_of_range) {
        throw ExceptionBase(quoted + " is beyond the numbers that can be stored.");
    }
    std::string withPoint = text;
    std::replace(withPoint.begin(), withPoint.end(), ',', '.');
    double value = 0;
    throw ExceptionBase(
        withPoint != text && readReal(withPoint, value) == std::errc()
            ? quoted + " is not a number; write a point for the decimals."
            : quoted + " is not a number.");
}

} // namespace

RealSetting::RealSetting(
    std::string name,
    std::string label,
    boost::shared_ptr<corvane::PropertyAbstract<double>> property)
    : RealSetting(
        std::move(name),
        std::move(label),
        [property] { return property->value(); },
        [property](double value) { property->setValue(value); })
{
    follow(property);
}

RealSetting::RealSetting(std::string name, std::string label, Read read, Write write)
    : SettingAbstract<RealSettingInterface>(std::move(name), std::move(label))
    , m_read(std::move(read))
    , m_write(std::move(write))
{}

std::string RealSetting::text() const
{
    const double value = m_read();
    return std::isnan(value) ? std::string() : realText(value);
}

void RealSetting::setText(const std::string& text)
{
    const std::string number = withoutBlanksAround(text);
    if (number == this->text()) {
        return;
    }
    double value = 0;
    const std::errc error = readReal(number, value);
    if (error != std::errc() || !std::isfinite(value)) {
        refuse(number, error);
    }
    m_write(value);
}

} // namespace analyzer
