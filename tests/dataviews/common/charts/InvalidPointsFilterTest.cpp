#include <dataviews/common/charts/InvalidPointsFilter.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/data/Variable.h>

#include <vtkBitArray.h>
#include <vtkCharArray.h>
#include <vtkDataSetAttributes.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkLongLongArray.h>
#include <vtkNew.h>
#include <vtkSOADataArrayTemplate.h>
#include <vtkStringArray.h>
#include <vtkTable.h>
#include <vtkVariantArray.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <tests/support/caseTable.h>

namespace {

using testing::ElementsAre;
using Handle = InvalidPointsFilter::VariableHandle;
using Variables = std::vector<boost::shared_ptr<const InvalidPointsFilter::VariableProperty>>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

boost::shared_ptr<Variable> variable(const std::string& name)
{
    vtkNew<vtkDoubleArray> column;
    column->SetName(name.c_str());
    return boost::make_shared<Variable>(column.Get(), Variable::Output);
}

boost::shared_ptr<corvane::Property<Handle>> property(const Handle& handle)
{
    return boost::make_shared<corvane::Property<Handle>>(handle);
}

bool isCopied(vtkAbstractArray& column)
{
    switch (column.GetDataType()) {
    case VTK_BIT:
    case VTK_CHAR:
    case VTK_INT:
    case VTK_DOUBLE:
    case VTK_STRING:
        return true;
    default:
        return false;
    }
}

/// What the filter gives, value by value; what it leaves empty is filled with zeros first.
vtkSmartPointer<vtkTable> byDefinition(vtkTable& in, const Variables& variables)
{
    auto out = vtkSmartPointer<vtkTable>::New();
    std::vector<vtkDataArray*> checked;
    for (const auto& property : variables) {
        if (const auto locked = property->value().lock()) {
            vtkAbstractArray* column = in.GetColumnByName(locked->name().c_str());
            if (column == nullptr) {
                out->ShallowCopy(&in);
                return out;
            }
            if (column->GetDataType() == VTK_DOUBLE) {
                checked.push_back(vtkDataArray::SafeDownCast(column));
            }
        }
    }
    if (checked.empty() && in.GetNumberOfRows() != 0) {
        out->ShallowCopy(&in);
        return out;
    }
    auto* mask = vtkCharArray::SafeDownCast(in.GetColumnByName("ValidPointsMask"));
    std::vector<vtkIdType> rows;
    for (vtkIdType row = 0; row < in.GetNumberOfRows(); ++row) {
        bool isKept = mask == nullptr || mask->GetComponent(row, 0) != 0.0;
        for (vtkDataArray* column : checked) {
            isKept = isKept && !std::isnan(column->GetComponent(row, 0));
        }
        if (isKept) {
            rows.push_back(row);
        }
    }
    out->GetRowData()->CopyStructure(in.GetRowData());
    for (vtkIdType i = 0; i < in.GetNumberOfColumns(); ++i) {
        vtkAbstractArray* from = in.GetColumn(i);
        vtkAbstractArray* to = out->GetColumn(i);
        to->SetNumberOfTuples(static_cast<vtkIdType>(rows.size()));
        auto* numbers = vtkDataArray::SafeDownCast(to);
        if (numbers != nullptr) {
            numbers->Fill(0.0);
        }
        for (std::size_t row = 0; isCopied(*from) && row < rows.size(); ++row) {
            const auto target = static_cast<vtkIdType>(row);
            if (numbers != nullptr) {
                numbers->SetComponent(
                    target, 0, vtkDataArray::SafeDownCast(from)->GetComponent(rows[row], 0));
            } else {
                const int components = to->GetNumberOfComponents();
                vtkStringArray::SafeDownCast(to)->SetValue(
                    target * components,
                    vtkStringArray::SafeDownCast(from)->GetValue(rows[row] * components));
            }
        }
    }
    return out;
}

std::string text(vtkAbstractArray& column, vtkIdType value)
{
    if (auto* numbers = vtkDataArray::SafeDownCast(&column)) {
        const int components = column.GetNumberOfComponents();
        const double number =
            numbers->GetComponent(value / components, static_cast<int>(value % components));
        return std::isnan(number) ? "missing" : std::to_string(number);
    }
    const vtkVariant variant = column.GetVariantValue(value);
    return variant.IsValid() ? "\"" + variant.ToString() + "\"" : "invalid";
}

/// All of \p table as texts, a line for each column.
std::vector<std::string> content(vtkTable& table)
{
    std::vector<std::string> lines;
    for (vtkIdType i = 0; i < table.GetNumberOfColumns(); ++i) {
        vtkAbstractArray& column = *table.GetColumn(i);
        std::string line = column.GetClassName();
        line += column.GetName() == nullptr ? " unnamed" : std::string(" ") + column.GetName();
        for (int component = 0; component < column.GetNumberOfComponents(); ++component) {
            const char* name = column.GetComponentName(component);
            line += name == nullptr ? " -" : std::string(" ") + name;
        }
        for (vtkIdType value = 0; value < column.GetNumberOfValues(); ++value) {
            line += " " + text(column, value);
        }
        lines.push_back(line);
    }
    return lines;
}

/// Tables of columns of all kinds, "0", "1" and so on, the first ones with real values more often than not.
class RandomTables
{
public:
    explicit RandomTables(unsigned seed)
        : m_generator(seed)
    {}

    [[nodiscard]] int below(int end)
    {
        return std::uniform_int_distribution<int>(0, end - 1)(m_generator);
    }

    vtkSmartPointer<vtkTable> next()
    {
        const int rowCounts[] = {0, 1, 63, 64, 65, 192, 200};
        const int rowCount = rowCounts[below(7)];
        m_gapsIn100 = below(3) == 0 ? 0 : below(100);
        auto table = vtkSmartPointer<vtkTable>::New();
        const int columnCount = below(9);
        for (int i = 0; i < columnCount; ++i) {
            table->AddColumn(column(std::to_string(i), i < 2 ? below(3) : below(12), rowCount));
        }
        if (below(2) == 0) {
            table->AddColumn(column("ValidPointsMask", below(4) == 0 ? below(12) : 3, rowCount));
        }
        if (columnCount > 3 && below(4) == 0) {
            table->GetColumn(3)->SetName(below(2) == 0 ? "1" : nullptr);
        }
        return table;
    }

private:
    vtkSmartPointer<vtkAbstractArray> column(const std::string& name, int kind, int rowCount)
    {
        const auto column = vtkSmartPointer<vtkAbstractArray>::Take(empty(kind));
        const int components = below(4) == 0 ? 1 + below(3) : 1;
        column->SetName(name.c_str());
        column->SetNumberOfComponents(components);
        if (below(4) == 0) {
            column->SetComponentName(components - 1, "last");
        }
        column->SetNumberOfTuples(rowCount);
        for (int value = 0; value < rowCount * components; ++value) {
            if (auto* numbers = vtkDataArray::SafeDownCast(column)) {
                numbers->SetComponent(value / components, value % components, number(kind));
            } else {
                column->SetVariantValue(value, vtkVariant("text " + std::to_string(below(50))));
            }
        }
        return column;
    }

    double number(int kind)
    {
        const bool isGap = below(100) < m_gapsIn100;
        if (kind < 3) {
            return isGap ? nan : below(9) == 0 ? infinity : below(1000) / 8.0;
        }
        return isGap ? 0.0 : 1.0 + below(kind == 4 ? 1 : 100);
    }

    static vtkAbstractArray* empty(int kind)
    {
        switch (kind) {
        case 0:
        case 1:
            return vtkDoubleArray::New();
        case 2:
            return vtkSOADataArrayTemplate<double>::New();
        case 3:
            return vtkCharArray::New();
        case 4:
            return vtkBitArray::New();
        case 5:
            return vtkIntArray::New();
        case 6:
            return vtkStringArray::New();
        case 7:
            return vtkFloatArray::New();
        case 8:
            return vtkIdTypeArray::New();
        case 9:
            return vtkLongLongArray::New();
        case 10:
            return vtkSOADataArrayTemplate<float>::New();
        default:
            return vtkVariantArray::New();
        }
    }

    std::mt19937 m_generator;
    int m_gapsIn100 = 0;
};

TEST(InvalidPointsFilterTest, GivesRandomTablesAsDefinedAndLeavesOthersAlone)
{
    for (unsigned seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        RandomTables tables(seed);
        std::vector<boost::shared_ptr<Variable>> named;
        for (const char* name : {"0", "1", "2", "5", "absent"}) {
            named.push_back(variable(name));
        }
        const Handle expired(variable("0"));
        const auto first = property(named[0]);
        const auto second = property(Handle());
        const Variables variables = {second, first};
        const auto filter = InvalidPointsFilter::New(variables);
        std::vector<std::function<void()>> checksOfHeldColumns;

        for (int execution = 0; execution < 6; ++execution) {
            const vtkSmartPointer<vtkTable> in = tables.next();
            const std::vector<std::string> before = content(*in);
            const int choice = tables.below(8);
            second->setValue(
                choice < 5 ? Handle(named[static_cast<std::size_t>(choice)])
                           : (choice == 5 ? expired : Handle()));
            filter->SetInputData(in);
            filter->Update();

            vtkTable& out = *filter->GetOutput();
            ASSERT_EQ(content(out), content(*byDefinition(*in, variables)));
            ASSERT_EQ(content(*in), before);
            if (tables.below(2) == 0) {
                auto held = vtkSmartPointer<vtkTable>::New();
                held->ShallowCopy(&out);
                checksOfHeldColumns.push_back(
                    [held, was = content(out)] { EXPECT_EQ(content(*held), was); });
            }
        }
        for (const auto& check : checksOfHeldColumns) {
            check();
        }
    }
}

class InvalidPointsFilterExampleTest : public testing::Test
{
protected:
    /// The cases that pass if \p xs are the values of the variable x.
    std::vector<int> casesOf(const std::vector<double>& xs, const std::vector<char>& mask = {})
    {
        std::vector<int> ids(xs.size());
        for (std::size_t row = 0; row < ids.size(); ++row) {
            ids[row] = static_cast<int>(row) + 1;
        }
        m_table = caseTable(ids, xs);
        if (!mask.empty()) {
            vtkNew<vtkCharArray> column;
            column->SetName(InvalidPointsFilter::validPointsArrayName.c_str());
            for (const char value : mask) {
                column->InsertNextValue(value);
            }
            m_table->AddColumn(column);
        }
        m_filter->SetInputData(m_table);
        return cases();
    }

    std::vector<int> cases()
    {
        m_filter->Update();
        const auto* ids = vtkIntArray::SafeDownCast(m_filter->GetOutput()->GetColumn(0));
        std::vector<int> cases;
        for (vtkIdType row = 0; row < ids->GetNumberOfValues(); ++row) {
            cases.push_back(ids->GetValue(row));
        }
        return cases;
    }

    boost::shared_ptr<Variable> m_xVariable = variable("x");
    boost::shared_ptr<Variable> m_absentVariable = variable("absent");
    boost::shared_ptr<Variable> m_caseVariable = variable("Case");
    boost::shared_ptr<corvane::Property<Handle>> m_x = property(m_xVariable);
    boost::shared_ptr<corvane::Property<bool>> m_relevance =
        boost::make_shared<corvane::Property<bool>>(true);
    boost::shared_ptr<InvalidPointsFilter::RelevanceDependentVariableProperty> m_property =
        boost::make_shared<InvalidPointsFilter::RelevanceDependentVariableProperty>(
            m_x, m_relevance);
    vtkSmartPointer<InvalidPointsFilter> m_filter = InvalidPointsFilter::New({m_property});
    vtkSmartPointer<vtkTable> m_table;
};

TEST_F(InvalidPointsFilterExampleTest, DropsMissingValuesAndMarkedRows)
{
    EXPECT_THAT(casesOf({nan, 1, infinity, -infinity, nan, 0}), ElementsAre(2, 3, 4, 6));
    EXPECT_THAT(casesOf({nan, 1, 2, 3}, {1, 0, 1, -1}), ElementsAre(3, 4));
    EXPECT_THAT(casesOf({nan, nan}), ElementsAre());
}

TEST_F(InvalidPointsFilterExampleTest, SharesColumnsWhereNothingIsDropped)
{
    const auto sharedColumns = [this] {
        int shared = 0;
        for (vtkIdType i = 0; i < m_table->GetNumberOfColumns(); ++i) {
            shared += m_filter->GetOutput()->GetColumn(i) == m_table->GetColumn(i) ? 1 : 0;
        }
        return shared;
    };
    EXPECT_THAT(casesOf({1, 2}, {1, 1}), ElementsAre(1, 2));
    EXPECT_EQ(sharedColumns(), 4);
    EXPECT_THAT(casesOf({1, 2}, {0, 1}), ElementsAre(2));
    EXPECT_EQ(sharedColumns(), 0);

    m_x->setValue(m_caseVariable);
    EXPECT_THAT(cases(), ElementsAre(1, 2)) << "Without a real column nothing is looked at.";
    EXPECT_EQ(sharedColumns(), 4);
    m_x->setValue(m_absentVariable);
    EXPECT_THAT(cases(), ElementsAre(1, 2));
    EXPECT_EQ(sharedColumns(), 4);
}

TEST_F(InvalidPointsFilterExampleTest, UsesMemoryAgainThatNobodyHolds)
{
    struct Case
    {
        const char* description;
        std::function<vtkSmartPointer<vtkObject>(vtkTable&)> hold;
        bool isUsedAgain;
    };

    const Case cases[] = {
        {"nobody", [](vtkTable&) { return nullptr; }, true},
        {"a column", [](vtkTable& table) { return table.GetColumn(1); }, false},
        {"a table with the columns",
         [](vtkTable& table) {
             auto copy = vtkSmartPointer<vtkTable>::New();
             copy->ShallowCopy(&table);
             return copy;
         },
         false},
        {"a column with the same memory",
         [](vtkTable& table) {
             auto copy = vtkSmartPointer<vtkDoubleArray>::New();
             copy->ShallowCopy(vtkDataArray::SafeDownCast(table.GetColumn(1)));
             return copy;
         },
         false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.description);
        (void)casesOf({nan, 1, 2, 3});
        vtkTable& output = *m_filter->GetOutput();
        const vtkSmartPointer<vtkObject> held = c.hold(output);
        const void* memory = output.GetColumn(1)->GetVoidPointer(0);
        const vtkMTimeType time = output.GetColumn(1)->GetMTime();

        (void)casesOf({nan, 1, nan, 3});

        EXPECT_EQ(output.GetColumn(1)->GetVoidPointer(0) == memory, c.isUsedAgain);
        EXPECT_GT(output.GetColumn(1)->GetMTime(), time);
    }
}

TEST_F(InvalidPointsFilterExampleTest, AVariableCountsWhileItIsRelevant)
{
    std::vector<Handle> told;
    m_property->valueChanged.connect([&](const Handle& handle) { told.push_back(handle); });
    EXPECT_THAT(casesOf({nan, 1}), ElementsAre(2));

    m_relevance->setValue(false);
    EXPECT_THAT(cases(), ElementsAre(1, 2));
    EXPECT_EQ(m_property->value(), Handle());
    const vtkMTimeType time = m_filter->GetMTime();
    m_x->setValue(m_caseVariable);
    m_x->setValue(m_xVariable);
    m_property->setValue(m_caseVariable);
    EXPECT_EQ(m_filter->GetMTime(), time);

    m_relevance->setValue(true);
    EXPECT_THAT(cases(), ElementsAre(2));
    EXPECT_EQ(m_property->value(), Handle(m_xVariable));
    m_x->setValue(m_caseVariable);
    EXPECT_THAT(cases(), ElementsAre(1, 2));
    m_property->setValue(m_xVariable);
    EXPECT_EQ(m_property->value(), Handle(m_caseVariable));
    EXPECT_EQ(told, (std::vector<Handle>{Handle(), m_xVariable, m_caseVariable}));
}

} // namespace
