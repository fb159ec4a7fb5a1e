#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>
#include <string>

#include <samples/GrayScottSolver.h>

/// Marks the inner loop, in which sanitizers must not check each access: they would keep it from being
/// vectorised, and computing the study is a part of every build. That it computes the right thing and
/// stays inside the fields is what the test against a plain step is for.
#define DATAVIEWS_SAMPLES_UNCHECKED [[gnu::no_sanitize("address", "undefined", "thread")]]

namespace samples {

namespace {

constexpr double maxRate = 0.2;
constexpr double maxDiffusionRatio = 10.0;
constexpr std::size_t minSide = 8;
constexpr std::size_t maxSide = 4096;

/// The largest magnitude of an eigenvalue of the nine-point Laplacian: its symbol at the wave (pi, pi).
constexpr double laplacianBound = 16.0 / 3.0;
constexpr double maxSquareOfV = 0.5;

constexpr float edgeWeight = 4.0F / 6.0F;
constexpr float cornerWeight = 1.0F / 6.0F;
constexpr float centreWeight = 20.0F / 6.0F;

/// Less of V than this is none. Without it, the tails of decaying patches end in denormal numbers,
/// with which processors compute many times slower.
constexpr float negligible = 1e-15F;

/// One patch per so many grid points, each so many points wide.
constexpr std::size_t pointsPerPatch = 480;
constexpr std::size_t patchSide = 7;

/// The generator SplitMix64: small, and the same on every machine, unlike the standard's distributions.
class Random
{
public:
    explicit Random(std::uint64_t seed)
        : m_state(seed)
    {}

    std::uint64_t next()
    {
        m_state += 0x9e3779b97f4a7c15U;
        std::uint64_t mixed = m_state;
        mixed = (mixed ^ (mixed >> 30U)) * 0xbf58476d1ce4e5b9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94d049bb133111ebU;
        return mixed ^ (mixed >> 31U);
    }

    /// In [0, \p end).
    std::size_t index(std::size_t end) { return static_cast<std::size_t>(next() % end); }

    /// In [-1, 1).
    float symmetric()
    {
        constexpr float scale = 1.0F / static_cast<float>(1U << 23U);
        return static_cast<float>(next() >> 40U) * scale - 1.0F;
    }

private:
    std::uint64_t m_state;
};

void requireRange(const std::string& name, double value, double smallest, double largest)
{
    // Written so that NaN is refused too.
    if (!(value >= smallest && value <= largest)) {
        std::ostringstream message;
        message << "The " << name << " must be from " << smallest << " to " << largest << ", not "
                << value << ".";
        throw std::invalid_argument(message.str());
    }
}

void requirePositive(const std::string& name, double value)
{
    if (!(value > 0.0) || !std::isfinite(value)) {
        std::ostringstream message;
        message << "The " << name << " must be a number above 0, not " << value << ".";
        throw std::invalid_argument(message.str());
    }
}

/// Rates with the time step and the weights of the Laplacian multiplied in.
struct StepFactors
{
    explicit StepFactors(const GrayScottSolver::Parameters& parameters)
        : dt(static_cast<float>(parameters.timeStep))
        , diffusionU(static_cast<float>(parameters.timeStep * parameters.diffusion))
        , diffusionV(static_cast<float>(
              parameters.timeStep * parameters.diffusion / parameters.diffusionRatio))
        , feed(static_cast<float>(parameters.timeStep * parameters.feedRate))
        , decay(
              static_cast<float>(parameters.timeStep * (parameters.feedRate + parameters.killRate)))
    {}

    float dt;
    float diffusionU;
    float diffusionV;
    float feed;
    float decay;
};

/// The nine-point Laplacian at \p x of the rows \p above, \p at and \p below.
DATAVIEWS_SAMPLES_UNCHECKED inline float laplacian(
    const float* above, const float* at, const float* below, std::ptrdiff_t x)
{
    const float edges = (above[x] + below[x]) + (at[x - 1] + at[x + 1]);
    const float corners = (above[x - 1] + above[x + 1]) + (below[x - 1] + below[x + 1]);
    return edgeWeight * edges + cornerWeight * corners - centreWeight * at[x];
}

/// Advances one row. The pointers are to the row's margin; nothing overlaps, which is what lets the
/// compiler turn the loop into vector instructions: keep it free of calls and branches. Inlined, it would
/// lose them: the optimiser then carries values from one point to the next first, and is four times slower.
DATAVIEWS_SAMPLES_UNCHECKED [[gnu::noinline]] void stepRow(
    const float* __restrict u,
    const float* __restrict v,
    float* __restrict nextU,
    float* __restrict nextV,
    std::ptrdiff_t stride,
    StepFactors factors)
{
    const float* uAbove = u - stride;
    const float* uBelow = u + stride;
    const float* vAbove = v - stride;
    const float* vBelow = v + stride;
    for (std::ptrdiff_t x = 1; x < stride - 1; ++x) {
        const float reaction = factors.dt * u[x] * v[x] * v[x];
        nextU[x] = u[x] + factors.diffusionU * laplacian(uAbove, u, uBelow, x) - reaction
            + factors.feed * (1.0F - u[x]);
        const float grown = v[x] + factors.diffusionV * laplacian(vAbove, v, vBelow, x) + reaction
            - factors.decay * v[x];
        // Squared for its magnitude: a solution that explodes, and is negative, must not pass for one that dies.
        nextV[x] = grown * grown < negligible * negligible ? 0.0F : grown;
    }
}

} // namespace

void GrayScottSolver::validate(const Parameters& parameters)
{
    requireRange("feed rate", parameters.feedRate, 0.0, maxRate);
    requireRange("kill rate", parameters.killRate, 0.0, maxRate);
    requireRange("diffusion ratio", parameters.diffusionRatio, 1.0, maxDiffusionRatio);
    requirePositive("diffusion", parameters.diffusion);
    requirePositive("time step", parameters.timeStep);
    requireRange(
        "side of the grid",
        static_cast<double>(parameters.side),
        static_cast<double>(minSide),
        static_cast<double>(maxSide));
    const double longest = maxTimeStep(parameters);
    if (parameters.timeStep > longest) {
        std::ostringstream message;
        message << "The time step " << parameters.timeStep
                << " is unstable: with these parameters it must be at most " << longest << ".";
        throw std::invalid_argument(message.str());
    }
}

GrayScottSolver::GrayScottSolver(const Parameters& parameters)
    : m_parameters(parameters)
    , m_stride(parameters.side + 2)
{
    validate(parameters);
    m_u.assign(m_stride * m_stride, 1.0F);
    m_v.assign(m_stride * m_stride, 0.0F);
    m_nextU = m_u;
    m_nextV = m_v;
    seedPatches();
}

double GrayScottSolver::maxTimeStep(const Parameters& parameters)
{
    // Euler is stable while the time step times the fastest decay is at most 2. The ratio is at least 1,
    // so U diffuses faster; it is also consumed at the rate v^2 and washed out at F, V at F + k.
    const double fastest = laplacianBound * parameters.diffusion + parameters.feedRate
        + std::max(maxSquareOfV, parameters.killRate);
    return 2.0 / fastest;
}

void GrayScottSolver::seedPatches()
{
    constexpr float noise = 0.01F;
    const std::size_t side = m_parameters.side;
    const std::size_t patches = std::max<std::size_t>(1, side * side / pointsPerPatch);
    Random random(m_parameters.seed);
    for (std::size_t patch = 0; patch < patches; ++patch) {
        const std::size_t left = random.index(side);
        const std::size_t top = random.index(side);
        for (std::size_t row = 0; row < patchSide; ++row) {
            for (std::size_t column = 0; column < patchSide; ++column) {
                const std::size_t x = (left + column) % side;
                const std::size_t y = (top + row) % side;
                const std::size_t at = (y + 1) * m_stride + x + 1;
                m_u[at] = 0.5F * (1.0F + noise * random.symmetric());
                m_v[at] = 0.25F * (1.0F + noise * random.symmetric());
            }
        }
    }
}

void GrayScottSolver::wrapEdges(Field& field) const
{
    const std::size_t side = m_parameters.side;
    for (std::size_t y = 1; y <= side; ++y) {
        float* row = field.data() + y * m_stride;
        row[0] = row[side];
        row[side + 1] = row[1];
    }
    // After the columns, so that the corners are right as well.
    const auto rowAt = [this, &field](std::size_t y) {
        return field.begin() + static_cast<std::ptrdiff_t>(y * m_stride);
    };
    std::copy(rowAt(side), rowAt(side + 1), rowAt(0));
    std::copy(rowAt(1), rowAt(2), rowAt(side + 1));
}

void GrayScottSolver::step()
{
    wrapEdges(m_u);
    wrapEdges(m_v);
    const StepFactors factors(m_parameters);
    const auto stride = static_cast<std::ptrdiff_t>(m_stride);
    for (std::size_t y = 1; y <= m_parameters.side; ++y) {
        const std::size_t row = y * m_stride;
        stepRow(
            m_u.data() + row,
            m_v.data() + row,
            m_nextU.data() + row,
            m_nextV.data() + row,
            stride,
            factors);
    }
    m_u.swap(m_nextU);
    m_v.swap(m_nextV);
    ++m_stepsDone;
}

void GrayScottSolver::advance(std::size_t steps)
{
    for (std::size_t done = 0; done < steps; ++done) {
        step();
    }
    wrapEdges(m_u);
    wrapEdges(m_v);
    const auto isFinite = [](float value) { return std::isfinite(value); };
    if (!std::all_of(m_u.begin(), m_u.end(), isFinite)
        || !std::all_of(m_v.begin(), m_v.end(), isFinite)) {
        std::ostringstream message;
        message << "The solution left the range of numbers before time " << time() << ".";
        throw std::runtime_error(message.str());
    }
}

void GrayScottSolver::setFields(const std::vector<float>& u, const std::vector<float>& v)
{
    const std::size_t side = m_parameters.side;
    if (u.size() != side * side || v.size() != side * side) {
        throw std::invalid_argument(
            "Each field must have " + std::to_string(side * side) + " values, not "
            + std::to_string(u.size()) + " and " + std::to_string(v.size()) + ".");
    }
    for (std::size_t y = 0; y < side; ++y) {
        for (std::size_t x = 0; x < side; ++x) {
            m_u[(y + 1) * m_stride + x + 1] = u[y * side + x];
            m_v[(y + 1) * m_stride + x + 1] = v[y * side + x];
        }
    }
    wrapEdges(m_u);
    wrapEdges(m_v);
}

const GrayScottSolver::Parameters& GrayScottSolver::parameters() const
{
    return m_parameters;
}

double GrayScottSolver::time() const
{
    return static_cast<double>(m_stepsDone) * m_parameters.timeStep;
}

std::vector<float> GrayScottSolver::u() const
{
    return withoutMargin(m_u);
}

std::vector<float> GrayScottSolver::v() const
{
    return withoutMargin(m_v);
}

double GrayScottSolver::rateOfChange() const
{
    const double diffusionV = m_parameters.diffusion / m_parameters.diffusionRatio;
    const double decay = m_parameters.feedRate + m_parameters.killRate;
    const auto side = static_cast<std::ptrdiff_t>(m_parameters.side);
    const auto stride = static_cast<std::ptrdiff_t>(m_stride);
    double sum = 0.0;
    for (std::ptrdiff_t y = 1; y <= side; ++y) {
        const float* u = m_u.data() + y * stride;
        const float* v = m_v.data() + y * stride;
        for (std::ptrdiff_t x = 1; x <= side; ++x) {
            const double amount = v[x];
            const double spread = laplacian(v - stride, v, v + stride, x);
            const double rate = diffusionV * spread + u[x] * amount * amount - decay * amount;
            sum += rate * rate;
        }
    }
    return std::sqrt(sum / static_cast<double>(side * side));
}

std::vector<float> GrayScottSolver::withoutMargin(const Field& field) const
{
    const std::size_t side = m_parameters.side;
    std::vector<float> inner;
    inner.reserve(side * side);
    for (std::size_t y = 1; y <= side; ++y) {
        const auto row = field.begin() + static_cast<std::ptrdiff_t>(y * m_stride + 1);
        inner.insert(inner.end(), row, row + static_cast<std::ptrdiff_t>(side));
    }
    return inner;
}

} // namespace samples
