#include <dataviews/common/charts/ChartXY.h>
#include <dataviews/common/charts/RasterPlotPoints.h>
#include <dataviews/common/charts/RingedPlotPoints.h>

#include <vtkAxis.h>
#include <vtkContextPolygon.h>
#include <vtkDoubleArray.h>
#include <vtkIdTypeArray.h>
#include <vtkPlotPoints.h>
#include <vtkTable.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr int count = 20000;

vtkSmartPointer<vtkTable> randomTable(std::mt19937& random, double invalid)
{
    std::normal_distribution<double> place(50.0, 15.0);
    auto table = vtkSmartPointer<vtkTable>::New();
    for (const char* name : {"x", "y"}) {
        vtkNew<vtkDoubleArray> column;
        column->SetName(name);
        for (int i = 0; i < count; ++i) {
            // Some places are taken more than once.
            column->InsertNextValue(
                i % 50 == 0 ? invalid : std::floor(place(random) * 10.0) / 10.0);
        }
        table->AddColumn(column);
    }
    return table;
}

std::vector<vtkIdType> rowsOf(vtkPlotPoints& plot)
{
    vtkIdTypeArray* const rows = plot.GetSelection();
    return rows == nullptr
        ? std::vector<vtkIdType>()
        : std::vector<vtkIdType>(
            rows->GetPointer(0), rows->GetPointer(0) + rows->GetNumberOfValues());
}

std::vector<vtkIdType> sorted(std::vector<vtkIdType> rows)
{
    std::sort(rows.begin(), rows.end());
    return rows;
}

} // namespace

TEST(PointSearchTest, SelectsWhatVTKSelectsInTheSameArray)
{
    std::mt19937 random(1);
    const auto table = randomTable(random, 50.0);
    vtkNew<RingedPlotPoints> ours;
    vtkNew<vtkPlotPoints> plain;
    const vtkNew<vtkIdTypeArray> rows;
    for (vtkPlotPoints* plot : {static_cast<vtkPlotPoints*>(ours), plain.Get()}) {
        plot->SetInputData(table, 0, 1);
        plot->Update();
    }
    ours->SetSelection(rows);
    std::uniform_real_distribution<float> place(0.0F, 100.0F);
    std::uniform_real_distribution<float> size(-1.0F, 30.0F);
    for (int round = 0; round < 200; ++round) {
        const vtkVector2f min(place(random), place(random));
        const vtkVector2f max(min.GetX() + size(random), min.GetY() + size(random));

        const bool found = ours->SelectPoints(min, max);

        EXPECT_EQ(found, plain->SelectPoints(min, max));
        EXPECT_EQ(rowsOf(*ours), rowsOf(*plain));
        EXPECT_EQ(ours->GetSelection(), rows.GetPointer());
    }
    for (int round = 0; round < 50; ++round) {
        vtkContextPolygon polygon;
        for (int corner = 0; corner < round % 7; ++corner) {
            polygon.AddPoint(place(random), place(random));
        }

        const bool found = ours->SelectPointsInPolygon(polygon);

        EXPECT_EQ(found, plain->SelectPointsInPolygon(polygon));
        EXPECT_EQ(rowsOf(*ours), sorted(rowsOf(*plain)));
    }
}

TEST(PointSearchTest, ANewSelectionLeavesThePointsAsTheyAre)
{
    std::mt19937 random(6);
    const auto table = randomTable(random, 50.0);
    vtkNew<RingedPlotPoints> plot;
    plot->SetInputData(table, 0, 1);
    plot->Update();
    const vtkMTimeType before = plot->GetMTime();
    const vtkNew<vtkIdTypeArray> rows;
    const vtkMTimeType rowsBefore = rows->GetMTime();

    plot->SetSelection(rows);

    EXPECT_EQ(plot->GetSelection(), rows.GetPointer());
    EXPECT_EQ(plot->GetMTime(), before);
    // Else marks of fewer points, which go by that, would stay where they were.
    EXPECT_GT(rows->GetMTime(), rowsBefore);
    plot->SetMarkerSize(3.0F);
    EXPECT_GT(plot->GetMTime(), before);
}

TEST(PointSearchTest, FindsTheNearestPointThatVTKFinds)
{
    std::mt19937 random(2);
    const auto table = randomTable(random, 50.0);
    vtkNew<RasterPlotPoints> ours;
    vtkNew<vtkPlotPoints> plain;
    for (vtkPlotPoints* plot : {static_cast<vtkPlotPoints*>(ours), plain.Get()}) {
        plot->SetInputData(table, 0, 1);
        plot->Update();
    }
    std::uniform_real_distribution<float> place(0.0F, 100.0F);
    for (int round = 0; round < 300; ++round) {
        const vtkVector2f point(place(random), place(random));
        const vtkVector2f tolerance(1.5F, 2.5F);
        vtkVector2f ourPlace(0.0F, 0.0F);
        vtkVector2f plainPlace(0.0F, 0.0F);
        vtkIdType segment = 0;

        const vtkIdType ourRow = ours->GetNearestPoint(point, tolerance, &ourPlace, &segment);
        const vtkIdType plainRow = plain->GetNearestPoint(point, tolerance, &plainPlace, &segment);

        EXPECT_EQ(ourRow < 0, plainRow < 0);
        // Of points one above the other VTK takes any.
        EXPECT_EQ(ourPlace.GetX(), plainPlace.GetX());
    }
}

TEST(PointSearchTest, TheIndexIsNeverOld)
{
    std::mt19937 random(3);
    vtkNew<ChartXY> chart;
    vtkNew<RasterPlotPoints> plot;
    chart->AddPlot(plot);
    vtkSmartPointer<vtkTable> table = randomTable(random, std::numeric_limits<double>::quiet_NaN());
    plot->SetInputData(table, 0, 1);
    std::uniform_real_distribution<double> place(0.0, 100.0);
    std::uniform_real_distribution<double> extent(0.0, 3.0);
    const auto number = [&](unsigned most) { return static_cast<int>(random() % most); };
    int found = 0;
    for (int round = 0; round < 600; ++round) {
        switch (number(12)) {
        case 0:
            table = randomTable(random, std::numeric_limits<double>::infinity());
            plot->SetInputData(table, 0, 1);
            break;
        case 1: {
            auto& column = *vtkDoubleArray::SafeDownCast(table->GetColumn(number(2)));
            std::shuffle(column.GetPointer(0), column.GetPointer(0) + count, random);
            column.Modified();
            table->Modified();
            break;
        }
        case 2: {
            const double min = place(random);
            // Also upside down, empty, and much too large.
            const double widths[] = {60.0, 3.0, -40.0, 0.0, 1e30};
            chart->GetAxis(number(2))->SetRange(min, min + widths[number(5)]);
            break;
        }
        default:
            break;
        }
        const double x = place(random);
        const double y = place(random);
        const double sizeX = extent(random);
        const double sizeY = extent(random);
        const PointCellIndex::Box box{
            static_cast<float>(x),
            static_cast<float>(y),
            static_cast<float>(x + sizeX),
            static_cast<float>(y + sizeY)};
        std::vector<vtkIdType> expected;
        for (vtkIdType row = 0; row < count; ++row) {
            const auto valueX = static_cast<float>(table->GetValue(row, 0).ToDouble());
            const auto valueY = static_cast<float>(table->GetValue(row, 1).ToDouble());
            if (valueX >= box.minX && valueX <= box.maxX && valueY >= box.minY
                && valueY <= box.maxY) {
                expected.push_back(row);
            }
        }

        EXPECT_EQ(plot->rowsIn(box), expected);
        found += static_cast<int>(expected.size());
    }
    EXPECT_GT(found, 1000);
}
