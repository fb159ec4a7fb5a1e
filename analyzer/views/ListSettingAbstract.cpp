#include <analyzer/views/ListSettingAbstract.h>

#include <dataviews/platform/serialize/stringValue.h>

#include <boost/token_functions.hpp>
#include <boost/tokenizer.hpp>

namespace analyzer {

std::string ListSettingAbstract::text() const
{
    return stringValue(selected());
}

void ListSettingAbstract::setText(const std::string& text)
{
    std::vector<std::string> names;
    if (!text.empty()) {
        try {
            const boost::tokenizer<boost::escaped_list_separator<char>> fields(text);
            names.assign(fields.begin(), fields.end());
        } catch (const boost::escaped_list_error&) {
            throw ExceptionBase(
                "\"" + text + "\" is no list for " + name()
                + R"(: behind a \ only \, ", and n for a line break can stand.)");
        }
    }
    setSelected(names);
}

} // namespace analyzer
