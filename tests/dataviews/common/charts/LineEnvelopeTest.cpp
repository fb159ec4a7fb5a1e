#include <dataviews/common/charts/LineEnvelope.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr int width = 40;
constexpr int height = 60;

/// The lowest and the highest place of a polyline in each column, from places close to one another along it.
std::vector<std::pair<double, double>> plainEnvelope(const std::vector<double>& pixels)
{
    constexpr int steps = 3000;
    std::vector<std::pair<double, double>> spans(width, {1e9, -1e9});
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 2) {
        for (int step = 0; step <= steps; ++step) {
            const double share = static_cast<double>(step) / steps;
            const double x = pixels[i] + share * (pixels[i + 2] - pixels[i]);
            const double y = pixels[i + 1] + share * (pixels[i + 3] - pixels[i + 1]);
            const double column = std::floor(x);
            if (column >= 0.0 && column < width) {
                auto& [low, high] = spans[static_cast<std::size_t>(column)];
                low = std::min(low, y);
                high = std::max(high, y);
            }
        }
    }
    return spans;
}

} // namespace

TEST(LineEnvelopeTest, CoversWhatThePolylineReachesInEachColumn)
{
    std::mt19937 random(5);
    LineEnvelope envelope;
    PixelPicture picture;
    // Up and down, sparse and crowded, beyond the picture on all sides.
    for (const std::size_t count : {2U, 3U, 20U, 800U}) {
        for (const double scale : {4.0, -5.0}) {
            SCOPED_TRACE(testing::Message() << count << " vertices, scale " << scale);
            const std::array<LineEnvelope::Axis, 2> axes = {{{scale, 20.0}, {-3.0, 30.0}}};
            std::vector<float> xs(count);
            std::generate(xs.begin(), xs.end(), [&] {
                return std::uniform_real_distribution<float>(-9.0F, 9.0F)(random);
            });
            std::sort(xs.begin(), xs.end());
            std::vector<float> points;
            std::vector<double> pixels;
            for (const float x : xs) {
                const float y = std::normal_distribution<float>(0.0F, 7.0F)(random);
                points.insert(points.end(), {x, y});
                pixels.insert(pixels.end(), {x * axes[0].scale + 20.0, y * axes[1].scale + 30.0});
            }

            envelope.cover({points.data(), count}, axes, width);
            const int bottom = envelope.draw(picture, height, {1.0F, {10, 20, 30, 255}});

            const std::vector<std::pair<double, double>> spans = plainEnvelope(pixels);
            for (int column = 0; column < width; ++column) {
                const auto [low, high] = spans[static_cast<std::size_t>(column)];
                for (int y = 0; y < height; ++y) {
                    const bool isIn =
                        column < picture.width() && y >= bottom && y < bottom + picture.height();
                    const bool isCovered = isIn && picture.row(y - bottom)[column] != 0;
                    // A stroke can be half a pixel more, as flat ones are one high.
                    if (y >= low + 1.0 && y + 1.0 <= high - 1.0) {
                        EXPECT_TRUE(isCovered) << column << ", " << y;
                    }
                    if (y > high + 1.5 || y + 1.0 < low - 1.5) {
                        EXPECT_FALSE(isCovered) << column << ", " << y;
                    }
                }
            }
        }
    }
}

TEST(LineEnvelopeTest, FlatLinesAreAsHighAsTheyAreWideAndStrokesOverOneAnotherHideMore)
{
    // Flat and crowded, then up and down in the last columns.
    std::vector<float> points;
    for (int i = 0; i < 1000; ++i) {
        points.insert(points.end(), {0.03F * static_cast<float>(i), 10.0F});
    }
    for (int i = 0; i < 200; ++i) {
        points.insert(
            points.end(), {35.0F + 0.02F * static_cast<float>(i), i % 2 == 0 ? 10.0F : 40.0F});
    }
    LineEnvelope envelope;
    PixelPicture picture;

    envelope.cover({points.data(), points.size() / 2}, {}, width);
    const int bottom = envelope.draw(picture, height, {4.0F, {200, 100, 0, 128}});

    EXPECT_EQ(bottom, 8);
    EXPECT_EQ(picture.height(), 32);
    EXPECT_EQ(picture.row(0)[5], 0x80003264U) << "multiplied by the opacity";
    EXPECT_EQ(picture.row(3)[5], 0x80003264U);
    EXPECT_EQ(picture.row(4)[5], 0U);
    EXPECT_EQ(picture.row(20)[36], 0xFF0064C8U);

    envelope.cover({points.data(), 0}, {}, width);
    EXPECT_EQ(envelope.draw(picture, height, {4.0F, {200, 100, 0, 128}}), 0);
    EXPECT_EQ(picture.width(), 0);
}
