#pragma once

#include <dataviews/platform/data/Variable.h>

#include <optional>
#include <string>
#include <vector>

namespace analyzer {

/// What the header tells of a column, in any of the dialects.
struct HeaderColumn
{
    /// How a dialect marks a column.
    enum class Mark
    {
        None,
        File, ///< Cinema version D: "FILE…", paths of files, images or others
        Image ///< Design Explorer: "img", "img_…"
    };

    std::string
        name; ///< unique, not empty, without control characters but line breaks and marks of natures
    Mark mark = Mark::None;
    std::optional<Variable::Nature> nature; ///< as a Design Explorer table marks it
    bool isNameless = false; ///< the name is made up
    std::string note; ///< a sentence, if the name is not what stands in the file
};

/// Whether \p field of a header marks a column of file paths, in a Cinema database.
[[nodiscard]] bool isFileColumn(const std::string& field);

/// The columns for the fields of \p header, one each.
///
/// Surrounding blanks are taken off; "in:" and "out:" (any case) become natures; a second "x" is called "x (2)"; a
/// nameless third column "Column 3"; control characters become blanks. "Case ID" is taken already.
[[nodiscard]] std::vector<HeaderColumn> headerColumns(const std::vector<std::string>& header);

} // namespace analyzer
