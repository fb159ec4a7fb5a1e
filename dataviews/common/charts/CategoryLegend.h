#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/charts/ColorPalette.h>

#include <vtkChartLegend.h>
#include <vtkNew.h>

#include <string>
#include <vector>

class vtkTextProperty;

/// A legend that names the colors of categories: a title, and below it a disc and a name for each category.
///
/// To be added with ChartXY::addLegend(). Looks and moves like the legend of the plots: pen, brush, label properties and
/// padding are those of vtkChartLegend; the title is in bold. Where the chart is too low for all categories, they go on
/// in further columns. Not visible while it has no categories. Used on the GUI thread.
class DATAVIEWS_CHARTS_EXPORT CategoryLegend : public vtkChartLegend
{
public:
    vtkTypeMacro(CategoryLegend, vtkChartLegend)

        static CategoryLegend* New();

    CategoryLegend(const CategoryLegend&) = delete;
    CategoryLegend& operator=(const CategoryLegend&) = delete;

    struct Entry
    {
        std::string name; ///< UTF-8; a long one is shortened for display
        ColorBytes color;
    };

    /// Names longer than this, in characters, are cut and end with an ellipsis.
    static constexpr int longestName = 30;

    /// \p title is UTF-8 and shortened like the names; an empty one takes no room.
    void setTitle(const std::string& title);

    /// Shows \p entries from top to bottom.
    void setEntries(const std::vector<Entry>& entries);

    /// The diameter of the discs in pixels of the chart; 10 at first.
    void setMarkerSize(float size);

    /// False without entries, whatever SetVisible() was given.
    bool GetVisible() override;

    /// Has the legend measured again by the next GetBoundingRect(). Needs no chart.
    void Update() override;

    bool Paint(vtkContext2D* painter) override;

    /// As high as the chart allows, but for one border at the top and one at the bottom.
    vtkRectf GetBoundingRect(vtkContext2D* painter) override;

protected:
    CategoryLegend();
    ~CategoryLegend() override;

private:
    /// Sizes in pixels, of what was last measured.
    struct Layout
    {
        float rowHeight = 0.0F; ///< of a line of text
        float titleHeight = 0.0F; ///< with the padding below; 0 without a title
        std::size_t rows = 0; ///< of a full column
        std::vector<float> columnWidths;
    };

    void measure(vtkContext2D& painter);
    void applyTitleProperties(vtkContext2D& painter);
    [[nodiscard]] float availableHeight();

    std::string m_title;
    std::vector<Entry> m_entries;
    float m_markerSize = 10.0F;
    vtkNew<vtkTextProperty> m_titleProperties;
    Layout m_layout;
};
