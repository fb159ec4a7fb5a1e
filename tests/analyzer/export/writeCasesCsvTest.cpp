#include <analyzer/export/writeCasesCsv.h>
#include <analyzer/study/StudyReader.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include <rapidcheck.h>

using analyzer::CsvOptions;
using analyzer::ReadProgress;
using analyzer::ReadStudy;
using analyzer::writeCasesCsv;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double missing = std::numeric_limits<double>::quiet_NaN();

void addReals(Project& project, const std::string& name, const std::vector<double>& values)
{
    vtkNew<vtkDoubleArray> column;
    column->SetName(name.c_str());
    for (const double value : values) {
        column->InsertNextValue(value);
    }
    project.addVariable(column.Get(), Variable::Output);
}

void addTexts(Project& project, const std::string& name, const std::vector<std::string>& values)
{
    vtkNew<vtkStringArray> column;
    column->SetName(name.c_str());
    for (const std::string& value : values) {
        column->InsertNextValue(value);
    }
    project.addVariable(column.Get(), Variable::Output);
}

class WriteCasesCsvTest : public testing::Test
{
protected:
    [[nodiscard]] std::string path() const
    {
        return m_folder.filePath(QStringLiteral("ä.csv")).toStdString();
    }

    std::string written(const Project& project, const RowBitmap& rows, CsvOptions options = {})
    {
        writeCasesCsv(project, rows, path(), options);
        QFile file(QString::fromStdString(path()));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().toStdString();
    }

    std::string written(const Project& project, CsvOptions options = {})
    {
        return written(project, RowBitmap(project.caseCount(), true), options);
    }

    QTemporaryDir m_folder;
};

std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

double anyNumber()
{
    if (*rc::gen::inRange(0, 3) == 0) {
        return *rc::gen::elementOf(std::vector<double>{
            missing,
            infinity,
            -infinity,
            -0.0,
            0.0,
            5e-324,
            -2.2250738585072009e-308,
            std::numeric_limits<double>::max(),
            9007199254740992.0,
            -9007199254740994.0,
            123456789012345683968.0,
            1e15,
            1e22,
            100000.0,
            0.1});
    }
    // All patterns of bits, and those that people have.
    const auto bits = *rc::gen::arbitrary<std::uint64_t>();
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof(value));
    return *rc::gen::arbitrary<bool>() ? value : *rc::gen::inRange(-1000000, 1000000) / 8.0;
}

std::string anyText()
{
    static const std::vector<std::string> pieces = {
        "a", "Z", " ", "\t", ",",  ";",   "\"", "\"\"", "\n", "\r\n", "\r", "'",   "\\",
        ".", "-", "0", "03", "NA", "NaN", "e",  "ä",    "€",  "😀",    "=",  "\x7f"};
    std::string text;
    for (const std::string& piece :
         *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(pieces))) {
        text += piece;
    }
    return text;
}

} // namespace

TEST_F(WriteCasesCsvTest, WritesCaseIDsNumbersAndTextsOfTheRowsAskedFor)
{
    Project project;
    vtkNew<vtkIntArray> ids;
    for (const int id : {7, 3, 12, 40}) {
        ids->InsertNextValue(id);
    }
    project.setCaseIDs(ids.Get());
    addReals(project, "Drag, total", {0.1, 2, missing, -4.5});
    addTexts(project, "Name", {"plain", "a \"b\"", "", " led"});
    vtkNew<vtkIntArray> counts;
    counts->SetName("Count");
    for (const int count : {1, -2, 300000, 4}) {
        counts->InsertNextValue(count);
    }
    project.addVariable(counts.Get(), Variable::Input);
    RowBitmap rows(4, true);
    rows.set(0, false);

    EXPECT_EQ(
        written(project, rows),
        "Case ID,\"Drag, total\",Name,Count\n"
        "3,2,\"a \"\"b\"\"\",-2\n"
        "12,,,300000\n"
        "40,-4.5,\" led\",4\n");
    EXPECT_EQ(written(project, RowBitmap(4)), "Case ID,\"Drag, total\",Name,Count\n");
    EXPECT_EQ(written(Project()), "Case ID\n");
}

TEST_F(WriteCasesCsvTest, SpellsNumbers)
{
    const struct
    {
        double value;
        const char* text;
    } numbers[] = {
        {0.0, "0"},
        {-0.0, "-0"},
        {missing, ""},
        {infinity, "inf"},
        {-infinity, "-inf"},
        {0.1, "0.1"},
        {1.0 / 3.0, "0.3333333333333333"},
        {100000.0, "100000"},
        {-9007199254740992.0, "-9007199254740992"},
        {9007199254740994.0, "9007199254740994.0"},
        {1e100, "1e+100"},
        {5e-324, "5e-324"},
    };

    Project project;
    project.setCaseCount(std::size(numbers));
    std::vector<double> values;
    std::string expected = "Case ID,x\n";
    for (const auto& number : numbers) {
        values.push_back(number.value);
        expected += std::to_string(values.size()) + ',' + number.text + '\n';
    }
    addReals(project, "x", values);

    EXPECT_EQ(written(project), expected);
    EXPECT_EQ(written(project, CsvOptions{true}), expected) << "numbers are no formulas";
}

TEST_F(WriteCasesCsvTest, QuotesTextsAndKeepsFormulasFromSpreadsheets)
{
    const struct
    {
        std::string value;
        const char* text;
        const char* forSpreadsheets;
    } texts[] = {
        {"plain 'text'", "plain 'text'", "plain 'text'"},
        {"a,b", "\"a,b\"", "\"a,b\""},
        {"a\nb", "\"a\nb\"", "\"a\nb\""},
        {"a\rb", "\"a\rb\"", "\"a\rb\""},
        {"\"", "\"\"\"\"", "\"\"\"\""},
        {"end ", "\"end \"", "\"end \""},
        {"=1+1", "=1+1", "'=1+1"},
        {"+1", "+1", "'+1"},
        {"-x", "-x", "'-x"},
        {"@x", "@x", "'@x"},
        {"\tx", "\"\tx\"", "\"'\tx\""},
        {"\r=", "\"\r=\"", "\"'\r=\""},
        {"=\"x\",y", "\"=\"\"x\"\",y\"", "\"'=\"\"x\"\",y\""},
        {"03", "03", "03"},
        {"1=2", "1=2", "1=2"},
    };

    Project project;
    project.setCaseCount(std::size(texts));
    std::vector<std::string> values;
    std::string expected = "Case ID,=x\n";
    std::string forSpreadsheets = "Case ID,'=x\n";
    for (const auto& text : texts) {
        values.push_back(text.value);
        const std::string begin = std::to_string(values.size()) + ',';
        expected += begin + text.text + '\n';
        forSpreadsheets += begin + text.forSpreadsheets + '\n';
    }
    addTexts(project, "=x", values);

    EXPECT_EQ(written(project), expected);
    EXPECT_EQ(written(project, CsvOptions{true}), forSpreadsheets);
}

TEST_F(WriteCasesCsvTest, WritesFieldsAndTablesLargerThanItsBuffer)
{
    constexpr std::size_t rows = 100000;
    Project project;
    project.setCaseCount(rows);
    std::vector<std::string> texts(rows, "some \"text\"");
    texts[500] = std::string(5000000, '"');
    addTexts(project, "t", texts);
    addReals(project, "x", std::vector<double>(rows, 1.0 / 3.0));

    const std::string text = written(project);

    std::string expected = "Case ID,t,x\n";
    for (std::size_t row = 0; row < rows; ++row) {
        expected += std::to_string(row + 1) + ",\""
            + (row == 500 ? std::string(10000000, '"') : "some \"\"text\"\"")
            + "\",0.3333333333333333\n";
    }
    EXPECT_TRUE(text == expected);
}

TEST_F(WriteCasesCsvTest, TellsHowFarItIsAndLeavesTheFileAloneWhenItIsStopped)
{
    constexpr std::size_t rows = 100000;
    Project project;
    project.setCaseCount(rows);
    const std::string small = written(project, RowBitmap(rows));
    std::vector<double> told;
    const auto stopLate = [&told](double fraction) {
        told.push_back(fraction);
        return told.size() < 3;
    };

    const bool isWritten = writeCasesCsv(project, RowBitmap(rows, true), path(), {}, stopLate);

    EXPECT_FALSE(isWritten);
    ASSERT_EQ(told.size(), 3U) << "and not again after that";
    EXPECT_LT(told[0], told[1]);
    EXPECT_LT(told[1], told[2]);
    EXPECT_LT(told[2], 1.0);
    QFile file(QString::fromStdString(path()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(), small);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files).size(), 1) << "nothing is left behind";
}

TEST_F(WriteCasesCsvTest, TellsThatTheDiskIsFull)
{
    Project project;
    project.setCaseCount(3);

    EXPECT_THROW(writeCasesCsv(project, RowBitmap(3, true), "/dev/full"), ExceptionBase);
}

TEST_F(WriteCasesCsvTest, TheReaderKeepsNamesWithOtherDelimiters)
{
    Project project;
    project.setCaseCount(2);
    addTexts(project, "a;b", {"5;3", "x;7"});
    ReadProgress progress;
    (void)written(project);

    const ReadStudy study = analyzer::readStudy(path(), progress);

    ASSERT_EQ(study.project->variables().size(), 2U);
    EXPECT_EQ(study.project->variables()[1].lock()->name(), "a;b");
}

TEST_F(WriteCasesCsvTest, TheReaderGivesEveryValueBackToTheSameBits)
{
    const bool held = rc::check([this] {
        const auto rows = *rc::gen::inRange<std::size_t>(1, 20);
        Project project;
        project.setCaseCount(rows);
        std::vector<std::vector<double>> reals(*rc::gen::inRange<std::size_t>(0, 4));
        std::vector<std::vector<std::string>> texts(*rc::gen::inRange<std::size_t>(0, 4));
        for (std::size_t column = 0; column < reals.size(); ++column) {
            for (std::size_t row = 0; row < rows; ++row) {
                reals[column].push_back(anyNumber());
            }
            addReals(project, "r;" + std::to_string(column), reals[column]);
        }
        for (std::size_t column = 0; column < texts.size(); ++column) {
            for (std::size_t row = 0; row < rows; ++row) {
                texts[column].push_back(anyText());
            }
            // A column of nothing but numbers is one of numbers, whatever it was.
            texts[column][*rc::gen::inRange<std::size_t>(0, rows)] =
                *rc::gen::elementOf(std::vector<std::string>{"03", "x", "9007199254740993"});
            addTexts(project, "t" + std::to_string(column), texts[column]);
        }
        RC_LOG() << written(project);
        ReadProgress progress;

        const ReadStudy study = analyzer::readStudy(path(), progress);

        const auto& variables = study.project->variables();
        RC_ASSERT(study.project->caseCount() == rows);
        RC_ASSERT(study.report.refusedLineCount == 0U);
        RC_ASSERT(variables.size() == 1 + reals.size() + texts.size());
        for (std::size_t column = 0; column < reals.size(); ++column) {
            vtkDoubleArray* read = variables[1 + column].lock()->realColumn();
            RC_ASSERT(read != nullptr);
            for (std::size_t row = 0; row < rows; ++row) {
                const double value = read->GetValue(static_cast<vtkIdType>(row));
                const double expected = reals[column][row];
                const bool bothMissing = std::isnan(value) && std::isnan(expected);
                RC_ASSERT((bothMissing || bitsOf(value) == bitsOf(expected)));
            }
        }
        for (std::size_t column = 0; column < texts.size(); ++column) {
            vtkStringArray* read = variables[1 + reals.size() + column].lock()->textColumn();
            RC_ASSERT(read != nullptr);
            for (std::size_t row = 0; row < rows; ++row) {
                RC_ASSERT(read->GetValue(static_cast<vtkIdType>(row)) == texts[column][row]);
            }
        }
    });

    EXPECT_TRUE(held);
}
