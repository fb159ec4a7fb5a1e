#include "pipelineTestSupport.h"

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/pipeline/TagFilter.h>
#include <dataviews/platform/pipeline/ValueSetFilter.h>

#include <vtkCommand.h>
#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

#include <rapidcheck.h>

using namespace pipelineTest;

// The typed passes over columns against the definition of each filter, case by case over records and variants.

namespace {

using Filters = std::vector<boost::shared_ptr<FilterAbstract>>;

bool passes(const FilterAbstract& filter, const Record& record)
{
    if (!filter.tag().empty()) {
        const std::vector<std::string> tags = record.tags();
        const bool tagged = std::find(tags.begin(), tags.end(), filter.tag()) != tags.end();
        return tagged != filter.isInverted();
    }
    const Variant value = record.value(filter.variable());
    if (const auto* set = dynamic_cast<const ValueSetFilter*>(&filter)) {
        return (set->values().count(value) != 0) != filter.isInverted();
    }
    const ValueRange_s<double> range = dynamic_cast<const RangeFilter&>(filter).range();
    const bool inside = value >= Variant(range.min) && value <= Variant(range.max);
    return !value.isEmpty() && inside != filter.isInverted();
}

std::vector<std::size_t> rowsByDefinition(const Project& project, const Filters& filters)
{
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < project.caseCount(); ++row) {
        const Record record(project, row);
        if (std::all_of(filters.begin(), filters.end(), [&record](const auto& filter) {
                return !filter->isEnabled() || passes(*filter, record);
            })) {
            rows.push_back(row);
        }
    }
    return rows;
}

rc::Gen<double> numbers()
{
    return rc::gen::element(
        -infinity, -2.0, -0.0, 0.0, 0.5, 1.0, 2.0, 9007199254740992.0, infinity);
}

rc::Gen<std::string> texts()
{
    return rc::gen::element<std::string>("a", "b", "aa", "longer than a short text is", "1");
}

template <class Value>
std::vector<Value> column(std::size_t rowCount, const rc::Gen<Value>& values, const Value& gap)
{
    return *rc::gen::container<std::vector<Value>>(
        rowCount, rc::gen::weightedOneOf<Value>({{4, values}, {1, rc::gen::just(gap)}}));
}

RowBitmap randomRows(std::size_t rowCount)
{
    RowBitmap rows(rowCount);
    const auto bits = *rc::gen::container<std::vector<bool>>(rowCount, rc::gen::arbitrary<bool>());
    for (std::size_t row = 0; row < rowCount; ++row) {
        rows.set(row, bits[row]);
    }
    return rows;
}

ValueRange_s<double> randomRange()
{
    const double one = *numbers();
    const double other = *numbers();
    return {std::min(one, other), std::max(one, other)};
}

std::set<Variant> randomValues()
{
    const auto value = rc::gen::oneOf(
        rc::gen::just(Variant()),
        rc::gen::map(numbers(), [](double number) { return Variant(number); }),
        rc::gen::map(texts(), [](const std::string& text) { return Variant(text); }),
        rc::gen::element(
            Variant(1), Variant(2), Variant(9007199254740993), Variant(missing), Variant("")));
    const auto values = *rc::gen::container<std::vector<Variant>>(value);
    return {values.begin(), values.end()};
}

const std::vector<std::string> tagNames = {"first", "second"};

void fill(Project& project, std::size_t rowCount)
{
    const auto ids = vtkSmartPointer<vtkIntArray>::New();
    for (std::size_t row = 0; row < rowCount; ++row) {
        ids->InsertNextValue(static_cast<int>(row % 2 == 0 ? row / 2 : row + 1000) - 2);
    }
    project.setCaseIDs(ids);
    addNumbers(project, "x", column(rowCount, numbers(), missing));
    addNumbers(project, "whole", column(rowCount, rc::gen::element(0.0, 1.0, 2.0), missing));
    addTexts(project, "text", column(rowCount, texts(), std::string()));
    project.addTagGroup("Tags");
    for (const std::string& tag : tagNames) {
        project.addTag("Tags", tag);
        project.tagCases(tag, randomRows(rowCount), true);
    }
}

/// Some of the filters that one pipeline can hold.
Filters randomFilters(const Project& project)
{
    Filters filters;
    const auto wanted = [] { return *rc::gen::arbitrary<bool>(); };
    for (const char* name : {"Case ID", "x", "whole", "text"}) {
        const WeakPtr<Variable> variable = project.variable(name);
        if (variable.lock()->isNumeric() && wanted()) {
            filters.push_back(boost::make_shared<RangeFilter>(variable, randomRange(), wanted()));
        }
        if (wanted()) {
            filters.push_back(
                boost::make_shared<ValueSetFilter>(variable, randomValues(), wanted()));
        }
    }
    for (const std::string& tag : tagNames) {
        if (wanted()) {
            filters.push_back(boost::make_shared<TagFilter>(tag, wanted()));
        }
    }
    for (const boost::shared_ptr<FilterAbstract>& filter : filters) {
        filter->setEnabled(wanted());
    }
    return filters;
}

/// Makes one random change and says whether it concerns a filter in force.
bool changeFilter(FilterAbstract& filter)
{
    const bool wasEnabled = filter.isEnabled();
    switch (*rc::gen::inRange(0, 3)) {
    case 0:
        filter.setEnabled(!wasEnabled);
        return true;
    case 1:
        filter.setInverted(!filter.isInverted());
        return wasEnabled;
    default:
        break;
    }
    if (auto* range = dynamic_cast<RangeFilter*>(&filter)) {
        const ValueRange_s<double> before = range->range();
        range->setRange(randomRange());
        return wasEnabled && range->range() != before;
    }
    if (auto* set = dynamic_cast<ValueSetFilter*>(&filter)) {
        const std::set<Variant> before = set->values();
        set->setValues(randomValues());
        return wasEnabled && set->values() != before;
    }
    return false;
}

void expectDefinition(
    const DataPipelineManager& manager, const Project& project, const Filters& filters)
{
    const std::vector<std::size_t> expected = rowsByDefinition(project, filters);
    RC_ASSERT(rowsOf(manager.passingRows()) == expected);
    RC_ASSERT(manager.passingCount() == expected.size());
    vtkTable& from = project.table();
    vtkTable& to = *manager.output().GetOutput();
    RC_ASSERT(to.GetNumberOfColumns() == from.GetNumberOfColumns());
    RC_ASSERT(to.GetNumberOfRows() == static_cast<vtkIdType>(expected.size()));
    for (vtkIdType index = 0; index < from.GetNumberOfColumns(); ++index) {
        RC_ASSERT(std::string(to.GetColumnName(index)) == from.GetColumnName(index));
        const Variable before(from.GetColumn(index), Variable::Output);
        const Variable after(to.GetColumn(index), Variable::Output);
        for (std::size_t row = 0; row < expected.size(); ++row) {
            RC_ASSERT(after.value(row) == before.value(expected[row]));
        }
    }
}

TEST(DataPipelineManagerPropertyTest, GivesTheCasesThatPassByDefinitionAndExecutesOncePerChange)
{
    const bool holds = rc::check("rows, table, executions and signals", [] {
        Project project;
        const std::size_t rowCount = *rc::gen::inRange<std::size_t>(0, 200);
        fill(project, rowCount);
        DataPipelineManager manager(project);
        int signalCount = 0;
        int executions = 0;
        manager.signalPipelineChanged.connect([&signalCount] { ++signalCount; });
        struct Counter
        {
            int& count;
            void add() { ++count; }
        } counter{executions};
        const unsigned long observer =
            manager.output().AddObserver(vtkCommand::EndEvent, &counter, &Counter::add);
        Filters filters = randomFilters(project);
        manager.changeTogether([&] {
            for (const boost::shared_ptr<FilterAbstract>& filter : filters) {
                manager.addFilter(filter);
            }
        });
        manager.output().Update();
        RC_ASSERT(signalCount == (filters.empty() ? 0 : 1));
        RC_ASSERT(executions == 1);
        expectDefinition(manager, project, filters);

        const int steps = *rc::gen::inRange(0, 6);
        for (int step = 0; step < steps; ++step) {
            signalCount = 0;
            executions = 0;
            const std::size_t choice = *rc::gen::inRange<std::size_t>(0, filters.size() + 1);
            bool expected = false;
            if (choice < filters.size()) {
                expected = changeFilter(*filters[choice]);
            } else {
                const std::vector<std::size_t> before = rowsByDefinition(project, filters);
                const std::string tag = *rc::gen::elementOf(tagNames);
                project.tagCases(tag, randomRows(rowCount), *rc::gen::arbitrary<bool>());
                expected = rowsByDefinition(project, filters) != before;
            }
            manager.output().Update();
            manager.output().Update();
            RC_ASSERT(signalCount == (expected ? 1 : 0));
            RC_ASSERT(executions == (expected ? 1 : 0));
            expectDefinition(manager, project, filters);
        }
        manager.output().RemoveObserver(observer);
    });

    EXPECT_TRUE(holds);
}

} // namespace
