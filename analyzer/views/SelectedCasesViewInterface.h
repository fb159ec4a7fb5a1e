#pragma once

#include <dataviews/common/views/DataViewInterface.h>

/// The kind of view that is a view of the values of the selected cases.
class SelectedCasesViewInterface : public virtual DataViewInterface
{};
