#pragma once

#include <analyzer/views/ImageLeafingWidget.h>

#include <QString>

#include <cstddef>
#include <optional>

class QLabel;
class QSplitter;
class QToolButton;

namespace analyzer {

class CaseValuesTable;
class ImageCanvas;
class ImageCanvasCaption;
class SelectedImageGrid;

/// Pictures with a bar above and the values of the current one's case beside them, or below them where the widget is
/// narrow.
///
/// Its keys: Left, Page Up, Right, Page Down, Home and End for the pictures, and those of ImageCanvasZoomBar.
class SelectedImageWidget : public ImageLeafingWidget
{
    Q_OBJECT

public:
    explicit SelectedImageWidget(QWidget* parent = nullptr);

    /// Shows that the pictures are \p shown ones from the place \p first on of \p count, counted from 0. Up to \p cells
    /// are shown together.
    void setPlaces(std::size_t first, std::size_t shown, std::size_t count, std::size_t cells);

    /// Shows the name of the current picture's file and its \p tags, with \p path for who asks.
    void setFile(const QString& name, const QString& tags, const QString& path);

    /// Shows \p message in place of everything about a picture.
    void setNothing(const QString& message);

    void setFitting(bool isFitting);

    [[nodiscard]] SelectedImageGrid& grid() const { return *m_grid; }

    [[nodiscard]] CaseValuesTable& values() const { return *m_values; }

    /// The part of the room that the values take, from 0 to 1, if the user has moved the handle between them and the
    /// pictures; else they take what they need, and no more than a third beside several pictures.
    [[nodiscard]] std::optional<double> valuesShare() const { return m_valuesShare; }

    void setValuesShare(std::optional<double> share);

    // ---- for tests

    /// That of the first cell.
    [[nodiscard]] ImageCanvas& canvas() const;

    [[nodiscard]] QToolButton& previousButton() const { return *m_previous; }

    [[nodiscard]] QToolButton& nextButton() const { return *m_next; }

    [[nodiscard]] QSplitter& splitter() const { return *m_splitter; }

    [[nodiscard]] QString placeText() const;
    [[nodiscard]] QString fileText() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeBar();
    void noteShare();
    void shareRoom();
    [[nodiscard]] int roomForValues(int room) const;

    SelectedImageGrid* m_grid;
    CaseValuesTable* m_values;
    QSplitter* m_splitter;
    QToolButton* m_previous = nullptr;
    QToolButton* m_next = nullptr;
    QLabel* m_place = nullptr;
    ImageCanvasCaption* m_file = nullptr;
    std::optional<double> m_valuesShare;
    bool m_hasSeveral = false; ///< pictures beside each other
};

} // namespace analyzer
