#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/ImageViewSelectionConverter.h>

#include <dataviews/platform/selection/CaseSet.h>

#include <QItemSelectionModel>
#include <QTableView>

#include <boost/make_shared.hpp>

#include <map>
#include <utility>
#include <vector>

namespace {

using Cell = ImageTableModel::Cell;

/// Some neighbouring columns in one row or more.
struct Block
{
    int top;
    int bottom;
    int left;
    int right;
};

/// Neighbours within a row, of \p cells row by row.
std::vector<Block> runsOf(const std::vector<Cell>& cells)
{
    std::vector<Block> runs;
    for (const auto& [row, column] : cells) {
        if (!runs.empty() && runs.back().top == row && runs.back().right + 1 == column) {
            runs.back().right = column;
        } else {
            runs.push_back({row, row, column, column});
        }
    }
    return runs;
}

/// Runs over the same columns in neighbouring rows become one block.
std::vector<Block> blocksOf(const std::vector<Block>& runs)
{
    std::vector<Block> blocks;
    std::map<std::pair<int, int>, std::size_t> lastWithColumns;
    for (const Block& run : runs) {
        const auto [place, isNew] =
            lastWithColumns.try_emplace({run.left, run.right}, blocks.size());
        if (!isNew && blocks[place->second].bottom + 1 == run.top) {
            blocks[place->second].bottom = run.bottom;
        } else {
            place->second = blocks.size();
            blocks.push_back(run);
        }
    }
    return blocks;
}

} // namespace

ImageViewSelectionConverter::ImageViewSelectionConverter(
    const QTableView& grid, const ImageTableModel& model)
    : m_grid(grid)
    , m_model(model)
{}

ImageViewSelectionConverter::~ImageViewSelectionConverter() = default;

std::set<unsigned long long> ImageViewSelectionConverter::toCaseIDs(
    const QItemSelectionModel& selectionModel)
{
    return toCases(selectionModel)->toSet();
}

QItemSelection ImageViewSelectionConverter::toItemSelection(
    const std::set<unsigned long long>& caseIDs)
{
    return *cellsOf(CaseSet(caseIDs));
}

boost::shared_ptr<const CaseSet> ImageViewSelectionConverter::toCases(
    const QItemSelectionModel& selectionModel)
{
    std::vector<Cell> cells;
    for (const QModelIndex& index : selectionModel.selectedIndexes()) {
        cells.emplace_back(index.row(), index.column());
    }
    return boost::make_shared<const CaseSet>(m_model.casesOf(cells));
}

std::optional<QItemSelection> ImageViewSelectionConverter::cellsOf(const CaseSet& cases)
{
    const QAbstractItemModel& gridModel = *m_grid.model();
    QItemSelection selection;
    for (const Block& block : blocksOf(runsOf(m_model.cellsContainingAny(cases)))) {
        selection.append(QItemSelectionRange(
            gridModel.index(block.top, block.left), gridModel.index(block.bottom, block.right)));
    }
    return selection;
}
