#include <analyzer/views/Scatter3DPicture.h>

#include <QtGlobal>

#include <vtkImageData.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace analyzer {

namespace {

constexpr std::uint32_t fullCoverage = 256;
constexpr std::uint16_t fullRest = 65535;
constexpr std::uint16_t negligibleRest = 256; ///< less cannot be told from nothing in 8 bits

} // namespace

Scatter3DPicture::Scatter3DPicture() = default;

Scatter3DPicture::~Scatter3DPicture() = default;

void Scatter3DPicture::draw(const Points& points, float diameter, int width, int height)
{
    Q_ASSERT_X(
        width >= 0 && height >= 0 && width < std::numeric_limits<std::uint16_t>::max(),
        "Scatter3DPicture::draw",
        "such a picture cannot be drawn");
    m_width = width;
    m_height = height;
    if (diameter != m_diameter) {
        makeDiscs(diameter);
    }
    const auto lines = static_cast<std::size_t>(height);
    m_pixels.assign(lines * static_cast<std::size_t>(width), Pixel{{0, 0, 0}, fullRest});
    // One more pixel in each line, which is never full.
    const std::size_t stride = static_cast<std::size_t>(width) + 1;
    m_next.resize(lines * stride);
    for (std::size_t line = 0; line < lines; ++line) {
        const auto begin = m_next.begin() + static_cast<std::ptrdiff_t>(line * stride);
        std::iota(begin, begin + static_cast<std::ptrdiff_t>(stride), std::uint16_t(0));
    }

    for (auto place = points.order.rbegin(); place != points.order.rend(); ++place) {
        const std::size_t row = *place;
        const float x = points.places[2 * row];
        const float y = points.places[2 * row + 1];
        const float left = std::floor(x);
        const float bottom = std::floor(y);
        const int column = static_cast<int>((x - left) * placesInPixel);
        const int line = static_cast<int>((y - bottom) * placesInPixel);
        // Rounding may give the place behind the last.
        const int disc =
            std::min(line, placesInPixel - 1) * placesInPixel + std::min(column, placesInPixel - 1);
        drawDisc(
            m_discs[static_cast<std::size_t>(disc)],
            static_cast<int>(left),
            static_cast<int>(bottom),
            points.colors == nullptr ? points.plain.data() : points.colors + 4 * row);
    }
    fillImage();
}

void Scatter3DPicture::makeDiscs(float diameter)
{
    m_diameter = diameter;
    m_discs.clear();
    const float radius = diameter / 2.0F;
    const int reach = static_cast<int>(std::ceil(radius + 0.5F));
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

void Scatter3DPicture::drawDisc(const Disc& disc, int x, int y, const unsigned char* color)
{
    // From 0 to 256, so that what is opaque leaves no rest.
    const std::uint32_t opacity = color[3] + (color[3] >> 7U);
    const int below = static_cast<int>(disc.lines.size() / 2);
    const int firstLine = std::max(0, below - y);
    const int lastLine = std::min(static_cast<int>(disc.lines.size()), m_height - y + below);
    for (int line = firstLine; line < lastLine; ++line) {
        const Disc::Line& span = disc.lines[static_cast<std::size_t>(line)];
        const auto inPicture = static_cast<std::size_t>(y + line - below);
        Pixel* const pixels = m_pixels.data() + inPicture * static_cast<std::size_t>(m_width);
        std::uint16_t* const next =
            m_next.data() + inPicture * (static_cast<std::size_t>(m_width) + 1);
        const int begin = x + span.begin;
        const int end = std::min(x + span.end, m_width);
        const std::uint32_t* const coverage = disc.coverage.data() + span.coverage;
        if (end <= 0 || begin >= m_width) {
            continue;
        }
        for (int i = firstOpen(next, std::max(begin, 0)); i < end; i = firstOpen(next, i + 1)) {
            Pixel& pixel = pixels[i];
            const std::uint32_t share = (coverage[i - begin] * opacity * pixel.rest) >> 16U;
            for (std::size_t channel = 0; channel < pixel.color.size(); ++channel) {
                pixel.color[channel] = static_cast<std::uint16_t>(
                    pixel.color[channel] + ((share * color[channel]) >> 8U));
            }
            pixel.rest = static_cast<std::uint16_t>(pixel.rest - share);
            if (pixel.rest < negligibleRest) {
                next[i] = static_cast<std::uint16_t>(i + 1);
            }
        }
    }
}

void Scatter3DPicture::fillImage()
{
    m_image->SetDimensions(m_width, m_height, 1);
    m_image->AllocateScalars(VTK_UNSIGNED_CHAR, 4);
    auto* out = static_cast<unsigned char*>(m_image->GetScalarPointer());
    for (const Pixel& pixel : m_pixels) {
        const int opacity = fullRest - pixel.rest;
        const float scale = opacity == 0 ? 0.0F : 256.0F / static_cast<float>(opacity);
        for (const std::uint16_t channel : pixel.color) {
            *out++ = static_cast<unsigned char>(
                std::min(255.0F, static_cast<float>(channel) * scale + 0.5F));
        }
        *out++ = static_cast<unsigned char>(opacity >> 8);
    }
    m_image->Modified();
}

int Scatter3DPicture::firstOpen(std::uint16_t* next, int x)
{
    while (next[x] != x) {
        next[x] = next[next[x]]; // so that the way is shorter the next time
        x = next[x];
    }
    return x;
}

} // namespace analyzer
