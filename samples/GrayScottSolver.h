#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace samples {

/// Computes how two reacting and diffusing substances form patterns on a periodic square.
///
/// The reaction U + 2V -> 3V, V -> P in a fed reactor:
///
///     du/dt = Du lap(u) - u v^2 + F (1 - u)
///     dv/dt = Dv lap(v) + u v^2 - (F + k) v
///
/// Sources: P. Gray and S. K. Scott, "Autocatalytic reactions in the isothermal, continuous stirred
/// tank reactor", Chemical Engineering Science 39 (1984) 1087-1097, for the reaction; J. E. Pearson,
/// "Complex patterns in a simple system", Science 261 (1993) 189-192, for the patterns in the plane.
///
/// Space is discretised by the nine-point Laplacian (weights 1/6, 4/6, -20/6), whose error is the
/// same in all directions, so that patterns do not line up with the grid; time by explicit Euler.
/// Lengths are in grid spacings. Not to be shared between threads; separate objects are independent,
/// and a result depends on the parameters only.
class GrayScottSolver
{
public:
    struct Parameters
    {
        double feedRate{0.037}; ///< F, in [0, 0.2]
        double killRate{0.06}; ///< k, in [0, 0.2]
        double diffusionRatio{2.0}; ///< Du / Dv, in [1, 10]
        double diffusion{0.16}; ///< Du in squared grid spacings per unit of time, above 0
        double timeStep{1.0}; ///< above 0, limited by stability, see maxTimeStep()
        std::size_t side{96}; ///< grid points along an edge, in [8, 4096]
        std::uint64_t seed{20240229}; ///< of the initial state
    };

    /// Refuses what cannot be computed.
    /// \throws std::invalid_argument naming the parameter that is out of its range, or the largest
    /// stable time step where the given one is longer.
    static void validate(const Parameters& parameters);

    /// Starts from u = 1, v = 0 with square patches of u = 1/2, v = 1/4 at random places and one per
    /// cent of noise inside them. Equal seeds and sides give equal states on every machine.
    /// \throws std::invalid_argument if validate() does.
    explicit GrayScottSolver(const Parameters& parameters);

    /// The longest time step for which explicit Euler damps every disturbance while v stays below
    /// sqrt(1/2), which is far above what the reaction reaches. Ignores \p parameters.timeStep.
    [[nodiscard]] static double maxTimeStep(const Parameters& parameters);

    /// \throws std::runtime_error if the state is not finite afterwards.
    void advance(std::size_t steps);

    /// Replaces the state; fields are row by row and hold side * side values each.
    /// \throws std::invalid_argument for any other number of values.
    void setFields(const std::vector<float>& u, const std::vector<float>& v);

    [[nodiscard]] const Parameters& parameters() const;

    /// Time passed since construction.
    [[nodiscard]] double time() const;

    /// The concentration of U, row by row, side * side values.
    [[nodiscard]] std::vector<float> u() const;

    /// The concentration of V, row by row, side * side values.
    [[nodiscard]] std::vector<float> v() const;

    /// The root mean square over the grid of dv/dt in the present state: a measure of how far the
    /// run is from a steady state.
    [[nodiscard]] double rateOfChange() const;

private:
    using Field = std::vector<float>;

    void seedPatches();
    void wrapEdges(Field& field) const;
    void step();
    [[nodiscard]] std::vector<float> withoutMargin(const Field& field) const;

    Parameters m_parameters;
    /// Length of a row in the fields, which have a margin of one point that mirrors the far edge:
    /// the inner loop then needs no test for the border.
    std::size_t m_stride;
    Field m_u;
    Field m_v;
    Field m_nextU;
    Field m_nextV;
    std::size_t m_stepsDone{0};
};

} // namespace samples
