#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/pipeline/FilteredTableSource.h>
#include <dataviews/platform/pipeline/copyRows.h>

#include <QtGlobal>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkObjectFactory.h>
#include <vtkSmartPointer.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <utility>

namespace {

template <class Array>
vtkSmartPointer<vtkAbstractArray> chosenRows(
    Array& column, const RowBitmap& rows, vtkIdType rowCount)
{
    const auto chosen = vtkSmartPointer<Array>::New();
    chosen->SetName(column.GetName());
    chosen->SetNumberOfValues(rowCount);
    copyRows(column.GetPointer(0), rows, chosen->GetPointer(0));
    return chosen;
}

vtkSmartPointer<vtkAbstractArray> chosenRows(
    vtkAbstractArray* column, const RowBitmap& rows, vtkIdType rowCount)
{
    if (auto* reals = vtkDoubleArray::SafeDownCast(column)) {
        return chosenRows(*reals, rows, rowCount);
    }
    if (auto* integers = vtkIntArray::SafeDownCast(column)) {
        return chosenRows(*integers, rows, rowCount);
    }
    auto* texts = vtkStringArray::SafeDownCast(column);
    Q_ASSERT_X(texts != nullptr, "FilteredTableSource", "a column holds neither numbers nor texts");
    return chosenRows(*texts, rows, rowCount);
}

} // namespace

vtkStandardNewMacro(FilteredTableSource);

FilteredTableSource::FilteredTableSource()
{
    SetNumberOfInputPorts(0);
}

FilteredTableSource::~FilteredTableSource() = default;

void FilteredTableSource::setContent(std::function<Content()> content)
{
    m_content = std::move(content);
}

int FilteredTableSource::RequestData(
    vtkInformation* /*request*/, vtkInformationVector** /*inputs*/, vtkInformationVector* outputs)
{
    vtkTable* output = vtkTable::GetData(outputs, 0);
    if (m_content) {
        const Content content = m_content();
        const std::size_t rowCount = content.rows.count();
        if (rowCount == content.rows.rowCount()) {
            output->ShallowCopy(&content.table);
        } else {
            for (vtkIdType column = 0; column < content.table.GetNumberOfColumns(); ++column) {
                output->AddColumn(chosenRows(
                    content.table.GetColumn(column),
                    content.rows,
                    static_cast<vtkIdType>(rowCount)));
            }
        }
    }
    return 1;
}
