#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RasterPlotPoints.h>
#include <dataviews/common/charts/RingedPlotPoints.h>

#include <vtkAxis.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkLookupTable.h>
#include <vtkObjectFactory.h>
#include <vtkTable.h>
#include <vtkUnsignedCharArray.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include <tests/support/OffScreenChart.h>
#include <tests/support/RecordingContextDevice2D.h>

namespace {

constexpr int width = 400;
constexpr int height = 300;
using Pixels = std::vector<unsigned char>;

/// Marks by rings, point by point.
class PlainRingedPlotPoints : public RingedPlotPoints
{
public:
    vtkTypeMacro(PlainRingedPlotPoints, RingedPlotPoints) static PlainRingedPlotPoints* New()
    {
        VTK_STANDARD_NEW_BODY(PlainRingedPlotPoints);
    }

    bool Paint(vtkContext2D* painter) override { return paintShapes(painter); }
};

/// Points all over a square, and columns to color them by.
vtkSmartPointer<vtkTable> scattered(int count, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> place(0.0, 100.0);
    auto table = vtkSmartPointer<vtkTable>::New();
    for (const char* name : {"x", "y", "color"}) {
        vtkNew<vtkDoubleArray> column;
        column->SetName(name);
        for (int i = 0; i < count; ++i) {
            column->InsertNextValue(place(random));
        }
        table->AddColumn(column);
    }
    return table;
}

vtkSmartPointer<vtkIdTypeArray> everySecond(vtkIdType count)
{
    auto rows = vtkSmartPointer<vtkIdTypeArray>::New();
    for (vtkIdType row = 0; row < count; row += 2) {
        rows->InsertNextValue(row);
    }
    return rows;
}

/// A chart with one plot and axes that stay.
template <class Plot>
class PlotPicture
{
public:
    PlotPicture()
    {
        if constexpr (std::is_base_of_v<PointSearchInterface, Plot>) {
            plot->setRasterThreshold(1);
        }
        plot->SetMarkerStyle(vtkPlotPoints::CIRCLE);
        plot->SetMarkerSize(4.0F);
        plot->SetColor(30, 90, 200, 255);
        chart->AddPlot(plot);
        chart.view().GetRenderWindow()->SetMultiSamples(0);
        setRange(vtkAxis::BOTTOM, -5.0, 105.0);
        setRange(vtkAxis::LEFT, -5.0, 105.0);
    }

    void setRange(int axis, double min, double max)
    {
        chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);
        chart->GetAxis(axis)->SetRange(min, max);
    }

    Pixels render()
    {
        // VTK knows how it shifts and scales far points only after the first picture.
        chart.render();
        chart->GetScene()->SetDirty(true);
        chart.render();
        vtkNew<vtkUnsignedCharArray> colors;
        chart.view().GetRenderWindow()->GetPixelData(0, 0, width - 1, height - 1, 0, colors);
        return {colors->GetPointer(0), colors->GetPointer(0) + colors->GetNumberOfValues()};
    }

    OffScreenChart<ChartXY> chart{width, height};
    vtkNew<Plot> plot;
};

/// How many pixels of \p left have a color that is not near that of any pixel of \p right up to \p reach away.
int strangePixels(const Pixels& left, const Pixels& right, int reach)
{
    const auto isNear = [&](int x, int y, int otherX, int otherY) {
        constexpr int tolerance = 4;
        const unsigned char* const one = &left[static_cast<std::size_t>(3 * (y * width + x))];
        const unsigned char* const other =
            &right[static_cast<std::size_t>(3 * (otherY * width + otherX))];
        return std::equal(
            one, one + 3, other, [](int a, int b) { return std::abs(a - b) <= tolerance; });
    };
    int count = 0;
    for (int y = reach; y + reach < height; ++y) {
        for (int x = reach; x + reach < width; ++x) {
            bool found = false;
            for (int otherY = y - reach; otherY <= y + reach && !found; ++otherY) {
                for (int otherX = x - reach; otherX <= x + reach && !found; ++otherX) {
                    found = isNear(x, y, otherX, otherY);
                }
            }
            count += found ? 0 : 1;
        }
    }
    return count;
}

constexpr int fewPixels = 200; ///< whose middles lie upon the edge of a marker, or at grid lines

constexpr int points = 5000;

/// Makes both plots look as \p prepare says, and compares their pictures.
template <class Ours, class Plain>
void expectLikeness(const std::function<void(vtkPlotPoints&)>& prepare, bool hasWholeSizes)
{
    PlotPicture<Ours> ours;
    PlotPicture<Plain> plain;
    const auto table = scattered(points, 1);
    for (vtkPlotPoints* plot :
         {static_cast<vtkPlotPoints*>(ours.plot), static_cast<vtkPlotPoints*>(plain.plot)}) {
        plot->SetInputData(table, 0, 1);
        prepare(*plot);
    }

    const Pixels left = ours.render();
    const Pixels right = plain.render();

    if (hasWholeSizes) {
        EXPECT_LT(strangePixels(left, right, 0), fewPixels);
        return;
    }
    // VTK stretches each marker by where it lies between pixels, so that their edges and the gaps between them differ.
    constexpr int onePercent = width * height / 100;
    EXPECT_LT(strangePixels(left, right, 1), onePercent);
    EXPECT_LT(strangePixels(right, left, 1), onePercent);
}

void colorByThirdColumn(vtkPlotPoints& plot, double opacity)
{
    vtkNew<vtkLookupTable> colors;
    colors->SetRange(0.0, 100.0);
    colors->SetAlpha(opacity);
    colors->Build(); // Plots do not.
    plot.SetLookupTable(colors);
    plot.SelectColorArray(vtkStdString("color"));
    plot.ScalarVisibilityOn();
}

} // namespace

TEST(RasterPlotPointsTest, LooksLikeVTKsWherePointsAreFew)
{
    const struct
    {
        std::function<void(vtkPlotPoints&)> prepare;
        bool hasWholeSizes;
    } looks[] = {
        {[](vtkPlotPoints&) {}, true},
        {[](vtkPlotPoints& plot) { plot.SetMarkerSize(3.0F); }, true},
        {[](vtkPlotPoints& plot) { plot.SetMarkerSize(4.5F); }, false},
        {[](vtkPlotPoints& plot) { plot.SetColor(200, 0, 0, 100); }, true},
        {[](vtkPlotPoints& plot) { colorByThirdColumn(plot, 1.0); }, true},
        {[](vtkPlotPoints& plot) { colorByThirdColumn(plot, 0.4); }, true},
        {[](vtkPlotPoints& plot) {
             plot.SetMarkerSize(2.3F); // The marks have whole pixels then,
             plot.SetColor(255, 255, 255, 255); // and the points, which have not, are not seen.
             plot.SetSelection(everySecond(points));
         },
         true}};

    for (std::size_t i = 0; i < std::size(looks); ++i) {
        SCOPED_TRACE(i);
        expectLikeness<RasterPlotPoints, vtkPlotPoints>(looks[i].prepare, looks[i].hasWholeSizes);
    }
}

TEST(RasterPlotPointsTest, RingsLookAsWithFewPoints)
{
    for (const bool isColored : {false, true}) {
        for (const bool isFilled : {false, true}) {
            SCOPED_TRACE(isColored);
            SCOPED_TRACE(isFilled);
            expectLikeness<RingedPlotPoints, PlainRingedPlotPoints>(
                [&](vtkPlotPoints& plot) {
                    plot.SetMarkerSize(3.0F);
                    plot.SetSelection(everySecond(points / 4));
                    if (isColored) {
                        colorByThirdColumn(plot, 1.0);
                    }
                    SelectionRing::Colors colors{{0, 0, 0}, {255, 255, 255}, {}};
                    if (isFilled) {
                        colors.fill = ColorBytes{230, 120, 0};
                    }
                    dynamic_cast<RingedPlotPoints&>(plot).setSelectionColors(colors);
                },
                true);
        }
    }
}

TEST(RasterPlotPointsTest, FarAndInvalidPointsAreLeftOut)
{
    PlotPicture<RasterPlotPoints> ours;
    PlotPicture<vtkPlotPoints> plain;
    const auto table = scattered(points, 5);
    auto& x = *vtkDoubleArray::SafeDownCast(table->GetColumn(0));
    auto& y = *vtkDoubleArray::SafeDownCast(table->GetColumn(1));
    for (vtkIdType row = 0; row < points; row += 9) {
        x.SetValue(row, std::numeric_limits<double>::quiet_NaN());
        y.SetValue(row + 1, std::numeric_limits<double>::infinity());
        x.SetValue(row + 2, -std::numeric_limits<double>::infinity());
        y.SetValue(row + 3, 1e30);
    }
    ours.plot->SetInputData(table, 0, 1);
    plain.plot->SetInputData(table, 0, 1);

    EXPECT_LT(strangePixels(ours.render(), plain.render(), 0), fewPixels);
}

TEST(RasterPlotPointsTest, ZoomedFarInPointsStayWhereVTKDrawsThem)
{
    PlotPicture<RasterPlotPoints> ours;
    PlotPicture<vtkPlotPoints> plain;
    const auto table = scattered(200000, 6);
    const auto zoom = [&](auto& picture) {
        picture.plot->SetInputData(table, 0, 1);
        picture.plot->SetMarkerSize(20.0F);
        picture.setRange(vtkAxis::BOTTOM, 40.0, 40.5);
        picture.setRange(vtkAxis::LEFT, 70.0, 70.5);
        return picture.render();
    };

    const Pixels left = zoom(ours);
    const Pixels right = zoom(plain);

    EXPECT_LT(strangePixels(left, right, 0), fewPixels);
    EXPECT_GT(strangePixels(left, Pixels(left.size(), 255), 0), 10 * fewPixels)
        << "There is nothing to see.";
}

TEST(RasterPlotPointsTest, DevicesWithoutOpenGLGetEachPoint)
{
    class MarkerCounter : public RecordingContextDevice2D
    {
    public:
        vtkTypeMacro(MarkerCounter, RecordingContextDevice2D) static MarkerCounter* New()
        {
            VTK_STANDARD_NEW_BODY(MarkerCounter);
        }

        int markers = 0;

        void DrawMarkers(int, bool, float*, int count, unsigned char*, int) override
        {
            markers += count;
        }
    };

    vtkNew<RasterPlotPoints> plot;
    plot->setRasterThreshold(1);
    plot->SetInputData(scattered(points, 7), 0, 1);
    plot->Update();
    const vtkNew<MarkerCounter> device;
    const vtkNew<vtkContext2D> painter;
    painter->Begin(device);

    EXPECT_TRUE(plot->Paint(painter));

    painter->End();
    EXPECT_EQ(device->markers, points);
}

/// Whatever changes, the next picture is that of a plot which is new.
template <class Plot>
class RasterPlotChangesTest : public testing::Test
{};

using ChangedPlots = testing::Types<RasterPlotPoints, RingedPlotPoints>;
TYPED_TEST_SUITE(RasterPlotChangesTest, ChangedPlots, );

TYPED_TEST(RasterPlotChangesTest, EachChangeShows)
{
    struct State
    {
        vtkSmartPointer<vtkTable> table = scattered(points, 1);
        std::array<double, 4> ranges = {-5.0, 105.0, -5.0, 105.0};
        float size = 4.0F;
        std::array<unsigned char, 4> color = {30, 90, 200, 255};
        bool isColored = false;
        double colorEnd = 100.0;
        vtkSmartPointer<vtkIdTypeArray> selection;
        OverlapColors::Deepening deepening = OverlapColors::Deepening::Darker;
        std::array<unsigned char, 3> mark = {250, 0, 0};
    };

    const auto apply = [](const State& state, PlotPicture<TypeParam>& picture, bool isFresh) {
        TypeParam& plot = *picture.plot;
        if (isFresh || plot.GetInput() != state.table) {
            plot.SetInputData(state.table, 0, 1);
        }
        picture.setRange(vtkAxis::BOTTOM, state.ranges[0], state.ranges[1]);
        picture.setRange(vtkAxis::LEFT, state.ranges[2], state.ranges[3]);
        plot.SetMarkerSize(state.size);
        plot.SetColor(state.color[0], state.color[1], state.color[2], state.color[3]);
        if (isFresh || plot.GetLookupTable()->GetRange()[1] != state.colorEnd) {
            const vtkNew<vtkLookupTable> colors;
            colors->SetRange(0.0, state.colorEnd);
            colors->Build();
            plot.SetLookupTable(colors);
        }
        if (isFresh) {
            plot.SelectColorArray(vtkStdString("color"));
        }
        plot.SetScalarVisibility(state.isColored);
        plot.SetSelection(state.selection);
        plot.setDeepening(state.deepening);
        plot.GetSelectionPen()->SetColor(state.mark[0], state.mark[1], state.mark[2]);
        if constexpr (!std::is_same_v<TypeParam, RasterPlotPoints>) {
            plot.setSelectionColors({state.mark, {255, 255, 255}, {}});
        }
    };
    State state;
    std::mt19937 random(17);
    const auto number = [&](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    const std::vector<std::function<void()>> changes = {
        [&] { state.table = scattered(points + number(2000), static_cast<unsigned>(random())); },
        [&] {
            auto& x = *vtkDoubleArray::SafeDownCast(state.table->GetColumn(0));
            x.SetValue(0, x.GetValue(0) > 50.0 ? 0.0 : 104.0);
            x.SetValue(1, x.GetValue(0));
            x.Modified();
            state.table->Modified();
        },
        [&] {
            const double shift = 1.0 + number(30);
            state.ranges[0] += shift;
            state.ranges[1] += shift;
        },
        [&] { state.ranges[3] = state.ranges[2] + 20.0 + number(100); },
        [&] { state.size = 2.0F + static_cast<float>(number(20)) / 2.0F; },
        [&] { state.color[static_cast<std::size_t>(number(3))] ^= 0x40U; },
        [&] { state.color[3] = static_cast<unsigned char>(60 + number(190)); },
        [&] { state.isColored = !state.isColored; },
        [&] { state.colorEnd += 50.0; },
        [&] { state.selection = everySecond(number(4000)); },
        [&] {
            // As VTK does: in the array, without telling.
            if (state.selection == nullptr || state.selection->GetNumberOfValues() < 10) {
                state.selection = everySecond(3000);
            }
            vtkIdType* const rows = state.selection->GetPointer(0);
            std::transform(rows, rows + 10, rows, [](vtkIdType row) { return (row + 1) % points; });
        },
        [&] { state.selection = nullptr; },
        [&] {
            state.deepening = state.deepening == OverlapColors::Deepening::Darker
                ? OverlapColors::Deepening::Brighter
                : OverlapColors::Deepening::Darker;
        },
        [&] { state.mark[1] ^= 0xFFU; }};

    PlotPicture<TypeParam> kept;
    apply(state, kept, true);
    kept.render();
    for (int round = 0; round < 40; ++round) {
        const auto change = static_cast<std::size_t>(round) < changes.size()
            ? static_cast<std::size_t>(round)
            : static_cast<std::size_t>(number(static_cast<int>(changes.size())));
        SCOPED_TRACE(change);
        changes[change]();

        apply(state, kept, false);
        PlotPicture<TypeParam> fresh;
        apply(state, fresh, true);

        EXPECT_EQ(kept.render(), fresh.render());
    }
}

TEST(RasterPlotPointsTest, SizesAndWindowsMayChange)
{
    PlotPicture<RasterPlotPoints> picture;
    PlotPicture<RasterPlotPoints> other;
    const auto table = scattered(points, 9);
    picture.plot->SetInputData(table, 0, 1);
    other.plot->SetInputData(table, 0, 1);
    const Pixels before = picture.render();

    picture.chart.resize(200, 500);
    picture.chart.render();
    picture.chart.resize(width, height);
    EXPECT_EQ(picture.render(), before);

    // The same plot in another window, and back.
    vtkSmartPointer<vtkPlot> plot = picture.plot.Get();
    picture.chart->RemovePlotInstance(plot);
    other.chart->RemovePlotInstance(other.plot);
    other.chart->AddPlot(plot);
    EXPECT_EQ(other.render(), before);
    other.chart->RemovePlotInstance(plot);
    picture.chart->AddPlot(plot);
    EXPECT_EQ(picture.render(), before);
}
