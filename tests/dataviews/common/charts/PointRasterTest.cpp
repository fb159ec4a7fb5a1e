#include <dataviews/common/charts/PointRaster.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <vector>

namespace {

/// Red, green, blue and opacity, the colors multiplied by the opacity; from 0 to 1.
using Paint = std::array<double, 4>;

Paint paintOf(std::uint32_t pixel)
{
    Paint paint{};
    for (std::size_t i = 0; i < paint.size(); ++i) {
        paint[i] = ((pixel >> (8U * i)) & 0xFFU) / 255.0;
    }
    return paint;
}

Paint paintOf(const unsigned char* color)
{
    const double opacity = color[3] / 255.0;
    return {
        color[0] / 255.0 * opacity,
        color[1] / 255.0 * opacity,
        color[2] / 255.0 * opacity,
        opacity};
}

void cover(Paint& lower, const Paint& upper)
{
    for (std::size_t i = 0; i < lower.size(); ++i) {
        lower[i] = upper[i] + lower[i] * (1.0 - upper[3]);
    }
}

/// What lies over one pixel, in the order of the points.
struct Pile
{
    std::vector<vtkIdType> rows;
    std::vector<std::array<int, 2>> offsets; ///< of the pixel within the marker
};

/// Paints as PointRaster says it does, point by point.
class Reference
{
public:
    Reference(
        const PixelPicture& picture,
        const PointRaster::Points& points,
        const MarkerStencil& stencil)
        : m_width(picture.width())
        , m_height(picture.height())
        , m_margin(picture.margin())
        , m_piles(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height))
    {
        const vtkIdType count = points.rows != nullptr ? points.rowCount : points.count;
        for (vtkIdType i = 0; i < count; ++i) {
            const vtkIdType row = points.rows != nullptr ? points.rows[i] : i;
            if (row >= 0 && row < points.count) {
                addPoint(points, row, stencil);
            }
        }
        for (int y = 0; y < m_height; ++y) {
            for (int x = 0; x < m_width; ++x) {
                m_paints.push_back(paintOf(picture.row(y + m_margin)[x + m_margin]));
            }
        }
    }

    /// Calls \p paint with the pile over each pixel that has one, and what is there before.
    template <class Function>
    void paint(Function function)
    {
        for (std::size_t i = 0; i < m_piles.size(); ++i) {
            if (!m_piles[i].rows.empty()) {
                function(m_piles[i], m_paints[i]);
            }
        }
    }

    /// The largest difference of a channel, in 255th.
    [[nodiscard]] double difference(const PixelPicture& picture) const
    {
        double largest = 0.0;
        for (int y = 0; y < m_height; ++y) {
            for (int x = 0; x < m_width; ++x) {
                const Paint paint = paintOf(picture.row(y + m_margin)[x + m_margin]);
                const Paint& expected = m_paints[static_cast<std::size_t>(y * m_width + x)];
                for (std::size_t i = 0; i < paint.size(); ++i) {
                    largest = std::max(largest, std::abs(paint[i] - expected[i]) * 255.0);
                }
            }
        }
        return largest;
    }

private:
    void addPoint(const PointRaster::Points& points, vtkIdType row, const MarkerStencil& stencil)
    {
        std::array<double, 2> place{};
        for (std::size_t i = 0; i < place.size(); ++i) {
            const PointRaster::Axis& axis = points.axes[i];
            place[i] = (static_cast<double>(points.coordinates[2 * row + static_cast<int>(i)])
                        - axis.center)
                    * axis.scale
                + axis.middle;
            // Far away, and not finite.
            if (!(std::abs(place[i]) < 1e6)) {
                return;
            }
        }
        const int left = static_cast<int>(std::ceil(place[0] - stencil.size() / 2.0 - 0.5));
        const int bottom = static_cast<int>(std::ceil(place[1] - stencil.size() / 2.0 - 0.5));
        for (const MarkerStencil::Run& run : stencil.runs()) {
            for (int x = run.begin; x < run.end; ++x) {
                const int pixelX = left + x;
                const int pixelY = bottom + run.y;
                if (pixelX >= 0 && pixelX < m_width && pixelY >= 0 && pixelY < m_height) {
                    Pile& pile = m_piles[static_cast<std::size_t>(pixelY * m_width + pixelX)];
                    pile.rows.push_back(row);
                    pile.offsets.push_back({x, run.y});
                }
            }
        }
    }

    int m_width;
    int m_height;
    int m_margin;
    std::vector<Pile> m_piles;
    std::vector<Paint> m_paints;
};

/// Points around a picture, some far off or not finite. On eighths of a pixel, so that none is between two pixels.
class RandomPoints
{
public:
    RandomPoints(std::mt19937& random, int count, int width, int height)
    {
        std::uniform_int_distribution<int> kind(0, 99);
        std::normal_distribution<double> crowd(0.5, 0.1);
        std::uniform_real_distribution<double> anywhere(-0.1, 1.1);
        constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
        constexpr float infinite = std::numeric_limits<float>::infinity();
        const auto onGrid = [](double value) {
            return static_cast<float>(std::floor(value * 8.0) / 8.0 + 1.0 / 16.0);
        };
        for (int i = 0; i < count; ++i) {
            const int chosen = kind(random);
            const bool isCrowded = chosen < 50;
            const double x = isCrowded ? crowd(random) : anywhere(random);
            const double y = isCrowded ? crowd(random) : anywhere(random);
            m_coordinates.push_back(chosen == 98 ? notANumber : onGrid(x * width));
            m_coordinates.push_back(chosen == 99 ? -infinite : onGrid(y * height));
        }
        // A column and its mirror image, to see that the axes are not mixed up.
        m_points.coordinates = m_coordinates.data();
        m_points.count = count;
        m_points.axes = {{{16.0F, 2.0F, 32.0F}, {-8.0F, -1.0F, static_cast<float>(height) + 8.0F}}};
        for (std::size_t i = 0; i < m_coordinates.size(); i += 2) {
            m_coordinates[i] /= 2.0F;
        }
    }

    /// Paints only some of the points from now on, and rows that there are not.
    void chooseRows(std::mt19937& random)
    {
        std::uniform_int_distribution<vtkIdType> row(-2, m_points.count + 1);
        for (vtkIdType i = 0; i < m_points.count / 2; ++i) {
            m_rows.push_back(row(random));
        }
        m_points.rows = m_rows.data();
        m_points.rowCount = static_cast<vtkIdType>(m_rows.size());
    }

    [[nodiscard]] const PointRaster::Points& points() const { return m_points; }

private:
    std::vector<float> m_coordinates;
    std::vector<vtkIdType> m_rows;
    PointRaster::Points m_points;
};

/// A picture with something in it already.
PixelPicture backgroundPicture(int width, int height, int side)
{
    PixelPicture picture;
    picture.reset(width, height, PointRaster::marginFor(side));
    for (int y = 0; y < picture.rows(); ++y) {
        std::fill(picture.row(y), picture.row(y) + picture.stride() / 2, 0x80204010U);
    }
    return picture;
}

struct Round
{
    int points;
    int width;
    int height;
    float size;
    bool hasRows;
};

class PointRasterTest : public testing::Test
{
protected:
    /// The same raster for pictures and points of all kinds: what one leaves behind must not show in the next.
    PointRaster m_raster;
    std::mt19937 m_random{20260};
    const std::vector<Round> m_rounds = {
        {500, 90, 70, 5.0F, false},
        {60000, 300, 200, 4.0F, false},
        {60000, 300, 200, 7.7F, true},
        {0, 50, 50, 5.0F, false},
        {2000, 60, 300, 1.0F, false},
        {3000, 90, 70, 5.0F, true},
        {1, 8, 8, 20.0F, false},
        {90000, 130, 90, 9.5F, false}};
};

} // namespace

TEST_F(PointRasterTest, PaintsDiscsByTheirNumber)
{
    const OverlapColors opaque({30, 90, 200}, 255, OverlapColors::Deepening::Darker);
    const OverlapColors clear({200, 90, 0}, 90, OverlapColors::Deepening::Brighter);
    for (const Round& round : m_rounds) {
        SCOPED_TRACE(round.points);
        RandomPoints points(m_random, round.points, round.width, round.height);
        if (round.hasRows) {
            points.chooseRows(m_random);
        }
        const MarkerStencil stencil = MarkerStencil::circle(round.size);
        for (const OverlapColors& colors : {opaque, clear}) {
            PixelPicture picture = backgroundPicture(round.width, round.height, stencil.side());
            Reference reference(picture, points.points(), stencil);
            reference.paint([&](const Pile& pile, Paint& paint) {
                cover(paint, paintOf(colors[static_cast<std::uint32_t>(pile.rows.size())]));
            });

            m_raster.paintDiscs(picture, points.points(), stencil, colors);

            EXPECT_LE(reference.difference(picture), 1.0);
        }
    }
}

TEST_F(PointRasterTest, PaintsColoredDiscsInOrderUntilTheyAreACrowd)
{
    for (const Round& round : m_rounds) {
        for (const bool isOpaque : {true, false}) {
            SCOPED_TRACE(round.points);
            RandomPoints points(m_random, round.points, round.width, round.height);
            if (round.hasRows) {
                points.chooseRows(m_random);
            }
            std::vector<unsigned char> colors;
            for (int i = 0; i < round.points; ++i) {
                for (int channel = 0; channel < 3; ++channel) {
                    colors.push_back(static_cast<unsigned char>(m_random()));
                }
                colors.push_back(isOpaque ? 255 : 100);
            }
            const MarkerStencil stencil = MarkerStencil::circle(round.size);
            PixelPicture picture = backgroundPicture(round.width, round.height, stencil.side());
            Reference reference(picture, points.points(), stencil);
            reference.paint([&](const Pile& pile, Paint& paint) {
                if (pile.rows.size() <= PointRaster::threshold) {
                    for (const vtkIdType row : pile.rows) {
                        cover(paint, paintOf(colors.data() + 4 * row));
                    }
                    return;
                }
                Paint mean{};
                const auto count = static_cast<double>(pile.rows.size());
                const double opacity =
                    1.0 - std::pow(1.0 - (isOpaque ? 1.0 : 100.0 / 255.0), count);
                for (const vtkIdType row : pile.rows) {
                    for (std::size_t i = 0; i < 3; ++i) {
                        mean[i] +=
                            colors[static_cast<std::size_t>(4 * row) + i] / 255.0 / count * opacity;
                    }
                }
                mean[3] = opacity;
                cover(paint, mean);
            });

            m_raster.paintColoredDiscs(picture, points.points(), stencil, colors.data(), 4);

            // Each of the layers over one another is rounded.
            EXPECT_LE(reference.difference(picture), isOpaque ? 1.0 : 4.0);
        }
    }
}

TEST_F(PointRasterTest, ColorsWithoutOpacityAreOpaque)
{
    RandomPoints points(m_random, 5000, 90, 70);
    std::vector<unsigned char> three;
    std::vector<unsigned char> four;
    for (int i = 0; i < 5000; ++i) {
        const auto value = static_cast<unsigned char>(m_random());
        three.insert(three.end(), {value, 7, 90});
        four.insert(four.end(), {value, 7, 90, 255});
    }
    const MarkerStencil stencil = MarkerStencil::circle(5.0F);
    PixelPicture left = backgroundPicture(90, 70, stencil.side());
    PixelPicture right = left;

    m_raster.paintColoredDiscs(left, points.points(), stencil, three.data(), 3);
    m_raster.paintColoredDiscs(right, points.points(), stencil, four.data(), 4);

    EXPECT_EQ(left, right);
}

TEST_F(PointRasterTest, RingsCoverEarlierOnesAndGrowTogetherInACrowd)
{
    constexpr int side = 11;
    constexpr std::uint32_t black = 0xFF000000U;
    constexpr std::uint32_t white = 0xFFFFFFFFU;
    constexpr std::uint32_t soft = 0x80808080U;
    PointRaster::Ring ring{
        std::vector<std::uint32_t>(side * side, 0),
        MarkerStencil::disc(side, 5.5),
        MarkerStencil::disc(side, 4.5),
        MarkerStencil::disc(side, 3.0),
        black,
        white,
        {}};
    const auto draw = [&](const MarkerStencil& stencil, std::uint32_t color) {
        for (const MarkerStencil::Run& run : stencil.runs()) {
            for (int x = run.begin; x < run.end; ++x) {
                ring.sprite[static_cast<std::size_t>(run.y * side + x)] = color;
            }
        }
    };
    draw(ring.whole, soft);
    draw(ring.outer, black);
    draw(ring.inner, 0);
    for (const bool isFilled : {false, true}) {
        if (isFilled) {
            ring.fill.emplace(ColorBytes{250, 120, 0}, 255, OverlapColors::Deepening::Darker);
            draw(ring.inner, 0xFF0078FAU);
        }
        for (const Round& round : m_rounds) {
            SCOPED_TRACE(round.points);
            RandomPoints points(m_random, round.points, round.width, round.height);
            if (round.hasRows) {
                points.chooseRows(m_random);
            }
            PixelPicture picture = backgroundPicture(round.width, round.height, side);
            Reference reference(picture, points.points(), ring.whole);
            const auto isCovered = [](const MarkerStencil& stencil,
                                      const std::array<int, 2>& offset) {
                return std::any_of(
                    stencil.runs().begin(),
                    stencil.runs().end(),
                    [&](const MarkerStencil::Run& run) {
                        return run.y == offset[1] && run.begin <= offset[0] && offset[0] < run.end;
                    });
            };
            reference.paint([&](const Pile& pile, Paint& paint) {
                if (pile.rows.size() <= PointRaster::threshold) {
                    for (const std::array<int, 2>& offset : pile.offsets) {
                        cover(
                            paint,
                            paintOf(ring.sprite[static_cast<std::size_t>(
                                offset[1] * side + offset[0])]));
                    }
                    return;
                }
                const auto count = [&](const MarkerStencil& stencil) {
                    return static_cast<std::uint32_t>(std::count_if(
                        pile.offsets.begin(), pile.offsets.end(), [&](const auto& offset) {
                            return isCovered(stencil, offset);
                        }));
                };
                const std::uint32_t inner = count(ring.inner);
                if (inner > 0) {
                    cover(paint, paintOf(ring.fill ? (*ring.fill)[inner] : 0));
                } else {
                    cover(paint, paintOf(count(ring.outer) > 0 ? ring.ring : ring.edge));
                }
            });

            m_raster.paintRings(picture, points.points(), ring);

            EXPECT_LE(reference.difference(picture), 4.0);
        }
    }
}

TEST_F(PointRasterTest, CountsAtOnePixelDoNotRunOver)
{
    // More than fit into 16 bits, all at one place.
    std::vector<float> coordinates(2 * 200000, 20.25F);
    PointRaster::Points points;
    points.coordinates = coordinates.data();
    points.count = 200000;
    const MarkerStencil stencil = MarkerStencil::circle(5.0F);
    const OverlapColors colors({0, 0, 250}, 10, OverlapColors::Deepening::Darker);
    PixelPicture picture;
    picture.reset(40, 40, PointRaster::marginFor(stencil.side()));

    m_raster.paintDiscs(picture, points, stencil, colors);

    EXPECT_EQ(
        picture.row(20 + picture.margin())[20 + picture.margin()], colors[OverlapColors::most]);
}
