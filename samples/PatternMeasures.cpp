#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include <samples/PatternMeasures.h>

namespace samples {

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = 3.14159265358979323846;

constexpr std::size_t minSide = 4;
constexpr float leastConcentration = 0.02F;
constexpr float leastContrast = 0.02F;
constexpr double mostly = 0.75;
constexpr double hardly = 0.25;

double meanOf(const std::vector<float>& field)
{
    double sum = 0.0;
    for (const float value : field) {
        sum += value;
    }
    return sum / static_cast<double>(field.size());
}

double deviationOf(const std::vector<float>& field, double mean)
{
    double sum = 0.0;
    for (const float value : field) {
        sum += (value - mean) * (value - mean);
    }
    return std::sqrt(sum / static_cast<double>(field.size()));
}

/// The power of the waves (kx, ky) in \p field, kx from 0 to side / 2 and ky from 0 to side - 1, ordered
/// by ky. The other half of the spectrum of a real field mirrors this one.
///
/// A plain transform by rows, then columns: at the sizes in use it takes a few thousandths of a second,
/// and unlike the fast one it takes any side.
std::vector<double> halfPowerSpectrum(
    const std::vector<float>& field, std::size_t side, double mean)
{
    std::vector<double> cosine(side);
    std::vector<double> sine(side);
    for (std::size_t i = 0; i < side; ++i) {
        const double angle = 2.0 * pi * static_cast<double>(i) / static_cast<double>(side);
        cosine[i] = std::cos(angle);
        sine[i] = std::sin(angle);
    }

    const std::size_t width = side / 2 + 1;
    std::vector<double> real(width * side, 0.0);
    std::vector<double> imaginary(width * side, 0.0);
    for (std::size_t y = 0; y < side; ++y) {
        for (std::size_t x = 0; x < side; ++x) {
            const double value = field[y * side + x] - mean;
            std::size_t phase = 0;
            for (std::size_t kx = 0; kx < width; ++kx) {
                real[y * width + kx] += value * cosine[phase];
                imaginary[y * width + kx] -= value * sine[phase];
                phase += x;
                phase -= phase >= side ? side : 0;
            }
        }
    }

    std::vector<double> power(width * side);
    std::vector<double> sumReal(width);
    std::vector<double> sumImaginary(width);
    for (std::size_t ky = 0; ky < side; ++ky) {
        std::fill(sumReal.begin(), sumReal.end(), 0.0);
        std::fill(sumImaginary.begin(), sumImaginary.end(), 0.0);
        for (std::size_t y = 0; y < side; ++y) {
            const double c = cosine[ky * y % side];
            const double s = sine[ky * y % side];
            const double* rowReal = real.data() + y * width;
            const double* rowImaginary = imaginary.data() + y * width;
            for (std::size_t kx = 0; kx < width; ++kx) {
                sumReal[kx] += rowReal[kx] * c + rowImaginary[kx] * s;
                sumImaginary[kx] += rowImaginary[kx] * c - rowReal[kx] * s;
            }
        }
        for (std::size_t kx = 0; kx < width; ++kx) {
            power[ky * width + kx] =
                sumReal[kx] * sumReal[kx] + sumImaginary[kx] * sumImaginary[kx];
        }
    }
    return power;
}

/// Waves whose number rounds to the same integer.
struct Ring
{
    double power{0.0};
    double powerTimesNumber{0.0};
};

double wavelengthOf(const std::vector<float>& field, std::size_t side, double mean)
{
    const std::vector<double> power = halfPowerSpectrum(field, side, mean);
    const std::size_t width = side / 2 + 1;
    // Up to the diagonal wave in the corner of the spectrum, and an empty ring as its neighbour.
    std::vector<Ring> rings(side / 2 + side / 4 + 2);
    for (std::size_t ky = 0; ky < side; ++ky) {
        const auto down = static_cast<double>(std::min(ky, side - ky));
        for (std::size_t kx = 0; kx < width; ++kx) {
            const double number = std::hypot(static_cast<double>(kx), down);
            const auto ring = static_cast<std::size_t>(std::lround(number));
            if (ring == 0) {
                continue;
            }
            // Columns other than the first and, for an even side, the last stand for their mirror too.
            const double weight = kx == 0 || 2 * kx == side ? 1.0 : 2.0;
            rings[ring].power += weight * power[ky * width + kx];
            rings[ring].powerTimesNumber += weight * power[ky * width + kx] * number;
        }
    }

    const auto strongest =
        std::max_element(rings.begin() + 1, rings.end() - 1, [](const Ring& a, const Ring& b) {
            return a.power < b.power;
        });
    double sum = 0.0;
    double weighted = 0.0;
    for (auto ring = strongest - 1; ring <= strongest + 1; ++ring) {
        sum += ring->power;
        weighted += ring->powerTimesNumber;
    }
    return static_cast<double>(side) * sum / weighted;
}

/// The length of the contour at \p level in the square with these corners, counted around it.
double contourLengthInSquare(const std::array<double, 4>& corners, double level)
{
    // Corners lie at (0,0), (1,0), (1,1), (0,1); side i runs from corner i to the next.
    constexpr std::array<std::pair<double, double>, 4> places{
        {{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}}};
    std::array<std::pair<double, double>, 4> crossings;
    std::size_t count = 0;
    for (std::size_t from = 0; from < 4; ++from) {
        const std::size_t to = (from + 1) % 4;
        if ((corners[from] > level) == (corners[to] > level)) {
            continue;
        }
        const double t = (level - corners[from]) / (corners[to] - corners[from]);
        crossings[count++] = {
            places[from].first + t * (places[to].first - places[from].first),
            places[from].second + t * (places[to].second - places[from].second)};
    }
    const auto distance = [&crossings](std::size_t a, std::size_t b) {
        return std::hypot(
            crossings[a].first - crossings[b].first, crossings[a].second - crossings[b].second);
    };
    if (count == 0) {
        return 0.0;
    }
    if (count == 2) {
        return distance(0, 1);
    }
    // A saddle: the middle of the square decides which two corners are joined. Crossing 0 lies between
    // corners 0 and 1, crossing 3 between 3 and 0, so joining 3 with 0 cuts corner 0 off.
    const double middle = (corners[0] + corners[1] + corners[2] + corners[3]) / 4.0;
    const bool firstIsCutOff = (corners[0] > level) != (middle > level);
    return firstIsCutOff ? distance(3, 0) + distance(1, 2) : distance(0, 1) + distance(2, 3);
}

double contourLength(const std::vector<float>& field, std::size_t side, double level)
{
    double length = 0.0;
    for (std::size_t y = 0; y < side; ++y) {
        const float* row = field.data() + y * side;
        const float* below = field.data() + (y + 1) % side * side;
        for (std::size_t x = 0; x < side; ++x) {
            const std::size_t right = (x + 1) % side;
            length += contourLengthInSquare({row[x], row[right], below[right], below[x]}, level);
        }
    }
    return length;
}

/// The share of the points marked in \p region that lie in connected pieces whose box is at most \p longest
/// long and wide. Pieces are followed across the periodic edges. 0 for an empty region.
double shareInShortPieces(std::vector<bool> region, std::size_t side, double longest)
{
    struct Place
    {
        long x; // not wrapped, so that a piece across an edge keeps its shape
        long y;
    };

    const long period = static_cast<long>(side);
    const auto indexOf = [period](Place place) {
        const long x = (place.x % period + period) % period;
        const long y = (place.y % period + period) % period;
        return static_cast<std::size_t>(y * period + x);
    };

    std::size_t inShort = 0;
    std::size_t total = 0;
    std::vector<Place> piece;
    for (std::size_t start = 0; start < region.size(); ++start) {
        if (!region[start]) {
            continue;
        }
        piece.assign(1, {static_cast<long>(start % side), static_cast<long>(start / side)});
        region[start] = false;
        Place low = piece.front();
        Place high = piece.front();
        for (std::size_t next = 0; next < piece.size(); ++next) {
            const Place at = piece[next];
            low = {std::min(low.x, at.x), std::min(low.y, at.y)};
            high = {std::max(high.x, at.x), std::max(high.y, at.y)};
            for (const Place neighbour :
                 {Place{at.x - 1, at.y},
                  Place{at.x + 1, at.y},
                  Place{at.x, at.y - 1},
                  Place{at.x, at.y + 1}}) {
                if (const std::size_t index = indexOf(neighbour); region[index]) {
                    region[index] = false;
                    piece.push_back(neighbour);
                }
            }
        }
        const long extent = std::max(high.x - low.x, high.y - low.y) + 1;
        total += piece.size();
        inShort += static_cast<double>(extent) <= longest ? piece.size() : 0;
    }
    return total == 0 ? 0.0 : static_cast<double>(inShort) / static_cast<double>(total);
}

std::string kindOfPattern(const std::vector<bool>& covered, std::size_t side, double wavelength)
{
    if (2.0 * wavelength > static_cast<double>(side)) {
        return "mixed";
    }
    const double spots = shareInShortPieces(covered, side, wavelength);
    if (spots >= mostly) {
        return "spots";
    }
    std::vector<bool> open = covered;
    open.flip();
    const double holes = shareInShortPieces(std::move(open), side, wavelength);
    if (holes >= mostly) {
        return "holes";
    }
    return spots <= hardly && holes <= hardly ? "stripes" : "mixed";
}

} // namespace

PatternMeasures::PatternMeasures(const std::vector<float>& field, std::size_t side)
    : m_mean(0.0)
    , m_deviation(0.0)
    , m_wavelength(missing)
    , m_interfaceLength(missing)
    , m_coveredFraction(missing)
{
    if (side < minSide || field.size() != side * side) {
        throw std::invalid_argument(
            "A field of " + std::to_string(field.size()) + " values is not a square of "
            + std::to_string(side) + " by " + std::to_string(side) + " points, at least "
            + std::to_string(minSide) + " by " + std::to_string(minSide) + ".");
    }
    if (!std::all_of(
            field.begin(), field.end(), [](float value) { return std::isfinite(value); })) {
        throw std::invalid_argument(
            "A field with values that are not finite has no pattern to measure.");
    }

    m_mean = meanOf(field);
    m_deviation = deviationOf(field, m_mean);
    const auto [smallest, largest] = std::minmax_element(field.begin(), field.end());
    if (*largest < leastConcentration) {
        m_kind = "died out";
        return;
    }
    if (*largest - *smallest < leastContrast) {
        m_kind = "uniform";
        return;
    }

    const double level = (static_cast<double>(*smallest) + static_cast<double>(*largest)) / 2.0;
    std::vector<bool> covered(field.size());
    std::transform(field.begin(), field.end(), covered.begin(), [level](float value) {
        return value > level;
    });
    m_wavelength = wavelengthOf(field, side, m_mean);
    m_interfaceLength = contourLength(field, side, level);
    m_coveredFraction = static_cast<double>(std::count(covered.begin(), covered.end(), true))
        / static_cast<double>(covered.size());
    m_kind = kindOfPattern(covered, side, m_wavelength);
}

bool PatternMeasures::hasPattern() const
{
    return !std::isnan(m_wavelength);
}

double PatternMeasures::mean() const
{
    return m_mean;
}

double PatternMeasures::deviation() const
{
    return m_deviation;
}

double PatternMeasures::wavelength() const
{
    return m_wavelength;
}

double PatternMeasures::interfaceLength() const
{
    return m_interfaceLength;
}

double PatternMeasures::coveredFraction() const
{
    return m_coveredFraction;
}

const std::string& PatternMeasures::kind() const
{
    return m_kind;
}

} // namespace samples
