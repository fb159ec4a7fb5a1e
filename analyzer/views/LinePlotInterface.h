#pragma once

#include <dataviews/common/views/DataViewInterface.h>

/// The kind of view that is a line chart.
class LinePlotInterface : public virtual DataViewInterface
{};
