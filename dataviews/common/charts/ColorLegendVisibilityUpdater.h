#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <vtkSmartPointer.h>

#include <boost/shared_ptr.hpp>

class vtkScalarBarWidget;

/// Shows a color bar exactly while the user wants it and its owner allows it.
class DATAVIEWS_CHARTS_EXPORT ColorLegendVisibilityUpdater
{
public:
    /// Shows or hides \p widget at once and writes whether it is wanted to \p visible, which is for reading by others.
    /// \p show is what the user wants, \p gate what the owner allows. The widget does not render by itself: whoever
    /// shows it renders when \p visible changes.
    ColorLegendVisibilityUpdater(
        boost::shared_ptr<corvane::PropertyAbstract<bool>> visible,
        boost::shared_ptr<const corvane::PropertyAbstract<bool>> show,
        boost::shared_ptr<const corvane::PropertyAbstract<bool>> gate,
        vtkSmartPointer<vtkScalarBarWidget> widget);
    ColorLegendVisibilityUpdater(const ColorLegendVisibilityUpdater&) = delete;
    ColorLegendVisibilityUpdater& operator=(const ColorLegendVisibilityUpdater&) = delete;
    ~ColorLegendVisibilityUpdater();

    [[nodiscard]] boost::shared_ptr<const corvane::PropertyAbstract<bool>> visible() const
    {
        return m_visible;
    }

private:
    void updateVisibility();

    boost::shared_ptr<corvane::PropertyAbstract<bool>> m_visible;
    boost::shared_ptr<const corvane::PropertyAbstract<bool>> m_show;
    boost::shared_ptr<const corvane::PropertyAbstract<bool>> m_gate;
    vtkSmartPointer<vtkScalarBarWidget> m_widget;
    SignalConnectionCollection m_connections;
};
