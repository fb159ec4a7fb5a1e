#include <dataviews/common/images/CellImages.h>

#include <dataviews/platform/data/AuxFile.h>
#include <dataviews/platform/data/Project.h>

#include <algorithm>
#include <utility>

namespace {

/// The first header of \p tags that \p file carries.
std::optional<int> firstTag(const AuxFile& file, const GridDimension& tags)
{
    const auto count = static_cast<int>(tags.size());
    for (int index = 0; index < count; ++index) {
        if (file.hasTag(tags.tag(index))) {
            return index;
        }
    }
    return std::nullopt;
}

} // namespace

CellImages::CellImages(const CaseGrid& grid)
    : m_grid(grid)
{}

std::vector<AuxFileImageData> CellImages::images(const Cell& cell)
{
    std::vector<AuxFileImageData> found;
    const Project& project = Project::project();
    if (project.auxFileCount() == 0) {
        return found;
    }
    findRowsWithFiles();
    std::vector<std::string> tags;
    for (const auto& [dimension, index] :
         {std::make_pair(&m_grid.rows(), cell.first),
          std::make_pair(&m_grid.columns(), cell.second)}) {
        if (dimension->isByTag()) {
            tags.push_back(dimension->tag(index));
        }
    }
    forEachFile(m_grid.projectRows(cell), [&](const boost::shared_ptr<AuxFile>& file) {
        if (std::all_of(tags.begin(), tags.end(), [&file](const std::string& tag) {
                return file->hasTag(tag);
            })) {
            found.emplace_back(file, Record(project, file->row()));
        }
        return true;
    });
    return found;
}

std::optional<CaseGrid::Cell> CellImages::firstCell()
{
    std::optional<Cell> first;
    if (Project::project().auxFileCount() == 0) {
        return first;
    }
    findRowsWithFiles();
    const CaseGrouping& grouping = m_grid.grouping();
    for (std::size_t index = 0; index < grouping.cells().size(); ++index) {
        const CaseGrouping::Cell& group = grouping.cells()[index];
        // The first cell that this group can fill; later groups come behind it.
        const Cell best(static_cast<int>(group.row), static_cast<int>(group.column));
        if (first && *first <= best) {
            break;
        }
        forEachFile(grouping.cases(index), [&](const boost::shared_ptr<AuxFile>& file) {
            const std::optional<Cell> cell = firstCellOf(*file, group);
            if (cell && (!first || *cell < *first)) {
                first = cell;
            }
            return !first || best < *first;
        });
    }
    return first;
}

std::optional<CaseGrid::Cell> CellImages::firstCellOf(
    const AuxFile& file, const CaseGrouping::Cell& group) const
{
    const std::optional<int> row = m_grid.rows().isByTag()
        ? firstTag(file, m_grid.rows())
        : std::optional<int>(static_cast<int>(group.row));
    const std::optional<int> column = m_grid.columns().isByTag()
        ? firstTag(file, m_grid.columns())
        : std::optional<int>(static_cast<int>(group.column));
    return row && column ? std::optional<Cell>(Cell(*row, *column)) : std::nullopt;
}

/// Calls \p function for every file on the page of \p cases, as long as it gives true.
template <class Function>
void CellImages::forEachFile(const CaseGrouping::Rows& cases, Function function) const
{
    const Project& project = Project::project();
    for (const CaseGrouping::Row row : cases) {
        if ((m_rowsWithFiles && !m_rowsWithFiles->contains(row)) || !m_grid.isOnPage(row)) {
            continue;
        }
        for (const boost::shared_ptr<AuxFile>& file : project.auxFiles(row)) {
            if (isOnPage(*file) && !function(file)) {
                return;
            }
        }
    }
}

bool CellImages::isOnPage(const AuxFile& file) const
{
    return !m_pageTag || file.hasTag(*m_pageTag);
}

void CellImages::findRowsWithFiles()
{
    // Where most cases have files, looking for those of each costs no more than a bit for each would save.
    constexpr std::size_t manyCases = 4;
    const Project& project = Project::project();
    if (m_fileCount != project.auxFileCount()) {
        m_rowsWithFiles.reset();
        m_fileCount = project.auxFileCount();
    }
    if (m_rowsWithFiles || m_fileCount > project.caseCount() / manyCases) {
        return;
    }
    RowBitmap rows(project.caseCount());
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        if (!project.auxFiles(row).empty()) {
            rows.set(row);
        }
    }
    m_rowsWithFiles = std::move(rows);
}
