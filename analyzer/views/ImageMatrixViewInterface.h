#pragma once

#include <dataviews/common/views/DataViewInterface.h>

#include <dataviews/platform/data/WeakPtr.h>

#include <string>
#include <vector>

class AuxFile;

/// The kind of view that is an image matrix.
class ImageMatrixViewInterface : public virtual DataViewInterface
{
public:
    /// The images of the selected cells.
    [[nodiscard]] virtual std::vector<WeakPtr<AuxFile>> selectedImages() const = 0;

    /// Shows \p tag among the texts under the images, which are shown then; one undo step.
    virtual void showTag(const std::string& tag) = 0;

    /// A row for each tag of the group called \p group, and no other tags; one undo step. Nothing for an unknown group.
    virtual void layOutByTags(const std::string& group) = 0;
};
