#include <dataviews/common/export/SurrogateModelCSVExporter.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <gtest/gtest.h>

#include <string>

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

TEST_F(SurrogateModelCSVExporterTest, TellsThatAFileCannotBeOpened)
{
    EXPECT_FALSE(write("missing/table.csv"));
    EXPECT_FALSE(write("")); // the folder
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

} // namespace
