#include <dataviews/common/charts/LineEnvelope.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr std::uint32_t largestByte = 255;

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

void LineEnvelope::cover(
    const float* points, std::size_t count, const std::array<Axis, 2>& axes, int width)
{
    m_columns.assign(static_cast<std::size_t>(width), Column{infinity, -infinity, 0.0F});
    // Far enough outside to be nowhere in the picture, and near enough for an int.
    const double farLeft = -1.0;
    const double farRight = width + 1.0;
    float beforeX = 0.0F;
    float beforeY = 0.0F;
    int before = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double exactX = static_cast<double>(points[2 * i]) * axes[0].scale + axes[0].offset;
        const auto x = static_cast<float>(exactX);
        const auto y = static_cast<float>(
            static_cast<double>(points[2 * i + 1]) * axes[1].scale + axes[1].offset);
        // From one pixel beside the picture on, cutting off fractions is the same for all.
        const int column = static_cast<int>(std::clamp(exactX, farLeft, farRight) + 1.0) - 1;
        if (i > 0 && column != before) {
            coverEdge(beforeX, beforeY, x, y);
        }
        if (column >= 0 && column < width) {
            Column& reached = m_columns[static_cast<std::size_t>(column)];
            reached.low = std::min(reached.low, y);
            reached.high = std::max(reached.high, y);
            reached.travel += column == before && i > 0 ? std::abs(y - beforeY) : 0.0F;
        }
        beforeX = x;
        beforeY = y;
        before = column;
    }
}

void LineEnvelope::reach(int column, float y)
{
    if (column >= 0 && column < static_cast<int>(m_columns.size())) {
        Column& reached = m_columns[static_cast<std::size_t>(column)];
        reached.low = std::min(reached.low, y);
        reached.high = std::max(reached.high, y);
    }
}

void LineEnvelope::coverEdge(float fromX, float fromY, float toX, float toY)
{
    const auto width = static_cast<float>(m_columns.size());
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
        reach(border - 1, y);
        reach(border, y);
    }
}

int LineEnvelope::draw(PixelPicture& picture, int height, const Look& look) const
{
    // The pixels whose middles the strokes reach; those of a column are as wide as the line.
    struct Run
    {
        int begin;
        int end;
    };

    const int width = static_cast<int>(m_columns.size());
    const float half = look.lineWidth / 2.0F;
    const int side = std::max(1, static_cast<int>(std::lround(look.lineWidth)));
    std::vector<Run> runs(m_columns.size(), Run{height, 0});
    std::vector<float> strokes(m_columns.size(), 1.0F); // over one another
    int bottom = height;
    int top = 0;
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
        bottom = std::min(bottom, begin);
        top = std::max(top, end);
        // One as long as the line keeps its direction; others reach into as many columns as the line is wide.
        const float repeats = reached.travel / std::max(reached.high - reached.low, look.lineWidth);
        const float here = 1.0F + look.lineWidth * (repeats - 1.0F);
        const int firstColumn = std::max(0, column - (side - 1) / 2);
        const int lastColumn = std::min(width - 1, column + side / 2);
        for (int i = firstColumn; i <= lastColumn; ++i) {
            const auto index = static_cast<std::size_t>(i);
            runs[index].begin = std::min(runs[index].begin, begin);
            runs[index].end = std::max(runs[index].end, end);
            strokes[index] = std::max(strokes[index], here);
        }
    }
    if (bottom >= top) {
        picture.reset(0, 0, 0);
        return 0;
    }

    const double through = 1.0 - static_cast<double>(look.color[3]) / largestByte;
    std::vector<std::uint32_t> pixels(m_columns.size());
    std::transform(strokes.begin(), strokes.end(), pixels.begin(), [&](float count) {
        return premultiplied(look.color, 1.0 - std::pow(through, static_cast<double>(count)));
    });
    picture.reset(width, top - bottom, 0);
    for (int y = bottom; y < top; ++y) {
        std::uint32_t* const row = picture.row(y - bottom);
        for (std::size_t column = 0; column < runs.size(); ++column) {
            const bool isCovered = y >= runs[column].begin && y < runs[column].end;
            row[column] = isCovered ? pixels[column] : 0U;
        }
    }
    return bottom;
}
