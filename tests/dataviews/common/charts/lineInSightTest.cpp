#include <dataviews/common/charts/lineInSight.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace {

using Span = std::pair<float, float>;

/// What the vertices and the edges of the line through \p vertices reach in each column of the picture.
std::map<int, Span> spans(
    const std::vector<float>& points,
    const std::vector<std::size_t>& vertices,
    const LineSight& sight)
{
    std::map<int, Span> result;
    const auto reach = [&](int column, float y) {
        const auto [span, isNew] = result.try_emplace(column, y, y);
        span->second.first = std::min(span->second.first, y);
        span->second.second = std::max(span->second.second, y);
    };
    const auto columnOf = [&](float x) {
        return static_cast<int>(std::floor((x - sight.left) / sight.columnWidth));
    };
    const int columnCount = columnOf(sight.right) + 1;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const float x = points[2 * vertices[i]];
        const float y = points[2 * vertices[i] + 1];
        if (x >= sight.left && x <= sight.right) {
            reach(columnOf(x), y);
        }
        if (i + 1 == vertices.size()) {
            break;
        }
        // Where the edge to the next vertex crosses the middles of columns.
        const float nextX = points[2 * vertices[i + 1]];
        const float nextY = points[2 * vertices[i + 1] + 1];
        for (int column = std::max(0, columnOf(x) + 1);
             column < std::min(columnCount, columnOf(nextX));
             ++column) {
            const float middle =
                sight.left + (static_cast<float>(column) + 0.5F) * sight.columnWidth;
            reach(column, y + (nextY - y) * (middle - x) / (nextX - x));
        }
    }
    return result;
}

} // namespace

TEST(LineInSightTest, GivesThePictureOfTheWholeLineWithFewVertices)
{
    std::mt19937 random(3);
    for (const std::size_t count : {0U, 1U, 2U, 50U, 3000U}) {
        for (const LineSight& sight :
             {LineSight{0.0F, 10.0F, 0.5F},
              LineSight{2.0F, 3.0F, 0.01F},
              LineSight{-5.0F, -1.0F, 1.0F},
              LineSight{11.0F, 12.0F, 1.0F}}) {
            SCOPED_TRACE(testing::Message() << count << " vertices from " << sight.left);
            std::vector<float> xs(count);
            std::generate(xs.begin(), xs.end(), [&] {
                // Many have the same X.
                return std::round(std::uniform_real_distribution<float>(0.0F, 10.0F)(random) * 200)
                    / 200;
            });
            std::sort(xs.begin(), xs.end());
            std::vector<float> points;
            std::vector<std::size_t> all;
            for (std::size_t i = 0; i < count; ++i) {
                points.insert(points.end(), {xs[i], std::normal_distribution<float>()(random)});
                all.push_back(i);
            }

            const std::vector<std::size_t> vertices = lineInSight(points.data(), count, sight);

            EXPECT_TRUE(std::is_sorted(vertices.begin(), vertices.end()));
            EXPECT_EQ(std::adjacent_find(vertices.begin(), vertices.end()), vertices.end());
            const double columns = std::ceil((sight.right - sight.left) / sight.columnWidth) + 1;
            EXPECT_LE(static_cast<double>(vertices.size()), 4 * columns + 2);
            const std::map<int, Span> expected = spans(points, all, sight);
            const std::map<int, Span> actual = spans(points, vertices, sight);
            ASSERT_EQ(actual.size(), expected.size());
            for (const auto& [column, span] : expected) {
                EXPECT_FLOAT_EQ(actual.at(column).first, span.first) << "column " << column;
                EXPECT_FLOAT_EQ(actual.at(column).second, span.second) << "column " << column;
            }
        }
    }
}
