#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include <samples/FieldPicture.h>

namespace samples {

namespace {

constexpr std::size_t controlPoints = 8;
using Controls = std::array<std::array<int, 3>, controlPoints>;

// Chosen at even steps of lightness (CIE L*).
constexpr Controls lagoon{
    {{14, 10, 48},
     {30, 36, 94},
     {34, 68, 129},
     {28, 105, 143},
     {31, 144, 139},
     {81, 181, 116},
     {162, 210, 91},
     {246, 232, 128}}};
constexpr Controls ember{
    {{8, 6, 20},
     {59, 17, 75},
     {114, 25, 97},
     {172, 40, 88},
     {222, 70, 61},
     {251, 118, 44},
     {255, 174, 67},
     {254, 222, 150}}};

/// The two grid points around a pixel's centre and how far it is from the first to the second.
struct Sample
{
    std::size_t first;
    std::size_t second;
    float share;
};

std::vector<Sample> samplesAlongEdge(std::size_t side, int sidePx)
{
    std::vector<Sample> result;
    result.reserve(static_cast<std::size_t>(sidePx));
    const double scale = static_cast<double>(side) / sidePx;
    for (int pixel = 0; pixel < sidePx; ++pixel) {
        // Grid points lie in the middle of their squares; the period is added to keep the place positive.
        const double place = (pixel + 0.5) * scale - 0.5 + static_cast<double>(side);
        const double whole = std::floor(place);
        const auto first = static_cast<std::size_t>(whole) % side;
        result.push_back({first, (first + 1) % side, static_cast<float>(place - whole)});
    }
    return result;
}

float mix(float a, float b, float share)
{
    return a + (b - a) * share;
}

} // namespace

FieldPicture::FieldPicture(Palette palette, float low, float high)
    : m_low(low)
    , m_shadesPerUnit(static_cast<float>(shades - 1) / (high - low))
    , m_colors{}
{
    if (!(low < high)) {
        throw std::invalid_argument(
            "The lower end of a color scale, " + std::to_string(low)
            + ", must be less than the upper end, " + std::to_string(high) + ".");
    }
    const Controls& controls = palette == Palette::Lagoon ? lagoon : ember;
    for (std::size_t shade = 0; shade < shades; ++shade) {
        const double place =
            static_cast<double>(shade * (controlPoints - 1)) / static_cast<double>(shades - 1);
        const std::size_t before = std::min(static_cast<std::size_t>(place), controlPoints - 2);
        const auto channel =
            [&controls, before, share = place - static_cast<double>(before)](std::size_t index) {
                const int from = controls[before][index];
                const int to = controls[before + 1][index];
                return static_cast<int>(std::lround(from + (to - from) * share));
            };
        m_colors[shade] = qRgb(channel(0), channel(1), channel(2));
    }
}

QImage FieldPicture::draw(const std::vector<float>& field, std::size_t side, int sidePx) const
{
    if (side == 0 || field.size() != side * side || sidePx < 1 || sidePx > maxSidePx) {
        throw std::invalid_argument(
            "A field of " + std::to_string(field.size()) + " values with " + std::to_string(side)
            + " along an edge cannot be drawn in a picture " + std::to_string(sidePx)
            + " pixels wide.");
    }
    const std::vector<Sample> samples = samplesAlongEdge(side, sidePx);
    QImage image(sidePx, sidePx, QImage::Format_RGB32);
    for (int y = 0; y < sidePx; ++y) {
        const Sample& down = samples[static_cast<std::size_t>(y)];
        const float* above = field.data() + down.first * side;
        const float* below = field.data() + down.second * side;
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (const Sample& across : samples) {
            const float upper = mix(above[across.first], above[across.second], across.share);
            const float lower = mix(below[across.first], below[across.second], across.share);
            *line++ = color(mix(upper, lower, down.share));
        }
    }
    return image;
}

QRgb FieldPicture::color(float value) const
{
    const float shade = (value - m_low) * m_shadesPerUnit + 0.5F;
    // Written so that NaN becomes the first color.
    const float kept = shade > 0.0F ? std::min(shade, static_cast<float>(shades - 1)) : 0.0F;
    return m_colors[static_cast<std::size_t>(kept)];
}

} // namespace samples
