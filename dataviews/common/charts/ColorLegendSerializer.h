#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/ColorLegend.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/property/ValueRange_s.h>
#include <dataviews/platform/serialize/Serializer.h>

#include <boost/shared_ptr.hpp>

/// Writes the settings of a color legend as one element "ColorLegend" and reads them back.
///
/// Reading sets one property after the other, in the order of writing. A setting that is refused or cannot be
/// understood throws and leaves those before it as read: boost::bad_lexical_cast, std::out_of_range for an unknown
/// range type, and corvane::InvalidPropertyValueException.
class DATAVIEWS_CHARTS_EXPORT ColorLegendSerializer : public Serializer
{
public:
    ColorLegendSerializer(
        const boost::shared_ptr<corvane::PropertyAbstract<bool>>& show,
        const boost::shared_ptr<corvane::PropertyAbstract<short>>& numLabels,
        const boost::shared_ptr<corvane::PropertyAbstract<ColorLegend::RangeType>>& rangeType,
        const boost::shared_ptr<corvane::PropertyAbstract<ValueRange_s<double>>>& range);
    ColorLegendSerializer(const ColorLegendSerializer&) = delete;
    ColorLegendSerializer& operator=(const ColorLegendSerializer&) = delete;
    ~ColorLegendSerializer() override;
};
