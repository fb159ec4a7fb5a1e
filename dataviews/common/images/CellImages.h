#pragma once

#include <dataviews/common/images/AuxFileImageData.h>
#include <dataviews/common/images/CaseGrid.h>

#include <dataviews/platform/data/RowBitmap.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Finds the files of the cases in the cells of a grid, among the auxiliary files of the open study.
class CellImages
{
public:
    /// \p grid outlives this object and is up to date whenever it is asked.
    explicit CellImages(const CaseGrid& grid);

    /// From now on only files with the tag \p tag; with all files for none.
    void setPageTag(std::optional<std::string> tag) { m_pageTag = std::move(tag); }

    /// The study is closed.
    void forget() { m_rowsWithFiles.reset(); }

    /// In ascending order of case IDs, those of a case in their own order. \p cell must be in the grid.
    [[nodiscard]] std::vector<AuxFileImageData> images(const CaseGrid::Cell& cell);

    /// The first cell, row by row, with an image.
    [[nodiscard]] std::optional<CaseGrid::Cell> firstCell();

private:
    using Cell = CaseGrid::Cell;

    template <class Function>
    void forEachFile(const CaseGrouping::Rows& cases, Function function) const;

    void findRowsWithFiles();
    [[nodiscard]] bool isOnPage(const AuxFile& file) const;
    [[nodiscard]] std::optional<Cell> firstCellOf(
        const AuxFile& file, const CaseGrouping::Cell& group) const;

    const CaseGrid& m_grid;
    std::optional<std::string> m_pageTag;
    std::optional<RowBitmap> m_rowsWithFiles; ///< kept where few cases have files
    std::size_t m_fileCount = 0;
};
