#pragma once

#include <analyzer/views/CaseCategories.h>
#include <analyzer/views/ChartViewAbstract.h>
#include <analyzer/views/LinePlotInterface.h>

#include <dataviews/common/charts/ColorPalette.h>

#include <vtkSmartPointer.h>
#include <vtkType.h>

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class RingedPlotLine;
class vtkLookupTable;

namespace analyzer {

class CaseTableOrder;

/// A line chart: a series for each value of a variable of few values, with its cases in the order of X.
///
/// Series of numbers are colored by a palette, from the smallest to the largest; series of texts in colors of their own.
/// Cases without a value of the series variable are a series too. Without such a variable all cases are one line.
class LinePlotView
    : public ChartViewAbstract
    , public LinePlotInterface
    , public boost::enable_shared_from_this<LinePlotView>
{
    Q_OBJECT

public:
    /// The pipeline of \p services outlives the view.
    explicit LinePlotView(const ViewServices& services);
    LinePlotView(const LinePlotView&) = delete;
    LinePlotView& operator=(const LinePlotView&) = delete;
    ~LinePlotView() override;

    void accept(DataViewVisitorInterface& visitor) override;
    [[nodiscard]] std::string kind() const override;
    [[nodiscard]] std::string title() const override;

    /// The variable whose values are the series. One with more values than CaseCategories takes makes one line.
    [[nodiscard]] const boost::shared_ptr<VariableProperty>& seriesVariable() const
    {
        return m_seriesVariable;
    }

    /// The lines in the picture, in the order of the series; for tests.
    [[nodiscard]] std::vector<vtkSmartPointer<vtkPlotPoints>> visiblePlots() const override;

protected:
    void showTable(vtkTable& table) override;
    void hidePlots() override;
    [[nodiscard]] std::vector<WeakPtr<Variable>> furtherVariables() const override;
    void chooseFurtherVariables() override;
    void applyOwnAppearance(const AppearanceColors& colors) override;

private:
    void addSettings();
    void chooseSeries(const WeakPtr<Variable>& variable) const;
    void updateSeries();
    /// The rows of \p table of each line, in \p order.
    [[nodiscard]] std::vector<std::vector<vtkIdType>> rowsOfSeries(
        vtkTable& table, const CaseTableOrder& order) const;
    [[nodiscard]] std::string seriesName(std::size_t series) const;
    /// \p palette has the range 0 to 1.
    [[nodiscard]] ColorBytes seriesColor(
        std::size_t series, const AppearanceColors& colors, vtkLookupTable& palette) const;

    /// One for every series that there can be: VTK fits the axes anew when a plot is added.
    std::vector<vtkSmartPointer<RingedPlotLine>> m_lines;
    boost::shared_ptr<VariableProperty> m_seriesVariable;
    boost::shared_ptr<corvane::PropertyAbstract<ColorPalette>> m_palette;
    boost::shared_ptr<corvane::PropertyAbstract<std::uint64_t>> m_lineWidth;
    std::optional<CaseCategories> m_series;
    WeakPtr<Variable> m_seriesOf;
};

} // namespace analyzer
