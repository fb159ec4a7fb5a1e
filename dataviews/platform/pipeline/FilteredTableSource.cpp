#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/pipeline/FilteredTableSource.h>
#include <dataviews/platform/pipeline/copyRows.h>

#include <QtGlobal>

#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkObjectFactory.h>
#include <vtkSMPTools.h>
#include <vtkSmartPointer.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <utility>
#include <vector>

namespace {

constexpr vtkIdType rowsWorthThread = 20000;

template <class Array>
void chooseRows(Array& column, const RowBitmap& rows, vtkIdType rowCount, Array& chosen)
{
    chosen.SetNumberOfValues(rowCount);
    copyRows(column.GetPointer(0), rows, chosen.GetPointer(0));
}

/// Gives \p chosen, which has the type of \p column, its \p rowCount values of \p rows.
void chooseRows(
    vtkAbstractArray* column, const RowBitmap& rows, vtkIdType rowCount, vtkAbstractArray* chosen)
{
    if (auto* reals = vtkDoubleArray::SafeDownCast(column)) {
        chooseRows(*reals, rows, rowCount, *vtkDoubleArray::SafeDownCast(chosen));
    } else if (auto* integers = vtkIntArray::SafeDownCast(column)) {
        chooseRows(*integers, rows, rowCount, *vtkIntArray::SafeDownCast(chosen));
    } else {
        auto* texts = vtkStringArray::SafeDownCast(column);
        Q_ASSERT_X(
            texts != nullptr, "FilteredTableSource", "a column holds neither numbers nor texts");
        chooseRows(*texts, rows, rowCount, *vtkStringArray::SafeDownCast(chosen));
    }
}

/// Of all columns, some of them at once: most of the time goes into memory that has not been touched yet.
void chooseRows(vtkTable& table, const RowBitmap& rows, vtkIdType rowCount, vtkTable& output)
{
    struct Choice
    {
        vtkAbstractArray* column;
        vtkSmartPointer<vtkAbstractArray> chosen;
    };

    const vtkIdType columnCount = table.GetNumberOfColumns();
    std::vector<Choice> choices;
    for (vtkIdType i = 0; i < columnCount; ++i) {
        vtkAbstractArray* const column = table.GetColumn(i);
        choices.push_back({column, vtkSmartPointer<vtkAbstractArray>::Take(column->NewInstance())});
        choices.back().chosen->SetName(column->GetName());
    }
    const auto choose = [&](vtkIdType begin, vtkIdType end) {
        for (vtkIdType i = begin; i < end; ++i) {
            const Choice& choice = choices[static_cast<std::size_t>(i)];
            chooseRows(choice.column, rows, rowCount, choice.chosen);
        }
    };
    if (rowCount < rowsWorthThread) {
        choose(0, columnCount);
    } else {
        vtkSMPTools::For(0, columnCount, 1, choose);
    }
    for (const Choice& choice : choices) {
        output.AddColumn(choice.chosen);
    }
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
            chooseRows(content.table, content.rows, static_cast<vtkIdType>(rowCount), *output);
        }
    }
    return 1;
}
