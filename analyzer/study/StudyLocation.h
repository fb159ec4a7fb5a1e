#pragma once

#include <string>

namespace analyzer {

/// Where the table of a study lies.
struct StudyLocation
{
    std::string name; ///< what people call the study
    std::string tablePath; ///< absolute
    std::string
        folder; ///< absolute, links followed; paths of images are relative to it and stay inside
};

/// Finds the table of the study at \p path, a file or a folder (UTF-8). A folder counts with its data.csv, else with
/// exactly one CSV file at its top; a Cinema database (*.cdb) has a data.csv. Opens nothing.
/// \throws StudyError if there is no such table, or there are several.
[[nodiscard]] StudyLocation locateStudy(const std::string& path);

} // namespace analyzer
