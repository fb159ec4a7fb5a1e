#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include <samples/GrayScottSolver.h>

namespace {

using samples::GrayScottSolver;

GrayScottSolver::Parameters smallGrid()
{
    GrayScottSolver::Parameters parameters;
    parameters.side = 13; // odd, so that the vector loop has a remainder
    return parameters;
}

/// One Euler step in double precision, written from the equations without regard to speed.
void referenceStep(
    const GrayScottSolver::Parameters& p, std::vector<float>& u, std::vector<float>& v)
{
    const std::size_t n = p.side;
    const auto laplacian = [n](const std::vector<float>& field, std::size_t x, std::size_t y) {
        const auto at = [&](std::size_t dx, std::size_t dy) -> double {
            return field[(y + n + dy - 1) % n * n + (x + n + dx - 1) % n];
        };
        return (at(0, 0) + at(2, 0) + at(0, 2) + at(2, 2)) / 6.0
            + (at(1, 0) + at(0, 1) + at(2, 1) + at(1, 2)) * 4.0 / 6.0 - at(1, 1) * 20.0 / 6.0;
    };
    const std::vector<float> oldU = u;
    const std::vector<float> oldV = v;
    for (std::size_t y = 0; y < n; ++y) {
        for (std::size_t x = 0; x < n; ++x) {
            const std::size_t i = y * n + x;
            const double a = oldU[i];
            const double b = oldV[i];
            const double da =
                p.diffusion * laplacian(oldU, x, y) - a * b * b + p.feedRate * (1.0 - a);
            const double db = p.diffusion / p.diffusionRatio * laplacian(oldV, x, y) + a * b * b
                - (p.feedRate + p.killRate) * b;
            u[i] = static_cast<float>(a + p.timeStep * da);
            v[i] = static_cast<float>(b + p.timeStep * db);
        }
    }
}

TEST(GrayScottSolverTest, AgreesWithAPlainStep)
{
    GrayScottSolver::Parameters parameters = smallGrid();
    parameters.timeStep = 1.1;
    parameters.diffusionRatio = 2.3;
    GrayScottSolver solver(parameters);
    // Every point differs from its neighbours and those across the edges.
    std::vector<float> u = solver.u();
    std::vector<float> v = solver.v();
    for (std::size_t i = 0; i < u.size(); ++i) {
        u[i] = 0.5F + 0.004F * static_cast<float>(i * 37 % 101);
        v[i] = 0.1F + 0.002F * static_cast<float>(i * 53 % 97);
    }
    solver.setFields(u, v);
    constexpr std::size_t steps = 3;

    solver.advance(steps);
    for (std::size_t i = 0; i < steps; ++i) {
        referenceStep(parameters, u, v);
    }

    for (std::size_t i = 0; i < u.size(); ++i) {
        ASSERT_NEAR(solver.u()[i], u[i], 2e-6) << "at " << i;
        ASSERT_NEAR(solver.v()[i], v[i], 2e-6) << "at " << i;
    }
    EXPECT_DOUBLE_EQ(solver.time(), 3.3);
}

TEST(GrayScottSolverTest, RateOfChangeIsThatOfTheNextStep)
{
    GrayScottSolver solver(smallGrid());
    solver.advance(5);
    const std::vector<float> before = solver.v();

    const double rate = solver.rateOfChange();
    solver.advance(1);

    const std::vector<float> after = solver.v();
    double sum = 0.0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        sum += std::pow((after[i] - before[i]) / solver.parameters().timeStep, 2);
    }
    EXPECT_NEAR(rate, std::sqrt(sum / static_cast<double>(before.size())), 1e-3 * rate);
    EXPECT_GT(rate, 0.0);
}

TEST(GrayScottSolverTest, UniformSteadyStatesStay)
{
    const GrayScottSolver::Parameters parameters = [] {
        GrayScottSolver::Parameters p = smallGrid();
        p.feedRate = 0.04;
        p.killRate = 0.05;
        return p;
    }();
    // Where u v = F + k and F (1 - u) = (F + k) v: one state without V and one with.
    const double decay = parameters.feedRate + parameters.killRate;
    const double u = (1.0 - std::sqrt(1.0 - 4.0 * decay * decay / parameters.feedRate)) / 2.0;

    struct State
    {
        double u;
        double v;
    };

    for (const State state : {State{1.0, 0.0}, State{u, decay / u}}) {
        SCOPED_TRACE(state.v);
        const std::size_t points = parameters.side * parameters.side;
        GrayScottSolver solver(parameters);
        solver.setFields(
            std::vector<float>(points, static_cast<float>(state.u)),
            std::vector<float>(points, static_cast<float>(state.v)));

        solver.advance(200);

        for (const float value : solver.u()) {
            ASSERT_NEAR(value, state.u, 1e-5);
        }
        for (const float value : solver.v()) {
            ASSERT_NEAR(value, state.v, 1e-5);
        }
        EXPECT_LT(solver.rateOfChange(), 1e-6);
    }
}

TEST(GrayScottSolverTest, DiffusionAloneKeepsTheAmount)
{
    GrayScottSolver::Parameters parameters = smallGrid();
    parameters.feedRate = 0.0;
    parameters.killRate = 0.0;
    GrayScottSolver solver(parameters);
    const auto amount = [&solver] {
        double sum = 0.0;
        for (const std::vector<float>& field : {solver.u(), solver.v()}) {
            for (const float value : field) {
                sum += value;
            }
        }
        return sum;
    };
    const double before = amount();

    solver.advance(500);

    EXPECT_NEAR(amount(), before, 1e-4 * before);
}

TEST(GrayScottSolverTest, ADyingSubstanceEndsAtNothing)
{
    GrayScottSolver::Parameters parameters = smallGrid();
    parameters.killRate = 0.12;
    GrayScottSolver solver(parameters);

    solver.advance(1000);

    const std::vector<float> v = solver.v();
    EXPECT_TRUE(std::all_of(v.begin(), v.end(), [](float value) { return value == 0.0F; }));
}

TEST(GrayScottSolverTest, SeedAndNothingElseDecidesTheBeginning)
{
    GrayScottSolver::Parameters parameters = smallGrid();
    parameters.side = 48;
    GrayScottSolver::Parameters otherRates = parameters;
    otherRates.feedRate = 0.02;
    GrayScottSolver::Parameters otherSeed = parameters;
    otherSeed.seed = parameters.seed + 1;

    const std::vector<float> v = GrayScottSolver(parameters).v();

    EXPECT_EQ(v, GrayScottSolver(parameters).v());
    EXPECT_EQ(v, GrayScottSolver(otherRates).v());
    EXPECT_NE(v, GrayScottSolver(otherSeed).v());
    EXPECT_EQ(*std::min_element(v.begin(), v.end()), 0.0F);
    EXPECT_NEAR(*std::max_element(v.begin(), v.end()), 0.25, 0.0025);
}

TEST(GrayScottSolverTest, RefusesParametersOutOfRange)
{
    using Parameters = GrayScottSolver::Parameters;
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();

    struct Refusal
    {
        void (*change)(Parameters&);
        const char* named;
    };

    const Refusal refusals[] = {
        {[](Parameters& p) { p.feedRate = -0.01; }, "feed rate"},
        {[](Parameters& p) { p.feedRate = nan; }, "feed rate"},
        {[](Parameters& p) { p.killRate = 0.21; }, "kill rate"},
        {[](Parameters& p) { p.diffusionRatio = 0.9; }, "diffusion ratio"},
        {[](Parameters& p) { p.diffusion = 0.0; }, "diffusion"},
        {[](Parameters& p) { p.timeStep = 0.0; }, "time step"},
        {[](Parameters& p) { p.timeStep = GrayScottSolver::maxTimeStep(p) * 1.001; }, "unstable"},
        {[](Parameters& p) { p.side = 7; }, "side"},
        {[](Parameters& p) { p.side = 5000; }, "side"},
    };
    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.named);
        Parameters parameters = smallGrid();
        refusal.change(parameters);
        try {
            const GrayScottSolver solver(parameters);
            ADD_FAILURE() << "was accepted";
        } catch (const std::invalid_argument& error) {
            EXPECT_NE(std::string(error.what()).find(refusal.named), std::string::npos)
                << error.what();
        }
    }
}

TEST(GrayScottSolverTest, TheLongestTimeStepIsStable)
{
    GrayScottSolver::Parameters parameters = smallGrid();
    parameters.side = 32;
    parameters.timeStep = GrayScottSolver::maxTimeStep(parameters);
    GrayScottSolver solver(parameters);

    solver.advance(2000);

    for (const float value : solver.u()) {
        ASSERT_GE(value, 0.0F);
        ASSERT_LE(value, 1.0F);
    }
}

TEST(GrayScottSolverTest, SaysWhenTheSolutionExplodes)
{
    GrayScottSolver solver(smallGrid());
    const std::size_t points = 13 * 13;
    solver.setFields(std::vector<float>(points, 50.0F), std::vector<float>(points, 50.0F));

    EXPECT_THROW(solver.advance(50), std::runtime_error);
}

TEST(GrayScottSolverTest, RefusesFieldsOfAnotherSize)
{
    GrayScottSolver solver(smallGrid());
    const std::vector<float> right(13 * 13);

    EXPECT_THROW(solver.setFields(right, std::vector<float>(13)), std::invalid_argument);
    EXPECT_THROW(solver.setFields({}, right), std::invalid_argument);
}

} // namespace
