#include <dataviews/common/charts/lineInSight.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr std::size_t coordinates = 2;

/// The vertices of one column of pixels that count.
struct Column
{
    std::size_t first;
    std::size_t lowest;
    std::size_t highest;
    std::size_t last;

    void appendTo(std::vector<std::size_t>& vertices) const
    {
        std::array<std::size_t, 4> places{
            first, std::min(lowest, highest), std::max(lowest, highest), last};
        const auto end = std::unique(places.begin(), places.end());
        vertices.insert(vertices.end(), places.begin(), end);
    }
};

} // namespace

std::vector<std::size_t> lineInSight(const float* points, std::size_t count, const LineSight& sight)
{
    const auto x = [points](std::size_t vertex) { return points[coordinates * vertex]; };
    const auto y = [points](std::size_t vertex) { return points[coordinates * vertex + 1]; };
    /// The first vertex whose X is not below \p limit, or is above it.
    const auto firstFrom = [&](float limit, bool isAbove) {
        std::size_t begin = 0;
        std::size_t end = count;
        while (begin < end) {
            const std::size_t middle = begin + (end - begin) / 2;
            if (x(middle) < limit || (isAbove && x(middle) == limit)) {
                begin = middle + 1;
            } else {
                end = middle;
            }
        }
        return begin;
    };

    const std::size_t begin = firstFrom(sight.left, false);
    const std::size_t end = firstFrom(sight.right, true);
    std::vector<std::size_t> vertices;
    if (begin > 0) {
        vertices.push_back(begin - 1);
    }
    const auto columnOf = [&](std::size_t vertex) {
        return std::floor((x(vertex) - sight.left) / sight.columnWidth);
    };
    for (std::size_t vertex = begin; vertex < end;) {
        Column column{vertex, vertex, vertex, vertex};
        const float number = columnOf(vertex);
        for (++vertex; vertex < end && columnOf(vertex) == number; ++vertex) {
            column.lowest = y(vertex) < y(column.lowest) ? vertex : column.lowest;
            column.highest = y(vertex) > y(column.highest) ? vertex : column.highest;
            column.last = vertex;
        }
        column.appendTo(vertices);
    }
    if (end < count) {
        vertices.push_back(end);
    }
    return vertices;
}
