#pragma once

#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <vtkDataArray.h>
#include <vtkSmartPointer.h>
#include <vtkTable.h>

#include <boost/shared_ptr.hpp>

#include <string>
#include <utility>

/// The variable that colors the points of a plot.
///
/// Points are colored only while the plot's input table has a numeric column of the variable's name; otherwise, and
/// for a handle without a variable, they have the plot's plain color. \p Plot is vtkPlotPoints or one like it.
template <class Plot>
class ColorVariableProperty : public corvane::PropertyAbstract<WeakPtr<Variable>>
{
public:
    /// Starts without a variable, in the plain color.
    explicit ColorVariableProperty(vtkSmartPointer<Plot> plot)
        : m_plot(std::move(plot))
    {
        m_plot->ScalarVisibilityOff();
    }

    /// Looks for the column again. To be called after the plot's input table changed and before it is drawn: VTK
    /// does not survive drawing with a color column that is gone or holds texts.
    void updateColors() { color(m_variable); }

protected:
    void storeValue(const WeakPtr<Variable>& variable) override
    {
        color(variable);
        m_variable = variable;
    }

    [[nodiscard]] WeakPtr<Variable> storedValue() const override { return m_variable; }

private:
    void color(const WeakPtr<Variable>& variable)
    {
        if (const boost::shared_ptr<Variable> locked = variable.lock()) {
            assignColorArray(locked->name());
        } else {
            m_plot->ScalarVisibilityOff();
        }
    }

    void assignColorArray(const std::string& arrayName)
    {
        vtkTable* table = m_plot->GetInput();
        if (table == nullptr
            || vtkDataArray::SafeDownCast(table->GetColumnByName(arrayName.c_str())) == nullptr) {
            m_plot->ScalarVisibilityOff();
            return;
        }
        m_plot->SelectColorArray(arrayName);
        m_plot->ScalarVisibilityOn();
    }

    vtkSmartPointer<Plot> m_plot;
    WeakPtr<Variable> m_variable;
};
