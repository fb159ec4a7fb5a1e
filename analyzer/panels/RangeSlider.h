#pragma once

#include <analyzer/filters/ValueScale.h>

#include <dataviews/platform/property/ValueRange_s.h>

#include <QWidget>

#include <cstddef>
#include <optional>
#include <vector>

namespace analyzer {

class RangeHandle;

/// A histogram with a handle for each end of a range under it.
///
/// What the range leaves out is hatched. The handles move by mouse, also by a press on the histogram, and by keyboard:
/// arrows by a hundredth of the whole range, Page Up and Page Down by a tenth, Home and End to its ends. They stop at
/// each other. Until setRange() is called again, the slider shows what the user made of the range.
class RangeSlider : public QWidget
{
    Q_OBJECT

public:
    using Range = ValueRange_s<double>;

    /// \p counts are those of a VariableHistogram over the numbers of \p scale. With \p firstWhole they count that
    /// whole number and each that follows, and their bars stand where the numbers are. \p variable names the handles
    /// for assistive programs.
    RangeSlider(
        const ValueScale& scale,
        std::vector<std::size_t> counts,
        std::optional<double> firstWhole,
        const QString& variable,
        QWidget* parent);

    /// Shows \p range, whose ends may be infinite.
    void setRange(const Range& range);

    /// Hatches what is inside of the range instead, or nothing.
    void setKept(bool inverted, bool enabled);

    /// Object names: \p prefix with "-slider" and, for the handles, with "-lower" and "-upper".
    void setNames(const QString& prefix);

    [[nodiscard]] RangeHandle& lowerHandle() const { return *m_lower; }

    [[nodiscard]] RangeHandle& upperHandle() const { return *m_upper; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// What follows until gestureFinished() is one change.
    void gestureStarted();
    void gestureFinished();

    /// The user moved an end to make the range \p min … \p max.
    void moved(double min, double max);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    RangeHandle* makeHandle(bool isLower, const QString& name);

    /// Where the histogram is.
    [[nodiscard]] QRect plot() const;
    [[nodiscard]] int xOf(double value) const;
    [[nodiscard]] double positionAt(int x) const;
    [[nodiscard]] double& end(const RangeHandle* handle);

    /// Moves the end of \p handle to \p value, but not past the other one.
    void move(RangeHandle* handle, double value);
    void placeHandles();

    /// The bar of part \p index; none where nothing is counted.
    [[nodiscard]] QRect bar(std::size_t index) const;
    void drawBar(QPainter& painter, const QRect& rectangle, bool inside) const;
    void drawParts(QPainter& painter) const;
    void drawWholes(QPainter& painter) const;

    ValueScale m_scale;
    std::vector<std::size_t> m_counts;
    std::size_t m_largestCount;
    std::optional<double> m_firstWhole;
    Range m_range;
    bool m_inverted = false;
    bool m_filters = true;
    RangeHandle* m_lower;
    RangeHandle* m_upper;
    RangeHandle* m_dragged = nullptr; ///< by a press on the histogram
};

} // namespace analyzer
