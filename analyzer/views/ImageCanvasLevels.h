#pragma once

#include <QImage>

#include <vector>

namespace analyzer {

/// \p image and after it smaller versions, each half as wide and high as the one before, as an ImageCanvas draws it fast
/// at any size. None for a null image; fewer versions where there is no memory for them. May be called from any thread.
[[nodiscard]] std::vector<QImage> imageCanvasLevels(QImage image);

} // namespace analyzer
