#include <dataviews/common/charts/OverlapColors.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

namespace {

int channel(std::uint32_t pixel, unsigned index)
{
    return static_cast<int>((pixel >> (8U * index)) & 0xFFU);
}

} // namespace

TEST(OverlapColorsTest, UpToTheThresholdTheyArePaintedOneByOne)
{
    const OverlapColors colors({250, 100, 0}, 100, OverlapColors::Deepening::Darker);
    double opacity = 0.0;
    EXPECT_EQ(colors[0], 0U);
    for (std::uint32_t count = 1; count <= OverlapColors::threshold; ++count) {
        opacity += (1.0 - opacity) * 100.0 / 255.0;
        EXPECT_NEAR(channel(colors[count], 3), 255.0 * opacity, 1.0);
        EXPECT_NEAR(channel(colors[count], 0), 250.0 * opacity, 1.0);
        EXPECT_NEAR(channel(colors[count], 1), 100.0 * opacity, 1.0);
        EXPECT_EQ(channel(colors[count], 2), 0);
    }
}

TEST(OverlapColorsTest, CrowdsGrowDarkerOrBrighterOrStay)
{
    const OverlapColors darker({200, 100, 50}, 255, OverlapColors::Deepening::Darker);
    const OverlapColors brighter({200, 100, 50}, 255, OverlapColors::Deepening::Brighter);
    const OverlapColors same({200, 100, 50}, 255, OverlapColors::Deepening::None);
    for (std::uint32_t count = OverlapColors::threshold; count < OverlapColors::most; count *= 2) {
        EXPECT_GT(channel(darker[count], 0), channel(darker[2 * count], 0));
        EXPECT_LT(channel(brighter[count], 2), channel(brighter[2 * count], 2));
        EXPECT_EQ(same[count], same[1]);
    }
    EXPECT_EQ(darker[OverlapColors::most], darker[4000000000U]);
    EXPECT_GT(channel(darker[OverlapColors::most], 0), 0);
}

TEST(OverlapColorsTest, AVeilBeginsBehindTheThresholdAndThickensWithoutHidingWhatIsBelow)
{
    const OverlapColors veil = OverlapColors::veil({200, 100, 0});
    for (std::uint32_t count = 0; count <= OverlapColors::threshold; ++count) {
        EXPECT_EQ(veil[count], 0U);
    }
    int thinner = 0;
    for (std::uint32_t count = OverlapColors::threshold + 1; count < OverlapColors::most;
         count *= 2) {
        const int opacity = channel(veil[count], 3);
        EXPECT_GT(opacity, thinner);
        EXPECT_LT(opacity, 255);
        EXPECT_NEAR(channel(veil[count], 0), 200.0 * opacity / 255.0, 1.0);
        EXPECT_EQ(channel(veil[count], 2), 0);
        thinner = opacity;
    }
}
