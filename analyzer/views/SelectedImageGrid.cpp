#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasCaption.h>
#include <analyzer/views/SelectedImageGrid.h>

#include <QtGlobal>

#include <algorithm>
#include <limits>

namespace analyzer {

namespace {

constexpr int gapPx = 4;
constexpr double pictureWidth = 4.0; ///< to a height of three, as most pictures have
constexpr double pictureHeight = 3.0;

} // namespace

SelectedImageGrid::SelectedImageGrid(QWidget* parent)
    : QWidget(parent)
{
    setMinimumSize(80, 60);
}

void SelectedImageGrid::setCells(std::size_t count, std::size_t used)
{
    Q_ASSERT_X(
        used >= 1 && used <= count, "SelectedImageGrid::setCells", "some of the cells are shown");
    while (m_cells.size() < count) {
        auto* canvas = new ImageCanvas(this);
        m_cells.push_back({canvas, new ImageCanvasCaption(this)});
        Q_EMIT cellAdded(m_cells.size() - 1);
    }
    m_count = count;
    m_used = used;
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        const Cell& cell = m_cells[i];
        if (i >= used && cell.canvas->hasFocus()) {
            m_cells.front().canvas->setFocus(); // the keys stay with the pictures
        }
        cell.canvas->setVisible(i < used);
        cell.caption->setVisible(i < used && count > 1);
        if (i >= used && cell.canvas->hasPicture()) {
            cell.canvas->setMessage({});
        }
    }
    place();
}

std::vector<ImageCanvas*> SelectedImageGrid::canvases() const
{
    std::vector<ImageCanvas*> result;
    result.reserve(m_cells.size());
    for (const Cell& cell : m_cells) {
        result.push_back(cell.canvas);
    }
    return result;
}

void SelectedImageGrid::setCurrent(std::size_t cell)
{
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        m_cells[i].caption->setCurrent(i == cell);
    }
}

std::size_t SelectedImageGrid::columns(std::size_t count, const QSize& room, int captionHeight)
{
    std::size_t best = 1;
    double bestScale = std::numeric_limits<double>::lowest();
    for (std::size_t columns = 1; columns <= count; ++columns) {
        const std::size_t rows = (count + columns - 1) / columns;
        const double scale = std::min(
            room.width() / static_cast<double>(columns) / pictureWidth,
            (room.height() / static_cast<double>(rows) - captionHeight) / pictureHeight);
        if (scale > bestScale) {
            bestScale = scale;
            best = columns;
        }
    }
    return best;
}

void SelectedImageGrid::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    place();
}

void SelectedImageGrid::place()
{
    if (m_count == 0) {
        return;
    }
    const int captionHeight = m_count > 1 ? m_cells.front().caption->sizeHint().height() : 0;
    const auto inRow = static_cast<int>(columns(m_count, size(), captionHeight));
    const int rows = std::max((static_cast<int>(m_count) + inRow - 1) / inRow, 1);
    // What is left over by rounding is shared: edges are rounded, not widths.
    const auto left = [&](int column) { return (width() + gapPx) * column / inRow; };
    const auto top = [&](int row) { return (height() + gapPx) * row / rows; };
    for (int i = 0; i < static_cast<int>(m_used); ++i) {
        const int column = i % inRow;
        const int row = i / inRow;
        const QRect cell(
            QPoint(left(column), top(row)),
            QPoint(left(column + 1) - gapPx - 1, top(row + 1) - gapPx - 1));
        const Cell& widgets = m_cells[static_cast<std::size_t>(i)];
        widgets.caption->setGeometry(cell.x(), cell.y(), cell.width(), captionHeight);
        widgets.canvas->setGeometry(cell.adjusted(0, captionHeight, 0, 0));
    }
}

} // namespace analyzer
