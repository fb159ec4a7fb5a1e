#pragma once

#include <dataviews/common/charts/ChartsExport.h>

/// Even intervals with ends at nice numbers: \c start, \c start + \c step, … \c start + \c count * \c step.
struct NiceScale
{
    double start;
    double step;
    int count; ///< of intervals; there is one label more
};

/// The scale that covers \p min to \p max with about \p intervals intervals (1 or more) of 1, 2, 5 or 10 times a power
/// of ten. The number of intervals is a target: up to half as many again are taken where they come closer to it.
///
/// Widens the range outward to whole steps, except where it is narrow and far from zero: then it begins at \p min. A
/// range without a width is one interval of 1, or none if it lies on a whole number. Where double arithmetic cannot
/// carry the scale, as for ends that are infinite or NaN or a width beyond the largest double, it is that of 0 to 1 in
/// one interval. An inverted range gets no interval.
[[nodiscard]] DATAVIEWS_CHARTS_EXPORT NiceScale niceScale(double min, double max, int intervals);
