#include <dataviews/common/charts/LineEnvelope.h>
#include <dataviews/common/charts/forEachAtOnce.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr std::uint32_t largestByte = 255;
constexpr std::size_t verticesAtOnce =
    32768; ///< of a thread; the same however many threads there are
constexpr int rowsAtOnce = 64;

/// As in PixelPicture.
std::uint32_t premultiplied(const std::array<unsigned char, 4>& color, double opacity)
{
    const auto byte = static_cast<std::uint32_t>(std::lround(opacity * largestByte));
    std::uint32_t pixel = byte << 24U;
    for (unsigned i = 0; i < 3; ++i) {
        pixel |= (color[i] * byte + largestByte / 2) / largestByte << (8U * i);
    }
    return pixel;
}

} // namespace

/// The pixels whose middles the strokes reach, by columns.
struct LineEnvelope::Trace
{
    int bottom = 0; ///< the lowest row with one
    int top = 0; ///< the first row above
    std::vector<int> begins;
    std::vector<int> ends;
    std::vector<std::uint32_t> pixels;

    /// Fills a \p picture, in which \p bottom is the row of the lowest one.
    void fill(PixelPicture& picture, int first) const
    {
        const int blocks = (top - bottom + rowsAtOnce - 1) / rowsAtOnce;
        forEachAtOnce(static_cast<std::size_t>(blocks), [&](std::size_t block) {
            const int begin = bottom + static_cast<int>(block) * rowsAtOnce;
            const int end = std::min(top, begin + rowsAtOnce);
            for (int y = begin; y < end; ++y) {
                fillRow(picture.row(y - bottom + first), y);
            }
        });
    }

private:
    /// Without branches, so that it handles several columns at a time.
    void fillRow(std::uint32_t* row, int y) const
    {
        const int* const begin = begins.data();
        const int* const end = ends.data();
        const std::uint32_t* const pixel = pixels.data();
        const std::size_t count = pixels.size();
        for (std::size_t column = 0; column < count; ++column) {
            const bool isCovered = (y >= begin[column]) & (y < end[column]);
            row[column] = isCovered ? pixel[column] : 0U;
        }
    }
};

LineEnvelope::Vertices LineEnvelope::inSight(const Vertices& vertices, const Axis& axis, int width)
{
    struct Vertex
    {
        float x;
        float y;
    };

    const auto unitsAt = [&](int pixel) {
        return static_cast<float>((pixel - axis.offset) / axis.scale);
    };
    const auto [left, right] = std::minmax({unitsAt(0), unitsAt(width)});
    const auto* const all = reinterpret_cast<const Vertex*>(vertices.points);
    const auto* const end = all + vertices.count;
    const auto* first = std::lower_bound(
        all, end, left, [](const Vertex& vertex, float x) { return vertex.x < x; });
    const auto* last = std::upper_bound(
        first, end, right, [](float x, const Vertex& vertex) { return x < vertex.x; });
    // The edges into the picture and out of it.
    first -= first == all ? 0 : 1;
    last += last == end ? 0 : 1;
    return {&first->x, static_cast<std::size_t>(last - first)};
}

void LineEnvelope::cover(const Vertices& vertices, const std::array<Axis, 2>& axes, int width)
{
    const Columns nothing(static_cast<std::size_t>(width), Column{infinity, -infinity, 0.0F});
    m_columns = nothing;
    const std::size_t parts = (vertices.count + verticesAtOnce - 1) / verticesAtOnce;
    if (parts <= 1) {
        coverPart(m_columns, vertices, 0, vertices.count, axes);
        return;
    }
    m_parts.resize(parts);
    forEachAtOnce(parts, [&](std::size_t part) {
        m_parts[part] = nothing;
        const std::size_t first = part * verticesAtOnce;
        coverPart(
            m_parts[part], vertices, first, std::min(vertices.count, first + verticesAtOnce), axes);
    });
    for (const Columns& part : m_parts) {
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            m_columns[i].low = std::min(m_columns[i].low, part[i].low);
            m_columns[i].high = std::max(m_columns[i].high, part[i].high);
            m_columns[i].travel += part[i].travel;
        }
    }
}

void LineEnvelope::coverPart(
    Columns& columns,
    const Vertices& vertices,
    std::size_t first,
    std::size_t last,
    const std::array<Axis, 2>& axes)
{
    const float* const points = vertices.points;
    const int width = static_cast<int>(columns.size());
    // Far enough outside to be nowhere in the picture, and near enough for an int.
    const double farLeft = -1.0;
    const double farRight = width + 1.0;
    float beforeX = 0.0F;
    float beforeY = 0.0F;
    int before = 0;
    const std::size_t begin = first == 0 ? 0 : first - 1;
    for (std::size_t i = begin; i < last; ++i) {
        const double exactX = static_cast<double>(points[2 * i]) * axes[0].scale + axes[0].offset;
        const auto x = static_cast<float>(exactX);
        const auto y = static_cast<float>(
            static_cast<double>(points[2 * i + 1]) * axes[1].scale + axes[1].offset);
        // From one pixel beside the picture on, cutting off fractions is the same for all.
        const int column = static_cast<int>(std::clamp(exactX, farLeft, farRight) + 1.0) - 1;
        if (i > begin && column != before) {
            coverEdge(columns, beforeX, beforeY, x, y);
        }
        if (column >= 0 && column < width) {
            Column& reached = columns[static_cast<std::size_t>(column)];
            reached.low = std::min(reached.low, y);
            reached.high = std::max(reached.high, y);
            reached.travel += column == before && i > begin ? std::abs(y - beforeY) : 0.0F;
        }
        beforeX = x;
        beforeY = y;
        before = column;
    }
}

void LineEnvelope::reach(Columns& columns, int column, float y)
{
    if (column >= 0 && column < static_cast<int>(columns.size())) {
        Column& reached = columns[static_cast<std::size_t>(column)];
        reached.low = std::min(reached.low, y);
        reached.high = std::max(reached.high, y);
    }
}

void LineEnvelope::coverEdge(Columns& columns, float fromX, float fromY, float toX, float toY)
{
    const auto width = static_cast<float>(columns.size());
    const float left = std::max(std::min(fromX, toX), 0.0F);
    const float right = std::min(std::max(fromX, toX), width);
    // Also if the edge lies beside the picture.
    if (!(left < right)) {
        return;
    }
    const int first = static_cast<int>(std::ceil(left));
    const int last = static_cast<int>(std::floor(right));
    for (int border = first; border <= last; ++border) {
        const float y =
            fromY + (toY - fromY) * ((static_cast<float>(border) - fromX) / (toX - fromX));
        reach(columns, border - 1, y);
        reach(columns, border, y);
    }
}

LineEnvelope::Trace LineEnvelope::trace(int height, const Look& look) const
{
    const int width = static_cast<int>(m_columns.size());
    const float half = look.lineWidth / 2.0F;
    const int side = std::max(1, static_cast<int>(std::lround(look.lineWidth)));
    Trace trace;
    trace.begins.assign(m_columns.size(), height);
    trace.ends.assign(m_columns.size(), 0);
    std::vector<float> strokes(m_columns.size(), 1.0F); // over one another
    trace.bottom = height;
    for (int column = 0; column < width; ++column) {
        const Column& reached = m_columns[static_cast<std::size_t>(column)];
        if (!(reached.low <= reached.high)) {
            continue;
        }
        // Flat parts are as high as the line is wide, too.
        const float missing = std::max(0.0F, half - (reached.high - reached.low) / 2.0F);
        const auto limit = static_cast<float>(height);
        const int begin =
            static_cast<int>(std::lround(std::clamp(reached.low - missing, 0.0F, limit)));
        const int end =
            static_cast<int>(std::lround(std::clamp(reached.high + missing, 0.0F, limit)));
        if (begin >= end) {
            continue;
        }
        trace.bottom = std::min(trace.bottom, begin);
        trace.top = std::max(trace.top, end);
        // One as long as the line keeps its direction; others reach into as many columns as the line is wide.
        const float repeats = reached.travel / std::max(reached.high - reached.low, look.lineWidth);
        const float here = 1.0F + look.lineWidth * (repeats - 1.0F);
        const int firstColumn = std::max(0, column - (side - 1) / 2);
        const int lastColumn = std::min(width - 1, column + side / 2);
        for (int i = firstColumn; i <= lastColumn; ++i) {
            const auto index = static_cast<std::size_t>(i);
            trace.begins[index] = std::min(trace.begins[index], begin);
            trace.ends[index] = std::max(trace.ends[index], end);
            strokes[index] = std::max(strokes[index], here);
        }
    }
    if (trace.bottom >= trace.top) {
        trace.bottom = 0;
        trace.top = 0;
        return trace;
    }
    const double through = 1.0 - static_cast<double>(look.color[3]) / largestByte;
    trace.pixels.resize(m_columns.size());
    std::transform(strokes.begin(), strokes.end(), trace.pixels.begin(), [&](float count) {
        return premultiplied(look.color, 1.0 - std::pow(through, static_cast<double>(count)));
    });
    return trace;
}

int LineEnvelope::draw(PixelPicture& picture, int height, const Look& look) const
{
    const Trace line = trace(height, look);
    if (line.bottom == line.top) {
        picture.reset(0, 0, 0);
        return 0;
    }
    picture.resize(static_cast<int>(m_columns.size()), line.top - line.bottom, 0);
    line.fill(picture, 0);
    return line.bottom;
}

void LineEnvelope::drawInto(PixelPicture& picture, const Look& look) const
{
    const Trace line = trace(picture.rows(), look);
    line.fill(picture, line.bottom);
}
