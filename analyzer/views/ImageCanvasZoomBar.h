#pragma once

#include <QWidget>

#include <vector>

class QHBoxLayout;
class QKeyEvent;
class QLabel;
class QToolButton;

namespace analyzer {

class ImageCanvas;

/// The buttons for the zoom of canvases that are in step, and their keys: + and - for the zoom, F for fitting and 1 for
/// the actual size.
class ImageCanvasZoomBar : public QWidget
{
    Q_OBJECT

public:
    explicit ImageCanvasZoomBar(QWidget* parent = nullptr);

    /// Serves \p canvases, which outlive the bar or go with it. The percentage is that of the first one with a picture.
    void setCanvases(std::vector<ImageCanvas*> canvases);

    void setFitting(bool isFitting);

    /// Zooms the canvas under the mouse, else the first one with a picture.
    void zoomBySteps(int steps);

    /// Does what \p key stands for; false for a key that stands for nothing here.
    bool obeyKey(int key);

    /// Whether \p event is one of the keys, which may be somebody's shortcuts too.
    [[nodiscard]] static bool isKeyOfBar(const QKeyEvent& event);

    /// A flat button that never takes the keys from the picture.
    [[nodiscard]] static QToolButton* makeButton(
        const QString& name, const QString& toolTip, QWidget* parent);

    // ---- for tests

    [[nodiscard]] QToolButton& fitButton() const { return *m_fit; }

    [[nodiscard]] QToolButton& actualSizeButton() const { return *m_actualSize; }

    [[nodiscard]] QToolButton& zoomInButton() const { return *m_zoomIn; }

Q_SIGNALS:
    void fitRequested();
    void actualSizeRequested();

private:
    [[nodiscard]] ImageCanvas* firstWithPicture() const;
    void showZoom();

    std::vector<ImageCanvas*> m_canvases;
    QToolButton* m_zoomOut;
    QToolButton* m_zoomIn;
    QToolButton* m_fit;
    QToolButton* m_actualSize;
    QLabel* m_zoom;
};

} // namespace analyzer
