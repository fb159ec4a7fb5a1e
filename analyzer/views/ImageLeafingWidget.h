#pragma once

#include <QWidget>

namespace analyzer {

class ImageCanvasZoomBar;

/// What the widgets have in common that show pictures to leaf through: a bar for the zoom, and the keys.
///
/// Says what the user asks for. Its keys: Left, Page Up, Right, Page Down, Home and End, and those of ImageCanvasZoomBar;
/// while a picture has the focus they are taken before they are somebody's shortcuts.
class ImageLeafingWidget : public QWidget
{
    Q_OBJECT

public:
    ImageLeafingWidget(const ImageLeafingWidget&) = delete;
    ImageLeafingWidget& operator=(const ImageLeafingWidget&) = delete;
    ~ImageLeafingWidget() override;

    [[nodiscard]] ImageCanvasZoomBar& zoomBar() const { return *m_zoomBar; }

Q_SIGNALS:
    void previousRequested();
    void nextRequested();
    void firstRequested();
    void lastRequested();
    void fitRequested();
    void actualSizeRequested();

protected:
    explicit ImageLeafingWidget(QWidget* parent)
        : QWidget(parent)
    {}

    /// For the constructor of the subclass, which puts the bar into a layout; the Tab key reaches it after what was made
    /// before.
    void makeZoomBar();

    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool obeyKey(int key);

    ImageCanvasZoomBar* m_zoomBar = nullptr;
};

} // namespace analyzer
