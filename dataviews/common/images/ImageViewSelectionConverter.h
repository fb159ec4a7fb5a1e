#pragma once

#include <dataviews/common/images/ImagesExport.h>
#include <dataviews/common/selection/SelectionConverterInterface.h>

class ImageTableModel;
class QTableView;

/// Translates between the selected cells of an image matrix and the cases in them.
class DATAVIEWS_IMAGES_EXPORT ImageViewSelectionConverter : public SelectionConverterInterface
{
public:
    /// \p grid shows \p model; both outlive the converter.
    ImageViewSelectionConverter(const QTableView& grid, const ImageTableModel& model);
    ImageViewSelectionConverter(const ImageViewSelectionConverter&) = delete;
    ImageViewSelectionConverter& operator=(const ImageViewSelectionConverter&) = delete;
    ~ImageViewSelectionConverter() override;

    /// The cases of all selected cells.
    std::set<unsigned long long> toCaseIDs(const QItemSelectionModel& selectionModel) override;

    /// Every cell that holds one of the cases. Neighbours make one range, since Qt's selections grow slow with the
    /// number of their ranges.
    QItemSelection toItemSelection(const std::set<unsigned long long>& caseIDs) override;
    boost::shared_ptr<const CaseSet> toCases(const QItemSelectionModel& selectionModel) override;
    std::optional<QItemSelection> cellsOf(const CaseSet& cases) override;

private:
    const QTableView& m_grid;
    const ImageTableModel& m_model;
};
