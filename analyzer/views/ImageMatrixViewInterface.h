#pragma once

#include <dataviews/common/views/DataViewInterface.h>

/// The kind of view that is an image matrix.
class ImageMatrixViewInterface : public virtual DataViewInterface
{};
