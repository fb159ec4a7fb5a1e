#include <QImage>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

#include <samples/SampleStudy.h>
#include <sys/resource.h>

namespace {

namespace fs = std::filesystem;
using samples::SampleStudy;

std::string contents(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// All files below \p directory by their relative names.
std::map<std::string, std::string> tree(const fs::path& directory)
{
    std::map<std::string, std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        if (entry.is_regular_file()) {
            files[entry.path().lexically_relative(directory).string()] = contents(entry.path());
        }
    }
    return files;
}

std::set<std::string> namesIn(const fs::path& directory)
{
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

std::vector<std::vector<std::string>> table(const fs::path& file)
{
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(contents(file));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line + ',');
        rows.emplace_back();
        for (std::string field; std::getline(fields, field, ',');) {
            rows.back().push_back(field);
        }
    }
    return rows;
}

/// While it lives, no file of this process can grow beyond some bytes, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_signalHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signalHandler);
    }

private:
    void (*m_signalHandler)(int);
    rlimit m_before{};
};

class SampleStudyTest : public testing::Test
{
protected:
    /// Four cases, of which those with the larger kill rate die out.
    static SampleStudy::Sweep tinySweep()
    {
        SampleStudy::Sweep sweep;
        sweep.feedRates = {0.034};
        sweep.killRates = {0.06, 0.1};
        sweep.diffusionRatios = {2.0, 2.5};
        sweep.common.side = 32;
        sweep.steps = 600;
        sweep.pictureSidePx = 40;
        return sweep;
    }

    [[nodiscard]] fs::path root() const { return m_directory.path().toStdString(); }

    [[nodiscard]] fs::path target() const { return root() / "deep" / "study.cdb"; }

private:
    QTemporaryDir m_directory;
};

TEST_F(SampleStudyTest, WritesOneRowPerCaseWithEmptyCellsWhereItDiedOut)
{
    SampleStudy(tinySweep()).write(target(), 1);

    const auto rows = table(target() / "data.csv");
    const std::vector<std::string> header{
        "Feed rate",
        "Kill rate",
        "Diffusion ratio",
        "Mean concentration",
        "Concentration deviation",
        "Wavelength",
        "Interface length",
        "Covered fraction",
        "Final change",
        "Pattern",
        "FILE_concentration",
        "FILE_reaction"};
    const std::vector<std::vector<std::string>> inputs{
        {"0.034", "0.06", "2"},
        {"0.034", "0.06", "2.5"},
        {"0.034", "0.1", "2"},
        {"0.034", "0.1", "2.5"}};
    ASSERT_EQ(rows.size(), inputs.size() + 1);
    EXPECT_EQ(rows[0], header);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        SCOPED_TRACE(i);
        const std::vector<std::string>& row = rows[i + 1];
        ASSERT_EQ(row.size(), header.size());
        EXPECT_EQ(std::vector<std::string>(row.begin(), row.begin() + 3), inputs[i]);
        const bool died = inputs[i][1] == "0.1";
        EXPECT_EQ(row[9] == "died out", died);
        for (std::size_t column = 3; column < 9; ++column) {
            const bool needsPattern = column >= 5 && column <= 7;
            EXPECT_EQ(row[column].empty(), died && needsPattern) << header[column];
        }
        for (const std::size_t column : {10U, 11U}) {
            const QImage picture(QString::fromStdString((target() / row[column]).string()));
            EXPECT_EQ(picture.size(), QSize(40, 40)) << row[column];
        }
        EXPECT_NE(row[10], row[11]);
    }
    EXPECT_EQ(tree(target()).size(), 1 + 2 * inputs.size());
}

TEST_F(SampleStudyTest, EveryByteIsTheSameWhateverTheThreads)
{
    const SampleStudy study(tinySweep());

    study.write(root() / "one", 1);
    study.write(root() / "three", 3);
    study.write(root() / "many", 20);

    const auto expected = tree(root() / "one");
    EXPECT_TRUE(expected == tree(root() / "three"));
    EXPECT_TRUE(expected == tree(root() / "many"));
}

TEST_F(SampleStudyTest, ReplacesAnOlderStudyAndLeavesNothingBeside)
{
    SampleStudy(tinySweep()).write(target(), 2);
    SampleStudy::Sweep smaller = tinySweep();
    smaller.killRates = {0.06};
    // As if an earlier run had been killed.
    fs::create_directories(root() / "deep" / "study.cdb.partial" / "images");
    std::ofstream(root() / "deep" / "study.cdb.partial" / "images" / "half.png") << "half";

    SampleStudy(smaller).write(target().string() + "/", 2);

    EXPECT_EQ(table(target() / "data.csv").size(), 3U);
    EXPECT_EQ(tree(target()).size(), 5U);
    EXPECT_EQ(namesIn(target().parent_path()), std::set<std::string>{"study.cdb"});
}

TEST_F(SampleStudyTest, DoesNotReplaceWhatIsNoStudy)
{
    fs::create_directories(target());
    std::ofstream(target() / "thesis.txt") << "years of work";
    std::ofstream(root() / "file") << "text";
    const SampleStudy study(tinySweep());

    EXPECT_THROW(study.write(target(), 1), std::runtime_error);
    EXPECT_THROW(study.write(root() / "file", 1), std::runtime_error);

    EXPECT_EQ(contents(target() / "thesis.txt"), "years of work");
    EXPECT_EQ(contents(root() / "file"), "text");
    EXPECT_EQ(namesIn(target().parent_path()), std::set<std::string>{"study.cdb"});
}

TEST_F(SampleStudyTest, AFullDiskKeepsTheOlderStudy)
{
    const SampleStudy study(tinySweep());
    study.write(target(), 1);
    const auto before = tree(target());

    {
        const FileSizeLimit limit(100);
        EXPECT_THROW(study.write(target(), 2), std::runtime_error);
    }

    EXPECT_TRUE(before == tree(target()));
    EXPECT_EQ(namesIn(target().parent_path()), std::set<std::string>{"study.cdb"});
}

TEST_F(SampleStudyTest, RefusesSweepsThatCannotBeRun)
{
    const auto refuses = [](void (*change)(SampleStudy::Sweep&)) {
        SampleStudy::Sweep sweep = tinySweep();
        change(sweep);
        EXPECT_THROW(const SampleStudy study(sweep), std::invalid_argument);
    };

    refuses([](SampleStudy::Sweep& sweep) { sweep.feedRates.clear(); });
    refuses([](SampleStudy::Sweep& sweep) { sweep.killRates.clear(); });
    refuses([](SampleStudy::Sweep& sweep) { sweep.diffusionRatios.clear(); });
    refuses([](SampleStudy::Sweep& sweep) { sweep.killRates.push_back(-1.0); });
    refuses([](SampleStudy::Sweep& sweep) { sweep.common.timeStep = 3.0; });
    refuses([](SampleStudy::Sweep& sweep) { sweep.pictureSidePx = 0; });
    refuses([](SampleStudy::Sweep& sweep) { sweep.pictureSidePx = 2'000'000; });
}

TEST_F(SampleStudyTest, TheBundledSweepCanBeRun)
{
    EXPECT_EQ(SampleStudy(SampleStudy::bundledSweep()).numberOfCases(), 144U);
}

} // namespace
