#pragma once

#include <dataviews/common/images/AuxFileImageData.h>
#include <dataviews/common/images/ImagesExport.h>

#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/selection/SuspendableInterface.h>
#include <dataviews/platform/signals/Signal.h>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

class CaseSet;
class ImageMatrixViewProperties;
class vtkTableAlgorithm;

/// Groups the cases of a table, and their images, into the cells of a grid.
///
/// The properties say what rows, columns and pages stand for. A dimension by variable has a row (column) for each value
/// of its variable over the cases of the table, ascending, a missing value included; without a variable, one for
/// everything, with the value 0. A dimension by tag has one for each of allTagsToShow(). Nothing is computed before it is asked
/// for: then one pass groups all cases; sets and lists of images are made cell by cell and kept until a change.
class DATAVIEWS_IMAGES_EXPORT ImageTableModel : public SuspendableInterface
{
public:
    /// Row and column, from 0.
    using Cell = std::pair<int, int>;

    /// \p owner suspends and resumes the model together with itself and outlives it. \p source gives the table of
    /// cases, with their IDs in column 0; its ModifiedEvent means that cases have come or gone. Values come from the open project;
    /// cases that it does not know have none, and are in cells only
    /// where rows and columns are both by tag.
    ImageTableModel(
        SuspendableInterface& owner,
        vtkSmartPointer<vtkTableAlgorithm> source,
        boost::shared_ptr<ImageMatrixViewProperties> properties);
    ImageTableModel(const ImageTableModel&) = delete;
    ImageTableModel& operator=(const ImageTableModel&) = delete;
    ~ImageTableModel() override;

    /// From now on changes of the properties and of the table go unnoticed.
    void suspend() override;

    /// Notices changes again; those that were missed stay missed until reset().
    void resume() override;

    /// Whoever suspends and resumes the model; never called by it.
    [[nodiscard]] SuspendableInterface& owner() const;

    [[nodiscard]] virtual int rowCount() const;
    [[nodiscard]] virtual int columnCount() const;

    /// The images of \p cell: those of its cases in ascending order of their IDs, each case's in the order of its
    /// record, without the files that do not carry the tags of the cell and the page. None for a negative row or
    /// column. Valid until the next change.
    /// \throws std::out_of_range ("invalid vector<T> subscript") beyond the last row or column.
    [[nodiscard]] virtual const std::vector<AuxFileImageData>& images(const Cell& cell) const;

    /// Further data of a cell, for models that have it: none here.
    [[nodiscard]] virtual void* extraData(const Cell& cell);
    [[nodiscard]] virtual const void* extraData(const Cell& cell) const;

    /// What a row or column stands for.
    /// \throws std::out_of_range ("invalid vector<T> subscript") for an index outside the grid.
    [[nodiscard]] virtual Variant rowHeader(int row) const;
    [[nodiscard]] virtual Variant columnHeader(int column) const;

    /// The cases of \p cell. Where rows and columns are both by tag, the cells on the diagonal hold all cases of the table and the
    /// others none; else tags add no condition. Valid until the next change.
    /// \throws std::out_of_range ("invalid vector<T> subscript") for a cell outside the grid.
    [[nodiscard]] const std::set<unsigned long long>& caseIDs(const Cell& cell) const;

    /// The number of cases in \p cell, without making their set. Throws as caseIDs().
    [[nodiscard]] std::size_t caseCount(const Cell& cell) const;

    /// Every cell that holds the case, row by row; none for a case that is not on the page.
    [[nodiscard]] std::vector<Cell> cellsContaining(unsigned long long caseID) const;

    /// The cases of all \p cells, each once. Throws as caseIDs().
    [[nodiscard]] std::set<unsigned long long> caseIDsOf(const std::vector<Cell>& cells) const;

    /// The same in the form that costs little.
    [[nodiscard]] CaseSet casesOf(const std::vector<Cell>& cells) const;

    /// Every cell that holds one of the cases, each once, row by row.
    [[nodiscard]] std::vector<Cell> cellsContainingAny(
        const std::set<unsigned long long>& caseIDs) const;
    [[nodiscard]] std::vector<Cell> cellsContainingAny(const CaseSet& cases) const;

    /// The first cell, row by row, that has an image.
    [[nodiscard]] std::optional<Cell> firstCellWithImage() const;

    /// Forgets everything computed and tells the listeners of signalModelChanged.
    void reset();

    /// Rows, columns or the cases in cells have changed.
    Signal<void(), ImageTableModel> signalModelChanged;

    /// The images of cells have changed, while their cases have not.
    Signal<void(), ImageTableModel> signalDataChanged;

private:
    class Implementation;

    virtual void signalModelChangedConnected() const;
    virtual void signalDataChangedConnected() const;

    std::unique_ptr<Implementation> m_implementation;
};
