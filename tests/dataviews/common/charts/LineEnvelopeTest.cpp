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

TEST(LineEnvelopeTest, ManyVerticesAreTakenInPartsThatDoNotShow)
{
    // Nine times up and down in each column.
    constexpr int count = 150000;
    constexpr double turnsInColumn = 9.3;
    constexpr double pi = 3.14159265358979;
    std::vector<float> points;
    std::vector<double> travels(width);
    std::vector<float> lows(width, 1e9F);
    std::vector<float> highs(width, -1e9F);
    for (int i = 0; i < count; ++i) {
        const double x = static_cast<double>(i) * width / count;
        const auto y = static_cast<float>(30.0 + 12.0 * std::sin(2.0 * pi * turnsInColumn * x));
        const auto column = static_cast<std::size_t>(x);
        travels[column] += i * width % count >= width ? std::abs(y - points.back()) : 0.0;
        lows[column] = std::min(lows[column], y);
        highs[column] = std::max(highs[column], y);
        points.insert(points.end(), {static_cast<float>(x), y});
    }
    constexpr double opacity = 20.0 / 255.0;
    LineEnvelope envelope;
    PixelPicture picture;
    PixelPicture whole;
    whole.reset(width, height, 0);
    const LineEnvelope::Look look{1.0F, {255, 255, 255, 20}};

    envelope.cover({points.data(), count}, {}, width);
    const int bottom = envelope.draw(picture, height, look);
    envelope.drawInto(whole, look);

    for (int column = 0; column < width; ++column) {
        SCOPED_TRACE(column);
        const auto index = static_cast<std::size_t>(column);
        const double strokes = travels[index] / (highs[index] - lows[index]);
        const double expected = 255.0 * (1.0 - std::pow(1.0 - opacity, strokes));
        EXPECT_NEAR(whole.row(30)[column] >> 24U, expected, 2.0);
        for (int y = 0; y < height; ++y) {
            const bool isIn = y >= bottom && y < bottom + picture.height();
            EXPECT_EQ(whole.row(y)[column], isIn ? picture.row(y - bottom)[column] : 0U) << y;
        }
    }
    EXPECT_EQ(bottom, 18);
    EXPECT_EQ(picture.height(), 24);
}

TEST(LineEnvelopeTest, PartsOfTheVerticesAreJoined)
{
    // Wherever parts of so many vertices as a power of two begin, there is a gap that an edge bridges.
    constexpr int powers = 18;
    constexpr float gap = 2.0F;
    std::vector<float> points;
    for (int power = 0; power < powers; ++power) {
        for (int i = power == 0 ? 0 : 1 << power; i < 2 << power; ++i) {
            points.insert(points.end(), {gap * static_cast<float>(power) + 0.5F, 30.5F});
        }
    }
    LineEnvelope envelope;
    PixelPicture picture;
    picture.reset(width, height, 0);

    envelope.cover({points.data(), points.size() / 2}, {}, width);
    envelope.drawInto(picture, {1.0F, {0, 0, 0, 255}});

    for (int column = 0; column < static_cast<int>(gap) * (powers - 1); ++column) {
        EXPECT_NE(picture.row(30)[column], 0U) << column;
    }
    EXPECT_EQ(picture.row(30)[width - 1], 0U);
}

TEST(LineEnvelopeTest, VerticesInSightAreThoseInThePictureAndTheirNeighbors)
{
    std::vector<float> points;
    for (int i = 0; i < 100; ++i) {
        points.insert(points.end(), {static_cast<float>(i) + 0.5F, 0.0F});
    }
    const LineEnvelope::Vertices all{points.data(), 100};
    const auto indicesOf = [&](const LineEnvelope::Axis& axis) {
        const LineEnvelope::Vertices part = LineEnvelope::inSight(all, axis, 40);
        return std::pair((part.points - points.data()) / 2, part.count);
    };

    EXPECT_EQ(indicesOf({2.0, -40.0}), std::pair(std::ptrdiff_t(19), std::size_t(22)));
    EXPECT_EQ(indicesOf({-2.0, 80.0}), std::pair(std::ptrdiff_t(19), std::size_t(22)));
    EXPECT_EQ(indicesOf({0.1, 10.0}), std::pair(std::ptrdiff_t(0), std::size_t(100)));
    EXPECT_EQ(indicesOf({2.0, 50.0}).second, 1U) << "beside the picture, to its right";
    EXPECT_EQ(indicesOf({2.0, -400.0}).second, 1U);
}
