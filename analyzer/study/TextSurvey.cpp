#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/StudyError.h>
#include <analyzer/study/TableFile.h>
#include <analyzer/study/TextSurvey.h>
#include <analyzer/study/Utf8Checker.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace analyzer {

namespace {

constexpr char ctrlZ = '\x1a';

std::string headOf(TableFile& file, std::size_t bytes)
{
    std::string head;
    file.start(0, std::min(bytes, file.size()));
    for (std::string_view chunk = file.next(); !chunk.empty(); chunk = file.next()) {
        head.append(chunk);
    }
    return head;
}

bool startsWith(const std::string& text, std::string_view start)
{
    return text.compare(0, start.size(), start) == 0;
}

/// Of the line with byte \p place, counted from 1.
std::size_t lineOf(TableFile& file, std::size_t place, ReadProgress& progress)
{
    std::size_t line = 1;
    file.start(0, place);
    for (std::string_view chunk = file.next(); !chunk.empty(); chunk = file.next()) {
        progress.throwIfCancelled();
        line += static_cast<std::size_t>(std::count(chunk.begin(), chunk.end(), '\n'));
    }
    return line;
}

/// Such as there are in programs, archives and pictures, and not in tables.
bool isForeignToText(char byte)
{
    const auto value = static_cast<unsigned char>(byte);
    return value < 0x20 && std::strchr("\t\n\v\f\r\x1b", byte) == nullptr;
}

void requireNoControls(TableFile& file, const TextSurvey& survey, ReadProgress& progress)
{
    file.start(survey.begin, survey.end);
    for (std::string_view chunk = file.next(); !chunk.empty(); chunk = file.next()) {
        progress.throwIfCancelled();
        if (std::any_of(chunk.begin(), chunk.end(), isForeignToText)) {
            throw StudyError(file.path(), "the file holds control characters and is no text");
        }
    }
}

TextSurvey surveyBegin(TableFile& file)
{
    TextSurvey survey;
    constexpr std::size_t markBytes = 3;
    const std::string head = headOf(file, markBytes);
    if (startsWith(head, "\xff\xfe") || startsWith(head, "\xfe\xff")) {
        throw StudyError(file.path(), "the file is UTF-16 text; save it as UTF-8");
    }
    survey.begin = startsWith(head, "\xef\xbb\xbf") ? markBytes : 0;
    survey.end = file.size();
    return survey;
}

void cutCtrlZ(TextSurvey& survey, char last)
{
    if (last == ctrlZ) {
        --survey.end;
        survey.endedByCtrlZ = true;
    }
}

void requireText(const TableFile& file, const TextSurvey& survey)
{
    if (survey.begin == survey.end) {
        throw StudyError(file.path(), "the file is empty");
    }
}

} // namespace

TextSurvey supposeText(TableFile& file)
{
    TextSurvey survey = surveyBegin(file);
    if (survey.end > survey.begin) {
        char last = '\0';
        file.read(survey.end - 1, &last, 1);
        cutCtrlZ(survey, last);
    }
    requireText(file, survey);
    return survey;
}

TextSurvey surveyText(TableFile& file, ReadProgress& progress)
{
    TextSurvey survey = surveyBegin(file);
    Utf8Checker checker;
    std::optional<std::size_t> firstForeign;
    char last = '\0';
    std::size_t place = survey.begin;
    file.start(survey.begin, survey.end);
    for (std::string_view chunk = file.next(); !chunk.empty(); chunk = file.next()) {
        progress.throwIfCancelled();
        if (std::memchr(chunk.data(), '\0', chunk.size()) != nullptr) {
            throw StudyError(file.path(), "the file holds NUL bytes and is no text");
        }
        if (!firstForeign) {
            const std::size_t good = checker.check(chunk.data(), chunk.size());
            if (good < chunk.size()) {
                firstForeign = place + good;
            }
        }
        last = chunk.back();
        place += chunk.size();
        progress.advance(chunk.size());
    }
    if (!firstForeign && !checker.isComplete()) {
        firstForeign = survey.end;
    }
    cutCtrlZ(survey, last);
    requireText(file, survey);
    if (firstForeign) {
        requireNoControls(file, survey, progress);
        survey.isLatin1 = true;
        survey.firstForeignLine = lineOf(file, *firstForeign, progress);
    }
    return survey;
}

} // namespace analyzer
