#pragma once

#include <dataviews/common/export/ExportExport.h>

#include <vtkSmartPointer.h>

#include <functional>
#include <string>

class vtkTableAlgorithm;

/// Writes the table of a pipeline, such as samples of a surrogate model, to a file of comma-separated values.
///
/// The layout is that of vtkDelimitedTextWriter: a line of column names, then a line for each row, with names and
/// texts in double quotes. Mind that it writes numbers with six significant digits, and a quote within a text as it
/// stands, so that such a text does not read back.
class DATAVIEWS_EXPORT_EXPORT SurrogateModelCSVExporter
{
public:
    /// Gives the present output of \p source, which must not be null, part by part to \p write, without updating it.
    ///
    /// \p progress, if there is one, is told now and then the share that is written, from 0 to 1; what it or \p write
    /// throws ends the work.
    void writeCSV(
        vtkSmartPointer<vtkTableAlgorithm> source,
        const std::function<void(const std::string&)>& write,
        const std::function<void(double)>& progress = {}) const;

    /// Writes the present output of \p source, which must not be null, without updating it, in place of what the file
    /// held.
    ///
    /// False if the file cannot be opened, and only then: the writer does not tell of a disk that is full. What the
    /// file held is lost as soon as it could be opened.
    ///
    /// \p progress, if there is one, is told now and then the share that is written, from 0 to 1; what it throws ends the
    /// work, and the file holds what was written until then.
    bool writeCSVFile(
        vtkSmartPointer<vtkTableAlgorithm> source,
        const std::string& fileName,
        const std::function<void(double)>& progress = {}) const;
};
