#pragma once

#include <dataviews/common/charts/ColorPalette.h>
#include <dataviews/common/charts/SelectionRing.h>

#include <QColor>
#include <QPalette>

namespace analyzer {

/// The colors of a chart in three dimensions, made for the palette of its widget.
struct Chart3DColors
{
    explicit Chart3DColors(const QPalette& palette);

    QColor background;
    QColor text;
    bool isDark; ///< the background is darker than the texts
    ColorBytes edge; ///< of the box
    ColorBytes grid;
    ColorBytes point; ///< without a color by a variable

    /// The marks of selected points; \p isFilled where the points have no colors that mean something.
    [[nodiscard]] SelectionRing::Colors selection(bool isFilled) const;

    /// \p share of the text's color over the background, from 0 to 1.
    [[nodiscard]] ColorBytes mixed(double share) const;

    [[nodiscard]] static ColorBytes bytes(const QColor& color);
};

} // namespace analyzer
