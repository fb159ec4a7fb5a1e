#include <dataviews/common/charts/InvalidPointsFilter.h>
#include <dataviews/common/views/Property.h>

#include <dataviews/platform/data/Variable.h>

#include <vtkCharArray.h>
#include <vtkDoubleArray.h>
#include <vtkIntArray.h>
#include <vtkNew.h>
#include <vtkSOADataArrayTemplate.h>
#include <vtkTable.h>

#include <boost/make_shared.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <utility>
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

/// The rows that pass; nothing if the filter passes the table on as it is.
std::optional<std::vector<vtkIdType>> passingRows(vtkTable& table, const Variables& variables)
{
    std::vector<vtkDataArray*> checked;
    for (const auto& property : variables) {
        if (const auto locked = property->value().lock()) {
            vtkAbstractArray* column = table.GetColumnByName(locked->name().c_str());
            if (column == nullptr) {
                return std::nullopt;
            }
            if (column->GetDataType() == VTK_DOUBLE) {
                checked.push_back(vtkDataArray::SafeDownCast(column));
            }
        }
    }
    if (checked.empty()) {
        return std::nullopt;
    }
    auto* mask = vtkCharArray::SafeDownCast(table.GetColumnByName("ValidPointsMask"));
    std::vector<vtkIdType> rows;
    for (vtkIdType row = 0; row < table.GetNumberOfRows(); ++row) {
        bool isKept = mask == nullptr || mask->GetComponent(row, 0) != 0.0;
        for (vtkDataArray* column : checked) {
            isKept = isKept && !std::isnan(column->GetComponent(row, 0));
        }
        if (isKept) {
            rows.push_back(row);
        }
    }
    return rows;
}

/// All of \p table as texts, a line for each column. If there are \p passing rows, what the filter makes of them.
std::vector<std::string> content(
    vtkTable& table, const std::optional<std::vector<vtkIdType>>& passing = std::nullopt)
{
    std::vector<vtkIdType> rows(static_cast<std::size_t>(table.GetNumberOfRows()));
    std::iota(rows.begin(), rows.end(), 0);
    const std::set<int> copiedTypes = {VTK_BIT, VTK_CHAR, VTK_INT, VTK_DOUBLE, VTK_STRING};
    std::vector<std::string> lines;
    for (vtkIdType i = 0; i < table.GetNumberOfColumns(); ++i) {
        vtkAbstractArray& column = *table.GetColumn(i);
        auto* numbers = vtkDataArray::SafeDownCast(&column);
        const int components = column.GetNumberOfComponents();
        const bool isCopied = copiedTypes.count(column.GetDataType()) != 0;
        std::ostringstream line;
        const auto append = [&line](const char* name) { line << (name ? name : "-") << ' '; };
        append(column.GetClassName());
        append(column.GetName());
        for (int component = 0; component < components; ++component) {
            append(column.GetComponentName(component));
        }
        for (const vtkIdType row : passing.value_or(rows)) {
            for (int component = 0; component < components; ++component) {
                const bool isEmpty = passing && !(isCopied && component == 0);
                if (numbers != nullptr) {
                    line << (isEmpty ? 0.0 : numbers->GetComponent(row, component)) << ' ';
                } else if (!isEmpty) {
                    line << column.GetVariantValue(row * components + component).ToString();
                }
                line << '|';
            }
        }
        lines.push_back(line.str());
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
        const int rowCounts[] = {0, 1, 63, 64, 65, 200, 600};
        const int rowCount = rowCounts[below(7)];
        m_gapsIn100 = below(3) == 0 ? 0 : below(100);
        m_gapEnd = below(3) == 0 ? below(rowCount + 1) : rowCount;
        auto table = vtkSmartPointer<vtkTable>::New();
        const int columnCount = below(9);
        for (int i = 0; i < columnCount; ++i) {
            table->AddColumn(column(std::to_string(i), i < 2 ? below(3) : below(kinds), rowCount));
        }
        if (below(2) == 0) {
            table->AddColumn(column("ValidPointsMask", below(4) == 0 ? below(kinds) : 3, rowCount));
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
                numbers->SetComponent(
                    value / components, value % components, number(kind, value / components));
            } else {
                column->SetVariantValue(value, vtkVariant("text " + std::to_string(below(50))));
            }
        }
        return column;
    }

    double number(int kind, int row)
    {
        const bool isGap = row < m_gapEnd && below(100) < m_gapsIn100;
        if (kind < 3) {
            return isGap ? nan : below(9) == 0 ? infinity : below(1000) / 8.0;
        }
        return isGap ? 0.0 : 1.0 + below(kind == 4 ? 1 : 100);
    }

    static vtkAbstractArray* empty(int kind)
    {
        if (kind == 2) {
            return vtkSOADataArrayTemplate<double>::New();
        }
        const int types[] = {VTK_CHAR, VTK_BIT, VTK_INT, VTK_STRING, VTK_FLOAT, VTK_VARIANT};
        return vtkAbstractArray::CreateArray(kind < 2 ? VTK_DOUBLE : types[kind - 3]);
    }

    static constexpr int kinds = 9;
    std::mt19937 m_generator;
    int m_gapsIn100 = 0;
    int m_gapEnd = 0; ///< behind the last row that may have any
};

TEST(InvalidPointsFilterTest, GivesRandomTablesAsDefinedAndLeavesOthersAlone)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        RandomTables tables(seed);
        std::vector<boost::shared_ptr<Variable>> named;
        std::vector<Handle> choices = {
            Handle(), Handle(variable("0"))}; // nothing, and what has died
        for (const char* name : {"0", "1", "2", "5", "absent"}) {
            named.push_back(variable(name));
            choices.emplace_back(named.back());
        }
        const auto first = property(named[0]);
        const auto second = property(Handle());
        const Variables variables = {second, first};
        const auto filter = InvalidPointsFilter::New(variables);
        std::vector<std::pair<vtkSmartPointer<vtkTable>, std::vector<std::string>>> heldAndWere;

        for (int execution = 0; execution < 6; ++execution) {
            const vtkSmartPointer<vtkTable> in = tables.next();
            const std::vector<std::string> before = content(*in);
            second->setValue(choices[static_cast<std::size_t>(tables.below(7))]);
            filter->SetInputData(in);
            filter->Update();

            vtkTable& out = *filter->GetOutput();
            ASSERT_EQ(content(out), content(*in, passingRows(*in, variables)));
            ASSERT_EQ(content(*in), before);
            if (tables.below(2) == 0) {
                auto held = vtkSmartPointer<vtkTable>::New();
                held->ShallowCopy(&out);
                heldAndWere.emplace_back(held, content(out));
            }
        }
        for (const auto& [held, was] : heldAndWere) {
            EXPECT_EQ(content(*held), was);
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
        std::iota(ids.begin(), ids.end(), 1);
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
    enum Held
    {
        Nothing,
        Column,
        Memory
    };

    for (const Held what : {Nothing, Column, Memory}) {
        SCOPED_TRACE(what);
        (void)casesOf({nan, 1, 2, 3});
        vtkTable& output = *m_filter->GetOutput();
        const vtkSmartPointer<vtkAbstractArray> held =
            what == Column ? output.GetColumn(1) : nullptr;
        vtkNew<vtkDoubleArray> copy;
        if (what == Memory) {
            copy->ShallowCopy(vtkDataArray::SafeDownCast(output.GetColumn(1)));
        }
        const void* memory = output.GetColumn(1)->GetVoidPointer(0);
        const vtkMTimeType time = output.GetColumn(1)->GetMTime();

        (void)casesOf({nan, 1, nan, 3});

        EXPECT_EQ(output.GetColumn(1)->GetVoidPointer(0) == memory, what == Nothing);
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
