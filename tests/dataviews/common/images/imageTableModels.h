#pragma once

#include <dataviews/platform/selection/SuspendableInterface.h>

#include <vtkInformation.h>
#include <vtkInformationVector.h>
#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkSmartPointer.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <functional>
#include <vector>

/// What tests of ImageTableModel share.
namespace imageTableModels {

/// Gives the table that it is told to give.
class TableSource : public vtkTableAlgorithm
{
public:
    vtkTypeMacro(TableSource, vtkTableAlgorithm)

        static TableSource* New();
    TableSource(const TableSource&) = delete;
    TableSource& operator=(const TableSource&) = delete;

    void setTable(vtkSmartPointer<vtkTable> table)
    {
        m_table = table;
        Modified();
    }

    void setCaseIDs(const std::vector<int>& caseIDs)
    {
        vtkNew<vtkIntArray> column;
        column->SetName("Case");
        for (const int id : caseIDs) {
            column->InsertNextValue(id);
        }
        vtkNew<vtkTable> table;
        table->AddColumn(column);
        setTable(table.Get());
    }

    /// Called whenever the table is made.
    std::function<void()> executed;

protected:
    TableSource() { SetNumberOfInputPorts(0); }

    ~TableSource() override = default;

    int RequestData(
        vtkInformation* /*request*/,
        vtkInformationVector** /*inputs*/,
        vtkInformationVector* outputs) override
    {
        vtkTable* const output = vtkTable::GetData(outputs);
        if (m_table != nullptr) {
            output->ShallowCopy(m_table);
        }
        if (executed) {
            executed();
        }
        return 1;
    }

private:
    vtkSmartPointer<vtkTable> m_table;
};

inline TableSource* TableSource::New()
{
    auto* source = new TableSource; // NOLINT: VTK counts references
    source->InitializeObjectBase();
    return source;
}

/// A view that is suspended by nobody.
class Owner : public SuspendableInterface
{
public:
    void suspend() override { ++calls; }

    void resume() override { ++calls; }

    int calls = 0;
};

} // namespace imageTableModels
