#pragma once

#include <dataviews/common/views/DataViewInterface.h>

/// The kind of view that is a view of the difference between the images of two cases.
class ImageDiffViewInterface : public virtual DataViewInterface
{};
