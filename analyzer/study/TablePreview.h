#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace analyzer {

/// The first rows of a table, as they stand in the file, to be looked at while the others are read.
struct TablePreview
{
    std::vector<std::string> names; ///< of the columns, as their variables will be called; UTF-8
    std::vector<std::vector<std::string>>
        rows; ///< their fields, of which there may be fewer or more than names
    bool isLatin1 = false; ///< the fields are in Latin-1, else in UTF-8

    static constexpr std::size_t maxRows = 100;
};

/// What \p head, the text a table begins with, tells; empty if that is not even a header. \p isWhole says that no more
/// text follows.
[[nodiscard]] TablePreview previewTable(std::string_view head, char delimiter, bool isWhole);

} // namespace analyzer
