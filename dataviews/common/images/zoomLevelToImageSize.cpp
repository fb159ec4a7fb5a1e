#include <dataviews/common/images/zoomLevelToImageSize.h>

#include <QtWidgets/qwidget.h>

#include <algorithm>

QSize zoomLevelToImageSize(std::size_t zoom)
{
    constexpr double sideRange = 750.0;
    constexpr double smallestSide = 50.0;
    constexpr double largestSide =
        QWIDGETSIZE_MAX; // what Qt can lay out, so that nothing overflows
    const double side = static_cast<double>(zoom) / 100.0 * sideRange + smallestSide;
    const int pixels = static_cast<int>(std::min(side, largestSide));
    return {pixels, pixels};
}
