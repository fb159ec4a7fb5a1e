#pragma once

#include <dataviews/common/views/DataViewInterface.h>

/// The kind of view that is a scatter chart in three dimensions.
class ScatterPlot3DInterface : public virtual DataViewInterface
{};
