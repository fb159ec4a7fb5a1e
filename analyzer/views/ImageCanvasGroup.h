#pragma once

#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageCanvasZoom.h>

#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/undo/DeleteSignaler.h>

#include <QPointer>

#include <boost/shared_ptr.hpp>
#include <boost/signals2/connection.hpp>

#include <optional>
#include <vector>

class SerializerInterface;

namespace analyzer {

/// Keeps canvases in step: zooming and moving the picture in one of them does the same in the others.
///
/// What the user does is undoable: a drag is one step, and so are turns of the wheel that follow one another. Owns no
/// canvas; they may go before it.
class ImageCanvasGroup
{
public:
    ImageCanvasGroup();
    ImageCanvasGroup(const ImageCanvasGroup&) = delete;
    ImageCanvasGroup& operator=(const ImageCanvasGroup&) = delete;
    ~ImageCanvasGroup();

    /// \p canvas takes the zoom of the others; before this object goes, it goes or is not used any more.
    void add(ImageCanvas& canvas);

    /// Refuses scales and centers that no canvas can have; not undoable.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<ImageCanvasZoom>> zoom() const
    {
        return m_zoom;
    }

    /// Whether the pictures are as large as their canvases allow; undoable. Turned off, they have their actual size.
    [[nodiscard]] boost::shared_ptr<corvane::PropertyAbstract<bool>> fitToWindow() const
    {
        return m_fitToWindow;
    }

    /// At the scale 1, about the middle; undoable.
    void showActualSize();

    /// Adds the zoom to \p parent.
    void keepIn(SerializerInterface& parent) const;

private:
    void chosen(const ImageCanvas& canvas, ImageCanvas::Gesture gesture);
    void record(const ImageCanvasZoom& before, const QString& text, int undoID) const;
    void showZoom();

    boost::shared_ptr<corvane::PropertyAbstract<ImageCanvasZoom>> m_zoom;
    boost::shared_ptr<corvane::PropertyAbstract<bool>> m_fitToWindow;
    std::vector<QPointer<ImageCanvas>> m_canvases;
    std::optional<ImageCanvasZoom> m_beforeDrag; ///< while the user drags
    int m_zoomUndoID;
    int m_panUndoID;
    QObject m_context; ///< of the connections to the canvases
    boost::signals2::scoped_connection m_zoomConnection;
    DeleteSignaler m_deleteSignaler;
};

} // namespace analyzer
