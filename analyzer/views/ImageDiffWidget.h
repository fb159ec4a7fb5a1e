#pragma once

#include <analyzer/views/ImageDiffMode.h>
#include <analyzer/views/ImageLeafingWidget.h>

#include <QString>

#include <array>
#include <cstddef>

class QComboBox;
class QLabel;
class QSlider;
class QToolButton;

namespace analyzer {

class ImageCanvas;
class ImageCanvasCaption;
class SelectedImageGrid;

/// Two pictures beside each other, or one made of both, with a bar above.
///
/// Shows what it is told and says what the user asks for. Its keys: Left, Page Up, Right, Page Down, Home and End for the
/// case that is compared, and those of ImageCanvasZoomBar.
class ImageDiffWidget : public ImageLeafingWidget
{
    Q_OBJECT

public:
    explicit ImageDiffWidget(QWidget* parent = nullptr);

    /// Shows canvases, slider and mode as they are for \p mode.
    void setMode(ImageDiffMode mode);

    void setBlend(int percent);
    void setGain(int gain);
    void setFitting(bool isFitting);
    void setSwapped(bool isSwapped);

    /// \p toolTip says which case is the reference or would be.
    void setPinned(bool isPinned, bool canPin, const QString& toolTip);

    /// Shows that the case that is compared is the one at \p place of \p count, counted from 0.
    void setPlace(std::size_t place, std::size_t count);

    /// Shows what the two pictures are called.
    void setCaptions(const std::array<QString, 2>& captions, const std::array<QString, 2>& paths);

    /// A line about the two pictures; none for an empty text.
    void setRemark(const QString& remark);

    /// Shows \p message in place of everything about pictures.
    void setNothing(const QString& message);

    [[nodiscard]] SelectedImageGrid& grid() const { return *m_grid; }

    // ---- for tests

    [[nodiscard]] ImageCanvas& canvas(std::size_t number) const;

    [[nodiscard]] ImageCanvasCaption& caption(std::size_t number) const;

    [[nodiscard]] QComboBox& modeBox() const { return *m_mode; }

    [[nodiscard]] QSlider& blendSlider() const { return *m_blend; }

    [[nodiscard]] QSlider& gainSlider() const { return *m_gain; }

    [[nodiscard]] QToolButton& pinButton() const { return *m_pin; }

    [[nodiscard]] QToolButton& swapButton() const { return *m_swap; }

    [[nodiscard]] QToolButton& nextButton() const { return *m_next; }

    [[nodiscard]] QString placeText() const;
    [[nodiscard]] QString pairText() const;
    [[nodiscard]] QString remark() const;

Q_SIGNALS:
    void modeRequested(analyzer::ImageDiffMode mode);
    void blendRequested(int percent);
    void gainRequested(int gain);
    void pinRequested(bool pinned);
    void swapRequested(bool swapped);

private:
    QWidget* makeBar();
    QWidget* makeModeLine();

    SelectedImageGrid* m_grid;
    QToolButton* m_previous = nullptr;
    QToolButton* m_next = nullptr;
    QToolButton* m_pin = nullptr;
    QToolButton* m_swap = nullptr;
    QComboBox* m_mode = nullptr;
    QSlider* m_blend = nullptr;
    QSlider* m_gain = nullptr;
    QLabel* m_amount = nullptr;
    QLabel* m_place = nullptr;
    ImageCanvasCaption* m_pair = nullptr;
    QLabel* m_remark = nullptr;
};

} // namespace analyzer
