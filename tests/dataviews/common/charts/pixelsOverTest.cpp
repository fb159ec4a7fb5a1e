#include <dataviews/common/charts/PictureStack.h>
#include <dataviews/common/charts/pixelsOver.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

/// One whose colors do not exceed its opacity, often transparent or opaque.
std::uint32_t randomPixel(std::mt19937& random)
{
    const std::uint32_t kind = random() % 4;
    const auto opacity = static_cast<std::uint32_t>(
        kind == 0       ? 0
            : kind == 1 ? 255
                        : random() % 256);
    std::uint32_t pixel = opacity << 24U;
    for (const unsigned shift : {0U, 8U, 16U}) {
        pixel |= static_cast<std::uint32_t>(random() % (opacity + 1)) << shift;
    }
    return pixel;
}

std::uint32_t plainOver(std::uint32_t upper, std::uint32_t lower)
{
    const double through = 1.0 - (upper >> 24U) / 255.0;
    std::uint32_t result = 0;
    for (const unsigned shift : {0U, 8U, 16U, 24U}) {
        const double below = (lower >> shift & 0xFFU) * through;
        result |= ((upper >> shift & 0xFFU) + static_cast<std::uint32_t>(std::lround(below)))
            << shift;
    }
    return result;
}

} // namespace

TEST(pixelsOverTest, PixelsShowThroughByTheirOpacity)
{
    std::mt19937 random(3);
    for (std::size_t count : {0U, 1U, 63U, 64U, 65U, 50000U}) {
        SCOPED_TRACE(count);
        std::vector<std::uint32_t> pixels(count + 1);
        std::vector<std::uint32_t> upper(count + 1);
        std::vector<std::uint32_t> expected;
        for (std::size_t i = 0; i <= count; ++i) {
            pixels[i] = randomPixel(random);
            upper[i] = randomPixel(random);
            expected.push_back(i < count ? plainOver(upper[i], pixels[i]) : pixels[i]);
            EXPECT_EQ(pixelOver(upper[i], pixels[i]), plainOver(upper[i], pixels[i]));
        }

        paintOver(pixels.data(), upper.data(), count);

        EXPECT_EQ(pixels, expected);
    }
}

TEST(PictureStackTest, UpperPicturesCoverLowerOnesWhateverTheirMargins)
{
    constexpr int width = 70;
    constexpr int height = 45;
    std::mt19937 random(4);
    std::vector<PixelPicture> pictures(3);
    std::vector<PictureStack::Layer> layers;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        pictures[i].reset(width, height, static_cast<int>(2 * i));
        for (int y = 0; y < pictures[i].rows(); ++y) {
            for (int x = 0; x < pictures[i].stride(); ++x) {
                pictures[i].row(y)[x] = randomPixel(random);
            }
        }
        layers.push_back({&pictures[i], i});
    }
    PixelPicture result;

    PictureStack::compose(result, layers);

    ASSERT_EQ(result.rows(), height);
    ASSERT_EQ(result.stride(), width);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto pixel = [&](int i) {
                return pictures[static_cast<std::size_t>(i)].row(y + 2 * i)[x + 2 * i];
            };
            ASSERT_EQ(result.row(y)[x], plainOver(pixel(2), plainOver(pixel(1), pixel(0))));
        }
    }
}
