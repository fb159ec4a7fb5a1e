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

constexpr std::uint32_t entriesAtOnce = 512; ///< between two looks at the clock

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
    Points m_points;
};

/// Rows that are more or less near, all or some.
class Scatter3DPicture::ByNearness
{
public:
    explicit ByNearness(const Cloud& cloud, const Marks* marks = nullptr)
        : colors(cloud.colors)
        , plain(cloud.plain)
        , m_cloud(cloud)
        , m_marked(marks != nullptr ? marks->rows : nullptr)
        , m_count(marks != nullptr ? marks->count : (cloud.count + cloud.stride - 1) / cloud.stride)
    {}

    [[nodiscard]] std::size_t count() const { return m_count; }

    [[nodiscard]] std::size_t row(std::size_t i) const
    {
        return m_marked != nullptr ? static_cast<std::size_t>(m_marked[i]) : i * m_cloud.stride;
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
    Cloud m_cloud;
    const vtkIdType* m_marked; ///< null if no rows were picked out
    std::size_t m_count;
};

/// Some lines of the picture, which count from the lowest of them. Keeps its memory.
class Scatter3DPicture::Band
{
public:
    /// All of it is transparent then.
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

    /// Writes all lines to \p pixels.
    void finish(std::uint32_t* pixels) const
    {
        std::transform(m_pixels.begin(), m_pixels.end(), pixels, &bytesOf);
    }

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

/// Points by bands, and in each by slabs of depth. What is put in comes out in the opposite order, a chunk at a time.
/// Keeps its memory.
class Scatter3DPicture::Bins
{
public:
    static constexpr std::uint32_t chunkSize = 64; ///< entries
    static constexpr std::uint32_t none = 0xFFFFFFFF; ///< no chunk

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

    /// The chunk of \p bin to begin with.
    [[nodiscard]] std::uint32_t lastChunk(std::size_t bin) const { return m_lastOf[bin]; }

    /// Returns the chunk to go on with.
    template <class Function>
    std::uint32_t forEachBackwards(std::uint32_t chunk, const Function& function) const
    {
        const Chunk& entries = m_chunks[chunk];
        for (std::uint32_t i = entries.size; i-- > 0;) {
            function(entries.entries[i]);
        }
        return entries.before;
    }

private:
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

/// A range of the points, and where they are drawn.
struct Scatter3DPicture::Part
{
    Bins bins;
    std::size_t next = 0; ///< the first point that is not in the bins
    std::size_t end = 0;
};

/// Draws bands, one after the other and each in small steps: what is seen of a slab of depth is collected, brought into
/// order and drawn, from the slab in front to the one behind. Keeps its memory.
class Scatter3DPicture::Worker
{
public:
    [[nodiscard]] bool isIdle() const { return m_job == Job::None; }

    void stop() { m_job = Job::None; }

    /// It is idle.
    void begin(const Scatter3DPicture& picture, int band)
    {
        m_bandIndex = band;
        m_firstLine = band * picture.m_bandLines;
        m_band.begin(
            picture.m_width, std::min(picture.m_bandLines, picture.m_height - m_firstLine));
        m_layer = 0;
        beginSlab(picture, slabCount - 1);
    }

    /// It is not idle. Writes the band to \p lines of the picture when it is done.
    void goOn(const Scatter3DPicture& picture, PixelPicture& lines)
    {
        switch (m_job) {
        case Job::None:
            return;
        case Job::Collect:
            collect(picture);
            return;
        case Job::Order:
            order();
            return;
        case Job::Draw:
            draw(picture);
            return;
        case Job::Finish:
            m_band.finish(lines.row(m_firstLine));
            m_job = Job::None;
            return;
        }
    }

private:
    enum class Job
    {
        None,
        Collect,
        Order,
        Draw,
        Finish
    };

    void beginSlab(const Scatter3DPicture& picture, std::size_t slab)
    {
        m_slab = slab;
        m_part = picture.m_parts.size();
        m_chunk = Bins::none;
        m_seen.clear();
        m_ends.assign(fineCount, 0);
        m_job = Job::Collect;
    }

    void endSlab(const Scatter3DPicture& picture)
    {
        if (m_slab > 0) {
            beginSlab(picture, m_slab - 1);
        } else if (++m_layer < picture.m_layers.size()) {
            beginSlab(picture, slabCount - 1);
        } else {
            m_job = Job::Finish;
        }
    }

    /// From the last one on, which is in front of others of the same depth.
    void collect(const Scatter3DPicture& picture)
    {
        const Layer& layer = picture.m_layers[m_layer];
        for (std::uint32_t i = 0; i < entriesAtOnce; i += Bins::chunkSize) {
            while (m_chunk == Bins::none) {
                if (m_part == 0) {
                    endCollecting(picture);
                    return;
                }
                const std::size_t bin = static_cast<std::size_t>(m_bandIndex) * slabCount + m_slab;
                m_chunk = picture.m_parts[--m_part].bins.lastChunk(bin);
            }
            const Bins& bins = picture.m_parts[m_part].bins;
            m_chunk = bins.forEachBackwards(m_chunk, [&](const Entry& entry) {
                if (!m_band.isHidden(picture.columnOf(entry), picture.lineOf(entry), layer.reach)) {
                    m_seen.push_back(entry);
                    ++m_ends[entry.depth % fineCount];
                }
            });
        }
    }

    void endCollecting(const Scatter3DPicture& picture)
    {
        if (m_seen.empty()) {
            endSlab(picture);
            return;
        }
        std::uint32_t end = 0;
        for (auto depth = m_ends.rbegin(); depth != m_ends.rend(); ++depth) {
            end += std::exchange(*depth, end);
        }
        m_ordered.resize(m_seen.size());
        m_next = 0;
        m_job = Job::Order;
    }

    void order()
    {
        for (const std::size_t end = endOfStep(); m_next < end; ++m_next) {
            const Entry& entry = m_seen[m_next];
            m_ordered[m_ends[entry.depth % fineCount]++] = entry;
        }
        if (m_next == m_seen.size()) {
            m_next = 0;
            m_job = Job::Draw;
        }
    }

    void draw(const Scatter3DPicture& picture)
    {
        const Layer& layer = picture.m_layers[m_layer];
        for (const std::size_t end = endOfStep(); m_next < end; ++m_next) {
            const Entry& entry = m_ordered[m_next];
            const int x = picture.columnOf(entry);
            const int y = picture.lineOf(entry);
            if (m_band.isHidden(x, y, layer.reach)) {
                continue;
            }
            if (layer.sprite != nullptr) {
                m_band.drawSprite(*layer.sprite, layer.reach, x, y);
            } else {
                m_band.drawDisc(picture.discOf(entry), x, y, picture.colorOf(entry));
            }
        }
        if (m_next == m_seen.size()) {
            endSlab(picture);
        }
    }

    [[nodiscard]] std::size_t endOfStep() const
    {
        return std::min(m_next + entriesAtOnce, m_seen.size());
    }

    Band m_band;
    Job m_job = Job::None;
    int m_bandIndex = 0;
    int m_firstLine = 0; ///< of the band in the picture
    std::size_t m_layer = 0;
    std::size_t m_slab = 0;
    std::size_t m_part = 0; ///< that is being collected from
    std::uint32_t m_chunk = Bins::none; ///< the next one of the part
    std::vector<Entry> m_seen; ///< of the slab
    std::vector<Entry> m_ordered; ///< likewise
    std::vector<std::uint32_t> m_ends; ///< of the depths within the slab
    std::size_t m_next = 0; ///< of what is being ordered or drawn
};

Scatter3DPicture::Scatter3DPicture() = default;

Scatter3DPicture::~Scatter3DPicture() = default;

void Scatter3DPicture::draw(const Points& points, float diameter, int width, int height)
{
    begin(diameter, width, height, 0);
    start(ByOrder(points), {{m_discReach, nullptr}});
    finish();
}

void Scatter3DPicture::draw(const Cloud& cloud, float diameter, int width, int height)
{
    startDrawing(cloud, diameter, width, height);
    finish();
}

void Scatter3DPicture::drawMarks(
    const Cloud& cloud, const Marks& marks, float diameter, int width, int height)
{
    startDrawingMarks(cloud, marks, diameter, width, height);
    finish();
}

void Scatter3DPicture::startDrawing(const Cloud& cloud, float diameter, int width, int height)
{
    begin(diameter, width, height, 0);
    start(ByNearness(cloud), {{m_discReach, nullptr}});
}

void Scatter3DPicture::startDrawingMarks(
    const Cloud& cloud, const Marks& marks, float diameter, int width, int height)
{
    const int reach = reachOf(marks.sprite);
    begin(diameter, width, height, reach);
    m_sprite = marks.sprite;
    std::vector<Layer> layers;
    if (marks.withDiscs) {
        layers.push_back({m_discReach, nullptr});
    }
    layers.push_back({reach, &m_sprite});
    start(ByNearness(cloud, &marks), std::move(layers));
}

bool Scatter3DPicture::drawMore(Clock::time_point end)
{
    if (!sortMore(end)) {
        return false;
    }
    // Bands take differently long.
    std::atomic<int> next = m_nextBand;
    forEachAtOnce(m_workers.size(), [&](std::size_t i) {
        Worker& worker = m_workers[i];
        do {
            if (worker.isIdle()) {
                const int band = next++;
                if (band >= m_bandCount) {
                    return;
                }
                worker.begin(*this, band);
            }
            worker.goOn(*this, m_picture);
        } while (Clock::now() < end);
    });
    m_nextBand = std::min(next.load(), m_bandCount);
    return m_nextBand == m_bandCount
        && std::all_of(m_workers.begin(), m_workers.end(), [](const Worker& worker) {
               return worker.isIdle();
           });
}

void Scatter3DPicture::finish()
{
    drawMore(Clock::time_point::max());
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
void Scatter3DPicture::start(const Source& source, std::vector<Layer> layers)
{
    m_colors = source.colors;
    m_plain = source.plain;
    m_layers = std::move(layers);
    if (m_colors == nullptr && m_plain[3] == 0) {
        // Discs that nobody would see.
        m_layers.erase(
            std::remove_if(
                m_layers.begin(),
                m_layers.end(),
                [](const Layer& layer) { return layer.sprite == nullptr; }),
            m_layers.end());
    }
    m_workers.resize(workerCount());
    for (Worker& worker : m_workers) {
        worker.stop();
    }
    const bool isEmpty = m_width == 0 || m_height == 0 || source.count() == 0 || m_layers.empty();
    const std::size_t count = isEmpty ? 0 : source.count();
    m_bandCount = isEmpty ? 0 : m_bandCount;

    constexpr std::size_t pointsWorthThread = 20000;
    const std::size_t parts = std::clamp<std::size_t>(count / pointsWorthThread, 1, workerCount());
    m_parts.resize(parts);
    for (std::size_t i = 0; i < parts; ++i) {
        m_parts[i].bins.clear(static_cast<std::size_t>(m_bandCount) * slabCount);
        m_parts[i].next = count * i / parts;
        m_parts[i].end = count * (i + 1) / parts;
    }
    m_sort = [this, source](std::size_t first, std::size_t last, Bins& bins) {
        sortEntries(source, first, last, bins);
    };
}

bool Scatter3DPicture::sortMore(Clock::time_point end)
{
    const auto isSorted = [](const Part& part) { return part.next == part.end; };
    const auto areSorted = [&] { return std::all_of(m_parts.begin(), m_parts.end(), isSorted); };
    if (areSorted()) {
        return true;
    }
    forEachAtOnce(m_parts.size(), [&](std::size_t i) {
        Part& part = m_parts[i];
        while (!isSorted(part)) {
            constexpr std::size_t pointsAtOnce = 4096;
            const std::size_t next = std::min(part.next + pointsAtOnce, part.end);
            m_sort(std::exchange(part.next, next), next, part.bins);
            if (Clock::now() >= end) {
                return;
            }
        }
    });
    return areSorted();
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

int Scatter3DPicture::columnOf(const Entry& entry) const
{
    return static_cast<int>(entry.column / placesInPixel) - m_reach - 1;
}

int Scatter3DPicture::lineOf(const Entry& entry) const
{
    return entry.line / placesInPixel - m_reach - 1;
}

const Scatter3DPicture::Disc& Scatter3DPicture::discOf(const Entry& entry) const
{
    return m_discs[entry.line % placesInPixel * placesInPixel + entry.column % placesInPixel];
}

const unsigned char* Scatter3DPicture::colorOf(const Entry& entry) const
{
    return m_colors == nullptr ? m_plain.data()
                               : m_colors + 4 * static_cast<std::size_t>(entry.row);
}

} // namespace analyzer
