#include <analyzer/CommandLine.h>
#include <analyzer/export/exportPicture.h>
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

/// A kind of view with a number behind it, or without for the first.
CommandLine::ViewName parseView(std::string view, const char* option)
{
    CommandLine::ViewName name;
    const std::size_t digits = view.find_last_not_of("0123456789") + 1;
    // A kind may end in a digit and a letter (scatter3d), never in a digit.
    if (digits < view.size()) {
        const std::optional<std::size_t> number =
            readNumber<std::size_t>(std::string_view(view).substr(digits));
        if (!number || *number == 0) {
            throw UsageError(
                "Views are counted from 1; \"" + view + "\" in " + option + " is none.");
        }
        name.number = *number;
        view.resize(digits);
    }
    name.kind = checkedKind(view);
    return name;
}

CommandLine::ViewPicture parsePicture(const std::string& text)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) {
        throw UsageError(
            "--export-view takes VIEW=FILE, as in scatter2=drag.svg; \"" + text
            + "\" is not of that form.");
    }
    CommandLine::ViewPicture picture{
        parseView(text.substr(0, equals), "--export-view"), text.substr(equals + 1)};
    try {
        static_cast<void>(pictureFormat(picture.file));
    } catch (const ExceptionBase& error) {
        throw UsageError(error.what());
    }
    return picture;
}

int parseDpi(const std::string& text)
{
    const auto dpi = readNumber<int>(text);
    if (!dpi || *dpi < smallestDpi || *dpi > largestDpi) {
        throw UsageError("--export-dpi takes a number from 20 to 2400; \"" + text + "\" is none.");
    }
    return *dpi;
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
    assignment.view = parseView(text.substr(0, point), "--set");
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

QSize parseSize(const std::string& text, const std::string& option)
{
    constexpr int largest = 16384;
    const std::size_t cross = text.find('x');
    const std::string_view view = text;
    const auto width = readNumber<int>(view.substr(0, cross));
    const auto height =
        cross == std::string::npos ? std::nullopt : readNumber<int>(view.substr(cross + 1));
    if (!width || !height || *width < 1 || *height < 1 || *width > largest || *height > largest) {
        throw UsageError(
            option + " takes WxH in pixels up to 16384, as in 1600x900; \"" + text
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
            commandLine.size = parseSize(value(), option);
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
        } else if (option == "--export-view") {
            commandLine.pictures.push_back(parsePicture(value()));
        } else if (option == "--export-size") {
            commandLine.pictureSize = parseSize(value(), option);
        } else if (option == "--export-dpi") {
            commandLine.pictureDpi = parseDpi(value());
        } else if (option == "--report") {
            commandLine.report = value();
            if (commandLine.report.empty()) {
                throw UsageError("--report needs the name of a file.");
            }
        } else if (option == "--session") {
            commandLine.session = value();
            if (commandLine.session.empty()) {
                throw UsageError("--session needs the name of a file.");
            }
        } else if (option == "--save-session") {
            commandLine.saveSession = value();
            if (commandLine.saveSession.empty()) {
                throw UsageError("--save-session needs the name of a file.");
            }
        } else {
            throw UsageError("There is no option " + option + "; --help lists those there are.");
        }
    }

    if (commandLine.help || commandLine.version) {
        return commandLine;
    }
    constexpr std::string_view sessionEnd = ".dvsession";
    const std::string& study = commandLine.study;
    if (study.size() > sessionEnd.size() && commandLine.session.empty()
        && study.compare(study.size() - sessionEnd.size(), sessionEnd.size(), sessionEnd) == 0) {
        commandLine.session = std::exchange(commandLine.study, std::string());
    }
    if (!commandLine.study.empty() && !commandLine.session.empty()) {
        throw UsageError("A session has its study with it; --session goes without another one.");
    }
    const bool needsStudy = commandLine.hasSelection || !commandLine.assignments.empty()
        || !commandLine.filters.empty() || !commandLine.exportCsv.empty()
        || !commandLine.saveSession.empty() || !commandLine.pictures.empty()
        || !commandLine.report.empty();
    const bool hasStudy = !commandLine.study.empty() || !commandLine.session.empty();
    if ((needsStudy && !hasStudy) || (commandLine.info && commandLine.study.empty())) {
        throw UsageError(
            "--info, --set, --select, --filter, --save-session, --report and the exports need a "
            "study.");
    }
    return commandLine;
}

std::string CommandLine::helpText()
{
    std::string text =
        "Usage: dataviews-analyzer [STUDY] [OPTION]...\n"
        "Shows the cases of a study in linked views. STUDY is a CSV file or a folder with one: a "
        "table with a header,\n"
        "a Cinema database (version D) or a Design Explorer table; or a saved session "
        "(*.dvsession).\n"
        "\n"
        "  --info                      print what the study holds, and leave; needs no display\n"
        "  --view KIND                 open a view of this kind; can be repeated. Without it, an "
        "XY chart and a\n"
        "                              table of cases are opened, and a matrix of the images if "
        "there are any\n"
        "  --set VIEW.PROPERTY=VALUE   change a setting; VIEW is a kind, with a number where there "
        "are several:\n"
        "                              scatter2.x=Drag\n"
        "  --select IDS                select cases by ID: 3,7,20-40\n"
        "  --filter VAR=MIN..MAX       show only cases whose VAR is in the range; MIN or MAX may\n"
        "                              be left out; can be repeated for other variables\n"
        "  --session FILE              open what was saved, with its study; --view adds views to "
        "it\n"
        "  --save-session FILE         save what is open, and leave\n"
        "  --export-csv FILE           write the cases that pass the filters, with all variables, "
        "and leave\n"
        "  --export-view VIEW=FILE     write a picture of a view as PNG, SVG or PDF, by the end of "
        "the name, and leave;\n"
        "                              can be repeated\n"
        "  --export-size WxH           the size of these pictures in pixels\n"
        "  --export-dpi N              their pixels per inch, 20 to 2400\n"
        "  --report FILE.html          write a report with pictures of all views, and leave\n"
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
