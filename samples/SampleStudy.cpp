#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QString>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <exception>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <samples/FieldPicture.h>
#include <samples/PatternMeasures.h>
#include <samples/SampleStudy.h>

namespace samples {

namespace {

namespace fs = std::filesystem;

constexpr const char* tableName = "data.csv";
constexpr const char* pictureFolder = "images";
constexpr const char* header =
    "Feed rate,Kill rate,Diffusion ratio,Mean concentration,Concentration deviation,"
    "Wavelength,Interface length,Covered fraction,Final change,Pattern,"
    "FILE_concentration,FILE_reaction\n";

/// Fixed color scales, a little above what the cases reach, so that pictures can be compared.
constexpr float maxConcentration = 0.45F;
constexpr float maxReaction = 0.055F;

/// A short fixed resolution (96 dpi): the default depends on the screen of the machine that writes.
constexpr int dotsPerMeter = 3780;
/// Stands for a middling zlib level; pictures are small and the program should be quick.
constexpr int pngQuality = 60;

/// The shortest text that reads back to the same number; empty if it is missing.
template <class Number>
std::string text(Number number)
{
    if (std::isnan(number)) {
        return {};
    }
    constexpr std::size_t longest = 32;
    std::string result(longest, '\0');
    const std::to_chars_result end =
        std::to_chars(result.data(), result.data() + result.size(), number);
    result.resize(static_cast<std::size_t>(end.ptr - result.data()));
    return result;
}

/// A result. The solver computes in single precision; more digits would only pretend.
std::string resultText(double number)
{
    return text(static_cast<float>(number));
}

std::string pictureName(const char* content, std::size_t caseIndex, std::size_t cases)
{
    const std::string number = std::to_string(caseIndex + 1);
    const std::size_t digits = std::to_string(cases).size();
    return std::string(pictureFolder) + '/' + content + '-'
        + std::string(digits - number.size(), '0') + number + ".png";
}

void savePng(QImage image, const fs::path& path)
{
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    QFile file(QFile::decodeName(path.c_str()));
    const auto fail = [&path](const QString& reason) {
        throw std::runtime_error(
            "The picture " + path.string() + " could not be written: " + reason.toStdString());
    };
    if (!file.open(QIODevice::WriteOnly)) {
        fail(file.errorString());
    }
    QImageWriter writer(&file, "png");
    writer.setQuality(pngQuality);
    if (!writer.write(image)) {
        fail(writer.errorString());
    }
    // The writer does not see a full disk: until here a small picture is in the buffer only.
    if (!file.flush()) {
        fail(file.errorString());
    }
}

std::vector<float> reactionRates(const std::vector<float>& u, const std::vector<float>& v)
{
    std::vector<float> rates(u.size());
    std::transform(
        u.begin(), u.end(), v.begin(), rates.begin(), [](float a, float b) { return a * b * b; });
    return rates;
}

/// Runs \p work for 0 to \p count - 1 on \p threads threads, each of which takes the next number left.
/// The first exception stops the rest and leaves this function.
template <class Work>
void runOnThreads(std::size_t count, unsigned threads, const Work& work)
{
    std::atomic<std::size_t> next{0};
    std::exception_ptr firstError;
    std::mutex errorMutex;
    const auto takeTurns = [&] {
        try {
            for (std::size_t index = next++; index < count; index = next++) {
                work(index);
            }
        } catch (...) {
            const std::lock_guard lock(errorMutex);
            firstError = firstError ? firstError : std::current_exception();
            next = count;
        }
    };

    std::vector<std::thread> helpers;
    try {
        for (unsigned started = 1; started < threads; ++started) {
            helpers.emplace_back(takeTurns);
        }
    } catch (const std::system_error&) {
        // The system has no more threads to give; those there are do the work.
    }
    takeTurns();
    for (std::thread& helper : helpers) {
        helper.join();
    }
    if (firstError) {
        std::rethrow_exception(firstError);
    }
}

/// \p directory without a separator at the end, so that it has a file name and a parent.
fs::path withoutSlash(const fs::path& directory)
{
    const fs::path whole = fs::absolute(directory).lexically_normal();
    return whole.has_filename() ? whole : whole.parent_path();
}

/// Replacing deletes, so what is there must look like our own work: a study, or an empty folder.
void requireReplaceable(const fs::path& directory)
{
    if (!fs::exists(fs::symlink_status(directory))) {
        return;
    }
    if (!fs::is_directory(fs::symlink_status(directory))) {
        throw std::runtime_error(directory.string() + " is not a folder and is left as it is.");
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        if (const fs::path name = entry.path().filename();
            name != tableName && name != pictureFolder) {
            throw std::runtime_error(
                directory.string() + " holds " + name.string()
                + ", which is no part of a sample study, and is left as it is.");
        }
    }
}

/// A folder that disappears with this object unless it was renamed before.
class TemporaryFolder
{
public:
    explicit TemporaryFolder(fs::path path)
        : m_path(std::move(path))
    {
        // One may be left from a run that was killed.
        fs::remove_all(m_path);
        fs::create_directories(m_path);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    ~TemporaryFolder()
    {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }

    [[nodiscard]] const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
};

/// Renames \p fresh to \p directory. If that fails, what was there before is put back.
void replaceFolder(const fs::path& fresh, const fs::path& directory, const fs::path& retired)
{
    fs::remove_all(retired);
    const bool hadOne = fs::exists(directory);
    if (hadOne) {
        fs::rename(directory, retired);
    }
    try {
        fs::rename(fresh, directory);
    } catch (const fs::filesystem_error&) {
        if (hadOne) {
            std::error_code ignored;
            fs::rename(retired, directory, ignored);
        }
        throw;
    }
    fs::remove_all(retired);
}

fs::path sibling(const fs::path& directory, const char* suffix)
{
    fs::path name = directory;
    name += suffix;
    return name;
}

} // namespace

SampleStudy::Sweep SampleStudy::bundledSweep()
{
    Sweep sweep;
    sweep.feedRates = {0.014, 0.018, 0.022, 0.026, 0.03, 0.034, 0.038, 0.042};
    sweep.killRates = {0.051, 0.054, 0.057, 0.06, 0.063, 0.066};
    sweep.diffusionRatios = {1.6, 2.0, 2.6};
    sweep.common.diffusion = 0.16;
    sweep.common.timeStep = 1.25;
    sweep.common.side = 96;
    sweep.steps = 5600;
    sweep.pictureSidePx = 192;
    return sweep;
}

SampleStudy::SampleStudy(const Sweep& sweep)
    : m_steps(sweep.steps)
    , m_pictureSidePx(sweep.pictureSidePx)
{
    if (sweep.feedRates.empty() || sweep.killRates.empty() || sweep.diffusionRatios.empty()) {
        throw std::invalid_argument("Each swept parameter must have at least one value.");
    }
    if (sweep.pictureSidePx < 1 || sweep.pictureSidePx > FieldPicture::maxSidePx) {
        throw std::invalid_argument(
            "Pictures must be from 1 to " + std::to_string(FieldPicture::maxSidePx)
            + " pixels wide, not " + std::to_string(sweep.pictureSidePx) + ".");
    }
    for (const double feedRate : sweep.feedRates) {
        for (const double killRate : sweep.killRates) {
            for (const double diffusionRatio : sweep.diffusionRatios) {
                GrayScottSolver::Parameters parameters = sweep.common;
                parameters.feedRate = feedRate;
                parameters.killRate = killRate;
                parameters.diffusionRatio = diffusionRatio;
                GrayScottSolver::validate(parameters);
                m_cases.push_back(parameters);
            }
        }
    }
}

std::size_t SampleStudy::numberOfCases() const
{
    return m_cases.size();
}

void SampleStudy::write(const fs::path& directory, unsigned threads) const
{
    const fs::path target = withoutSlash(directory);
    requireReplaceable(target);
    // Qt takes the first thread that it meets for the main one, whose data it keeps when the thread ends.
    // Let it meet the caller's before it meets the helpers.
    static_cast<void>(QThread::currentThread());
    const TemporaryFolder fresh(sibling(target, ".partial"));
    writeCases(
        fresh.path(), threads > 0 ? threads : std::max(1U, std::thread::hardware_concurrency()));
    replaceFolder(fresh.path(), target, sibling(target, ".replaced"));
}

void SampleStudy::writeCases(const fs::path& directory, unsigned threads) const
{
    const FieldPicture concentration(FieldPicture::Palette::Lagoon, 0.0F, maxConcentration);
    const FieldPicture reaction(FieldPicture::Palette::Ember, 0.0F, maxReaction);
    fs::create_directory(directory / pictureFolder);

    std::vector<std::string> rows(m_cases.size());
    runOnThreads(m_cases.size(), threads, [&](std::size_t index) {
        const GrayScottSolver::Parameters& parameters = m_cases[index];
        GrayScottSolver solver(parameters);
        solver.advance(m_steps);

        const std::vector<float> v = solver.v();
        const PatternMeasures measures(v, parameters.side);
        const std::string concentrationName = pictureName("concentration", index, m_cases.size());
        const std::string reactionName = pictureName("reaction", index, m_cases.size());
        savePng(
            concentration.draw(v, parameters.side, m_pictureSidePx), directory / concentrationName);
        savePng(
            reaction.draw(reactionRates(solver.u(), v), parameters.side, m_pictureSidePx),
            directory / reactionName);

        rows[index] = text(parameters.feedRate) + ',' + text(parameters.killRate) + ','
            + text(parameters.diffusionRatio) + ',' + resultText(measures.mean()) + ','
            + resultText(measures.deviation()) + ',' + resultText(measures.wavelength()) + ','
            + resultText(measures.interfaceLength()) + ',' + resultText(measures.coveredFraction())
            + ',' + resultText(solver.rateOfChange()) + ',' + measures.kind() + ','
            + concentrationName + ',' + reactionName + '\n';
    });

    std::ofstream table(directory / tableName, std::ios::binary);
    table << header;
    for (const std::string& row : rows) {
        table << row;
    }
    table.close();
    if (!table) {
        throw std::runtime_error(
            "The table " + (directory / tableName).string() + " could not be written.");
    }
}

} // namespace samples
