#pragma once

#include <dataviews/common/charts/ChartXY.h>

#include <QByteArray>
#include <QPointer>
#include <QRect>
#include <QSizeF>
#include <QWidget>

#include <vtkSmartPointer.h>

#include <utility>
#include <vector>

class QAbstractSlider;
class QSplitter;
class QVTKOpenGLNativeWidget;
class vtkChartLegend;

namespace analyzer {

class AnalyzerViewInterface;

/// Lays a view out for a picture, and puts everything back at the end of its life, before the screen shows anything of it.
///
/// Charts and tables get the size asked for, as far as their least size allows, tables without scroll bars. Views of
/// images stay as they are while they are on the screen, for images would have to be read for another layout.
class ViewLayout
{
public:
    /// For a picture of \p size pixels of the screen of \p view, which outlives the layout.
    /// \throws ExceptionBase with a sentence if images of the view do not come.
    ViewLayout(AnalyzerViewInterface& view, const QSizeF& size);
    ViewLayout(const ViewLayout&) = delete;
    ViewLayout& operator=(const ViewLayout&) = delete;
    ~ViewLayout();

    /// The size that the view has now.
    [[nodiscard]] QSizeF size() const { return m_widget.size(); }

private:
    struct Legend
    {
        vtkSmartPointer<ChartXY> chart;
        vtkSmartPointer<vtkChartLegend> legend;
        ChartXY::LegendPlace place;
    };

    void prepareChart(QVTKOpenGLNativeWidget& chart);
    void remember();
    void waitForImages();

    AnalyzerViewInterface& m_view;
    QWidget& m_widget;
    bool m_isChanged = false;
    QRect m_geometry;
    Qt::ScrollBarPolicy m_horizontalPolicy = Qt::ScrollBarAsNeeded;
    Qt::ScrollBarPolicy m_verticalPolicy = Qt::ScrollBarAsNeeded;
    std::vector<std::pair<QPointer<QAbstractSlider>, int>> m_scrolling;
    std::vector<std::pair<QPointer<QSplitter>, QByteArray>> m_splitters;
    std::vector<Legend> m_legends;
};

} // namespace analyzer
