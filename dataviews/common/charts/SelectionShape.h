#pragma once

#include <cstdint>

/// What a drag with the button that selects takes hold of in a ChartXY.
enum class SelectionShape : std::uint8_t
{
    Rectangle, ///< between the two ends of the drag
    Lasso, ///< what the way of the mouse goes around
    AlongX, ///< of any Y that is in view
    AlongY ///< of any X that is in view
};
