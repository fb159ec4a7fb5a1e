#include <dataviews/common/images/ImageViewItemDelegate.h>
#include <dataviews/common/images/QImageTableView.h>

#include <QHeaderView>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>

#include <algorithm>
#include <cmath>
#include <set>

namespace {

/// The first, the last and the middle one of \p count rows or columns.
std::set<int> sampleOf(int count)
{
    return {0, count - 1, (count - 1) / 2};
}

/// Where a point of the grid lies, in units that survive other sizes of sections.
class GridPlace
{
public:
    GridPlace(const QHeaderView& header, int position)
        : m_position(position)
    {
        m_section = header.logicalIndexAt(position);
        if (m_section >= 0) {
            const int size = std::max(1, header.sectionSize(m_section));
            m_share = static_cast<double>(position - header.sectionViewportPosition(m_section))
                / static_cast<double>(size);
        }
    }

    /// Scrolls so that the place lies at the same position again.
    void restore(const QHeaderView& header, QScrollBar& bar) const
    {
        if (m_section < 0 || m_section >= header.count()) {
            return;
        }
        const double place =
            header.sectionPosition(m_section) + m_share * header.sectionSize(m_section);
        bar.setValue(static_cast<int>(std::lround(place)) - m_position);
    }

private:
    int m_position;
    int m_section = -1;
    double m_share = 0.0;
};

void setAllSections(QHeaderView& header, int size)
{
    if (size <= 0 || header.defaultSectionSize() == size) {
        return;
    }
    // The header tells of each section by itself, and the view looks at each again.
    const QSignalBlocker blocker(header);
    header.setMinimumSectionSize(std::min(header.minimumSectionSize(), size));
    header.setDefaultSectionSize(size);
}

/// The hint of a header that shortens its texts lacks some pixels, so that short texts would not be there at all.
void makeRoomForRowTexts(QHeaderView& header)
{
    const int lacking = 2 * header.style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, &header);
    header.setMinimumWidth(std::min(header.sizeHint().width() + lacking, header.maximumWidth()));
}

} // namespace

QImageTableView::QImageTableView(QWidget* parent)
    : QTableView(parent)
{}

QImageTableView::~QImageTableView() = default;

void QImageTableView::setImageDelegate(ImageViewItemDelegate* delegate)
{
    m_imageDelegate = delegate;
    setItemDelegate(delegate);
}

ImageViewItemDelegate& QImageTableView::imageDelegate() const
{
    Q_ASSERT_X(m_imageDelegate != nullptr, "imageDelegate", "no delegate was set");
    return *m_imageDelegate;
}

int QImageTableView::sizeHintForRow(int row) const
{
    if (model() == nullptr) {
        return -1;
    }
    int height = 0;
    for (const int column : sampleOf(model()->columnCount(rootIndex()))) {
        height = std::max(height, cellSize(row, column).height());
    }
    return height + (showGrid() ? 1 : 0);
}

int QImageTableView::sizeHintForColumn(int column) const
{
    if (model() == nullptr) {
        return -1;
    }
    int width = 0;
    for (const int row : sampleOf(model()->rowCount(rootIndex()))) {
        width = std::max(width, cellSize(row, column).width());
    }
    return width + (showGrid() ? 1 : 0);
}

void QImageTableView::fitSections(const QPoint& anchor)
{
    const GridPlace row(*verticalHeader(), anchor.y());
    const GridPlace column(*horizontalHeader(), anchor.x());
    setAllSections(*verticalHeader(), sizeHintForRow(0));
    setAllSections(*horizontalHeader(), sizeHintForColumn(0));
    makeRoomForRowTexts(*verticalHeader());
    doItemsLayout();
    updateGeometries();
    row.restore(*verticalHeader(), *verticalScrollBar());
    column.restore(*horizontalHeader(), *horizontalScrollBar());
}

QSize QImageTableView::cellSize(int row, int column) const
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QStyleOptionViewItem option;
    initViewItemOption(&option);
#else
    const QStyleOptionViewItem option = viewOptions();
#endif
    return itemDelegate()->sizeHint(option, model()->index(row, column, rootIndex()));
}
