#include <dataviews/common/charts/PolygonMask.h>

#include <vtkContextPolygon.h>
#include <vtkVectorOperators.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

namespace {

using Corners = std::vector<vtkVector2f>;

/// Whole numbers, so that VTK's arithmetic does not round and places upon edges and corners can be compared, too.
Corners randomCorners(std::mt19937& random, std::size_t count, const vtkVector2f& shift, int extent)
{
    std::uniform_int_distribution<int> place(0, extent);
    Corners corners;
    for (std::size_t i = 0; i < count; ++i) {
        corners.emplace_back(
            shift.GetX() + static_cast<float>(place(random)),
            shift.GetY() + static_cast<float>(place(random)));
    }
    return corners;
}

void expectSameAsVtk(const Corners& corners, const Corners& places)
{
    const PolygonMask mask(corners);
    vtkContextPolygon polygon;
    for (const vtkVector2f& corner : corners) {
        polygon.AddPoint(corner);
    }
    for (const vtkVector2f& place : places) {
        ASSERT_EQ(mask.contains(place.GetX(), place.GetY()), polygon.Contains(place))
            << place.GetX() << ' ' << place.GetY() << ", " << corners.size() << " corners";
    }
}

TEST(PolygonMaskTest, AnswersAsAComparisonWithEveryEdge)
{
    std::mt19937 random(7);
    for (const std::size_t count : {3U, 4U, 7U, 50U, 1000U}) {
        for (const int extent : {1, 12, 700}) {
            for (int round = 0; round < 6; ++round) {
                const vtkVector2f shift(round % 3 == 0 ? -4000.0F : 0.0F, 30.0F);
                const Corners corners = randomCorners(random, count, shift, extent);
                Corners places =
                    randomCorners(random, 100, shift - vtkVector2f(1.0F, 1.0F), extent + 2);
                places.insert(places.end(), corners.begin(), corners.end());
                expectSameAsVtk(corners, places);
            }
        }
    }
}

TEST(PolygonMaskTest, ALassoOfSmallStepsIsFilledToItsEdge)
{
    Corners lasso;
    constexpr int steps = 2000;
    for (int i = 0; i < steps; ++i) {
        const double angle = i * 6.283185307179586 / steps;
        const double radius = 300.0 + 80.0 * std::sin(7.0 * angle);
        lasso.emplace_back(
            static_cast<float>(std::lround(400.0 + radius * std::cos(angle))),
            static_cast<float>(std::lround(400.0 + radius * std::sin(angle))));
    }
    Corners places;
    for (float x = 0.0F; x <= 800.0F; x += 7.0F) {
        for (float y = 0.0F; y <= 800.0F; y += 1.0F) {
            places.emplace_back(x, y);
        }
    }
    expectSameAsVtk(lasso, places);
}

TEST(PolygonMaskTest, WhatHasNoInsideContainsNothing)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Corners flat = {{0.0F, 1.0F}, {5.0F, 1.0F}, {9.0F, 1.0F}};
    const Corners steep = {{1.0F, 0.0F}, {1.0F, 5.0F}, {1.0F, 9.0F}};
    const Corners spot = {{2.0F, 2.0F}, {2.0F, 2.0F}, {2.0F, 2.0F}};
    const Corners square = {{0.0F, 0.0F}, {4.0F, 0.0F}, {4.0F, 4.0F}, {0.0F, 4.0F}};

    for (const Corners& corners : {Corners(), Corners{{1.0F, 1.0F}, {2.0F, 2.0F}}, flat, spot}) {
        const PolygonMask mask(corners);
        for (const float place : {0.0F, 1.0F, 2.0F, 3.0F}) {
            EXPECT_FALSE(mask.contains(place, place)) << corners.size();
        }
    }
    EXPECT_FALSE(PolygonMask(steep).contains(1.1F, 5.0F));
    const PolygonMask mask(square);
    EXPECT_TRUE(mask.contains(2.0F, 2.0F));
    EXPECT_FALSE(mask.contains(nan, 2.0F));
    EXPECT_FALSE(mask.contains(2.0F, nan));
}

} // namespace
