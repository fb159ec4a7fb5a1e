#pragma once

#include <dataviews/platform/pipeline/PlatformPipelineExport.h>

#include <vtkTableAlgorithm.h>

#include <functional>

class RowBitmap;
class vtkTable;

/// Gives chosen rows of a table as a table of their own; has no input ports.
///
/// The rows are asked for when the algorithm executes, so that many changes cost one execution.
/// Whoever changes what the answer will be calls Modified().
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT FilteredTableSource : public vtkTableAlgorithm
{
public:
    vtkTypeMacro(FilteredTableSource, vtkTableAlgorithm)

        /// What to give: the rows \p rows of \p table, whose columns are vtkIntArray, vtkDoubleArray or
        /// vtkStringArray with one component. Both need to live only until the execution is over.
        struct Content
    {
        vtkTable& table;
        const RowBitmap& rows;
    };

    static FilteredTableSource* New();
    FilteredTableSource(const FilteredTableSource&) = delete;
    FilteredTableSource& operator=(const FilteredTableSource&) = delete;

    /// \p content is called at every execution. Without one an execution gives an empty table; what was
    /// given before stays until then.
    void setContent(std::function<Content()> content);

protected:
    FilteredTableSource();
    ~FilteredTableSource() override;

    /// All rows are given as a table that shares the columns; fewer as newly made columns, so that what
    /// somebody keeps of an earlier output never changes under him.
    int RequestData(
        vtkInformation* request,
        vtkInformationVector** inputs,
        vtkInformationVector* outputs) override;

private:
    std::function<Content()> m_content;
};
