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
#include <cstddef>
#include <cstdint>
#include <cstring>
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

// Not functions: the passes over the columns are to have them in line.
constexpr auto isThere = [](double value) { return !std::isnan(value); };
constexpr auto isValid = [](char mark) { return mark != 0; };

void dropMissing(vtkDataArray& column, RowBitmap& rows)
{
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

/// Block by block, and in a form that the compiler turns into comparisons of several values at a time.
bool isAnyMissing(const double* values, std::size_t count)
{
    constexpr std::size_t blockSize = 512;
    const std::size_t inBlocks = count - count % blockSize;
    for (std::size_t block = 0; block < inBlocks; block += blockSize) {
        const double* four = values + block;
        std::uint64_t found = 0;
        for (std::size_t i = 0; i < blockSize; i += 4, four += 4) {
            // Two values are unordered if either is NaN.
            const std::uint64_t even = std::isunordered(four[0], four[2]) ? 1 : 0;
            const std::uint64_t odd = std::isunordered(four[1], four[3]) ? 1 : 0;
            found |= even | odd;
        }
        if (found != 0) {
            return true;
        }
    }
    return !std::all_of(values + inBlocks, values + count, isThere);
}

/// The values of \p column if they lie in memory one after the other, else null.
template <class Value>
const Value* plainValues(vtkDataArray& column)
{
    auto* plain = vtkAOSDataArrayTemplate<Value>::FastDownCast(&column);
    return plain != nullptr && plain->GetNumberOfComponents() == 1 ? plain->GetPointer(0) : nullptr;
}

vtkCharArray* marksOf(vtkTable& table)
{
    return vtkCharArray::SafeDownCast(
        table.GetColumnByName(InvalidPointsFilter::validPointsArrayName.c_str()));
}

/// Whether it takes no more than a look to see that no row is to be left out. This is the common case, and the look costs
/// less than a bitmap.
bool areAllDrawable(vtkTable& table, const std::vector<vtkDataArray*>& checked)
{
    const auto rowCount = static_cast<std::size_t>(table.GetNumberOfRows());
    const bool isNoneMissing =
        std::all_of(checked.begin(), checked.end(), [rowCount](vtkDataArray* column) {
            const auto* values = plainValues<double>(*column);
            return values != nullptr && !isAnyMissing(values, rowCount);
        });
    if (!isNoneMissing) {
        return false;
    }
    vtkCharArray* marks = marksOf(table);
    if (marks == nullptr) {
        return true;
    }
    const char* values = plainValues<char>(*marks);
    return values != nullptr && std::memchr(values, 0, rowCount) == nullptr;
}

RowBitmap drawableRows(vtkTable& table, const std::vector<vtkDataArray*>& checked)
{
    RowBitmap rows(static_cast<std::size_t>(table.GetNumberOfRows()), true);
    if (areAllDrawable(table, checked)) {
        return rows;
    }
    for (vtkDataArray* column : checked) {
        dropMissing(*column, rows);
    }
    if (vtkCharArray* marks = marksOf(table)) {
        keepValues(*marks, rows, isValid);
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
    // The names of components would come with the memory, and cannot be taken away again.
    if (memory == nullptr || memory->HasAComponentName()) {
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
