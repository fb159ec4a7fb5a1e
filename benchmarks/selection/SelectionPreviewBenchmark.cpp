#include <analyzer/views/SelectionPreview.h>

#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RingedPlotPoints.h>
#include <dataviews/common/selection/CaseIDColumn.h>

#include <vtkContextPolygon.h>
#include <vtkPlotPoints.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <benchmarks/support/caseTables.h>
#include <tests/support/OffScreenChart.h>

using namespace caseTables;

namespace {

constexpr int width = 900;
constexpr int height = 700;
constexpr std::int64_t selectedPermille = 10;

enum Shape
{
    Rectangle,
    Lasso,
    XRange
};

constexpr const char* shapeNames[] = {"rectangle", "lasso", "x-range"};

/// A painted chart of points between 0 and 1 both ways, one in a hundred of them selected.
template <class Plot>
struct Chart
{
    explicit Chart(vtkIdType rowCount)
        : selected(scatteredCases(rowCount, shareOf(rowCount, selectedPermille)))
    {
        plot->SetInputData(recordTable(rowCount, IDOrder::Ascending), 1, 2);
        chart->AddPlot(plot);
        chart.render();
        plot->SetSelection(
            CaseIDColumn(*plot->GetInput()->GetColumn(0)).rowsOf(CaseIDMembership(selected)));
    }

    [[nodiscard]] vtkVector2f at(double x, double y) const { return pixelOf(*chart, x, y); }

    OffScreenChart<ChartXY> chart{width, height};
    vtkSmartPointer<Plot> plot = vtkSmartPointer<Plot>::New();
    Cases selected;
};

/// About half of all points in each shape; a lasso has as many corners as a hand makes. Another place at every turn.
template <class Chart>
SelectionArea areaOf(const Chart& chart, int shape, std::size_t turn)
{
    constexpr std::size_t turns = 7;
    const double shift = 0.02 * static_cast<double>(turn % turns);
    if (shape == Rectangle) {
        return SelectionArea::rectangle(chart.at(0.1 + shift, 0.1), chart.at(0.8 + shift, 0.8));
    }
    if (shape == XRange) {
        return SelectionArea::rectangle(chart.at(0.2 + shift, -0.1), chart.at(0.7 + shift, 1.1));
    }
    constexpr int corners = 500;
    constexpr double round = 6.283185307179586;
    std::vector<vtkVector2f> way;
    for (int i = 0; i < corners; ++i) {
        const double angle = round * i / corners;
        const double radius = 0.4 + 0.05 * std::sin(5.0 * angle);
        way.push_back(
            chart.at(0.45 + shift + radius * std::cos(angle), 0.5 + radius * std::sin(angle)));
    }
    return SelectionArea::polygon(std::move(way));
}

/// One move of the mouse: what letting go would change.
void previewOurs(benchmark::State& state, vtkIdType points, int shape)
{
    const Chart<RingedPlotPoints> chart(points);
    const analyzer::SelectionPreview preview({chart.plot}, chart.selected.size());
    std::size_t turn = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(preview.change(areaOf(chart, shape, turn++), false));
    }
    state.SetItemsProcessed(state.iterations() * points);
}

/// Picks with VTK's plot and compares two sets of cases.
void previewPlain(benchmark::State& state, vtkIdType points, int shape)
{
    const Chart<vtkPlotPoints> chart(points);
    std::size_t turn = 0;
    for (auto _ : state) {
        const SelectionArea area = areaOf(chart, shape, turn++).inPlot(*chart.plot);
        if (area.isPolygon()) {
            vtkContextPolygon polygon;
            for (const vtkVector2f& corner : area.corners()) {
                polygon.AddPoint(corner);
            }
            chart.plot->SelectPointsInPolygon(polygon);
        } else {
            const vtkVector2f& a = area.corners()[0];
            const vtkVector2f& b = area.corners()[1];
            chart.plot->SelectPoints(
                {std::min(a.GetX(), b.GetX()), std::min(a.GetY(), b.GetY())},
                {std::max(a.GetX(), b.GetX()), std::max(a.GetY(), b.GetY())});
        }
        std::vector<CaseIDMembership::Key> keys;
        CaseIDColumn(*chart.plot->GetInput()->GetColumn(0))
            .appendKeys(*chart.plot->GetSelection(), keys);
        const Cases picked = CaseIDColumn::toCaseIDs(std::move(keys));
        std::vector<unsigned long long> both;
        std::set_intersection(
            picked.begin(),
            picked.end(),
            chart.selected.begin(),
            chart.selected.end(),
            std::back_inserter(both));
        benchmark::DoNotOptimize(both.data());
    }
    state.SetItemsProcessed(state.iterations() * points);
}

/// Reads every point and every mark once.
void previewFloor(benchmark::State& state, vtkIdType points, int /*shape*/)
{
    const Chart<RingedPlotPoints> chart(points);
    const DrawnPointsInterface::Coordinates drawn = chart.plot->drawnPoints();
    const std::vector<std::uint8_t> marks(static_cast<std::size_t>(drawn.count), 1);
    for (auto _ : state) {
        float sum = 0.0F;
        std::size_t marked = 0;
        for (vtkIdType row = 0; row < drawn.count; ++row) {
            sum += drawn.values[2 * row] + drawn.values[2 * row + 1];
            marked += marks[static_cast<std::size_t>(row)];
        }
        benchmark::DoNotOptimize(sum);
        benchmark::DoNotOptimize(marked);
    }
    state.SetItemsProcessed(state.iterations() * points);
}

/// What the first move of a drag does besides.
void previewBegin(benchmark::State& state, vtkIdType points)
{
    const Chart<RingedPlotPoints> chart(points);
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            analyzer::SelectionPreview({chart.plot}, chart.selected.size()).isCurrent());
    }
    state.SetItemsProcessed(state.iterations() * points);
}

[[maybe_unused]] const bool isRegistered = [] {
    using Run = void (*)(benchmark::State&, vtkIdType, int);
    const std::pair<const char*, Run> variants[] = {
        {"ours", previewOurs}, {"plain", previewPlain}, {"floor", previewFloor}};
    for (const vtkIdType points : {100000, 1000000}) {
        const std::string size = "/points:" + std::to_string(points);
        for (const int shape : {Rectangle, Lasso, XRange}) {
            for (const auto& [variant, run] : variants) {
                const std::string name = std::string("selection/preview/") + variant + size
                    + "/shape:" + shapeNames[shape];
                benchmark::RegisterBenchmark(name.c_str(), run, points, shape)
                    ->Unit(benchmark::kMillisecond);
            }
        }
        benchmark::RegisterBenchmark(
            ("selection/preview-begin/ours" + size).c_str(), previewBegin, points)
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

} // namespace
