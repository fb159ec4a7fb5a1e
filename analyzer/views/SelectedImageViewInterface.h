#pragma once

#include <dataviews/common/views/DataViewInterface.h>

#include <dataviews/platform/data/WeakPtr.h>

class AuxFile;

/// The kind of view that is a view of the images of the selected cases.
class SelectedImageViewInterface : public virtual DataViewInterface
{
public:
    /// The image that the user looks at; a handle of nothing without one.
    [[nodiscard]] virtual const WeakPtr<AuxFile>& currentImage() const = 0;
};
