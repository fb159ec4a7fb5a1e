#include <dataviews/common/charts/PixelPicture.h>
#include <dataviews/common/charts/PointPicture.h>
#include <dataviews/common/charts/PointRaster.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace {

// More pixels than are painted at once.
constexpr int width = 2000;
constexpr int height = 1100;

class PointPictureTest : public testing::Test
{
protected:
    PointPictureTest()
    {
        std::mt19937 random(7);
        std::normal_distribution<float> place(0.0F, 0.4F);
        std::uniform_int_distribution<int> byte(0, 255);
        constexpr int count = 15000;
        for (int i = 0; i < count; ++i) {
            m_coordinates.push_back(place(random));
            m_coordinates.push_back(place(random));
            for (int channel = 0; channel < 4; ++channel) {
                m_colors.push_back(static_cast<unsigned char>(byte(random)));
            }
            if (i % 3 == 0) {
                m_marked.push_back(i);
            }
        }
        m_look.points.coordinates = m_coordinates.data();
        m_look.points.count = count;
        m_look.points.axes = {
            PointRaster::axisOf(width / 2.0, width / 2.0, width),
            PointRaster::axisOf(height / 2.0, height / 2.0, height)};
        m_look.color = {30, 90, 160, 200};
        m_look.markColor = {255, 50, 0, 150};
        m_look.markerSize = 7.0F;
        m_look.scale = 2.5F;
    }

    [[nodiscard]] PixelPicture wholePicture() const
    {
        PointRaster raster;
        PixelPicture picture;
        picture.reset(width, height, m_look.margin());
        m_look.paintPlain(raster, picture);
        if (m_look.markedCount > 0) {
            m_look.paintMarks(raster, picture);
        }
        return picture;
    }

    std::vector<float> m_coordinates;
    std::vector<unsigned char> m_colors;
    std::vector<vtkIdType> m_marked;
    PointsInPicture m_look;
};

bool goOn(double /*fraction*/)
{
    return true;
}

} // namespace

TEST_F(PointPictureTest, PaintsInPartsWhatIsPaintedAtOnce)
{
    for (const bool isColored : {false, true}) {
        for (const bool isMarked : {false, true}) {
            for (const bool hasRing : {false, true}) {
                SCOPED_TRACE(testing::Message() << isColored << isMarked << hasRing);
                m_look.colors = isColored ? m_colors.data() : nullptr;
                m_look.channels = isColored ? 4 : 0;
                m_look.marked = isMarked ? m_marked.data() : nullptr;
                m_look.markedCount = isMarked ? static_cast<vtkIdType>(m_marked.size()) : 0;
                m_look.ring.reset();
                if (hasRing) {
                    m_look.ring = SelectionRing::Colors{{0, 0, 0}, {255, 255, 255}, {}};
                }
                const PixelPicture whole = wholePicture();

                const PointPicture picture(m_look, width, height);
                int next = 0;
                std::size_t different = 0;
                EXPECT_TRUE(picture.paint(
                    [&](int y, const std::uint32_t* row) {
                        EXPECT_EQ(y, next++);
                        const std::uint32_t* expected =
                            whole.row(whole.margin() + y) + whole.margin();
                        for (int x = 0; x < width; ++x) {
                            different += row[x] == expected[x] ? 0U : 1U;
                        }
                    },
                    goOn));

                EXPECT_EQ(next, height);
                // A point between two pixels may be rounded to the other one.
                EXPECT_LE(different, static_cast<std::size_t>(width) * height / 10000);
            }
        }
    }
}

TEST_F(PointPictureTest, KeepsWhatItShowsAndEndsWhenItIsTold)
{
    m_look.colors = m_colors.data();
    m_look.channels = 4;
    m_look.marked = m_marked.data();
    m_look.markedCount = static_cast<vtkIdType>(m_marked.size());
    const auto inkOf = [](const PointPicture& picture) {
        std::vector<std::uint32_t> ink;
        EXPECT_TRUE(picture.paint(
            [&](int /*y*/, const std::uint32_t* row) {
                ink.push_back(*std::max_element(row, row + width));
            },
            goOn));
        return ink;
    };
    const PointPicture picture(m_look, width, height);
    const std::vector<std::uint32_t> before = inkOf(picture);

    std::fill(m_coordinates.begin(), m_coordinates.end(), 99.0F);
    std::fill(m_colors.begin(), m_colors.end(), static_cast<unsigned char>(0));
    std::fill(m_marked.begin(), m_marked.end(), vtkIdType(0));

    EXPECT_EQ(inkOf(picture), before);
    EXPECT_GT(*std::max_element(before.begin(), before.end()), 0U);
    int rows = 0;
    std::vector<double> fractions;
    EXPECT_FALSE(picture.paint(
        [&](int /*y*/, const std::uint32_t* /*row*/) { ++rows; },
        [&](double fraction) {
            fractions.push_back(fraction);
            return fraction == 0.0;
        }));
    ASSERT_EQ(fractions.size(), 2U);
    EXPECT_GT(rows, 0);
    EXPECT_LT(rows, height);
    EXPECT_NEAR(fractions.back(), static_cast<double>(rows) / height, 1e-9);
}
