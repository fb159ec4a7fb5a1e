#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include <samples/FieldPicture.h>

namespace {

using samples::FieldPicture;

/// The lightness CIE L* of \p color, 0 to 100.
double lightness(QRgb color)
{
    const auto linear = [](int channel) {
        const double share = channel / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    const double luminance = 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color))
        + 0.0722 * linear(qBlue(color));
    return luminance > 0.008856 ? 116.0 * std::cbrt(luminance) - 16.0 : 903.3 * luminance;
}

TEST(FieldPictureTest, LightnessRisesEvenlyInBothPalettes)
{
    for (const FieldPicture::Palette palette :
         {FieldPicture::Palette::Lagoon, FieldPicture::Palette::Ember}) {
        SCOPED_TRACE(static_cast<int>(palette));
        const FieldPicture picture(palette, 0.0F, 1.0F);
        const double first = lightness(picture.color(0.0F));
        const double last = lightness(picture.color(1.0F));

        EXPECT_LT(first, 6.0);
        EXPECT_GT(last, 88.0);
        for (int percent = 0; percent <= 100; percent += 5) {
            const double even = first + (last - first) * percent / 100.0;
            EXPECT_NEAR(lightness(picture.color(static_cast<float>(percent) / 100.0F)), even, 3.0)
                << percent;
        }
    }
}

TEST(FieldPictureTest, ValuesBeyondTheScaleTakeItsEnds)
{
    const FieldPicture picture(FieldPicture::Palette::Ember, -1.0F, 3.0F);
    constexpr float infinity = std::numeric_limits<float>::infinity();

    EXPECT_EQ(picture.color(-2.0F), picture.color(-1.0F));
    EXPECT_EQ(picture.color(-infinity), picture.color(-1.0F));
    EXPECT_EQ(picture.color(std::numeric_limits<float>::quiet_NaN()), picture.color(-1.0F));
    EXPECT_EQ(picture.color(4.0F), picture.color(3.0F));
    EXPECT_EQ(picture.color(infinity), picture.color(3.0F));
    EXPECT_NE(picture.color(1.0F), picture.color(3.0F));
}

TEST(FieldPictureTest, EachGridPointIsASquareOfThePicture)
{
    const FieldPicture picture(FieldPicture::Palette::Lagoon, 0.0F, 3.0F);
    const std::vector<float> field{0.0F, 1.0F, 2.0F, 3.0F};

    const QImage same = picture.draw(field, 2, 2);
    const QImage larger = picture.draw(field, 2, 6);

    ASSERT_EQ(same.size(), QSize(2, 2));
    EXPECT_EQ(same.pixel(0, 0), picture.color(0.0F));
    EXPECT_EQ(same.pixel(1, 0), picture.color(1.0F));
    EXPECT_EQ(same.pixel(0, 1), picture.color(2.0F));
    EXPECT_EQ(same.pixel(1, 1), picture.color(3.0F));
    // Three times larger, the middle pixel of each square is a grid point, the ones between are mixtures,
    // and so is the one at the edge, with the point on the far side.
    ASSERT_EQ(larger.size(), QSize(6, 6));
    EXPECT_EQ(larger.pixel(4, 1), picture.color(1.0F));
    EXPECT_EQ(larger.pixel(2, 1), picture.color(1.0F / 3.0F));
    EXPECT_EQ(larger.pixel(0, 1), picture.color(1.0F / 3.0F));
    EXPECT_FALSE(larger.hasAlphaChannel());
}

TEST(FieldPictureTest, RefusesEmptyScalesAndFieldsThatAreNotSquare)
{
    EXPECT_THROW(FieldPicture(FieldPicture::Palette::Lagoon, 1.0F, 1.0F), std::invalid_argument);
    const FieldPicture picture(FieldPicture::Palette::Lagoon, 0.0F, 1.0F);
    const std::vector<float> field(4);

    EXPECT_THROW(static_cast<void>(picture.draw(field, 3, 8)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(picture.draw({}, 0, 8)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(picture.draw(field, 2, 0)), std::invalid_argument);
    EXPECT_THROW(static_cast<void>(picture.draw(field, 2, 2'000'000)), std::invalid_argument);
}

} // namespace
