#include <dataviews/common/charts/PointRaster.h>
#include <dataviews/common/charts/forEachAtOnce.h>
#include <dataviews/common/charts/pixelsOver.h>

#include <vtkSMPTools.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr int tileBits = 3; ///< tiles are 8 pixels wide and high
constexpr int tileSide = 1 << tileBits;
constexpr int bandBits = 5; ///< bands of 32 rows, of which the sums fit into a near cache
constexpr std::uint32_t opaque = 255;
constexpr vtkIdType blockSize = 2048; ///< points that stay in the nearest cache from step to step
constexpr vtkIdType pointsWorthThread = 20000;

/// The place of points that are not in the picture: a row of its own behind the others.
std::uint32_t outsideOf(int rows)
{
    return static_cast<std::uint32_t>(rows) << 16U;
}

int rowOf(std::uint32_t place)
{
    return static_cast<int>(place >> 16U);
}

int columnOf(std::uint32_t place)
{
    return static_cast<int>(place & 0xFFFFU);
}

std::size_t indexOf(std::uint32_t place, int stride)
{
    return static_cast<std::size_t>(place >> 16U) * static_cast<std::size_t>(stride)
        + (place & 0xFFFFU);
}

/// Red, green, blue and opacity from the lowest byte on.
std::uint32_t bytesOf(const unsigned char* color, int channels)
{
    return color[0] | static_cast<std::uint32_t>(color[1]) << 8U
        | static_cast<std::uint32_t>(color[2]) << 16U | (channels > 3 ? color[3] : opaque) << 24U;
}

/// Adds red, green, blue and opacity of \p color.
void addTo(std::array<std::uint32_t, 4>& sums, std::uint32_t color)
{
    constexpr std::uint32_t byte = 0xFF;
    sums[0] += color & byte;
    sums[1] += (color >> 8U) & byte;
    sums[2] += (color >> 16U) & byte;
    sums[3] += color >> 24U;
}

std::size_t threadCount()
{
    constexpr int mostThreads = 8; // more would be busy with the counts of one another
    return static_cast<std::size_t>(
        std::clamp(vtkSMPTools::GetEstimatedNumberOfThreads(), 1, mostThreads));
}

/// From points to the places where their markers begin. The loop is free of branches, so that it handles several points
/// at a time.
class Placement
{
public:
    Placement(
        const PixelPicture& picture,
        const std::array<PointRaster::Axis, 2>& axes,
        const MarkerStencil& stencil)
        : m_axes(axes)
        , m_largestX(static_cast<float>(picture.width() + picture.margin() - 1))
        , m_largestY(static_cast<float>(picture.height() + picture.margin() - 1))
        , m_outside(static_cast<int>(outsideOf(picture.rows())))
    {
        constexpr float middle = 0.5F;
        for (PointRaster::Axis& axis : m_axes) {
            axis.middle += static_cast<float>(picture.margin()) - stencil.size() / 2.0F - middle;
        }
    }

    void operator()(const float* points, vtkIdType count, std::uint32_t* places) const
    {
        const PointRaster::Axis x = m_axes[0];
        const PointRaster::Axis y = m_axes[1];
        const float largestX = m_largestX;
        const float largestY = m_largestY;
        const int outside = m_outside;
        for (vtkIdType i = 0; i < count; ++i) {
            const float placeX = (points[2 * i] - x.center) * x.scale + x.middle;
            const float placeY = (points[2 * i + 1] - y.center) * y.scale + y.middle;
            // False for what is not finite, too.
            const bool isInside =
                (placeX >= 0.0F) & (placeX <= largestX) & (placeY >= 0.0F) & (placeY <= largestY);
            const float safeX = isInside ? placeX : 0.0F;
            const float safeY = isInside ? placeY : 0.0F;
            int column = static_cast<int>(safeX);
            int row = static_cast<int>(safeY);
            column += static_cast<float>(column) < safeX ? 1 : 0;
            row += static_cast<float>(row) < safeY ? 1 : 0;
            places[i] = static_cast<std::uint32_t>(isInside ? (row << 16) + column : outside);
        }
    }

private:
    std::array<PointRaster::Axis, 2> m_axes;
    float m_largestX;
    float m_largestY;
    int m_outside;
};

/// The coordinates of some points in a row of their own.
const float* gather(
    const PointRaster::Points& points, vtkIdType begin, vtkIdType end, std::vector<float>& buffer)
{
    if (points.rows == nullptr) {
        return points.coordinates + 2 * begin;
    }
    buffer.resize(static_cast<std::size_t>(2 * blockSize));
    float* out = buffer.data();
    for (vtkIdType i = begin; i < end; ++i, out += 2) {
        const vtkIdType row = points.rows[i];
        if (row >= 0 && row < points.count) {
            out[0] = points.coordinates[2 * row];
            out[1] = points.coordinates[2 * row + 1];
        } else {
            out[0] = out[1] = std::numeric_limits<float>::quiet_NaN();
        }
    }
    return buffer.data();
}

vtkIdType countOf(const PointRaster::Points& points)
{
    return points.rows == nullptr ? points.count : points.rowCount;
}

struct Range
{
    int begin = 0;
    int end = 0;
};

/// The part of \p range that is no margin of \p picture.
Range visibleOf(const Range& range, const PixelPicture& picture)
{
    return {
        std::max(range.begin, picture.margin()),
        std::min(range.end, picture.margin() + picture.width())};
}

} // namespace

/// What one thread counts of the points.
struct PointRaster::Part
{
    std::vector<std::uint16_t> counts; ///< by pixel
    std::vector<unsigned char> isUsed; ///< by row of pixels
    std::vector<float> block;
    std::vector<std::size_t> next; ///< where its next point in each band goes
    std::vector<std::uint32_t>
        sparse; ///< the places of its points whose markers can be seen one by one
};

/// Counts, row by row upward, how many markers lie over pixels.
///
/// A marker is some runs of pixels; the points in a run are a difference of two sums along the row.
class PointRaster::Counter
{
public:
    void start(const std::vector<Part>& parts, std::size_t partCount, int stride, int side)
    {
        m_parts = &parts;
        m_partCount = partCount;
        m_stride = stride;
        m_side = side;
        m_rows.resize(static_cast<std::size_t>(side));
        for (Row& row : m_rows) {
            row.y = -1;
            row.sums.resize(static_cast<std::size_t>(stride + 2 * side + 1));
        }
        m_overlap.resize(static_cast<std::size_t>(stride));
    }

    /// Gives where there are any; see overlap().
    [[nodiscard]] Range count(int y, const MarkerStencil& stencil)
    {
        Range range{m_stride, 0};
        for (const MarkerStencil::Run& run : stencil.runs()) {
            const Row& row = rowAt(y - run.y);
            if (row.points.begin < row.points.end) {
                range.begin = std::min(range.begin, row.points.begin + run.begin);
                range.end = std::max(range.end, row.points.end - 1 + run.end);
            }
        }
        range.begin = std::max(range.begin, 0);
        range.end = std::min(range.end, m_stride);
        if (range.begin >= range.end) {
            return {};
        }
        std::fill(m_overlap.begin() + range.begin, m_overlap.begin() + range.end, 0U);
        for (const MarkerStencil::Run& run : stencil.runs()) {
            const Row& row = rowAt(y - run.y);
            if (row.points.begin >= row.points.end) {
                continue;
            }
            const int begin = std::max(range.begin, row.points.begin + run.begin);
            const int end = std::min(range.end, row.points.end - 1 + run.end);
            const std::uint32_t* const upper = row.sums.data() + m_side + 1 - run.begin;
            const std::uint32_t* const lower = row.sums.data() + m_side + 1 - run.end;
            std::uint32_t* const overlap = m_overlap.data();
            for (int x = begin; x < end; ++x) {
                overlap[x] += upper[x] - lower[x];
            }
        }
        return range;
    }

    /// As counted last; valid where there are any.
    [[nodiscard]] const std::uint32_t* overlap() const { return m_overlap.data(); }

    [[nodiscard]] std::uint32_t pointsIn(int y) { return rowAt(y).total; }

private:
    struct Row
    {
        int y = -1;
        Range points;
        std::uint32_t total = 0;
        std::vector<std::uint32_t>
            sums; ///< of the points left of a pixel, from one side left of the row on
    };

    const Row& rowAt(int y)
    {
        Row& row = m_rows[static_cast<std::size_t>(y % m_side)];
        if (row.y != y) {
            sum(y, row);
        }
        return row;
    }

    void sum(int y, Row& row) const
    {
        row.y = y;
        row.points = {};
        row.total = 0;
        const auto first = static_cast<std::size_t>(y) * static_cast<std::size_t>(m_stride);
        std::uint32_t* const sums = row.sums.data() + m_side;
        bool isEmpty = true;
        for (std::size_t i = 0; i < m_partCount; ++i) {
            const Part& part = (*m_parts)[i];
            if (part.isUsed[static_cast<std::size_t>(y)] == 0) {
                continue;
            }
            const std::uint16_t* const counts = part.counts.data() + first;
            if (isEmpty) {
                std::copy(counts, counts + m_stride, sums + 1);
                isEmpty = false;
            } else {
                for (int x = 0; x < m_stride; ++x) {
                    sums[x + 1] += counts[x];
                }
            }
        }
        if (isEmpty) {
            return;
        }
        std::fill(row.sums.begin(), row.sums.begin() + m_side + 1, 0U);
        std::uint32_t total = 0;
        for (int x = 1; x <= m_stride; ++x) {
            total += sums[x];
            sums[x] = total;
        }
        std::fill(sums + m_stride + 1, sums + m_stride + m_side + 1, total);
        row.total = total;
        row.points.begin =
            static_cast<int>(std::upper_bound(sums, sums + m_stride + 1, 0U) - sums) - 1;
        row.points.end =
            static_cast<int>(std::lower_bound(sums, sums + m_stride + 1, total) - sums);
    }

    const std::vector<Part>* m_parts = nullptr;
    std::size_t m_partCount = 0;
    int m_stride = 0;
    int m_side = 0;
    std::vector<Row> m_rows; ///< as many as the marker is high, by their place modulo that
    std::vector<std::uint32_t> m_overlap;
};

/// The same for sums of colors.
class PointRaster::ColorSums
{
public:
    using Sums = std::array<std::uint32_t, 4>;

    void start(
        const std::vector<Sums>& sums,
        const std::vector<std::uint32_t>& rowTotals,
        int stride,
        int side)
    {
        m_colors = &sums;
        m_rowTotals = &rowTotals;
        m_stride = stride;
        m_side = side;
        m_rows.resize(static_cast<std::size_t>(side));
        for (Row& row : m_rows) {
            row.y = -1;
            row.sums.resize(static_cast<std::size_t>(stride + 2 * side + 1));
        }
        m_result.resize(static_cast<std::size_t>(stride));
    }

    /// The sums of the colors of all markers over the pixels of \p range; see result().
    void sum(int y, const Range& range, const MarkerStencil& stencil)
    {
        std::fill(m_result.begin() + range.begin, m_result.begin() + range.end, Sums{});
        for (const MarkerStencil::Run& run : stencil.runs()) {
            const Row& row = rowAt(y - run.y);
            if (!row.hasPoints) {
                continue;
            }
            const Sums* const upper = row.sums.data() + m_side + 1 - run.begin;
            const Sums* const lower = row.sums.data() + m_side + 1 - run.end;
            for (int x = range.begin; x < range.end; ++x) {
                Sums& result = m_result[static_cast<std::size_t>(x)];
                for (std::size_t i = 0; i < result.size(); ++i) {
                    result[i] += upper[x][i] - lower[x][i];
                }
            }
        }
    }

    [[nodiscard]] const Sums* result() const { return m_result.data(); }

private:
    struct Row
    {
        int y = -1;
        bool hasPoints = false;
        std::vector<Sums> sums;
    };

    const Row& rowAt(int y)
    {
        Row& row = m_rows[static_cast<std::size_t>(y % m_side)];
        if (row.y == y) {
            return row;
        }
        row.y = y;
        row.hasPoints = (*m_rowTotals)[static_cast<std::size_t>(y)] > 0;
        if (!row.hasPoints) {
            return row;
        }
        const Sums* const colors =
            m_colors->data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_stride);
        Sums* const sums = row.sums.data() + m_side;
        std::fill(row.sums.data(), sums + 1, Sums{});
        Sums total{};
        for (int x = 0; x < m_stride; ++x) {
            for (std::size_t i = 0; i < total.size(); ++i) {
                total[i] += colors[x][i];
            }
            sums[x + 1] = total;
        }
        std::fill(sums + m_stride + 1, sums + m_stride + m_side + 1, total);
        return row;
    }

    const std::vector<Sums>* m_colors = nullptr;
    const std::vector<std::uint32_t>* m_rowTotals = nullptr;
    int m_stride = 0;
    int m_side = 0;
    std::vector<Row> m_rows;
    std::vector<Sums> m_result;
};

/// Some rows of the picture, which one thread paints.
struct PointRaster::Band
{
    int first = 0;
    int last = 0; ///< the first row behind
    Counter counter;
    ColorSums colors;
    std::vector<std::uint32_t> wide;
};

PointRaster::Axis PointRaster::axisOf(double scale, double offset, int pixels)
{
    const auto center = static_cast<float>((pixels / 2.0 - offset) / scale);
    return {
        center,
        static_cast<float>(scale),
        static_cast<float>(static_cast<double>(center) * scale + offset)};
}

PointRaster::PointRaster()
    : m_parts(threadCount())
{}

PointRaster::~PointRaster() = default;

void PointRaster::placePoints(
    const PixelPicture& picture, const Points& points, const MarkerStencil& stencil)
{
    const vtkIdType count = countOf(points);
    const auto rows = static_cast<std::size_t>(picture.rows()) + 1;
    const auto size = rows * static_cast<std::size_t>(picture.stride());
    m_places.resize(static_cast<std::size_t>(count));
    m_partCount = std::clamp(
        static_cast<std::size_t>(count / pointsWorthThread), std::size_t(1), m_parts.size());
    m_stride = picture.stride();
    const Placement place(picture, points.axes, stencil);
    forEachAtOnce(m_partCount, [&](std::size_t index) {
        Part& part = m_parts[index];
        if (part.isUsed.size() != rows || part.counts.size() != size) {
            part.counts.assign(size, 0);
            part.isUsed.assign(rows, 0);
        }
        for (std::size_t y = 0; y < rows; ++y) {
            if (part.isUsed[y] != 0) {
                part.isUsed[y] = 0;
                const auto row = part.counts.begin() + static_cast<std::ptrdiff_t>(y) * m_stride;
                std::fill(row, row + m_stride, std::uint16_t(0));
            }
        }
        const auto first = static_cast<vtkIdType>(firstOf(index));
        const auto last = static_cast<vtkIdType>(firstOf(index + 1));
        std::uint16_t* const counts = part.counts.data();
        unsigned char* const isUsed = part.isUsed.data();
        const int stride = picture.stride();
        for (vtkIdType begin = first; begin < last; begin += blockSize) {
            const vtkIdType end = std::min(last, begin + blockSize);
            std::uint32_t* const places = m_places.data() + begin;
            place(gather(points, begin, end, part.block), end - begin, places);
            for (vtkIdType i = 0; i < end - begin; ++i) {
                std::uint16_t& pixel = counts[indexOf(places[i], stride)];
                pixel = static_cast<std::uint16_t>(pixel + (pixel != 0xFFFFU ? 1 : 0));
                isUsed[rowOf(places[i])] = 1;
            }
        }
    });
}

void PointRaster::prepareBands(const PixelPicture& picture, int side)
{
    // At borders between tiles, of which each thread has its own.
    const int first = picture.margin() >> tileBits;
    const int last = ((picture.margin() + picture.height() - 1) >> tileBits) + 1;
    constexpr std::size_t bandsPerThread = 2;
    const std::size_t wanted = m_partCount == 1 ? 1 : m_partCount * bandsPerThread;
    const auto count = std::clamp(wanted, std::size_t(1), static_cast<std::size_t>(last - first));
    m_bands.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto border = [&](std::size_t index) {
            const int tile =
                first + static_cast<int>(static_cast<std::size_t>(last - first) * index / count);
            return std::clamp(
                tile << tileBits, picture.margin(), picture.margin() + picture.height());
        };
        m_bands[i].first = border(i);
        m_bands[i].last = border(i + 1);
        m_bands[i].counter.start(m_parts, m_partCount, m_stride, side);
    }
}

void PointRaster::paintDiscs(
    PixelPicture& picture,
    const Points& points,
    const MarkerStencil& stencil,
    const OverlapColors& colors,
    const OverlapColors* veil)
{
    placePoints(picture, points, stencil);
    prepareBands(picture, stencil.side());
    forEachAtOnce(m_bands.size(), [&](std::size_t index) {
        Band& band = m_bands[index];
        for (int y = band.first; y < band.last; ++y) {
            const Range range = visibleOf(band.counter.count(y, stencil), picture);
            if (range.begin >= range.end) {
                continue;
            }
            const std::uint32_t* const overlap = band.counter.overlap();
            band.wide.resize(static_cast<std::size_t>(m_stride));
            std::uint32_t* const upper = band.wide.data();
            for (const OverlapColors* layer : {&colors, veil}) {
                if (layer == nullptr) {
                    continue;
                }
                for (int x = range.begin; x < range.end; ++x) {
                    upper[x] = (*layer)[overlap[x]]; // none where there is no marker
                }
                paintOver(
                    picture.row(y) + range.begin,
                    upper + range.begin,
                    static_cast<std::size_t>(range.end - range.begin));
            }
        }
    });
}

// ---- where the order counts

void PointRaster::prepareTiles(const PixelPicture& picture)
{
    const auto size = static_cast<std::size_t>(picture.rows()) * static_cast<std::size_t>(m_stride);
    m_overlap.resize(size);
    m_tileStride = (m_stride >> tileBits) + 1;
    m_tiles.assign(
        static_cast<std::size_t>(m_tileStride)
            * static_cast<std::size_t>((picture.rows() >> tileBits) + 1),
        0);
    m_rowTotals.assign(static_cast<std::size_t>(picture.rows()) + 1, 0);
}

void PointRaster::noteOverlap(int y, int begin, int end, const std::uint32_t* overlap)
{
    std::uint16_t* const out =
        m_overlap.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_stride);
    unsigned char* const tiles = m_tiles.data()
        + static_cast<std::size_t>(y >> tileBits) * static_cast<std::size_t>(m_tileStride);
    constexpr std::uint32_t most = 0xFFFF;
    for (int x = begin; x < end; ++x) {
        out[x] = static_cast<std::uint16_t>(std::min(overlap[x], most));
    }
    for (int x = begin; x < end;) {
        const int tile = x >> tileBits;
        const int tileEnd = std::min(end, (tile + 1) << tileBits);
        bool isSparse = false;
        for (; x < tileEnd; ++x) {
            isSparse = isSparse | (overlap[x] - 1U < threshold);
        }
        tiles[tile] = static_cast<unsigned char>(tiles[tile] | (isSparse ? 1 : 0));
    }
}

void PointRaster::spreadTiles(const PixelPicture& picture, int side)
{
    // A marker that begins in a tile reaches so many further.
    const int reach = (side + tileSide - 2) >> tileBits;
    const int tileRows = (picture.rows() >> tileBits) + 1;
    for (int y = 0; y < tileRows; ++y) {
        unsigned char* const tiles = m_tiles.data() + static_cast<std::ptrdiff_t>(y) * m_tileStride;
        // Upward, so that what is read is not spread yet.
        for (int above = 1; above <= reach && y + above < tileRows; ++above) {
            for (int x = 0; x < m_tileStride; ++x) {
                tiles[x] = static_cast<unsigned char>(tiles[x] | tiles[above * m_tileStride + x]);
            }
        }
        for (int x = 0; x < m_tileStride; ++x) {
            for (int right = 1; right <= reach && x + right < m_tileStride; ++right) {
                tiles[x] = static_cast<unsigned char>(tiles[x] | tiles[x + right]);
            }
        }
    }
}

std::vector<int> PointRaster::evenRows(int first, int last) const
{
    std::uint64_t all = 0;
    for (int y = first; y < last; ++y) {
        all += m_rowTotals[static_cast<std::size_t>(y)];
    }
    std::vector<int> borders{first};
    std::uint64_t sum = 0;
    for (int y = first; y < last && borders.size() < m_partCount; ++y) {
        sum += m_rowTotals[static_cast<std::size_t>(y)];
        if (sum * m_partCount >= all * borders.size() && y + 1 < last) {
            borders.push_back(y + 1);
        }
    }
    borders.push_back(last);
    return borders;
}

void PointRaster::paintRings(PixelPicture& picture, const Points& points, const Ring& ring)
{
    const int side = ring.whole.side();
    placePoints(picture, points, ring.whole);
    prepareBands(picture, side);
    prepareTiles(picture);
    forEachAtOnce(m_bands.size(), [&](std::size_t index) {
        Band& band = m_bands[index];
        for (int y = band.first; y < band.last; ++y) {
            const Range whole = band.counter.count(y, ring.whole);
            m_rowTotals[static_cast<std::size_t>(y)] = band.counter.pointsIn(y);
            const std::uint32_t* const overlap = band.counter.overlap();
            noteOverlap(y, whole.begin, whole.end, overlap);
            const Range range = visibleOf(whole, picture);
            const bool isCrowded = std::any_of(
                overlap + range.begin,
                overlap + std::max(range.begin, range.end),
                [](std::uint32_t n) { return n > threshold; });
            if (!isCrowded) {
                continue;
            }
            std::uint32_t* const pixels = picture.row(y);
            const std::uint16_t* const marks =
                m_overlap.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_stride);
            band.wide.assign(static_cast<std::size_t>(m_stride), ring.edge);
            std::uint32_t* const colors = band.wide.data();
            const Range outer = band.counter.count(y, ring.outer);
            for (int x = outer.begin; x < outer.end; ++x) {
                colors[x] = band.counter.overlap()[x] != 0 ? ring.ring : colors[x];
            }
            const Range inner = band.counter.count(y, ring.inner);
            for (int x = inner.begin; x < inner.end; ++x) {
                const std::uint32_t count = band.counter.overlap()[x];
                if (count != 0) {
                    colors[x] = ring.fill ? (*ring.fill)[count] : 0;
                }
            }
            for (int x = range.begin; x < range.end; ++x) {
                if (marks[x] > threshold) {
                    pixels[x] = pixelOver(colors[x], pixels[x]);
                }
            }
        }
    });

    spreadTiles(picture, side);
    findSparsePoints(picture);
    const std::vector<int> borders =
        evenRows(picture.margin(), picture.margin() + picture.height());
    forEachAtOnce(borders.size() - 1, [&](std::size_t index) {
        for (std::size_t part = 0; part < m_partCount; ++part) {
            stampRings(picture, m_parts[part], {borders[index], borders[index + 1]}, ring);
        }
    });
}

void PointRaster::findSparsePoints(const PixelPicture& picture)
{
    const std::uint32_t outside = outsideOf(picture.rows());
    forEachAtOnce(m_partCount, [&](std::size_t index) {
        std::vector<std::uint32_t>& sparse = m_parts[index].sparse;
        sparse.clear();
        for (std::size_t i = firstOf(index); i < firstOf(index + 1); ++i) {
            if (m_places[i] != outside && isSparseAt(m_places[i])) {
                sparse.push_back(m_places[i]);
            }
        }
    });
}

void PointRaster::stampRings(
    PixelPicture& picture, const Part& part, const std::pair<int, int>& rows, const Ring& ring)
{
    const auto [first, last] = rows;
    const int side = ring.whole.side();
    for (const std::uint32_t place : part.sparse) {
        const int row = rowOf(place);
        // None if the marker is in other rows.
        for (int y = std::max(first, row); y < std::min(last, row + side); ++y) {
            const std::uint32_t* const sprite = ring.sprite.data() + (y - row) * side;
            std::uint32_t* const pixels = picture.row(y) + columnOf(place);
            const std::uint16_t* const marks = m_overlap.data()
                + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_stride)
                + columnOf(place);
            for (int x = 0; x < side; ++x) {
                if (sprite[x] != 0 && marks[x] <= threshold) {
                    pixels[x] = pixelOver(sprite[x], pixels[x]);
                }
            }
        }
    }
}

void PointRaster::paintColoredDiscs(
    PixelPicture& picture,
    const Points& points,
    const MarkerStencil& stencil,
    const unsigned char* colors,
    int channels)
{
    placePoints(picture, points, stencil);
    prepareBands(picture, stencil.side());
    prepareTiles(picture);
    std::vector<unsigned char> isBandCrowded(m_bands.size(), 0);
    forEachAtOnce(m_bands.size(), [&](std::size_t index) {
        Band& band = m_bands[index];
        // The first band and the last one also count the points in the margin.
        const int first = index == 0 ? 0 : band.first;
        const int last = index + 1 == m_bands.size() ? picture.rows() : band.last;
        for (int y = first; y < last; ++y) {
            m_rowTotals[static_cast<std::size_t>(y)] = band.counter.pointsIn(y);
            if (y < band.first || y >= band.last) {
                continue;
            }
            const Range range = band.counter.count(y, stencil);
            const std::uint32_t* const overlap = band.counter.overlap();
            noteOverlap(y, range.begin, range.end, overlap);
            for (int x = range.begin; x < range.end; ++x) {
                isBandCrowded[index] = static_cast<unsigned char>(
                    isBandCrowded[index] | (overlap[x] > threshold ? 1 : 0));
            }
        }
    });
    const bool isCrowded = std::any_of(
        isBandCrowded.begin(), isBandCrowded.end(), [](unsigned char is) { return is != 0; });
    bool isOpaque = true;
    if (channels > 3) {
        unsigned opacity = opaque;
        for (vtkIdType i = 0; i < points.count; ++i) {
            opacity &= colors[4 * i + 3];
        }
        isOpaque = opacity == opaque;
    }
    spreadTiles(picture, stencil.side());
    sortByBand(picture, points, stencil.side(), colors, channels);
    if (isCrowded) {
        m_sums.resize(
            static_cast<std::size_t>(picture.rows()) * static_cast<std::size_t>(m_stride));
    }
    forEachAtOnce(m_bandEnds.size(), [&](std::size_t band) {
        if (isCrowded) {
            sumColors(picture, band);
        }
        stampColors(picture, band, stencil, isOpaque);
    });
    // What is opaque has been covered; else each pixel gets either the average or its markers one by one.
    if (isCrowded) {
        averageColors(picture, stencil);
    }
}

void PointRaster::sortByBand(
    const PixelPicture& picture,
    const Points& points,
    int side,
    const unsigned char* colors,
    int channels)
{
    const auto bandCount = static_cast<std::size_t>(picture.rows() >> bandBits) + 1;
    const std::uint32_t outside = outsideOf(picture.rows());
    const auto forEachBand = [&](std::uint32_t place, auto&& function) {
        if (place != outside) {
            const int last = (rowOf(place) + side - 1) >> bandBits;
            for (int band = rowOf(place) >> bandBits; band <= last; ++band) {
                function(static_cast<std::size_t>(band));
            }
        }
    };
    // First how many each thread finds for each band, then where they go: in the order of the points.
    forEachAtOnce(m_partCount, [&](std::size_t index) {
        std::vector<std::size_t>& next = m_parts[index].next;
        next.assign(bandCount, 0);
        for (std::size_t i = firstOf(index); i < firstOf(index + 1); ++i) {
            forEachBand(m_places[i], [&](std::size_t band) { ++next[band]; });
        }
    });
    m_bandEnds.resize(bandCount);
    std::size_t end = 0;
    for (std::size_t band = 0; band < bandCount; ++band) {
        for (std::size_t index = 0; index < m_partCount; ++index) {
            end += std::exchange(m_parts[index].next[band], end);
        }
        m_bandEnds[band] = end;
    }
    if (m_colored.size() < end) {
        m_colored.resize(end);
    }
    forEachAtOnce(m_partCount, [&](std::size_t index) {
        std::vector<std::size_t>& next = m_parts[index].next;
        for (std::size_t i = firstOf(index); i < firstOf(index + 1); ++i) {
            const std::uint32_t place = m_places[i];
            if (place == outside) {
                continue;
            }
            const vtkIdType row =
                points.rows == nullptr ? static_cast<vtkIdType>(i) : points.rows[i];
            const std::uint32_t color = bytesOf(colors + channels * row, channels);
            forEachBand(place, [&](std::size_t band) { m_colored[next[band]++] = {place, color}; });
        }
    });
}

void PointRaster::sumColors(const PixelPicture& picture, std::size_t band)
{
    const int first = static_cast<int>(band) << bandBits;
    const int last = std::min(picture.rows(), first + (1 << bandBits));
    for (int y = first; y < last; ++y) {
        if (m_rowTotals[static_cast<std::size_t>(y)] > 0) {
            const auto row = m_sums.begin() + static_cast<std::ptrdiff_t>(y) * m_stride;
            std::fill(row, row + m_stride, std::array<std::uint32_t, 4>{});
        }
    }
    for (std::size_t i = band == 0 ? 0 : m_bandEnds[band - 1]; i < m_bandEnds[band]; ++i) {
        const Colored point = m_colored[i];
        // Those that only reach into this band belong to another.
        if (rowOf(point.place) >= first) {
            addTo(m_sums[indexOf(point.place, m_stride)], point.color);
        }
    }
}

void PointRaster::averageColors(PixelPicture& picture, const MarkerStencil& stencil)
{
    forEachAtOnce(m_bands.size(), [&](std::size_t index) {
        Band& band = m_bands[index];
        band.colors.start(m_sums, m_rowTotals, m_stride, stencil.side());
        std::vector<unsigned char> opacities;
        int opacitiesOf = -1;
        for (int y = band.first; y < band.last; ++y) {
            // Counted anew, for where there are any is not kept.
            const Range range = visibleOf(band.counter.count(y, stencil), picture);
            const std::uint32_t* const overlap = band.counter.overlap();
            Range dense{range.end, range.begin};
            for (int x = range.begin; x < range.end; ++x) {
                if (overlap[x] > threshold) {
                    dense.begin = std::min(dense.begin, x);
                    dense.end = x + 1;
                }
            }
            if (dense.begin >= dense.end) {
                continue;
            }
            band.colors.sum(y, dense, stencil);
            std::uint32_t* const pixels = picture.row(y);
            for (int x = dense.begin; x < dense.end; ++x) {
                if (overlap[x] <= threshold) {
                    continue;
                }
                const std::array<std::uint32_t, 4>& sums = band.colors.result()[x];
                const float share = 1.0F / static_cast<float>(overlap[x]);
                const auto mean = [&](std::size_t i) {
                    return static_cast<std::uint32_t>(static_cast<float>(sums[i]) * share + 0.5F);
                };
                const std::uint32_t color =
                    mean(0) | mean(1) << 8U | mean(2) << 16U | opaque << 24U;
                const auto single = static_cast<int>(mean(3));
                std::uint32_t opacity = opaque;
                if (single != static_cast<int>(opaque)) {
                    if (single != opacitiesOf) {
                        opacitiesOf = single;
                        opacities.assign(OverlapColors::most + 1, 0);
                        for (std::uint32_t n = 1; n <= OverlapColors::most; ++n) {
                            opacities[n] = OverlapColors::opacityOf(single, n);
                        }
                    }
                    opacity = opacities[std::min(overlap[x], OverlapColors::most)];
                }
                pixels[x] = pixelOver(scaledPixel(color, opacity), pixels[x]);
            }
        }
    });
}

void PointRaster::stampColors(
    PixelPicture& picture, std::size_t band, const MarkerStencil& stencil, bool isOpaque)
{
    const int first = std::max(picture.margin(), static_cast<int>(band) << bandBits);
    const int last =
        std::min(picture.margin() + picture.height(), (static_cast<int>(band) + 1) << bandBits);
    for (std::size_t i = band == 0 ? 0 : m_bandEnds[band - 1]; i < m_bandEnds[band]; ++i) {
        const Colored point = m_colored[i];
        if (!isSparseAt(point.place)) {
            continue;
        }
        const std::uint32_t color = scaledPixel(point.color | opaque << 24U, point.color >> 24U);
        const int row = rowOf(point.place);
        for (const MarkerStencil::Run& run : stencil.runs()) {
            const int y = row + run.y;
            if (y < first || y >= last) {
                continue;
            }
            std::uint32_t* const pixels = picture.row(y) + columnOf(point.place);
            if (isOpaque) {
                for (int x = run.begin; x < run.end; ++x) {
                    pixels[x] = color;
                }
                continue;
            }
            const std::uint16_t* const marks = m_overlap.data()
                + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_stride)
                + columnOf(point.place);
            for (int x = run.begin; x < run.end; ++x) {
                if (marks[x] <= threshold) {
                    pixels[x] = pixelOver(color, pixels[x]);
                }
            }
        }
    }
}
