#include <dataviews/common/charts/ColorLegendSerializer.h>
#include <dataviews/common/serializers/EnumSerializer.h>
#include <dataviews/common/serializers/GenericSerializer.h>
#include <dataviews/common/serializers/NamedValueTranslator.h>
#include <dataviews/common/serializers/ValueRangeSerializer.h>

#include <boost/make_shared.hpp>

#include <string>

namespace {

template <class T>
boost::shared_ptr<GenericSerializer<T>> scalarSerializer(
    const std::string& name, const boost::shared_ptr<corvane::PropertyAbstract<T>>& property)
{
    return boost::make_shared<GenericSerializer<T>>(
        name,
        [property] { return property->value(); },
        [property](const T& value) { property->setValue(value); });
}

NamedValueTranslator<ColorLegend::RangeType> rangeTypeNames()
{
    NamedValueTranslator<ColorLegend::RangeType> names;
    names.add("Auto", ColorLegend::Auto);
    names.add("Custom", ColorLegend::Custom);
    return names;
}

} // namespace

ColorLegendSerializer::ColorLegendSerializer(
    const boost::shared_ptr<corvane::PropertyAbstract<bool>>& show,
    const boost::shared_ptr<corvane::PropertyAbstract<short>>& numLabels,
    const boost::shared_ptr<corvane::PropertyAbstract<ColorLegend::RangeType>>& rangeType,
    const boost::shared_ptr<corvane::PropertyAbstract<ValueRange_s<double>>>& range)
    : Serializer("ColorLegend")
{
    addSubElement(scalarSerializer("Show", show));
    addSubElement(scalarSerializer("NumLabels", numLabels));
    addSubElement(boost::make_shared<EnumSerializer<ColorLegend::RangeType>>(
        "RangeType", rangeType, rangeTypeNames()));
    addSubElement(boost::make_shared<ValueRangeSerializer<double>>("Range", range));
}

ColorLegendSerializer::~ColorLegendSerializer() = default;
