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

} // namespace analyzer
