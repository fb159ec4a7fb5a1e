#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/signals/Signal.h>

#include <boost/shared_ptr.hpp>

/// The settings of one chart axis as properties, for editors, undo and the saving of views.
///
/// The properties are shared, but belong to the axis details and are not to be used after they died.
class DATAVIEWS_CHARTS_EXPORT AxisDetailsInterface
{
public:
    AxisDetailsInterface();
    AxisDetailsInterface(const AxisDetailsInterface&) = delete;
    AxisDetailsInterface& operator=(const AxisDetailsInterface&) = delete;

    /// The lower end of the range that the axis shows.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<double>> min() const = 0;

    /// The upper end of the range that the axis shows.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<double>> max() const = 0;

    /// Whether the ticks of the axis are gridSpacing() apart, as the user wants it, or where the chart puts them.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<bool>> useCustomGridSpacing()
        const = 0;

    /// The distance of the ticks; can be changed while useCustomGridSpacing() is true.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<double>> gridSpacing()
        const = 0;

    /// The lower bound of the range; null for an axis that has none.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<double>> boundsMin()
        const = 0;

    /// The upper bound of the range; null for an axis that has none.
    [[nodiscard]] virtual boost::shared_ptr<corvane::PropertyAbstract<double>> boundsMax()
        const = 0;

    /// One of the settings changed.
    Signal<void(), AxisDetailsInterface> axisDetailsChanged;

protected:
    /// Called whenever a slot was connected to axisDetailsChanged.
    virtual void signalAxisDetailsChangedConnected() const;

    void emitAxisDetailsChanged() const;

public:
    virtual ~AxisDetailsInterface();
};
