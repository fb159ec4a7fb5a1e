#pragma once

#include <dataviews/common/views/DataViewInterface.h>

/// The kind of view that is a view of the images of the selected cases.
class SelectedImageViewInterface : public virtual DataViewInterface
{};
