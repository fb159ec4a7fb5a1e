#include <analyzer/study/headerColumns.h>
#include <analyzer/study/sentenceText.h>

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace analyzer {

namespace {

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// \p start is in lower case.
bool startsWithAnyCase(std::string_view text, std::string_view start)
{
    return text.size() >= start.size()
        && std::equal(start.begin(), start.end(), text.begin(), [](char s, char c) {
               return s == lower(c);
           });
}

std::string trimmed(const std::string& text)
{
    const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    const auto first = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto last =
        std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isSpace).base();
    return {first, last};
}

void takeMarks(HeaderColumn& column)
{
    constexpr std::string_view input = "in:";
    constexpr std::string_view output = "out:";
    if (startsWithAnyCase(column.name, input)) {
        column.nature = Variable::Input;
        column.name = trimmed(column.name.substr(input.size()));
    } else if (startsWithAnyCase(column.name, output)) {
        column.nature = Variable::Output;
        column.name = trimmed(column.name.substr(output.size()));
    } else if (isFileColumn(column.name)) {
        column.mark = HeaderColumn::Mark::File;
    } else if (
        startsWithAnyCase(column.name, "img_")
        || (startsWithAnyCase(column.name, "img") && column.name.size() == 3)) {
        column.mark = HeaderColumn::Mark::Image;
    }
}

/// Names given so far, and what number to try next for each that was wanted again: many equal names stay fast.
class Names
{
public:
    std::string unique(const std::string& wanted)
    {
        if (m_taken.insert(wanted).second) {
            return wanted;
        }
        std::size_t& number = m_numbers.try_emplace(wanted, 1).first->second;
        std::string name;
        do {
            ++number;
            name = wanted + " (" + std::to_string(number) + ')';
        } while (!m_taken.insert(name).second);
        return name;
    }

private:
    std::unordered_set<std::string> m_taken{"Case ID"};
    std::unordered_map<std::string, std::size_t> m_numbers;
};

HeaderColumn firstLook(const std::string& field)
{
    HeaderColumn column;
    column.name = trimmed(field);
    const auto isForbidden = [](char c) { return isControl(c) && c != '\n'; };
    const bool hadControls = std::any_of(column.name.begin(), column.name.end(), isForbidden);
    std::replace_if(column.name.begin(), column.name.end(), isForbidden, ' ');
    if (hadControls) {
        column.note = "Control characters in the name " + inQuotes(column.name) + " became blanks.";
    } else if (column.name != field && !column.name.empty()) {
        column.note = "The blanks around the name " + inQuotes(column.name) + " are left out.";
    }
    takeMarks(column);
    column.isNameless = column.name.empty();
    return column;
}

void addNote(HeaderColumn& column, const std::string& note)
{
    column.note += (column.note.empty() ? "" : " ") + note;
}

} // namespace

bool isFileColumn(const std::string& field)
{
    const std::size_t first = field.find_first_not_of(" \t");
    return first != std::string::npos && field.compare(first, 4, "FILE") == 0;
}

std::vector<HeaderColumn> headerColumns(const std::vector<std::string>& header)
{
    std::vector<HeaderColumn> columns;
    columns.reserve(header.size());
    for (const std::string& field : header) {
        columns.push_back(firstLook(field));
    }
    Names names;
    for (std::size_t index = 0; index < columns.size(); ++index) {
        HeaderColumn& column = columns[index];
        if (column.isNameless) {
            continue;
        }
        const std::string wanted = column.name;
        column.name = names.unique(wanted);
        if (column.name != wanted) {
            addNote(
                column,
                "Column " + std::to_string(index + 1) + " is called " + inQuotes(column.name)
                    + ", for the name " + inQuotes(wanted) + " is taken.");
        }
    }
    // Made-up names give way to those in the file.
    for (std::size_t index = 0; index < columns.size(); ++index) {
        HeaderColumn& column = columns[index];
        if (column.isNameless) {
            column.name = names.unique("Column " + std::to_string(index + 1));
            addNote(
                column,
                "Column " + std::to_string(index + 1) + " has no name and is called "
                    + inQuotes(column.name) + ".");
        }
    }
    return columns;
}

} // namespace analyzer
