#include <dataviews/common/export/SurrogateModelCSVExporter.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <vtkDelimitedTextWriter.h>
#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// Has the table that a test puts there; an update empties it.
class TableSource : public vtkTableAlgorithm
{
public:
    static TableSource* New();

protected:
    TableSource() { SetNumberOfInputPorts(0); }
};

vtkStandardNewMacro(TableSource);

class SurrogateModelCSVExporterTest : public testing::Test
{
protected:
    [[nodiscard]] bool write(const char* name) const
    {
        const QString path = m_folder.filePath(QString::fromLatin1(name));
        return SurrogateModelCSVExporter().writeCSVFile(
            m_source.Get(), QFile::encodeName(path).toStdString());
    }

    [[nodiscard]] std::string content(const char* name) const
    {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().toStdString();
    }

    QTemporaryDir m_folder;
    vtkNew<TableSource> m_source;
};

TEST_F(SurrogateModelCSVExporterTest, WritesThePresentTableInPlaceOfTheFormerFile)
{
    vtkNew<vtkDoubleArray> numbers;
    numbers->SetName("Drag");
    vtkNew<vtkStringArray> texts;
    texts->SetName("Shape");
    EXPECT_TRUE(write("table.csv"));
    EXPECT_EQ(content("table.csv"), "\n") << "Nothing is there yet.";

    numbers->InsertNextValue(1.23456789);
    texts->InsertNextValue(R"(3" tube, flat)");
    numbers->InsertNextValue(-2.0);
    texts->InsertNextValue("");
    m_source->GetOutput()->AddColumn(numbers);
    m_source->GetOutput()->AddColumn(texts);
    m_source->Modified(); // so that an update would do something
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(write("table.csv"));
        EXPECT_EQ(content("table.csv"), R"("Drag","Shape"
1.23457,"3" tube, flat"
-2,""
)");
    }
}

TEST_F(SurrogateModelCSVExporterTest, TellsOfItsProgressAndWritesInPartsWhatTheWriterDoes)
{
    vtkNew<vtkDoubleArray> numbers;
    numbers->SetName("two\nlines");
    numbers->SetNumberOfComponents(2);
    vtkNew<vtkStringArray> texts;
    texts->SetName("Shape");
    constexpr int rowCount = 12345;
    for (int row = 0; row < rowCount; ++row) {
        numbers->InsertNextTuple2(row / 7.0, -row);
        texts->InsertNextValue("line " + std::to_string(row) + (row % 3 == 0 ? "\nline" : ""));
    }
    m_source->GetOutput()->AddColumn(numbers);
    m_source->GetOutput()->AddColumn(texts);
    vtkNew<vtkDelimitedTextWriter> writer;
    const QString expected = m_folder.filePath(QStringLiteral("expected.csv"));
    writer->SetFileName(QFile::encodeName(expected).constData());
    writer->SetInputData(m_source->GetOutput());
    writer->Write();
    std::vector<double> shares;
    const QString path = m_folder.filePath(QStringLiteral("parts.csv"));
    const auto writeInParts = [&](std::size_t most) {
        return SurrogateModelCSVExporter().writeCSVFile(
            m_source.Get(), QFile::encodeName(path).toStdString(), [&](double share) {
                shares.push_back(share);
                if (shares.size() == most) {
                    throw std::runtime_error("enough");
                }
            });
    };

    EXPECT_THROW(static_cast<void>(writeInParts(1)), std::runtime_error);
    EXPECT_LT(content("parts.csv").size(), content("expected.csv").size());
    shares.clear();
    EXPECT_TRUE(writeInParts(rowCount));

    EXPECT_EQ(content("parts.csv"), content("expected.csv"));
    EXPECT_GT(shares.size(), 1U);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_EQ(shares.back(), 1.0);
}

TEST_F(SurrogateModelCSVExporterTest, TellsThatAFileCannotBeOpened)
{
    EXPECT_FALSE(write("missing/table.csv"));
    EXPECT_FALSE(write("")); // the folder
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

} // namespace
