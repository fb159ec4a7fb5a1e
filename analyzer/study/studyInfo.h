#pragma once

#include <analyzer/study/StudyReport.h>

#include <string>

class Project;

namespace analyzer {

/// What `--info` prints about \p project: one "name: value" line each for cases, variables, images, missing values and
/// refused lines; then a line "note: …" for each note and each refused line that is listed.
[[nodiscard]] std::string studyInfo(const Project& project, const StudyReport& report);

} // namespace analyzer
