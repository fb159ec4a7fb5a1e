#include <dataviews/common/charts/InvalidPointsFilter.h>

#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/pipeline/copyRows.h>
#include <dataviews/platform/pipeline/keepRows.h>

#include <QtGlobal>

#include <vtkAOSDataArrayTemplate.h>
#include <vtkBitArray.h>
#include <vtkBuffer.h>
#include <vtkCharArray.h>
#include <vtkDataArray.h>
#include <vtkDataSetAttributes.h>
#include <vtkStringArray.h>
#include <vtkTable.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace {

using Handle = InvalidPointsFilter::VariableHandle;
using VariableProperty = InvalidPointsFilter::VariableProperty;

/// For what VTK's containers do without offering it.
template <class Value>
struct OpenArray : vtkAOSDataArrayTemplate<Value>
{
    using vtkAOSDataArrayTemplate<Value>::Buffer;
};

struct OpenFieldData : vtkFieldData
{
    using vtkFieldData::SetArray;
};

/// Takes the rows out for which `passes(value of the first component)` is false.
template <class Value, class Predicate>
void keepValues(vtkAOSDataArrayTemplate<Value>& column, RowBitmap& rows, Predicate passes)
{
    const Value* values = column.GetPointer(0);
    const auto stride = static_cast<std::size_t>(column.GetNumberOfComponents());
    if (stride == 1) {
        keepRows(rows, [=](std::size_t row) { return passes(values[row]); });
    } else {
        keepRows(rows, [=](std::size_t row) { return passes(values[row * stride]); });
    }
}

void dropMissing(vtkDataArray& column, RowBitmap& rows)
{
    const auto isThere = [](double value) { return !std::isnan(value); };
    if (auto* plain = vtkAOSDataArrayTemplate<double>::FastDownCast(&column)) {
        keepValues(*plain, rows, isThere);
    } else {
        keepRows(rows, [&](std::size_t row) {
            return isThere(column.GetComponent(static_cast<vtkIdType>(row), 0));
        });
    }
}

/// The real columns of \p table that are named after \p variables; nothing if a column is missing.
std::optional<std::vector<vtkDataArray*>> columnsToCheck(
    vtkTable& table, const std::vector<boost::shared_ptr<const VariableProperty>>& variables)
{
    std::vector<vtkDataArray*> columns;
    for (const auto& property : variables) {
        const boost::shared_ptr<Variable> variable = property->value().lock();
        if (!variable) {
            continue;
        }
        vtkAbstractArray* column = table.GetColumnByName(variable->name().c_str());
        if (column == nullptr) {
            return std::nullopt;
        }
        if (column->GetDataType() == VTK_DOUBLE) {
            columns.push_back(vtkDataArray::SafeDownCast(column));
        }
    }
    return columns;
}

RowBitmap drawableRows(vtkTable& table, const std::vector<vtkDataArray*>& checked)
{
    RowBitmap rows(static_cast<std::size_t>(table.GetNumberOfRows()), true);
    for (vtkDataArray* column : checked) {
        dropMissing(*column, rows);
    }
    if (auto* mask = vtkCharArray::SafeDownCast(
            table.GetColumnByName(InvalidPointsFilter::validPointsArrayName.c_str()))) {
        keepValues(*mask, rows, [](char value) { return value != 0; });
    }
    return rows;
}

bool isCopied(vtkAbstractArray& column)
{
    const int type = column.GetDataType();
    return type == VTK_BIT || type == VTK_CHAR || type == VTK_INT || type == VTK_DOUBLE
        || type == VTK_STRING;
}

/// Gives \p column the memory of \p used if no array uses that any more and it suits \p valueCount values.
template <class Value>
void takeMemory(vtkAOSDataArrayTemplate<Value>& column, vtkDataArray* used, vtkIdType valueCount)
{
    auto* memory = vtkAOSDataArrayTemplate<Value>::FastDownCast(used);
    if (memory == nullptr) {
        return;
    }
    vtkBuffer<Value>& buffer = *(memory->*(&OpenArray<Value>::Buffer));
    const vtkIdType size = buffer.GetSize();
    // The size differs if somebody resized a column that he was given.
    if (buffer.GetReferenceCount() != 1 || size != memory->GetSize() || size < valueCount
        || size / 2 > valueCount) {
        return;
    }
    const std::string name = column.GetName() == nullptr ? "" : column.GetName();
    const bool isNamed = column.GetName() != nullptr;
    const int components = column.GetNumberOfComponents();
    column.ShallowCopy(memory);
    column.SetNumberOfComponents(components);
    column.SetName(isNamed ? name.c_str() : nullptr);
}

/// Fills \p to, which is empty, with \p count rows of \p from. Returns what holds the memory of \p to.
template <class Value>
vtkSmartPointer<vtkDataArray> fillPlain(
    vtkAOSDataArrayTemplate<Value>& from,
    const RowBitmap& rows,
    vtkIdType count,
    vtkAOSDataArrayTemplate<Value>& to,
    vtkDataArray* used)
{
    // Room for all rows, so that the memory suits the next time too; what is not written costs nothing.
    takeMemory(to, used, from.GetNumberOfValues());
    to.SetNumberOfTuples(from.GetNumberOfTuples());
    to.SetNumberOfTuples(count);
    const int components = from.GetNumberOfComponents();
    const Value* source = from.GetPointer(0);
    Value* target = to.GetPointer(0);
    if (components == 1) {
        copyRows(source, rows, target);
    } else {
        std::fill_n(target, count * components, Value());
        rows.forEach([&](std::size_t row) {
            *target = source[row * static_cast<std::size_t>(components)];
            target += components;
        });
    }
    const auto memory = vtkSmartPointer<vtkAOSDataArrayTemplate<Value>>::New();
    memory->ShallowCopy(&to);
    return memory;
}

void fillBits(vtkBitArray& from, const RowBitmap& rows, vtkIdType count, vtkBitArray& to)
{
    constexpr unsigned highestBit = 0x80;
    const auto components = static_cast<std::size_t>(from.GetNumberOfComponents());
    const std::size_t bitCount = static_cast<std::size_t>(count) * components;
    to.SetNumberOfTuples(count);
    const unsigned char* source = from.GetPointer(0);
    unsigned char* target = to.GetPointer(0);
    std::fill_n(target, (bitCount + 7) / 8, static_cast<unsigned char>(0));
    std::size_t next = 0;
    rows.forEach([&](std::size_t row) {
        const std::size_t bit = row * components;
        const unsigned value = source[bit / 8] & (highestBit >> (bit % 8));
        const unsigned moved = value != 0 ? highestBit >> (next % 8) : 0U;
        target[next / 8] = static_cast<unsigned char>(target[next / 8] | moved);
        next += components;
    });
}

void fillTexts(vtkStringArray& from, const RowBitmap& rows, vtkIdType count, vtkStringArray& to)
{
    to.SetNumberOfTuples(count);
    const vtkStdString* source = from.GetPointer(0);
    vtkStdString* target = to.GetPointer(0);
    const int components = from.GetNumberOfComponents();
    rows.forEach([&](std::size_t row) {
        *target = source[row * static_cast<std::size_t>(components)];
        target += components;
    });
}

/// Arrays that keep their values in another way than VTK's common ones do.
void fillUncommon(vtkDataArray& from, const RowBitmap& rows, vtkIdType count, vtkDataArray& to)
{
    to.SetNumberOfTuples(count);
    to.Fill(0.0);
    vtkIdType next = 0;
    rows.forEach([&](std::size_t row) {
        to.SetComponent(next++, 0, from.GetComponent(static_cast<vtkIdType>(row), 0));
    });
}

void fillEmpty(vtkIdType count, vtkAbstractArray& to)
{
    // Texts and variants are made empty.
    to.SetNumberOfTuples(count);
    if (auto* numbers = vtkDataArray::SafeDownCast(&to)) {
        numbers->Fill(0.0);
    }
}

/// Fills \p to, which has the structure of \p from and no rows, with \p count \p rows. Returns what holds the memory of
/// \p to, if that can be used again.
vtkSmartPointer<vtkDataArray> fill(
    vtkAbstractArray& from,
    const RowBitmap& rows,
    vtkIdType count,
    vtkAbstractArray& to,
    vtkDataArray* used)
{
    const auto fillIfPlain = [&](auto value) -> vtkSmartPointer<vtkDataArray> {
        using Array = vtkAOSDataArrayTemplate<decltype(value)>;
        if (auto* plain = Array::FastDownCast(&from)) {
            return fillPlain(*plain, rows, count, *Array::FastDownCast(&to), used);
        }
        fillUncommon(
            *vtkDataArray::SafeDownCast(&from), rows, count, *vtkDataArray::SafeDownCast(&to));
        return nullptr;
    };
    switch (from.GetDataType()) {
    case VTK_CHAR:
        return fillIfPlain(char());
    case VTK_INT:
        return fillIfPlain(int());
    case VTK_DOUBLE:
        return fillIfPlain(double());
    case VTK_BIT:
        fillBits(*vtkBitArray::SafeDownCast(&from), rows, count, *vtkBitArray::SafeDownCast(&to));
        return nullptr;
    case VTK_STRING:
        fillTexts(
            *vtkStringArray::SafeDownCast(&from), rows, count, *vtkStringArray::SafeDownCast(&to));
        return nullptr;
    default:
        fillEmpty(count, to);
        return nullptr;
    }
}

} // namespace

const std::string InvalidPointsFilter::validPointsArrayName = "ValidPointsMask";

vtkSmartPointer<InvalidPointsFilter> InvalidPointsFilter::New(
    const std::vector<boost::shared_ptr<const VariableProperty>>& variables)
{
    auto filter = vtkSmartPointer<InvalidPointsFilter>::Take(new InvalidPointsFilter(variables));
    filter->InitializeObjectBase();
    return filter;
}

InvalidPointsFilter::InvalidPointsFilter(
    const std::vector<boost::shared_ptr<const VariableProperty>>& variables)
    : m_variables(variables)
{
    for (const auto& variable : m_variables) {
        Q_ASSERT_X(variable != nullptr, "InvalidPointsFilter", "a variable property is null");
        m_connections.add(variable->valueChanged.connect([this](const Handle&) { Modified(); }));
    }
}

InvalidPointsFilter::~InvalidPointsFilter() = default;

int InvalidPointsFilter::RequestData(
    vtkInformation* /*request*/, vtkInformationVector** inputs, vtkInformationVector* output)
{
    vtkTable* in = vtkTable::GetData(inputs[0]);
    vtkTable* out = vtkTable::GetData(output);
    // Frees what the output still has of the last execution, so that nobody but others can hold its memory.
    out->GetRowData()->CopyStructure(in->GetRowData());
    const std::vector<vtkSmartPointer<vtkDataArray>> used = std::exchange(m_columnMemory, {});
    const vtkIdType columnCount = in->GetNumberOfColumns();
    if (columnCount == 0 || in->GetNumberOfRows() == 0) {
        return 1;
    }
    const auto checked = columnsToCheck(*in, m_variables);
    if (!checked || checked->empty()) {
        out->ShallowCopy(in);
        return 1;
    }

    const RowBitmap rows = drawableRows(*in, *checked);
    const std::size_t rowCount = rows.count();
    const bool areAllDrawable = rowCount == rows.rowCount();
    m_columnMemory.resize(static_cast<std::size_t>(columnCount));
    for (vtkIdType i = 0; i < columnCount; ++i) {
        vtkAbstractArray* column = in->GetColumn(i);
        Q_ASSERT_X(
            column->GetNumberOfTuples() == in->GetNumberOfRows(),
            "InvalidPointsFilter",
            "a column has not as many rows as the table");
        if (areAllDrawable && isCopied(*column) && column->GetNumberOfComponents() == 1) {
            (out->GetRowData()->*(&OpenFieldData::SetArray))(static_cast<int>(i), column);
            continue;
        }
        const auto index = static_cast<std::size_t>(i);
        m_columnMemory[index] = fill(
            *column,
            rows,
            static_cast<vtkIdType>(rowCount),
            *out->GetColumn(i),
            index < used.size() ? used[index].Get() : nullptr);
    }
    return 1;
}

InvalidPointsFilter::RelevanceDependentVariableProperty::RelevanceDependentVariableProperty(
    boost::shared_ptr<const VariableProperty> variable,
    boost::shared_ptr<const corvane::PropertyAbstract<bool>> relevance)
    : m_variable(std::move(variable))
    , m_relevance(std::move(relevance))
{
    m_connections.add(m_variable->valueChanged.connect([this](const Handle& current) {
        if (m_relevance->value()) {
            emitValueChangedSignal(current);
        }
    }));
    m_connections.add(m_relevance->valueChanged.connect([this](bool) {
        if (!m_variable->value().isNull()) {
            emitValueChangedSignal(value());
        }
    }));
}

InvalidPointsFilter::RelevanceDependentVariableProperty::~RelevanceDependentVariableProperty() =
    default;

void InvalidPointsFilter::RelevanceDependentVariableProperty::storeValue(const Handle& /*variable*/)
{}

bool InvalidPointsFilter::RelevanceDependentVariableProperty::isEqual(
    const Handle& /*variable*/) const
{
    // Nothing can be stored, so there is nothing to announce.
    return true;
}

Handle InvalidPointsFilter::RelevanceDependentVariableProperty::storedValue() const
{
    return m_relevance->value() ? m_variable->value() : Handle();
}
