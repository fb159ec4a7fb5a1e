#include <analyzer/CommandLine.h>
#include <analyzer/views/viewKinds.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace analyzer {

namespace {

template <class Number>
std::optional<Number> readNumber(std::string_view text)
{
    Number number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || rest != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

std::string checkedKind(const std::string& kind)
{
    const std::vector<std::string> kinds = viewKinds();
    if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) {
        std::string known;
        for (const std::string& name : kinds) {
            known += (known.empty() ? "" : ", ") + name;
        }
        throw UsageError("There is no kind of view \"" + kind + "\"; the kinds are " + known + ".");
    }
    return kind;
}

CommandLine::Assignment parseAssignment(const std::string& text)
{
    const std::size_t equals = text.find('=');
    const std::size_t point = text.find('.');
    if (equals == std::string::npos || point == std::string::npos || point > equals || point == 0
        || point + 1 == equals) {
        throw UsageError(
            "--set takes VIEW.PROPERTY=VALUE, as in scatter.x=Drag; \"" + text
            + "\" is not of that form.");
    }
    CommandLine::Assignment assignment;
    std::string view = text.substr(0, point);
    const std::size_t digits = view.find_last_not_of("0123456789") + 1;
    // A kind may end in a digit and a letter (scatter3d), never in a digit.
    if (digits < view.size()) {
        const std::optional<std::size_t> number =
            readNumber<std::size_t>(std::string_view(view).substr(digits));
        if (!number || *number == 0) {
            throw UsageError("Views are counted from 1; \"" + view + "\" in --set is none.");
        }
        assignment.viewNumber = *number;
        view.resize(digits);
    }
    assignment.viewKind = checkedKind(view);
    assignment.property = text.substr(point + 1, equals - point - 1);
    assignment.value = text.substr(equals + 1);
    return assignment;
}

std::vector<std::pair<unsigned long long, unsigned long long>> parseSelection(
    const std::string& text)
{
    std::vector<std::pair<unsigned long long, unsigned long long>> ranges;
    if (text.empty()) {
        return ranges;
    }
    std::size_t begin = 0;
    while (begin <= text.size()) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const std::string_view range = std::string_view(text).substr(begin, end - begin);
        const std::size_t dash = range.find('-');
        const auto first = readNumber<unsigned long long>(range.substr(0, dash));
        const auto last = dash == std::string_view::npos
            ? first
            : readNumber<unsigned long long>(range.substr(dash + 1));
        if (!first || !last || *first > *last) {
            throw UsageError(
                "--select takes case IDs and ranges, as in 3,7,20-40; \"" + std::string(range)
                + "\" is neither.");
        }
        ranges.emplace_back(*first, *last);
        begin = end + 1;
    }
    return ranges;
}

/// "0.1..0.3", "0.1..", "..0.3" or "..".
std::optional<ValueRange_s<double>> readRange(std::string_view text)
{
    constexpr std::string_view dots = "..";
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto readEnd = [](std::string_view end, double open) {
        return end.empty() ? std::optional<double>(open) : readNumber<double>(end);
    };
    // A number may begin or end with a point: "1...5" has two places that look like the middle.
    for (std::size_t middle = text.find(dots); middle != std::string_view::npos;
         middle = text.find(dots, middle + 1)) {
        const std::optional<double> min = readEnd(text.substr(0, middle), -infinity);
        const std::optional<double> max = readEnd(text.substr(middle + dots.size()), infinity);
        if (min && max) {
            return ValueRange_s<double>{*min, *max};
        }
    }
    return std::nullopt;
}

CommandLine::Filter parseFilter(const std::string& text)
{
    // Behind the last sign that has a range: names of variables hold any sign.
    const std::string_view view = text;
    for (std::size_t equals = text.rfind('='); equals != std::string::npos && equals > 0;
         equals = text.rfind('=', equals - 1)) {
        if (const auto range = readRange(view.substr(equals + 1))) {
            return {text.substr(0, equals), *range};
        }
    }
    throw UsageError(
        "--filter takes VAR=MIN..MAX, as in Drag=0.1..0.3, where MIN or MAX may be left out; \""
        + text + "\" is not of that form.");
}

QSize parseSize(const std::string& text)
{
    constexpr int largest = 16384;
    const std::size_t cross = text.find('x');
    const std::string_view view = text;
    const auto width = readNumber<int>(view.substr(0, cross));
    const auto height =
        cross == std::string::npos ? std::nullopt : readNumber<int>(view.substr(cross + 1));
    if (!width || !height || *width < 1 || *height < 1 || *width > largest || *height > largest) {
        throw UsageError(
            "--size takes WxH in pixels up to 16384, as in 1600x900; \"" + text
            + "\" is no such size.");
    }
    return {*width, *height};
}

} // namespace

CommandLine CommandLine::parse(const std::vector<std::string>& arguments)
{
    CommandLine commandLine;
    bool onlyOperands = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (onlyOperands || argument.empty() || argument[0] != '-') {
            if (!commandLine.study.empty()) {
                throw UsageError(
                    "Only one study can be opened; \"" + commandLine.study + "\" and \"" + argument
                    + "\" are two.");
            }
            if (argument.empty()) {
                throw UsageError("The path of the study is empty.");
            }
            commandLine.study = argument;
            continue;
        }
        if (argument == "--") {
            onlyOperands = true;
            continue;
        }

        const std::size_t equals = argument.find('=');
        const std::string option = argument.substr(0, equals);
        const auto isFlag = [&](const char* name) {
            if (option != name) {
                return false;
            }
            if (equals != std::string::npos) {
                throw UsageError(option + " takes no value.");
            }
            return true;
        };
        const auto value = [&]() -> std::string {
            if (equals != std::string::npos) {
                return argument.substr(equals + 1);
            }
            if (i + 1 == arguments.size()) {
                throw UsageError(option + " needs a value.");
            }
            return arguments[++i];
        };

        if (isFlag("--help")) {
            commandLine.help = true;
        } else if (isFlag("--version")) {
            commandLine.version = true;
        } else if (isFlag("--info")) {
            commandLine.info = true;
        } else if (option == "--view") {
            commandLine.views.push_back(checkedKind(value()));
        } else if (option == "--set") {
            commandLine.assignments.push_back(parseAssignment(value()));
        } else if (option == "--select") {
            const auto ranges = parseSelection(value());
            commandLine.selection.insert(commandLine.selection.end(), ranges.begin(), ranges.end());
            commandLine.hasSelection = true;
        } else if (option == "--filter") {
            commandLine.filters.push_back(parseFilter(value()));
        } else if (option == "--size") {
            commandLine.size = parseSize(value());
        } else if (option == "--screenshot") {
            commandLine.screenshot = value();
            if (commandLine.screenshot.empty()) {
                throw UsageError("--screenshot needs the name of a file.");
            }
        } else if (option == "--export-csv") {
            commandLine.exportCsv = value();
            if (commandLine.exportCsv.empty()) {
                throw UsageError("--export-csv needs the name of a file.");
            }
        } else {
            throw UsageError("There is no option " + option + "; --help lists those there are.");
        }
    }

    const bool needsStudy = commandLine.info || commandLine.hasSelection
        || !commandLine.assignments.empty() || !commandLine.filters.empty()
        || !commandLine.exportCsv.empty();
    if (needsStudy && commandLine.study.empty() && !commandLine.help && !commandLine.version) {
        throw UsageError("--info, --set, --select, --filter and --export-csv need a study.");
    }
    return commandLine;
}

std::string CommandLine::helpText()
{
    std::string text =
        "Usage: dataviews-analyzer [STUDY] [OPTION]...\n"
        "Shows the cases of a study in linked views. STUDY is a CSV file or a folder with one: a "
        "table with a header,\n"
        "a Cinema database (version D) or a Design Explorer table.\n"
        "\n"
        "  --info                      print what the study holds, and leave; needs no display\n"
        "  --view KIND                 open a view of this kind; can be repeated. Without it, an "
        "XY chart and a\n"
        "                              table of cases are opened\n"
        "  --set VIEW.PROPERTY=VALUE   change a setting; VIEW is a kind, with a number where there "
        "are several:\n"
        "                              scatter2.x=Drag\n"
        "  --select IDS                select cases by ID: 3,7,20-40\n"
        "  --filter VAR=MIN..MAX       show only cases whose VAR is in the range; MIN or MAX may\n"
        "                              be left out; can be repeated for other variables\n"
        "  --export-csv FILE           write the cases that pass the filters, with all variables, "
        "and leave\n"
        "  --size WxH                  the size of the window in pixels\n"
        "  --screenshot FILE.png       write a picture of the window, and leave\n"
        "  --help                      print this text, and leave\n"
        "  --version                   print the version, and leave\n"
        "\n"
        "Kinds of views and their properties:\n";
    for (const std::string& kind : viewKinds()) {
        text += "  " + kind + std::string(kind.size() < 12 ? 12 - kind.size() : 1, ' ')
            + viewKindHelp(kind) + "\n";
    }
    text += "\n"
            "Exit status: 0; 1 with one line on standard error if the work cannot be done; 2 with "
            "one line for wrong "
            "use.\n";
    return text;
}

} // namespace analyzer
