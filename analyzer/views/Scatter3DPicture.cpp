#include <analyzer/views/Scatter3DPicture.h>

#include <QtGlobal>

#include <vtkImageData.h>
#include <vtkSMPTools.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <utility>

namespace analyzer {

namespace {

constexpr std::uint32_t fullCoverage = 256;
constexpr std::uint16_t fullRest = 65535;
constexpr std::uint16_t negligibleRest = 256; ///< less cannot be told from nothing in 8 bits
constexpr std::uint32_t byteMask = 0xFF;

constexpr int placesInPixel = 4; ///< that are told apart, along each side
constexpr int leastBandLines = 32;

// As many bits of a depth tell slabs apart, the others points within one.
constexpr unsigned slabBits = 4;
constexpr unsigned depthBits = 16;
constexpr unsigned fineBits = depthBits - slabBits;
constexpr std::size_t slabCount = std::size_t(1) << slabBits;
constexpr std::size_t fineCount = std::size_t(1) << fineBits;
constexpr std::uint32_t largestDepth = 65535;

constexpr int tileBits = 3; ///< tiles have sides of 8 pixels
constexpr int wordBits = 6;

/// What has been drawn of a pixel, from front to back.
struct Pixel
{
    std::array<std::uint16_t, 3> color; ///< multiplied by the opacity, in 256th
    std::uint16_t rest; ///< what what is behind would still show of itself, from 0 to 65535
};

std::size_t workerCount()
{
    constexpr int most = 8;
    return static_cast<std::size_t>(
        std::clamp(vtkSMPTools::GetEstimatedNumberOfThreads(), 1, most));
}

/// Calls \p function with each number from 0 to \p count, some of them at once.
template <class Function>
void forEachAtOnce(std::size_t count, const Function& function)
{
    vtkSMPTools::For(
        0, static_cast<vtkIdType>(count), 1, [&function](vtkIdType begin, vtkIdType end) {
            for (vtkIdType i = begin; i < end; ++i) {
                function(static_cast<std::size_t>(i));
            }
        });
}

/// Around the middle of a square.
int reachOf(const std::vector<std::uint32_t>& sprite)
{
    return static_cast<int>(std::lround(std::sqrt(sprite.size()))) / 2;
}

/// Premultiplied, as in PixelPicture.
std::uint32_t bytesOf(const Pixel& pixel)
{
    constexpr std::uint32_t half = 128;
    const std::uint32_t opacity = static_cast<std::uint32_t>(fullRest - pixel.rest) >> 8U;
    const auto channel = [&](std::size_t i) {
        return std::min((pixel.color[i] + half) >> 8U, opacity);
    };
    return channel(0) | channel(1) << 8U | channel(2) << 16U | opacity << 24U;
}

} // namespace

/// Rows whose order is given.
class Scatter3DPicture::ByOrder
{
public:
    explicit ByOrder(const Points& points)
        : colors(points.colors)
        , plain(points.plain)
        , m_points(points)
    {}

    [[nodiscard]] std::size_t count() const { return m_points.order.size(); }

    [[nodiscard]] std::size_t row(std::size_t i) const { return m_points.order[i]; }

    [[nodiscard]] static bool isRow(std::size_t /*row*/) { return true; }

    [[nodiscard]] const float* place(std::size_t row) const { return m_points.places + 2 * row; }

    [[nodiscard]] std::uint32_t depth(std::size_t i, std::size_t /*row*/) const
    {
        return static_cast<std::uint32_t>(
            static_cast<std::uint64_t>(i) * largestDepth / m_points.order.size());
    }

    const unsigned char* colors;
    std::array<unsigned char, 4> plain;

private:
    const Points& m_points;
};

/// Rows that are more or less near, all or some.
class Scatter3DPicture::ByNearness
{
public:
    explicit ByNearness(const Cloud& cloud, const Marks* marks = nullptr)
        : colors(cloud.colors)
        , plain(cloud.plain)
        , m_cloud(cloud)
        , m_marks(marks)
        , m_count(marks != nullptr ? marks->count : (cloud.count + cloud.stride - 1) / cloud.stride)
    {}

    [[nodiscard]] std::size_t count() const { return m_count; }

    [[nodiscard]] std::size_t row(std::size_t i) const
    {
        return m_marks != nullptr ? static_cast<std::size_t>(m_marks->rows[i]) : i * m_cloud.stride;
    }

    [[nodiscard]] bool isRow(std::size_t row) const { return row < m_cloud.count; }

    [[nodiscard]] const float* place(std::size_t row) const { return m_cloud.places + 2 * row; }

    [[nodiscard]] std::uint32_t depth(std::size_t /*i*/, std::size_t row) const
    {
        constexpr auto largest = static_cast<float>(largestDepth);
        return static_cast<std::uint32_t>(
            std::clamp((m_cloud.nearness[row] + 1.0F) * 0.5F * largest, 0.0F, largest));
    }

    const unsigned char* colors;
    std::array<unsigned char, 4> plain;

private:
    const Cloud& m_cloud;
    const Marks* m_marks;
    std::size_t m_count;
};

/// Draws bands, one after the other, and keeps the memory for that. Lines count from the lowest of the band.
class Scatter3DPicture::Worker
{
public:
    /// All of the band is transparent then.
    void begin(int width, int lines)
    {
        m_width = width;
        m_lines = lines;
        m_wordsPerLine = (width + (1 << wordBits) - 1) >> wordBits;
        m_tilesPerLine = (width + (1 << tileBits) - 1) >> tileBits;
        const int tileLines = (lines + (1 << tileBits) - 1) >> tileBits;
        m_pixels.assign(index(lines, width), Pixel{{0, 0, 0}, fullRest});
        m_open.assign(index(lines, m_wordsPerLine), ~std::uint64_t(0));
        m_openInTile.assign(index(tileLines, m_tilesPerLine), 0);
        constexpr int side = 1 << tileBits;
        for (int line = 0; line < tileLines; ++line) {
            for (int column = 0; column < m_tilesPerLine; ++column) {
                m_openInTile[index(line, m_tilesPerLine) + static_cast<std::size_t>(column)] =
                    static_cast<std::uint8_t>(
                        std::min(side, width - column * side)
                        * std::min(side, lines - line * side));
            }
        }
    }

    /// Whether none of the pixels at most \p reach away is to be drawn.
    [[nodiscard]] bool isHidden(int x, int y, int reach) const
    {
        const int firstColumn = std::max(x - reach, 0) >> tileBits;
        const int lastColumn = std::min(x + reach, m_width - 1) >> tileBits;
        const int firstLine = std::max(y - reach, 0) >> tileBits;
        const int lastLine = std::min(y + reach, m_lines - 1) >> tileBits;
        unsigned open = 0;
        for (int line = firstLine; line <= lastLine; ++line) {
            const std::uint8_t* const tiles = m_openInTile.data() + index(line, m_tilesPerLine);
            for (int column = firstColumn; column <= lastColumn; ++column) {
                open |= tiles[column];
            }
            if (open != 0) {
                return false;
            }
        }
        return true;
    }

    void drawDisc(const Disc& disc, int x, int y, const unsigned char* color)
    {
        // From 0 to 256, so that what is opaque leaves no rest.
        const std::uint32_t opacity = color[3] + (color[3] >> 7U);
        const int below = static_cast<int>(disc.lines.size() / 2);
        const int firstLine = std::max(0, below - y);
        const int lastLine = std::min(static_cast<int>(disc.lines.size()), m_lines - y + below);
        for (int line = firstLine; line < lastLine; ++line) {
            const Disc::Line& span = disc.lines[static_cast<std::size_t>(line)];
            const int begin = x + span.begin;
            const std::uint32_t* const coverage = disc.coverage.data() + span.coverage;
            forEachOpen(y + line - below, begin, x + span.end, [&](Pixel& pixel, int i) {
                const std::uint32_t share = (coverage[i - begin] * opacity * pixel.rest) >> 16U;
                for (std::size_t channel = 0; channel < pixel.color.size(); ++channel) {
                    pixel.color[channel] = static_cast<std::uint16_t>(
                        pixel.color[channel] + ((share * color[channel]) >> 8U));
                }
                pixel.rest = static_cast<std::uint16_t>(pixel.rest - share);
            });
        }
    }

    /// A square whose side is 2 * \p reach + 1.
    void drawSprite(const std::vector<std::uint32_t>& sprite, int reach, int x, int y)
    {
        const int side = 2 * reach + 1;
        const int begin = x - reach;
        for (int line = std::max(0, reach - y); line < std::min(side, m_lines - y + reach);
             ++line) {
            const std::uint32_t* const colors = sprite.data() + index(line, side);
            forEachOpen(y + line - reach, begin, begin + side, [&](Pixel& pixel, int i) {
                const std::uint32_t color = colors[i - begin];
                const std::uint32_t opacity = color >> 24U;
                const std::uint32_t rest = pixel.rest;
                for (std::size_t channel = 0; channel < pixel.color.size(); ++channel) {
                    pixel.color[channel] = static_cast<std::uint16_t>(
                        pixel.color[channel]
                        + ((((color >> (8U * channel)) & byteMask) * rest) >> 8U));
                }
                const std::uint32_t share = (opacity + (opacity >> 7U)) * rest >> 8U;
                pixel.rest = static_cast<std::uint16_t>(rest - share);
            });
        }
    }

    /// Writes the band to \p pixels.
    void finish(std::uint32_t* pixels) const
    {
        std::transform(m_pixels.begin(), m_pixels.end(), pixels, &bytesOf);
    }

    std::vector<Entry> seen; ///< of a slab
    std::vector<Entry> ordered; ///< likewise
    std::vector<std::uint32_t> ends; ///< of the depths within a slab

private:
    [[nodiscard]] static std::size_t index(int line, int perLine)
    {
        return static_cast<std::size_t>(line) * static_cast<std::size_t>(perLine);
    }

    /// Calls \p draw with each pixel of a line that is not full, and its number in the line.
    template <class Draw>
    void forEachOpen(int line, int begin, int end, const Draw& draw)
    {
        begin = std::max(begin, 0);
        end = std::min(end, m_width);
        if (begin >= end) {
            return;
        }
        constexpr int lastBit = (1 << wordBits) - 1;
        Pixel* const pixels = m_pixels.data() + index(line, m_width);
        std::uint64_t* const words = m_open.data() + index(line, m_wordsPerLine);
        std::uint8_t* const tiles = m_openInTile.data() + index(line >> tileBits, m_tilesPerLine);
        for (int word = begin >> wordBits; word <= (end - 1) >> wordBits; ++word) {
            const int first = word << wordBits;
            std::uint64_t open = words[word];
            if (begin > first) {
                open &= ~std::uint64_t(0) << (begin - first);
            }
            if (end - 1 - first < lastBit) {
                open &= ~(~std::uint64_t(0) << (end - first));
            }
            std::uint64_t full = 0;
            while (open != 0) {
                const int bit = __builtin_ctzll(open);
                open &= open - 1;
                const int i = first + bit;
                draw(pixels[i], i);
                if (pixels[i].rest < negligibleRest) {
                    full |= std::uint64_t(1) << bit;
                    --tiles[i >> tileBits];
                }
            }
            words[word] &= ~full;
        }
    }

    int m_width = 0;
    int m_lines = 0;
    int m_wordsPerLine = 0;
    int m_tilesPerLine = 0;
    std::vector<Pixel> m_pixels;
    std::vector<std::uint64_t> m_open; ///< a bit for each pixel that is not full
    std::vector<std::uint8_t> m_openInTile; ///< pixels that are not full
};

/// Points by bands, and in each by slabs of depth. What is put in comes out in the opposite order. Keeps its memory.
class Scatter3DPicture::Bins
{
public:
    void clear(std::size_t count)
    {
        m_lastOf.assign(count, none);
        m_used = 0;
    }

    void put(std::size_t bin, const Entry& entry)
    {
        std::uint32_t& last = m_lastOf[bin];
        if (last == none || m_chunks[last].size == chunkSize) {
            if (m_used == m_chunks.size()) {
                m_chunks.resize(2 * m_used + 1);
            }
            m_chunks[m_used].size = 0;
            m_chunks[m_used].before = last;
            last = static_cast<std::uint32_t>(m_used++);
        }
        Chunk& chunk = m_chunks[last];
        chunk.entries[chunk.size++] = entry;
    }

    template <class Function>
    void forEachBackwards(std::size_t bin, const Function& function) const
    {
        for (std::uint32_t i = m_lastOf[bin]; i != none; i = m_chunks[i].before) {
            const Chunk& chunk = m_chunks[i];
            for (std::uint32_t entry = chunk.size; entry-- > 0;) {
                function(chunk.entries[entry]);
            }
        }
    }

private:
    static constexpr std::uint32_t chunkSize = 64;
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    struct Chunk
    {
        std::array<Entry, chunkSize> entries;
        std::uint32_t size;
        std::uint32_t before; ///< of the same bin
    };

    std::vector<Chunk> m_chunks;
    std::size_t m_used = 0;
    std::vector<std::uint32_t> m_lastOf; ///< chunks of each bin
};

Scatter3DPicture::Scatter3DPicture() = default;

Scatter3DPicture::~Scatter3DPicture() = default;

void Scatter3DPicture::draw(const Points& points, float diameter, int width, int height)
{
    begin(diameter, width, height, 0);
    drawLayers(ByOrder(points), {{m_discReach, nullptr}});
}

void Scatter3DPicture::draw(const Cloud& cloud, float diameter, int width, int height)
{
    begin(diameter, width, height, 0);
    drawLayers(ByNearness(cloud), {{m_discReach, nullptr}});
}

void Scatter3DPicture::drawMarks(
    const Cloud& cloud, const Marks& marks, float diameter, int width, int height)
{
    begin(diameter, width, height, reachOf(marks.sprite));
    drawLayers(ByNearness(cloud, &marks), layersOf(marks, marks.sprite));
}

void Scatter3DPicture::startDrawing(const Cloud& cloud, float diameter, int width, int height)
{
    begin(diameter, width, height, 0);
    start(ByNearness(cloud), {{m_discReach, nullptr}});
}

void Scatter3DPicture::startDrawingMarks(
    const Cloud& cloud, const Marks& marks, float diameter, int width, int height)
{
    begin(diameter, width, height, reachOf(marks.sprite));
    m_sprite = marks.sprite;
    start(ByNearness(cloud, &marks), layersOf(marks, m_sprite));
}

bool Scatter3DPicture::drawMore(std::chrono::steady_clock::time_point end)
{
    drawBands(m_layers, m_colors, m_plain, end);
    return m_nextBand >= m_bandCount;
}

std::vector<Scatter3DPicture::Layer> Scatter3DPicture::layersOf(
    const Marks& marks, const std::vector<std::uint32_t>& sprite) const
{
    std::vector<Layer> layers;
    if (marks.withDiscs) {
        layers.push_back({m_discReach, nullptr});
    }
    layers.push_back({reachOf(sprite), &sprite});
    return layers;
}

template <class Source>
void Scatter3DPicture::start(const Source& source, std::vector<Layer> layers)
{
    m_colors = source.colors;
    m_plain = source.plain;
    m_layers = std::move(layers);
    if (m_width == 0) {
        m_bandCount = 0;
    } else {
        sortEntries(source);
    }
}

vtkImageData& Scatter3DPicture::image() const
{
    if (!std::exchange(m_isImageOld, false)) {
        return *m_image;
    }
    m_image->SetDimensions(m_picture.width(), m_picture.height(), 1);
    m_image->AllocateScalars(VTK_UNSIGNED_CHAR, 4);
    auto* out = static_cast<unsigned char*>(m_image->GetScalarPointer());
    for (int line = 0; line < m_picture.height(); ++line) {
        const std::uint32_t* const pixels = m_picture.row(line);
        for (int column = 0; column < m_picture.width(); ++column) {
            const std::uint32_t opacity = pixels[column] >> 24U;
            for (unsigned channel = 0; channel < 3; ++channel) {
                const std::uint32_t color = (pixels[column] >> (8U * channel)) & byteMask;
                *out++ = static_cast<unsigned char>(
                    opacity == 0 ? 0U : (color * byteMask + opacity / 2) / opacity);
            }
            *out++ = static_cast<unsigned char>(opacity);
        }
    }
    m_image->Modified();
    return *m_image;
}

void Scatter3DPicture::begin(float diameter, int width, int height, int reach)
{
    constexpr int largestSide = std::numeric_limits<std::uint16_t>::max();
    Q_ASSERT_X(
        width >= 0 && height >= 0 && width < largestSide,
        "Scatter3DPicture",
        "such a picture cannot be drawn");
    m_width = width;
    m_height = height;
    if (diameter != m_diameter) {
        makeDiscs(diameter);
    }
    m_reach = std::max(m_discReach, reach);
    m_bandLines = std::max(leastBandLines, 4 * m_reach);
    Q_ASSERT_X(
        (m_bandLines + 2 * m_reach + 2) * placesInPixel < largestSide,
        "Scatter3DPicture",
        "such discs cannot be drawn");
    m_bandCount = (height + m_bandLines - 1) / m_bandLines;
    m_nextBand = 0;
    m_picture.reset(width, height, 0);
    ++m_version;
    m_isImageOld = true;
}

void Scatter3DPicture::makeDiscs(float diameter)
{
    m_diameter = diameter;
    m_discs.clear();
    const float radius = diameter / 2.0F;
    const int reach = static_cast<int>(std::ceil(radius + 0.5F));
    m_discReach = reach;
    const auto centerOf = [](int place) {
        return (static_cast<float>(place) + 0.5F) / static_cast<float>(placesInPixel);
    };
    for (int place = 0; place < placesInPixel * placesInPixel; ++place) {
        const float centerX = centerOf(place % placesInPixel);
        const float centerY = centerOf(place / placesInPixel);
        Disc disc;
        for (int dy = -reach; dy <= reach; ++dy) {
            Disc::Line line;
            line.coverage = disc.coverage.size();
            for (int dx = -reach; dx <= reach; ++dx) {
                const float distance = std::hypot(
                    static_cast<float>(dx) + 0.5F - centerX,
                    static_cast<float>(dy) + 0.5F - centerY);
                const float share = std::clamp(radius - distance + 0.5F, 0.0F, 1.0F);
                const auto coverage = static_cast<std::uint32_t>(
                    std::lround(share * static_cast<float>(fullCoverage)));
                if (coverage > 0) {
                    line.begin = line.coverage == disc.coverage.size() ? dx : line.begin;
                    line.end = dx + 1;
                    disc.coverage.push_back(coverage);
                }
            }
            disc.lines.push_back(line);
        }
        m_discs.push_back(std::move(disc));
    }
}

template <class Source>
void Scatter3DPicture::drawLayers(const Source& source, const std::vector<Layer>& layers)
{
    if (m_width == 0 || m_height == 0 || source.count() == 0) {
        return;
    }
    sortEntries(source);
    drawBands(layers, source.colors, source.plain, {});
}

void Scatter3DPicture::drawBands(
    const std::vector<Layer>& layers,
    const unsigned char* colors,
    const std::array<unsigned char, 4>& plain,
    const std::optional<std::chrono::steady_clock::time_point>& end)
{
    m_workers.resize(workerCount());
    // Bands take differently long.
    std::atomic<int> next = m_nextBand;
    std::atomic<bool> isTimeUp = false;
    forEachAtOnce(m_workers.size(), [&](std::size_t worker) {
        while (!isTimeUp) {
            const int band = next++;
            if (band >= m_bandCount) {
                return;
            }
            drawBand(m_workers[worker], band, layers, colors, plain);
            isTimeUp = isTimeUp || (end && std::chrono::steady_clock::now() >= *end);
        }
    });
    // Those that were begun have been drawn.
    m_nextBand = std::min(next.load(), m_bandCount);
}

template <class Source>
void Scatter3DPicture::sortEntries(const Source& source)
{
    constexpr std::size_t pointsWorthThread = 20000;
    const std::size_t count = source.count();
    const std::size_t parts = std::clamp<std::size_t>(count / pointsWorthThread, 1, workerCount());
    m_bins.resize(parts);
    forEachAtOnce(parts, [&](std::size_t part) {
        m_bins[part].clear(static_cast<std::size_t>(m_bandCount) * slabCount);
        sortEntries(source, count * part / parts, count * (part + 1) / parts, m_bins[part]);
    });
}

template <class Source>
void Scatter3DPicture::sortEntries(
    const Source& source, std::size_t begin, std::size_t end, Bins& bins) const
{
    // Places are counted from so far outside that none is negative, and cutting off fractions is the same for all.
    const int offset = m_reach + 1;
    const auto shift = static_cast<float>(offset);
    const float least = 1.0F;
    const float mostX = static_cast<float>(m_width + 2 * m_reach + 1);
    const float mostY = static_cast<float>(m_height + 2 * m_reach + 1);
    const int bandLines = m_bandLines;
    const int lastOfBands = m_bandCount - 1;
    const int reach = m_reach;
    for (std::size_t i = begin; i < end; ++i) {
        const std::size_t row = source.row(i);
        if (!source.isRow(row)) {
            continue;
        }
        const float* const place = source.place(row);
        const float x = place[0] + shift;
        const float y = place[1] + shift;
        // False for NaN, too.
        if (!(x >= least && x < mostX && y >= least && y < mostY)) {
            continue;
        }
        const int column = static_cast<int>(x * placesInPixel);
        const int line = static_cast<int>(y * placesInPixel);
        const int pixelLine = line / placesInPixel - offset;
        const std::uint32_t depth = source.depth(i, row);
        const int first = std::max(pixelLine - reach, 0) / bandLines;
        const int last = std::min((pixelLine + reach) / bandLines, lastOfBands);
        for (int band = first; band <= last; ++band) {
            bins.put(
                static_cast<std::size_t>(band) * slabCount + (depth >> fineBits),
                Entry{
                    static_cast<std::uint32_t>(row),
                    static_cast<std::uint32_t>(column),
                    static_cast<std::uint16_t>(line - band * bandLines * placesInPixel),
                    static_cast<std::uint16_t>(depth)});
        }
    }
}

void Scatter3DPicture::drawBand(
    Worker& worker,
    int band,
    const std::vector<Layer>& layers,
    const unsigned char* colors,
    const std::array<unsigned char, 4>& plain)
{
    const int firstLine = band * m_bandLines;
    const int offset = m_reach + 1;
    worker.begin(m_width, std::min(m_bandLines, m_height - firstLine));
    for (const Layer& layer : layers) {
        if (layer.sprite == nullptr && colors == nullptr && plain[3] == 0) {
            continue;
        }
        for (std::size_t slab = slabCount; slab-- > 0;) {
            const std::size_t bin = static_cast<std::size_t>(band) * slabCount + slab;
            // From the last one on, which is in front of others of the same depth.
            worker.seen.clear();
            worker.ends.assign(fineCount, 0);
            for (auto bins = m_bins.rbegin(); bins != m_bins.rend(); ++bins) {
                bins->forEachBackwards(bin, [&](const Entry& entry) {
                    const int x = static_cast<int>(entry.column / placesInPixel) - offset;
                    const int y = entry.line / placesInPixel - offset;
                    if (!worker.isHidden(x, y, layer.reach)) {
                        worker.seen.push_back(entry);
                        ++worker.ends[entry.depth % fineCount];
                    }
                });
            }
            if (worker.seen.empty()) {
                continue;
            }
            std::uint32_t end = 0;
            for (auto depth = worker.ends.rbegin(); depth != worker.ends.rend(); ++depth) {
                end += std::exchange(*depth, end);
            }
            worker.ordered.resize(worker.seen.size());
            for (const Entry& entry : worker.seen) {
                worker.ordered[worker.ends[entry.depth % fineCount]++] = entry;
            }
            for (const Entry& entry : worker.ordered) {
                const int x = static_cast<int>(entry.column / placesInPixel) - offset;
                const int y = entry.line / placesInPixel - offset;
                if (worker.isHidden(x, y, layer.reach)) {
                    continue;
                }
                if (layer.sprite != nullptr) {
                    worker.drawSprite(*layer.sprite, layer.reach, x, y);
                    continue;
                }
                const std::size_t disc =
                    entry.line % placesInPixel * placesInPixel + entry.column % placesInPixel;
                worker.drawDisc(
                    m_discs[disc],
                    x,
                    y,
                    colors == nullptr ? plain.data()
                                      : colors + 4 * static_cast<std::size_t>(entry.row));
            }
        }
    }
    worker.finish(m_picture.row(firstLine));
}

} // namespace analyzer
