#include <analyzer/study/StudyReport.h>

#include <utility>

namespace analyzer {

void StudyReport::addRefusedLine(std::size_t line, std::string reason)
{
    ++refusedLineCount;
    if (refusedLines.size() < maxListed) {
        refusedLines.push_back({line, std::move(reason)});
    }
}

void StudyReport::addRefusedLines(const StudyReport& part, std::size_t linesBefore)
{
    for (const RefusedLine& refused : part.refusedLines) {
        addRefusedLine(linesBefore + refused.line, refused.reason);
    }
    refusedLineCount += part.refusedLineCount - part.refusedLines.size();
}

} // namespace analyzer
