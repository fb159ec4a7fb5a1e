#pragma once

#include <analyzer/export/Report.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

class CaseSet;
class Project;

namespace analyzer {

class AnalyzerViewInterface;
class FilterList;

/// So many selected cases a report lists.
constexpr std::size_t mostReportRows = 1000;

/// What is to be said of \p project with \p filters over it, \p views with their pictures, and the cases whose IDs are
/// \p selection; \p date is as it shall be read.
///
/// Pictures have twice the resolution of the screen. The views stay as they are; see ViewPicture. \p progress, if there is
/// one, is told again and again the share that is done, from 0 to 1, also while a picture is painted in a thread of its
/// own; it may throw to end the work.
/// \throws ExceptionBase as ViewPicture does.
[[nodiscard]] Report makeReport(
    const Project& project,
    const FilterList& filters,
    const std::vector<AnalyzerViewInterface*>& views,
    const CaseSet& selection,
    const std::string& date,
    const std::function<void(double)>& progress = {});

/// What \p view leaves out, in a line: "37 not drawn: 31 without Drag, 6 filtered"; empty if nothing.
[[nodiscard]] std::string leftOutInWords(const AnalyzerViewInterface& view);

} // namespace analyzer
