#pragma once

#include <QString>
#include <QWidget>

#include <cstddef>

class QLabel;
class QSplitter;
class QToolButton;

namespace analyzer {

class CaseValuesTable;
class ImageCanvas;

/// A picture with a bar above and the values of its case beside it, or below it where the widget is narrow.
///
/// Its keys: Left, Page Up, Right, Page Down, Home and End for the picture, + and - for the zoom, F for fitting and 1
/// for the actual size.
class SelectedImageWidget : public QWidget
{
    Q_OBJECT

public:
    explicit SelectedImageWidget(QWidget* parent = nullptr);

    /// Shows that the picture is the one at \p place of \p count, counted from 0.
    void setPlace(std::size_t place, std::size_t count);

    /// Shows the name of the picture's file and its \p tags, with \p path for who asks.
    void setFile(const QString& name, const QString& tags, const QString& path);

    /// Shows \p message in place of everything about a picture.
    void setNothing(const QString& message);

    void setFitting(bool isFitting);

    [[nodiscard]] ImageCanvas& canvas() const { return *m_canvas; }

    [[nodiscard]] CaseValuesTable& values() const { return *m_values; }

    // ---- for tests

    [[nodiscard]] QToolButton& previousButton() const { return *m_previous; }

    [[nodiscard]] QToolButton& nextButton() const { return *m_next; }

    [[nodiscard]] QToolButton& fitButton() const { return *m_fit; }

    [[nodiscard]] QToolButton& actualSizeButton() const { return *m_actualSize; }

    [[nodiscard]] QString placeText() const;
    [[nodiscard]] QString fileText() const;

Q_SIGNALS:
    void previousRequested();
    void nextRequested();
    void firstRequested();
    void lastRequested();
    void fitRequested();
    void actualSizeRequested();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeBar();
    QToolButton* makeButton(const QString& name, const QString& toolTip);
    bool obeyKey(int key);
    void showZoom();

    ImageCanvas* m_canvas;
    CaseValuesTable* m_values;
    QSplitter* m_splitter;
    QToolButton* m_previous = nullptr;
    QToolButton* m_next = nullptr;
    QToolButton* m_zoomOut = nullptr;
    QToolButton* m_zoomIn = nullptr;
    QToolButton* m_fit = nullptr;
    QToolButton* m_actualSize = nullptr;
    QLabel* m_place = nullptr;
    QLabel* m_zoom = nullptr;
    QLabel* m_file = nullptr;
};

} // namespace analyzer
