#include <analyzer/views/Scatter3DPicture.h>

#include <vtkImageData.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace analyzer {

namespace {

constexpr int width = 40;
constexpr int height = 30;

/// Red, green and blue times opacity, and the opacity; from 0 to 1.
using Color = std::array<double, 4>;

/// The plain way: one disc over the other, from back to front.
std::vector<Color> drawnBackToFront(const Scatter3DPicture::Points& points, double diameter)
{
    std::vector<Color> pixels(width * height, Color{});
    for (const std::uint32_t row : points.order) {
        const unsigned char* color =
            points.colors == nullptr ? points.plain.data() : points.colors + 4 * row;
        for (std::size_t pixel = 0; pixel < pixels.size(); ++pixel) {
            const double x = static_cast<double>(pixel % width) + 0.5;
            const double y = static_cast<double>(pixel / width) + 0.5;
            const double distance =
                std::hypot(x - points.places[2 * row], y - points.places[2 * row + 1]);
            const double share =
                std::clamp(diameter / 2.0 - distance + 0.5, 0.0, 1.0) * color[3] / 255.0;
            for (std::size_t i = 0; i < 4; ++i) {
                const double own = i == 3 ? 1.0 : color[i] / 255.0;
                pixels[pixel][i] = own * share + pixels[pixel][i] * (1.0 - share);
            }
        }
    }
    return pixels;
}

/// The largest difference between the picture and \p expected, of any channel, multiplied by the opacity.
double largestDifference(const Scatter3DPicture& picture, const std::vector<Color>& expected)
{
    const auto* drawn = static_cast<const unsigned char*>(picture.image().GetScalarPointer());
    double largest = 0.0;
    for (std::size_t pixel = 0; pixel < expected.size(); ++pixel, drawn += 4) {
        for (std::size_t i = 0; i < 4; ++i) {
            const double factor = i == 3 ? 1.0 : drawn[3] / 255.0;
            largest = std::max(largest, std::abs(drawn[i] / 255.0 * factor - expected[pixel][i]));
        }
    }
    return largest;
}

/// \p count points all over the picture and a little beyond, on the grid of places that the discs are made for.
std::vector<float> scattered(int count, std::mt19937& random)
{
    std::uniform_int_distribution<int> quarterX(-12, 4 * width + 12);
    std::uniform_int_distribution<int> quarterY(-12, 4 * height + 12);
    std::vector<float> places;
    for (int i = 0; i < count; ++i) {
        places.push_back(static_cast<float>(quarterX(random)) / 4.0F + 0.125F);
        places.push_back(static_cast<float>(quarterY(random)) / 4.0F + 0.125F);
    }
    return places;
}

} // namespace

TEST(Scatter3DPictureTest, IsWhatDrawingOneOverTheOtherGives)
{
    const struct
    {
        int count;
        float diameter;
        unsigned char opacity;
    } cases[] = {
        {0, 7, 255}, {1, 7, 255}, {30, 7, 204}, {3000, 5, 204}, {2000, 1, 255}, {400, 19, 20}};

    std::mt19937 random(7);
    std::uniform_int_distribution<int> channel(0, 255);
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.count);
        const std::vector<float> places = scattered(testCase.count, random);
        std::vector<std::uint32_t> order(static_cast<std::size_t>(testCase.count));
        std::iota(order.begin(), order.end(), 0U);
        std::shuffle(order.begin(), order.end(), random);
        std::vector<unsigned char> colors;
        for (int i = 0; i < testCase.count; ++i) {
            for (int j = 0; j < 3; ++j) {
                colors.push_back(static_cast<unsigned char>(channel(random)));
            }
            colors.push_back(testCase.opacity);
        }
        const unsigned char* const perRow = testCase.count % 3 == 0 ? nullptr : colors.data();
        const Scatter3DPicture::Points points{
            places.data(), order, perRow, {10, 120, 250, testCase.opacity}};
        Scatter3DPicture picture;

        picture.draw(points, testCase.diameter, width, height);

        EXPECT_LT(
            largestDifference(picture, drawnBackToFront(points, testCase.diameter)), 5.0 / 255.0);
    }
}

TEST(Scatter3DPictureTest, FindsTheOrderOfManyPointsByTheirNearness)
{
    constexpr float nowhere = std::numeric_limits<float>::quiet_NaN();
    std::mt19937 random(11);
    std::uniform_real_distribution<float> anyNearness(-1.0F, 1.0F);
    std::uniform_int_distribution<int> channel(0, 255);
    // The last ones are enough for some threads, and to hide most of one another.
    for (const int count : {0, 1, 40, 3000, 45000}) {
        SCOPED_TRACE(count);
        std::vector<float> places = scattered(count, random);
        std::vector<float> nearness;
        std::vector<unsigned char> colors;
        std::vector<std::uint32_t> order;
        for (int i = 0; i < count; ++i) {
            // Many are as near as others.
            nearness.push_back(std::round(anyNearness(random) * 50.0F) / 50.0F);
            for (int j = 0; j < 3; ++j) {
                colors.push_back(static_cast<unsigned char>(channel(random)));
            }
            colors.push_back(204);
            if (i % 7 == 3) {
                places[static_cast<std::size_t>(2 * i + i % 2)] = nowhere;
            } else if (i % 2 == 0) {
                order.push_back(static_cast<std::uint32_t>(i));
            }
        }
        std::stable_sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
            return nearness[left] < nearness[right];
        });
        Scatter3DPicture picture;

        picture.draw(
            Scatter3DPicture::Cloud{
                places.data(),
                nearness.data(),
                static_cast<std::size_t>(count),
                colors.data(),
                {},
                2},
            7.0F,
            width,
            height);

        // What is far behind does not change the expected picture.
        const std::vector<std::uint32_t> front(
            order.end() - std::min<std::ptrdiff_t>(3000, order.end() - order.begin()), order.end());
        const Scatter3DPicture::Points expected{places.data(), front, colors.data(), {}};
        EXPECT_LT(largestDifference(picture, drawnBackToFront(expected, 7.0)), 5.0 / 255.0);
    }
}

TEST(Scatter3DPictureTest, IsTheSameWhenDrawnBitByBit)
{
    constexpr int tall = 400; // several bands
    constexpr int few = 2000;
    constexpr int many = 50000; // for some threads
    std::mt19937 random(13);
    std::uniform_real_distribution<float> share(0.0F, 1.0F);
    std::uniform_int_distribution<int> steps(0, 30);

    const struct
    {
        const char* name;
        int count;
        float left, bottom; ///< of where the points are
        float across, up;
        bool isFlat; ///< all are equally near
    } clouds[] = {
        {"everywhere", few, 0.0F, 0.0F, width, tall, false},
        {"nothing", 0, 0.0F, 0.0F, width, tall, false},
        {"many everywhere", many, -5.0F, -5.0F, width + 10.0F, tall + 10.0F, false},
        {"in one band", many, 10.0F, 70.0F, 15.0F, 10.0F, false},
        {"in one slab of one band", many, 0.0F, 70.0F, width, 10.0F, true},
        {"at one place", few, 20.0F, 200.0F, 0.0F, 0.0F, true}};

    Scatter3DPicture picture;
    for (const auto& made : clouds) {
        std::vector<float> places;
        std::vector<float> nearness;
        std::vector<unsigned char> colors;
        for (int i = 0; i < made.count; ++i) {
            places.push_back(made.left + share(random) * made.across);
            places.push_back(made.bottom + share(random) * made.up);
            nearness.push_back(made.isFlat ? 0.5F : share(random));
            for (int j = 0; j < 4; ++j) {
                colors.push_back(static_cast<unsigned char>(255.0F * share(random)));
            }
        }
        const Scatter3DPicture::Cloud cloud{
            places.data(), nearness.data(), nearness.size(), colors.data(), {}};
        std::vector<vtkIdType> marked(nearness.size() / 3);
        std::iota(marked.begin(), marked.end(), vtkIdType(5));
        const std::vector<std::uint32_t> sprite(11 * 11, 0x80402010U);
        for (const bool areMarks : {false, true}) {
            SCOPED_TRACE(std::string(made.name) + (areMarks ? ", marks" : ""));
            const auto start = [&] {
                if (areMarks) {
                    // A sprite that is gone when it is drawn.
                    const std::vector<std::uint32_t> ofNow = sprite;
                    picture.startDrawingMarks(
                        cloud, {marked.data(), marked.size(), ofNow, true}, 7, width, tall);
                } else {
                    picture.startDrawing(cloud, 7, width, tall);
                }
            };
            Scatter3DPicture whole;
            if (areMarks) {
                whole.drawMarks(
                    cloud, {marked.data(), marked.size(), sprite, true}, 7, width, tall);
            } else {
                whole.draw(cloud, 7, width, tall);
            }

            start();
            while (!picture.drawMore({})) {}

            EXPECT_EQ(picture.pixels(), whole.pixels());

            // What is given up leaves nothing to the next one.
            start();
            for (int i = steps(random); i > 0; --i) {
                picture.drawMore({});
            }
        }
    }

    picture.startDrawing({nullptr, nullptr, 0, nullptr, {}}, 7, 0, tall);
    EXPECT_TRUE(picture.drawMore({}));
}

TEST(Scatter3DPictureTest, NoStepDrawsAllOfWhatLiesTogether)
{
    constexpr int count = 50000;
    std::mt19937 random(17);
    const std::vector<float> places = scattered(count, random);
    const std::vector<float> nearness(count, 0.5F);
    Scatter3DPicture picture;
    picture.startDrawing(
        {places.data(), nearness.data(), nearness.size(), nullptr, {10, 120, 250, 20}},
        1,
        width,
        height);

    int steps = 1;
    while (!picture.drawMore({})) {
        ++steps;
    }

    EXPECT_GT(steps, count / 500);
}

TEST(Scatter3DPictureTest, MarksOfNearPointsCoverThoseBehindAndDiscsCoverMarks)
{
    // Two that overlap, the first one nearer, and one beside.
    const std::vector<float> places = {10.625F, 10.625F, 10.625F, 12.625F, 30.625F, 10.625F};
    const std::vector<float> nearness = {0.5F, -0.5F, 0.0F};
    const std::vector<unsigned char> colors = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255};
    const Scatter3DPicture::Cloud cloud{
        places.data(), nearness.data(), nearness.size(), colors.data(), {}};
    constexpr std::uint32_t gray = 0xFF808080U;
    constexpr std::uint32_t black = 0xFF000000U;
    std::vector<std::uint32_t> sprite(49, gray); // 7 by 7 pixels
    std::fill_n(sprite.begin(), 7, black); // the lowest line
    const std::vector<vtkIdType> rows = {1, 0, 99, -1};
    Scatter3DPicture picture;

    picture.drawMarks(cloud, {rows.data(), rows.size(), sprite, false}, 3.0F, width, height);
    const auto pixel = [&picture](int x, int y) { return picture.pixels().row(y)[x]; };
    EXPECT_EQ(pixel(10, 7), black);
    EXPECT_EQ(pixel(10, 9), gray) << "The nearer one covers the lowest line of the other.";
    EXPECT_EQ(pixel(10, 15), gray) << "This is of the one behind.";
    EXPECT_EQ(pixel(10, 16), 0U);
    EXPECT_EQ(pixel(6, 10), 0U);
    EXPECT_EQ(pixel(30, 10), 0U) << "not marked";

    picture.drawMarks(cloud, {rows.data(), rows.size(), sprite, true}, 3.0F, width, height);
    EXPECT_EQ(pixel(10, 10), 0xFF0000FFU);
    EXPECT_EQ(pixel(10, 13), 0xFF00FF00U) << "above the marks of all";
    EXPECT_EQ(pixel(8, 10), gray);
}

TEST(Scatter3DPictureTest, BeginsAnewWithEachPictureAndSize)
{
    const std::vector<float> places = {5.125F, 5.125F};
    const std::vector<std::uint32_t> one = {0};
    const std::vector<std::uint32_t> none;
    Scatter3DPicture picture;
    picture.draw({places.data(), one, nullptr, {255, 0, 0, 255}}, 9.0F, width, height);

    const Scatter3DPicture::Points nothing{places.data(), none, nullptr, {}};
    picture.draw(nothing, 9.0F, width, height);
    EXPECT_EQ(largestDifference(picture, drawnBackToFront(nothing, 9.0)), 0.0);

    const Scatter3DPicture::Points blue{places.data(), one, nullptr, {0, 0, 255, 255}};
    picture.draw(blue, 3.0F, 10, 6);
    EXPECT_EQ(picture.image().GetDimensions()[0], 10);
    EXPECT_EQ(picture.image().GetDimensions()[1], 6);
    const auto* pixel =
        static_cast<const unsigned char*>(picture.image().GetScalarPointer(5, 5, 0));
    EXPECT_EQ(pixel[2], 255);
    EXPECT_EQ(pixel[3], 255);
}

} // namespace analyzer
