#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/HoveredCellDelegate.h>
#include <analyzer/views/hoverOutline.h>

#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/ImageTableView.h>
#include <dataviews/common/images/QImageTableView.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace analyzer {

HoveredCellDelegate::HoveredCellDelegate(
    const ImageTableView& images, boost::shared_ptr<const HoveredCase> hovered)
    : ImageCellDelegate(images.gridModel(), images.grid())
    , m_model(images.model())
    , m_hovered(std::move(hovered))
{
    setImageSize(images.grid().imageDelegate().imageSize());
}

HoveredCellDelegate::~HoveredCellDelegate() = default;

void HoveredCellDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    ImageCellDelegate::paint(painter, option, index);
    if (!m_hovered->caseID()) {
        return;
    }
    // Asked each time, so that it is right whatever has happened to the grid.
    const std::vector<ImageTableModel::Cell> cells = m_model.cellsContaining(*m_hovered->caseID());
    const ImageTableModel::Cell cell{index.row(), index.column()};
    if (std::find(cells.begin(), cells.end(), cell) != cells.end()) {
        drawHoverOutline(*painter, option.rect);
    }
}

} // namespace analyzer
