#pragma once

#include <dataviews/common/images/AuxFileImageData.h>
#include <dataviews/common/images/ImagesExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/selection/SuspendableInterface.h>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

class DataPipelineManagerInterface;
class ImageFileLoaderInterface;
class ImageMatrixTableModelAdapter;
class ImageMatrixViewProperties;
class ImageTableModel;
class QImageTableView;
class QWidget;
class SelectionBroadcaster;
class SelectionModelInterface;
class vtkTableAlgorithm;

/// The image matrix: the images of cases in a grid whose rows and columns stand for the values of two variables, or
/// for tags.
///
/// Its cells take part in the selection of cases that all views share: a cell is selected if any of its cases is.
/// Ctrl and the wheel zoom, about the mouse. The widget belongs to its parent; the view may die before or after it, and
/// then takes it along or is left without one. With a plain loader pictures are read when they are asked for; with one
/// that is an AsyncImageLoaderInterface too, they appear as they are finished.
class DATAVIEWS_IMAGES_EXPORT ImageTableView : public SuspendableInterface
{
public:
    /// Shows the cases that pass the filters of \p pipeline. \p loader gives pictures at full size.
    ImageTableView(
        QWidget& parent,
        boost::shared_ptr<const DataPipelineManagerInterface> pipeline,
        boost::shared_ptr<SelectionModelInterface> selection,
        boost::shared_ptr<ImageFileLoaderInterface> loader,
        boost::shared_ptr<ImageMatrixViewProperties> properties);

    /// Shows the cases of \p table, whose column 0 holds their IDs.
    ImageTableView(
        QWidget& parent,
        vtkSmartPointer<vtkTableAlgorithm> table,
        boost::shared_ptr<SelectionModelInterface> selection,
        boost::shared_ptr<ImageFileLoaderInterface> loader,
        boost::shared_ptr<ImageMatrixViewProperties> properties);
    ImageTableView(const ImageTableView&) = delete;
    ImageTableView& operator=(const ImageTableView&) = delete;
    ~ImageTableView() override;

    /// From now on changes of properties, cases and the shared selection go unnoticed; what is selected in the grid
    /// still reaches the others.
    void suspend() override;

    /// Notices changes again and shows the shared selection, which loses the cases that the grid does not show. The
    /// grid is as it was: see refresh().
    void resume() override;

    /// Shows properties, cases and selection as they are now; the shared selection stays as it is.
    void refresh();

    [[nodiscard]] QWidget& widget();

    /// The number of selected cells, not of cases.
    [[nodiscard]] int numSelections() const;

    /// The images of the selected cells, cell by cell, row by row.
    [[nodiscard]] std::vector<boost::shared_ptr<const AuxFileImageData>> selectedImages() const;
    [[nodiscard]] std::vector<WeakPtr<AuxFile>> selectedAuxFiles() const;

    /// The images of all cells, cell by cell, row by row.
    [[nodiscard]] std::vector<WeakPtr<AuxFile>> displayedAuxFiles() const;

    /// The tags that the files of the table's cases carry, sorted, each once.
    [[nodiscard]] std::vector<std::string> availableTags();

    [[nodiscard]] boost::shared_ptr<ImageMatrixViewProperties> properties();

    /// Paging by the page variable, on or off.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<bool>> pageBy();

    /// Whether a picture on the screen is still being read.
    [[nodiscard]] bool isLoading() const;

    /// Those of the grid.
    [[nodiscard]] int width() const;
    [[nodiscard]] int height() const;

    /// The positions of the scroll bars, in pixels.
    void scrollPositions(int& vertical, int& horizontal) const;

    /// Reaches positions beyond the present ranges by extending these; for a grid that is about to grow.
    void setScrollPositions(int vertical, int horizontal);

    /// Tells when other images are selected.
    [[nodiscard]] const SelectionBroadcaster& selectionBroadcaster() const;

    /// What the view is made of, for those who add to it.
    [[nodiscard]] QImageTableView& grid() const;
    [[nodiscard]] const ImageTableModel& model() const;
    [[nodiscard]] const ImageMatrixTableModelAdapter& gridModel() const;

private:
    class Implementation;

    std::unique_ptr<Implementation> m_implementation;
};
