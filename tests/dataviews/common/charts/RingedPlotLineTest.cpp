#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RingedPlotLine.h>
#include <dataviews/common/charts/RingedPlotPoints.h>

#include <vtkAxis.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkObjectFactory.h>
#include <vtkPoints2D.h>
#include <vtkTable.h>
#include <vtkUnsignedCharArray.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <random>
#include <vector>

#include <tests/support/OffScreenChart.h>

namespace {

constexpr int width = 400;
constexpr int height = 300;
constexpr int crowd = 6000; ///< vertices of which many lie in each column of pixels
constexpr int fewVertices = 500;
constexpr int rounding = 4; ///< by which colors may differ that are mixed in another order

using Pixels = std::vector<unsigned char>;

/// A line from the left to the right, up and down.
vtkSmartPointer<vtkTable> line(int count, double level, unsigned seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> value(level, 8.0);
    auto table = vtkSmartPointer<vtkTable>::New();
    const vtkNew<vtkDoubleArray> x;
    const vtkNew<vtkDoubleArray> y;
    x->SetName("x");
    y->SetName("y");
    for (int i = 0; i < count; ++i) {
        x->InsertNextValue(100.0 * i / count);
        y->InsertNextValue(value(random));
    }
    table->AddColumn(x);
    table->AddColumn(y);
    return table;
}

vtkSmartPointer<vtkIdTypeArray> everyNth(vtkIdType step, vtkIdType count)
{
    auto rows = vtkSmartPointer<vtkIdTypeArray>::New();
    for (vtkIdType row = 0; row < count; row += step) {
        rows->InsertNextValue(row);
    }
    return rows;
}

/// A chart with axes that stay.
class Picture
{
public:
    Picture()
    {
        chart.view().GetRenderWindow()->SetMultiSamples(0);
        for (const int axis : {vtkAxis::BOTTOM, vtkAxis::LEFT}) {
            chart->GetAxis(axis)->SetBehavior(vtkAxis::FIXED);
            chart->GetAxis(axis)->SetRange(5.0, 95.0); // the lines go on beside the picture
        }
    }

    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    ~Picture()
    {
        for (vtkPlot* plot : m_plots) {
            chart->RemovePlotInstance(plot);
        }
    }

    template <class Plot>
    Plot& add(vtkTable* table)
    {
        const vtkNew<Plot> plot;
        plot->setRasterThreshold(1);
        plot->SetInputData(table, 0, 1);
        plot->SetMarkerStyle(vtkPlotPoints::CIRCLE);
        plot->SetMarkerSize(3.0F);
        plot->SetWidth(4.0F);
        plot->SetColor(200, 60, 30, 120);
        addItem(*plot);
        return *plot;
    }

    void addItem(vtkPlot& plot)
    {
        chart->AddPlot(&plot);
        m_plots.emplace_back(&plot);
    }

    Pixels render()
    {
        chart.render();
        chart->GetScene()->SetDirty(true);
        chart.render();
        const vtkNew<vtkUnsignedCharArray> colors;
        chart.view().GetRenderWindow()->GetPixelData(0, 0, width - 1, height - 1, 0, colors);
        return {colors->GetPointer(0), colors->GetPointer(0) + colors->GetNumberOfValues()};
    }

    OffScreenChart<ChartXY> chart{width, height};

private:
    std::vector<vtkSmartPointer<vtkPlot>> m_plots;
};

int differentBytes(const Pixels& left, const Pixels& right, int tolerance)
{
    int count = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        count += std::abs(left[i] - right[i]) > tolerance ? 1 : 0;
    }
    return count;
}

/// Paints nothing, so that pictures in front of it cannot wait for those behind it.
class Separator : public vtkPlot
{
public:
    vtkTypeMacro(Separator, vtkPlot) static Separator* New() { VTK_STANDARD_NEW_BODY(Separator); }

    bool Paint(vtkContext2D* /*painter*/) override { return true; }
};

/// Moves its points without telling.
class SecretPlotLine : public RingedPlotLine
{
public:
    vtkTypeMacro(SecretPlotLine, RingedPlotLine) static SecretPlotLine* New()
    {
        VTK_STANDARD_NEW_BODY(SecretPlotLine);
    }

    void flatten()
    {
        auto* const points = static_cast<float*>(Points->GetVoidPointer(0));
        for (vtkIdType i = 0; i < Points->GetNumberOfPoints(); ++i) {
            points[2 * i + 1] = 20.0F;
        }
    }
};

} // namespace

TEST(RingedPlotLineTest, CrowdedLinesInThePictureOfTheirPointsLookAsUnderIt)
{
    const auto table = line(crowd, 50.0, 1);
    Picture ours;
    auto& plot = ours.add<RingedPlotLine>(table);
    Picture apart;
    // Without points there is no picture of them.
    apart.add<RingedPlotLine>(table).SetMarkerStyle(vtkPlotPoints::NONE);
    const Pixels lineAlone = apart.render();
    auto& points = apart.add<RingedPlotPoints>(table);

    EXPECT_EQ(differentBytes(ours.render(), apart.render(), rounding), 0);
    EXPECT_GT(differentBytes(ours.render(), lineAlone, rounding), 1000);
    EXPECT_GT(differentBytes(lineAlone, Picture().render(), rounding), 1000);

    plot.SetSelection(everyNth(90, crowd));
    points.SetSelection(everyNth(90, crowd));
    EXPECT_EQ(differentBytes(ours.render(), apart.render(), rounding), 0);
    EXPECT_GT(differentBytes(ours.render(), lineAlone, rounding), 1000);
}

TEST(RingedPlotLineTest, PicturesOfSeveralLinesLieOverOneAnotherInTheirOrder)
{
    // The third one is painted at once, for the line of the next is not in its picture.
    const int counts[] = {crowd, crowd, crowd, fewVertices, crowd};
    const auto prepare = [&](Picture& picture, bool isApart) {
        for (unsigned i = 0; i < std::size(counts); ++i) {
            auto& plot = picture.add<RingedPlotLine>(line(counts[i], 45.0 + 4.0 * i, i));
            plot.SetColor(static_cast<unsigned char>(60 * i), 200, 60, i == 1 ? 255 : 120);
            plot.SetMarkerSize(3.0F + static_cast<float>(i));
            if (i == 1) {
                plot.SetSelection(everyNth(70, counts[i]));
            }
            if (isApart) {
                picture.addItem(*vtkNew<Separator>());
            }
        }
    };
    Picture together;
    Picture apart;
    prepare(together, false);
    prepare(apart, true);

    EXPECT_EQ(differentBytes(together.render(), apart.render(), rounding), 0);
    EXPECT_EQ(together.render(), together.render());
}

TEST(RingedPlotLineTest, EachChangeShows)
{
    struct Series
    {
        vtkSmartPointer<vtkTable> table;
        float width = 2.0F;
        float markerSize = 3.0F;
        std::array<unsigned char, 4> color = {30, 90, 200, 150};
        int marker = vtkPlotPoints::CIRCLE;
        bool isVisible = true;
        vtkSmartPointer<vtkIdTypeArray> selection;
    };

    constexpr std::size_t count = 3;
    std::vector<Series> series(count);
    for (unsigned i = 0; i < count; ++i) {
        series[i].table = line(crowd, 40.0 + 6.0 * i, i);
    }
    double right = 95.0;
    const auto apply = [&](Picture& picture) {
        for (std::size_t i = 0; i < count; ++i) {
            auto& plot =
                dynamic_cast<RingedPlotLine&>(*picture.chart->GetPlot(static_cast<vtkIdType>(i)));
            const Series& look = series[i];
            if (plot.GetInput() != look.table) {
                plot.SetInputData(look.table, 0, 1);
            }
            plot.SetWidth(look.width);
            plot.SetMarkerSize(look.markerSize);
            plot.SetMarkerStyle(look.marker);
            plot.SetColor(look.color[0], look.color[1], look.color[2], look.color[3]);
            plot.SetVisible(look.isVisible);
            plot.SetSelection(look.marker == vtkPlotPoints::NONE ? nullptr : look.selection);
        }
        picture.chart->GetAxis(vtkAxis::BOTTOM)->SetRange(5.0, right);
    };
    const auto start = [&](Picture& picture) {
        for (const Series& look : series) {
            picture.add<RingedPlotLine>(look.table);
        }
    };
    std::mt19937 random(8);
    const auto number = [&](unsigned end) { return static_cast<int>(random() % end); };
    const std::vector<std::function<void(Series&)>> changes = {
        [&](Series& look) { look.width = 1.0F + static_cast<float>(number(8)); },
        [&](Series& look) { look.color[static_cast<std::size_t>(number(3))] ^= 0x40U; },
        [&](Series& look) { look.color[3] = static_cast<unsigned char>(60 + number(190)); },
        [&](Series& look) { look.selection = everyNth(1 + number(200), crowd); },
        [&](Series& look) { look.selection = nullptr; },
        [&](Series& look) { look.isVisible = !look.isVisible; },
        [&](Series& look) { look.table = line(crowd, 30.0 + number(40), unsigned(number(99))); },
        [&](Series& look) { look.table = line(fewVertices, 30.0 + number(40), 7); },
        [&](Series& look) { look.markerSize = 2.0F + static_cast<float>(number(6)); },
        [&](Series& look) {
            look.marker =
                look.marker == vtkPlotPoints::NONE ? vtkPlotPoints::CIRCLE : vtkPlotPoints::NONE;
        },
        [&](Series&) { right = 60.0 + number(35); }};

    Picture kept;
    start(kept);
    apply(kept);
    Pixels before = kept.render();
    for (std::size_t round = 0; round < 4 * changes.size(); ++round) {
        const std::size_t change = round % changes.size();
        const std::size_t changed = round < changes.size() ? 1 : round % count;
        SCOPED_TRACE(testing::Message() << "change " << change << " of " << changed);
        changes[change](series[changed]);

        apply(kept);
        Picture fresh;
        start(fresh);
        apply(fresh);

        const Pixels after = kept.render();
        EXPECT_EQ(after, fresh.render());
        if (round < 4) {
            EXPECT_NE(after, before);
        }
        before = after;
    }
}

TEST(RingedPlotLineTest, AnotherSelectionLeavesLineAndPointsInThePicture)
{
    Picture picture;
    auto& plot = picture.add<SecretPlotLine>(line(crowd, 60.0, 1));
    const Pixels before = picture.render();
    plot.flatten();
    plot.SetSelection(everyNth(crowd / 2, crowd));

    const Pixels after = picture.render();

    const int marks = differentBytes(before, after, rounding);
    constexpr int mostOfTwoMarks = 2 * 3 * 12 * 12;
    EXPECT_GT(marks, 0);
    EXPECT_LT(marks, mostOfTwoMarks);
    plot.SetWidth(1.0F);
    EXPECT_GT(differentBytes(picture.render(), after, rounding), mostOfTwoMarks)
        << "A line that is painted again is flat.";
}
