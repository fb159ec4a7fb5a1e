#include <analyzer/study/sentenceText.h>
#include <analyzer/study/studyInfo.h>

#include <dataviews/platform/data/Project.h>

namespace analyzer {

std::string studyInfo(const Project& project, const StudyReport& report)
{
    std::string info;
    const auto addCount = [&info](const char* name, std::size_t count) {
        info += std::string(name) + ": " + std::to_string(count) + '\n';
    };
    addCount("cases", project.caseCount());
    addCount("variables", project.variables().size());
    addCount("images", project.auxFileCount());
    addCount("missing values", report.missingValues);
    addCount("refused lines", report.refusedLineCount);
    for (const std::string& note : report.notes) {
        info += "note: " + oneLine(note) + '\n';
    }
    for (const StudyReport::RefusedLine& refused : report.refusedLines) {
        info +=
            "note: Line " + std::to_string(refused.line) + ' ' + oneLine(refused.reason) + ".\n";
    }
    const std::size_t unlisted = report.refusedLineCount - report.refusedLines.size();
    if (unlisted > 0) {
        info += "note: " + counted(unlisted, "more refused line is", "more refused lines are")
            + " not listed.\n";
    }
    return info;
}

} // namespace analyzer
