#pragma once

#include <QWidget>

#include <cstddef>
#include <vector>

namespace analyzer {

class ImageCanvas;
class ImageCanvasCaption;

/// Canvases side by side, each below a caption; a single one has none. As many in a row as make the pictures largest.
class SelectedImageGrid : public QWidget
{
    Q_OBJECT

public:
    explicit SelectedImageGrid(QWidget* parent = nullptr);

    /// Divides the room among \p count cells, at least one, of which the first \p used, at least one, are shown. Cells
    /// that are not shown keep no picture.
    void setCells(std::size_t count, std::size_t used);

    /// The number of cells that are shown.
    [[nodiscard]] std::size_t usedCount() const { return m_used; }

    /// Those of the cells that have ever been asked for.
    [[nodiscard]] std::vector<ImageCanvas*> canvases() const;

    [[nodiscard]] ImageCanvas& canvas(std::size_t cell) const { return *m_cells[cell].canvas; }

    [[nodiscard]] ImageCanvasCaption& caption(std::size_t cell) const
    {
        return *m_cells[cell].caption;
    }

    /// Lets the caption of \p cell stand out among the others.
    void setCurrent(std::size_t cell);

    /// The number of cells in a row of \p count cells in \p room: the one with which pictures of common proportions
    /// are largest below captions that are \p captionHeight high.
    [[nodiscard]] static std::size_t columns(
        std::size_t count, const QSize& room, int captionHeight = 0);

Q_SIGNALS:
    /// A cell is asked for the first time.
    void cellAdded(std::size_t cell);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Cell
    {
        ImageCanvas* canvas;
        ImageCanvasCaption* caption;
    };

    void place();

    std::vector<Cell> m_cells;
    std::size_t m_count = 0;
    std::size_t m_used = 0;
};

} // namespace analyzer
