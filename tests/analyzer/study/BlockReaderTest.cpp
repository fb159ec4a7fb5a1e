#include "TemporaryFolder.h"

#include <analyzer/study/StudyError.h>
#include <analyzer/study/StudyReader.h>
#include <analyzer/study/studyInfo.h>

#include <dataviews/platform/data/Project.h>

#include <vtkDoubleArray.h>
#include <vtkStringArray.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using analyzer::ReadProgress;
using analyzer::ReadStudy;
using analyzer::StudyError;
using analyzer::StudyReader;

namespace {

/// Everything that was read, to the bit, or why it was refused.
std::string outcome(const StudyReader& reader, const std::string& path)
{
    std::string result;
    try {
        ReadProgress progress;
        const ReadStudy study = reader.read(path, progress);
        result = studyInfo(*study.project, study.report);
        for (const auto& refused : study.report.refusedLines) {
            result += std::to_string(refused.line) + ' ' + refused.reason + '\n';
        }
        for (const WeakPtr<Variable>& handle : study.project->variables()) {
            const boost::shared_ptr<Variable> variable = handle.lock();
            result += variable->name() + ' ' + std::to_string(variable->nature()) + ':';
            for (std::size_t row = 0; row < study.project->caseCount(); ++row) {
                const auto index = static_cast<vtkIdType>(row);
                if (variable->textColumn() != nullptr) {
                    result += '<' + variable->textColumn()->GetValue(index) + '>';
                } else {
                    const double number = variable->realColumn()->GetValue(index);
                    std::uint64_t bits = 0;
                    std::memcpy(&bits, &number, sizeof(bits));
                    result += ' ' + std::to_string(bits);
                }
            }
            result += '\n';
        }
        for (std::size_t row = 0; row < study.project->caseCount(); ++row) {
            for (const boost::shared_ptr<AuxFile>& file : study.project->auxFiles(row)) {
                result += std::to_string(row) + ' ' + file->filePath() + '\n';
            }
        }
        EXPECT_EQ(progress.fraction(), 1.0);
    } catch (const StudyError& error) {
        result = error.what();
    }
    return result;
}

/// Tables as people have them and as nobody should.
class AnyTable
{
public:
    explicit AnyTable(unsigned seed)
        : m_generator(seed)
    {}

    std::string text()
    {
        static const std::vector<std::string> lineEnds = {"\n", "\n", "\n", "\r\n", "\r"};
        m_delimiter = one(std::string(",,;\t"));
        m_lineEnd = one(lineEnds);
        m_oddity = one(std::vector<int>{0, 0, 20, 200});
        const int columns = below(5) + 1;
        std::string result = below(8) == 0 ? "\xef\xbb\xbf" : "";
        std::vector<int> kinds;
        for (int column = 0; column < columns; ++column) {
            result += (column > 0 ? std::string(1, m_delimiter) : "") + header(column);
            kinds.push_back(below(5));
        }
        result += m_lineEnd;
        const int rows = below(60);
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                if (column > 0) {
                    result += m_delimiter;
                }
                result += cell(kinds[static_cast<std::size_t>(column)]);
                result += isOdd() ? oddity() : "";
            }
            result += row + 1 < rows || below(2) == 0 ? m_lineEnd : "";
        }
        return result + (below(40) == 0 ? "\x1a" : "");
    }

private:
    int below(int end) { return static_cast<int>(m_generator() % static_cast<unsigned>(end)); }

    template <class Choices>
    typename Choices::value_type one(const Choices& choices)
    {
        return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
    }

    bool isOdd() { return m_oddity > 0 && below(m_oddity) == 0; }

    std::string header(int column)
    {
        static const std::vector<std::string> names = {"x", "in:x", "FILE", "img", "\"a\nb\"", ""};
        return below(3) == 0 ? one(names) : "c" + std::to_string(column);
    }

    std::string cell(int kind)
    {
        static const std::vector<std::string> numbers = {
            "0", "-1.5", "12", "1e300", "7.25e-3", ".5", "-0", "123456.789012345678", "inf"};
        static const std::vector<std::string> nearlyNumbers = {
            "03", "9007199254740993", "1e999", "1,5", "1.234,5", "+4", " 2 ", "1.", "-", "NaN", ""};
        static const std::vector<std::string> texts = {
            "abc", "\xc3\xa4", "\"quoted\"", "\"with\nbreak\"", "\"a\"\"b\"", "5\" pipe", "a b"};
        switch (kind) {
        case 0:
            return one(numbers);
        case 1:
            return below(20) == 0 ? one(nearlyNumbers) : one(numbers);
        case 2:
            return below(30) == 0 ? one(texts) : "";
        case 3:
            return below(3) == 0 ? one(numbers) : one(texts);
        default:
            return one(texts);
        }
    }

    std::string oddity()
    {
        static const std::vector<std::string> oddities = {
            "\"",
            "\xe4",
            std::string(1, '\0'),
            "\n",
            "\n\n",
            "\r",
            ",",
            ";",
            "\t",
            "NA",
            "\x01",
            "\"a\"x",
            " \n"};
        return one(oddities);
    }

    std::mt19937 m_generator;
    char m_delimiter = ',';
    std::string m_lineEnd;
    int m_oddity = 0;
};

} // namespace

TEST(BlockReaderTest, ReadsWhatIsReadFromEndToEndHoweverTheTableIsCut)
{
    const TemporaryFolder folder;
    constexpr unsigned tables = 1000;
    for (unsigned seed = 0; seed < tables; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const std::string text = AnyTable(seed).text();
        const std::string path = folder.write("table.csv", text);

        const std::string expected = outcome(StudyReader(7), path);

        const std::size_t headBytes = 1 + seed % 50;
        const std::size_t blockBytes = 1 + seed % 37;
        for (const unsigned threads : {1U, 3U}) {
            const StudyReader::Pieces pieces{headBytes, blockBytes, threads, 5};
            ASSERT_EQ(outcome(StudyReader(pieces), path), expected) << text;
        }
        ASSERT_EQ(outcome(StudyReader(), path), expected) << text;
    }
}

TEST(BlockReaderTest, CountsLinesAndCasesAcrossBlocks)
{
    const TemporaryFolder folder;
    std::string text = "a,b\n";
    for (int row = 0; row < 300; ++row) {
        text += row % 100 == 99 ? "1\n\n" : "1,2\n";
    }
    const std::string path = folder.write("table.csv", text);
    ReadProgress progress;

    const ReadStudy study = StudyReader({10, 50, 2, 1}).read(path, progress);

    EXPECT_EQ(study.report.cases, 300U);
    ASSERT_EQ(study.report.refusedLines.size(), 3U);
    EXPECT_EQ(study.report.refusedLines[0].line, 101U);
    EXPECT_EQ(study.report.refusedLines[1].line, 202U);
    EXPECT_EQ(study.report.refusedLines[2].line, 303U);
    EXPECT_EQ(study.report.missingValues, 3U);
}

TEST(BlockReaderTest, ShowsTheFirstRowsBeforeTheOthersAreRead)
{
    const TemporaryFolder folder;
    std::string text = "in:a,,b\n\n";
    for (int row = 0; row < 5000; ++row) {
        text += std::to_string(row) + ",\"x,\ny\",3\n";
    }
    ReadProgress progress;

    (void)StudyReader().read(folder.write("table.csv", text), progress);

    const std::optional<analyzer::TablePreview> preview = progress.takePreview();
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->names, (std::vector<std::string>{"a", "Column 2", "b"}));
    ASSERT_EQ(preview->rows.size(), analyzer::TablePreview::maxRows);
    EXPECT_EQ(preview->rows[99], (std::vector<std::string>{"99", "x,\ny", "3"}));
    EXPECT_FALSE(progress.takePreview()) << "it is given once";
}
