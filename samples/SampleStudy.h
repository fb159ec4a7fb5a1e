#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

#include <samples/GrayScottSolver.h>

namespace samples {

/// Runs the solver for every combination of swept parameters and writes a study of the results.
///
/// The study is a Cinema database, version D: a folder with `data.csv`, one row per case, and two
/// pictures per case under `images/`. Columns: Feed rate, Kill rate, Diffusion ratio (inputs); Mean
/// concentration, Concentration deviation, Wavelength, Interface length, Covered fraction, Final change,
/// Pattern (outputs, of the substance V, see PatternMeasures and GrayScottSolver::rateOfChange());
/// FILE_concentration, FILE_reaction (the pictures of v and of the local rate u v^2). What a case does
/// not have is an empty cell. Pictures of all cases have the same color scales.
class SampleStudy
{
public:
    struct Sweep
    {
        std::vector<double> feedRates;
        std::vector<double> killRates;
        std::vector<double> diffusionRatios;
        /// What all cases have in common; its feed rate, kill rate and diffusion ratio are not used.
        GrayScottSolver::Parameters common;
        std::size_t steps{0};
        int pictureSidePx{192};
    };

    /// The sweep of the study that comes with the program: 8 x 6 x 3 cases among which every kind of
    /// pattern occurs.
    [[nodiscard]] static Sweep bundledSweep();

    /// \throws std::invalid_argument if a swept parameter has no value, or if the solver refuses a case
    /// or FieldPicture the size.
    explicit SampleStudy(const Sweep& sweep);

    [[nodiscard]] std::size_t numberOfCases() const;

    /// Computes all cases on \p threads threads (0: one per core) and writes the study to \p directory;
    /// an older study there is replaced. The bytes written do not depend on the number of threads.
    ///
    /// Everything is first written to a folder beside it and renamed at the end, so that \p directory
    /// never holds half a study. Missing parent folders are made.
    /// \throws std::runtime_error if \p directory holds something else than a study or if the solver
    /// fails, std::filesystem::filesystem_error or std::runtime_error if writing fails. An older study
    /// is then still there.
    void write(const std::filesystem::path& directory, unsigned threads = 0) const;

private:
    void writeCases(const std::filesystem::path& directory, unsigned threads) const;

    /// All cases in the order of the table: the feed rate changes slowest, the diffusion ratio fastest.
    std::vector<GrayScottSolver::Parameters> m_cases;
    std::size_t m_steps;
    int m_pictureSidePx;
};

} // namespace samples
