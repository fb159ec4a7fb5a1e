#include <dataviews/common/export/SurrogateModelCSVExporter.h>

#include <vtkDelimitedTextWriter.h>
#include <vtkNew.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <fstream>

namespace {

/// Creates or empties the file; the writer would only print that it could not.
bool canBeWritten(const std::string& fileName)
{
    return std::ofstream(fileName, std::ios_base::out).good();
}

} // namespace

bool SurrogateModelCSVExporter::writeCSVFile(
    vtkSmartPointer<vtkTableAlgorithm> source, const std::string& fileName) const
{
    if (!canBeWritten(fileName)) {
        return false;
    }
    vtkNew<vtkDelimitedTextWriter> writer;
    writer->SetFileName(fileName.c_str());
    writer->SetFieldDelimiter(",");
    writer->SetInputData(source->GetOutput());
    writer->Write();
    return true;
}
