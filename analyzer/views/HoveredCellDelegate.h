#pragma once

#include <dataviews/common/images/ImageCellDelegate.h>

#include <boost/shared_ptr.hpp>

class ImageTableModel;
class ImageTableView;

namespace analyzer {

class HoveredCase;

/// Draws the cells of an image matrix, those with the hovered case outlined.
class HoveredCellDelegate : public ImageCellDelegate
{
    Q_OBJECT

public:
    /// Belongs to the grid of \p images, which outlives it.
    HoveredCellDelegate(const ImageTableView& images, boost::shared_ptr<const HoveredCase> hovered);
    HoveredCellDelegate(const HoveredCellDelegate&) = delete;
    HoveredCellDelegate& operator=(const HoveredCellDelegate&) = delete;
    ~HoveredCellDelegate() override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index)
        const override;

private:
    const ImageTableModel& m_model;
    boost::shared_ptr<const HoveredCase> m_hovered;
};

} // namespace analyzer
