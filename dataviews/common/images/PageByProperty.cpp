#include <dataviews/common/images/PageByProperty.h>

namespace {

using PageDimensionBy = ImageMatrixViewProperties::PageDimensionBy;

bool toBool(const PageDimensionBy& by)
{
    return by == PageDimensionBy::ByVariable;
}

PageDimensionBy toPageDimension(const bool& on)
{
    return on ? PageDimensionBy::ByVariable : PageDimensionBy::None;
}

} // namespace

PageByProperty::PageByProperty(const ImageMatrixViewProperties& properties)
    : PropertyTypeAdapter(properties.dimensionPagesBy(), toBool, toPageDimension)
    , m_dimensionPagesBy(properties.dimensionPagesBy())
{}

PageByProperty::~PageByProperty() = default;

bool PageByProperty::isEqual(const bool& value) const
{
    // Not by the booleans: pages by tag read as false, and writing false must end them.
    return m_dimensionPagesBy->value() == toPageDimension(value);
}
