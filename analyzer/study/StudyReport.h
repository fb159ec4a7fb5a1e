#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace analyzer {

/// What a reader found in a study and what it could not take as it was; nothing is dropped without a word here.
struct StudyReport
{
    /// A row with fewer or more fields than the header. It is a case all the same: filled up or cut.
    struct RefusedLine
    {
        std::size_t line; ///< where the row begins, counted from 1
        std::string reason;
    };

    std::size_t cases = 0;
    std::size_t variables = 0;

    /// Auxiliary files, each counted once a cell that names it; they need not exist.
    std::size_t images = 0;

    /// Cells of the study without a value: empty fields, those that a short row lacks, and NaN, NA, null and "-" among
    /// numbers. Cells of image columns count too; columns that are left out do not.
    std::size_t missingValues = 0;

    /// Those of the missing values that lie in image columns.
    std::size_t missingImages = 0;

    std::size_t refusedLineCount = 0;
    std::vector<RefusedLine> refusedLines; ///< the first maxListed of them
    std::vector<std::string> notes; ///< sentences for people

    void addRefusedLine(std::size_t line, std::string reason);

    /// Adds the refused lines of \p part, a report on the lines behind the first \p linesBefore.
    void addRefusedLines(const StudyReport& part, std::size_t linesBefore);

    /// Lines and images that are told one by one; of the others there is the count.
    static constexpr std::size_t maxListed = 100;
};

} // namespace analyzer
