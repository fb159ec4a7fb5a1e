#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <QSize>

#include <cstddef>

/// The square in which an image is shown at \p zoom percent, in device-independent pixels: a side of 50 at 0, 237 at
/// 25, 800 at 100, and on in proportion, rounded toward zero.
[[nodiscard]] DATAVIEWS_IMAGES_EXPORT QSize zoomLevelToImageSize(std::size_t zoom);
