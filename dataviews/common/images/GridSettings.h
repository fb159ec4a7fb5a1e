#pragma once

#include <dataviews/common/images/ImageMatrixViewProperties.h>

#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <string>
#include <vector>

class Variable;

/// What the properties of an image matrix said at one moment about its grid.
struct GridSettings
{
    using By = ImageMatrixViewProperties::RowColumnDimensionBy;
    using PageBy = ImageMatrixViewProperties::PageDimensionBy;

    [[nodiscard]] static GridSettings of(const ImageMatrixViewProperties& properties);

    /// Whether tags have a part in the grid.
    [[nodiscard]] bool useTags() const;

    By rowsBy = By::ByVariable;
    By columnsBy = By::ByVariable;
    PageBy pagesBy = PageBy::None;
    WeakPtr<Variable> rowVariable;
    WeakPtr<Variable> columnVariable;
    WeakPtr<Variable> pageVariable;
    Variant pageValue;
    std::vector<std::string> tags;
};
