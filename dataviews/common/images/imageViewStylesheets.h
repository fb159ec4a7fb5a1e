#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <QString>

/// The style sheet for lists of images: the application's setting "ImageListViewStylesheet", which is written with a
/// light gray background where it is missing, so that users find it and can change it.
[[nodiscard]] DATAVIEWS_IMAGES_EXPORT QString imageListViewStylesheet();

/// The same for the grid of an image matrix: "ImageTableViewStylesheet".
[[nodiscard]] DATAVIEWS_IMAGES_EXPORT QString imageTableViewStylesheet();
