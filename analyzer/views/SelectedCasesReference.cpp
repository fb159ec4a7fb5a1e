#include <analyzer/views/SelectedCasesReference.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <charconv>
#include <system_error>

namespace analyzer {

namespace {

constexpr char noneText[] = "none";
constexpr char firstText[] = "first";
constexpr char casePrefix[] = "case ";

} // namespace

std::string SelectedCasesReference::text() const
{
    switch (kind) {
    case Kind::First:
        return firstText;
    case Kind::Pinned:
        return casePrefix + std::to_string(caseID);
    case Kind::None:
        break;
    }
    return noneText;
}

bool SelectedCasesReference::isInStudy() const
{
    return kind != Kind::Pinned || Project::project().row(caseID).has_value();
}

SelectedCasesReference SelectedCasesReference::fromText(const std::string& text)
{
    if (text == noneText) {
        return {};
    }
    if (text == firstText) {
        return {Kind::First, 0};
    }
    const std::string prefix = casePrefix;
    const std::string digits = text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text;
    unsigned long long caseID = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, caseID);
    if (digits.empty() || stop != end || error != std::errc()) {
        throw ExceptionBase(
            "\"" + text
            + "\" is no reference; it may be none, first, or a case by its ID, such as 17.");
    }
    return pinned(caseID);
}

} // namespace analyzer
