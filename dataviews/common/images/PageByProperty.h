#pragma once

#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImagesExport.h>
#include <dataviews/common/views/PropertyTypeAdapter.h>

/// The check box of an image matrix that switches pages by variable on and off.
///
/// True exactly while pages are by variable. False, also where it is false already, leaves one page with everything.
class DATAVIEWS_IMAGES_EXPORT PageByProperty
    : public corvane::PropertyTypeAdapter<bool, ImageMatrixViewProperties::PageDimensionBy>
{
public:
    /// Works on the properties of \p properties and keeps them alive, not \p properties itself.
    explicit PageByProperty(const ImageMatrixViewProperties& properties);
    PageByProperty(const PageByProperty&) = delete;
    PageByProperty& operator=(const PageByProperty&) = delete;
    ~PageByProperty() override;

protected:
    /// Whether the page dimension is what writing \p value would make it.
    [[nodiscard]] bool isEqual(const bool& value) const override;

private:
    boost::shared_ptr<const corvane::PropertyAbstract<ImageMatrixViewProperties::PageDimensionBy>>
        m_dimensionPagesBy;
};
