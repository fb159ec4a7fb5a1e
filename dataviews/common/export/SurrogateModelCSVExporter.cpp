#include <dataviews/common/export/SurrogateModelCSVExporter.h>

#include <vtkAbstractArray.h>
#include <vtkDelimitedTextWriter.h>
#include <vtkNew.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <algorithm>
#include <fstream>
#include <memory>

namespace {

constexpr vtkIdType rowsAtOnce = 5000;

/// The text of \p count rows from \p begin on, under the names of the columns.
std::string textOf(vtkTable& table, vtkIdType begin, vtkIdType count)
{
    vtkNew<vtkTable> part;
    for (vtkIdType i = 0; i < table.GetNumberOfColumns(); ++i) {
        vtkAbstractArray& column = *table.GetColumn(i);
        const auto copy = vtkSmartPointer<vtkAbstractArray>::Take(column.NewInstance());
        copy->SetName(column.GetName());
        copy->SetNumberOfComponents(column.GetNumberOfComponents());
        copy->InsertTuples(0, count, begin, &column);
        part->AddColumn(copy);
    }
    vtkNew<vtkDelimitedTextWriter> writer;
    writer->WriteToOutputStringOn();
    writer->SetFieldDelimiter(",");
    writer->SetInputData(part);
    writer->Write();
    const std::unique_ptr<char[]> text(writer->RegisterAndGetOutputString());
    return text.get();
}

} // namespace

void SurrogateModelCSVExporter::writeCSV(
    vtkSmartPointer<vtkTableAlgorithm> source,
    const std::function<void(const std::string&)>& write,
    const std::function<void(double)>& progress) const
{
    vtkTable& table = *source->GetOutput();
    const std::string names = textOf(table, 0, 0);
    write(names);
    const vtkIdType rowCount = table.GetNumberOfRows();
    for (vtkIdType begin = 0; begin < rowCount; begin += rowsAtOnce) {
        const vtkIdType end = std::min(begin + rowsAtOnce, rowCount);
        write(textOf(table, begin, end - begin).substr(names.size()));
        if (progress) {
            progress(static_cast<double>(end) / static_cast<double>(rowCount));
        }
    }
}

bool SurrogateModelCSVExporter::writeCSVFile(
    vtkSmartPointer<vtkTableAlgorithm> source,
    const std::string& fileName,
    const std::function<void(double)>& progress) const
{
    // The writer would only print that it could not.
    std::ofstream file(fileName, std::ios_base::out | std::ios_base::binary);
    if (!file.good()) {
        return false;
    }
    writeCSV(
        source, [&file](const std::string& text) { file << text; }, progress);
    return true;
}
