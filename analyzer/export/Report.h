#pragma once

#include <QByteArray>
#include <QSize>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace analyzer {

/// What a report says, as texts (UTF-8) and pictures: nothing of it follows the program any more.
struct Report
{
    struct Picture
    {
        std::string title;
        std::string note; ///< such as what is not drawn; may be empty
        QByteArray png;
        QSize size; ///< to be shown at, in pixels of a screen
    };

    struct Tag
    {
        std::string group;
        std::string name;
        std::size_t caseCount; ///< that carry it themselves
        std::size_t imageCount; ///< likewise
    };

    struct Column
    {
        std::string name;
        bool isNumeric;
    };

    using Row = std::vector<std::optional<std::string>>; ///< nothing for a missing value

    std::string title;
    std::string fileName; ///< of the study, without its folder
    std::string date; ///< as it shall be read
    std::size_t caseCount = 0;
    std::size_t shownCount = 0; ///< that pass the filters
    std::size_t selectedCount = 0;
    std::vector<Picture> pictures;
    std::vector<std::string> filters;
    std::vector<Tag> tags;
    std::vector<Column> columns; ///< of the selected cases
    std::vector<Row> rows; ///< as long as columns
    std::size_t leftOutRowCount = 0; ///< selected cases that are not in rows
};

} // namespace analyzer
