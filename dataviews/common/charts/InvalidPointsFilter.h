#pragma once

#include <dataviews/common/charts/ChartsExport.h>
#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <vtkSmartPointer.h>
#include <vtkTableAlgorithm.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <string>
#include <vector>

class Variable;
class vtkDataArray;

/// Passes on the rows of a table that can be drawn: those where none of the variables on show is missing (NaN) and
/// that are not marked as invalid.
///
/// Only real columns (VTK_DOUBLE) are looked at; infinite values stay. Where there is nothing to look at, and where the
/// table lacks the column of a variable on show, the output shares the whole input, marked rows included. Of columns
/// with several components the first one counts. All columns of the input have as many rows as the table. Executes
/// again when a variable on show changes. Used on the GUI thread.
///
/// The output has the columns of the input. Where rows are left out, bit, char, int, double and string columns have the
/// first component of the rows that stay; other components and columns of other types are empty: zeros, empty texts,
/// invalid variants. Where none is left out it is the same, except that columns with nothing to empty are shared. What
/// others hold of an earlier output never changes under them.
class DATAVIEWS_CHARTS_EXPORT InvalidPointsFilter : public vtkTableAlgorithm
{
public:
    vtkAbstractTypeMacro(InvalidPointsFilter, vtkTableAlgorithm)

        using VariableHandle = WeakPtr<Variable, std::size_t>;
    using VariableProperty = corvane::PropertyAbstract<VariableHandle>;

    class RelevanceDependentVariableProperty;

    /// The column that marks rows as invalid with 0, if the input has it as a vtkCharArray: "ValidPointsMask".
    static const std::string validPointsArrayName;

    /// \p variables hold what is on show; none of them is null. Handles of nothing are skipped.
    static vtkSmartPointer<InvalidPointsFilter> New(
        const std::vector<boost::shared_ptr<const VariableProperty>>& variables);

    InvalidPointsFilter(const InvalidPointsFilter&) = delete;
    InvalidPointsFilter& operator=(const InvalidPointsFilter&) = delete;

protected:
    ~InvalidPointsFilter() override;

    int RequestData(
        vtkInformation* request,
        vtkInformationVector** inputs,
        vtkInformationVector* output) override;

private:
    explicit InvalidPointsFilter(
        const std::vector<boost::shared_ptr<const VariableProperty>>& variables);

    std::vector<boost::shared_ptr<const VariableProperty>> m_variables;
    SignalConnectionCollection m_connections;

    /// What holds the memory of each output column of the last execution, null where it is not the filter's own. Used
    /// again if no array uses it any more: fresh memory costs more than the copying.
    std::vector<vtkSmartPointer<vtkDataArray>> m_columnMemory;
};

/// A variable as long as it is relevant, and no variable while it is not: such as the color variable of a chart that
/// may color its points or not.
///
/// Cannot be set: setValue() changes nothing and tells nobody. Listeners are told when the answer changes, and not of
/// the changes of a variable that is not relevant.
class DATAVIEWS_CHARTS_EXPORT InvalidPointsFilter::RelevanceDependentVariableProperty
    : public corvane::PropertyAbstract<VariableHandle>
{
public:
    /// Neither may be null.
    RelevanceDependentVariableProperty(
        boost::shared_ptr<const VariableProperty> variable,
        boost::shared_ptr<const corvane::PropertyAbstract<bool>> relevance);

    RelevanceDependentVariableProperty(const RelevanceDependentVariableProperty&) = delete;
    RelevanceDependentVariableProperty& operator=(const RelevanceDependentVariableProperty&) =
        delete;
    ~RelevanceDependentVariableProperty() override;

protected:
    void storeValue(const VariableHandle& variable) override;
    [[nodiscard]] bool isEqual(const VariableHandle& variable) const override;
    [[nodiscard]] VariableHandle storedValue() const override;

private:
    boost::shared_ptr<const VariableProperty> m_variable;
    boost::shared_ptr<const corvane::PropertyAbstract<bool>> m_relevance;
    SignalConnectionCollection m_connections;
};
