#pragma once

#include <dataviews/platform/data/Project.h>

#include <vtkDoubleArray.h>
#include <vtkNew.h>
#include <vtkStringArray.h>

#include <string>
#include <vector>

/// Fills the open project with a study for a test and empties it again at the end.
class SmallStudy
{
public:
    explicit SmallStudy(std::size_t caseCount) { m_study.setCaseCount(caseCount); }

    SmallStudy(const SmallStudy&) = delete;
    SmallStudy& operator=(const SmallStudy&) = delete;

    ~SmallStudy()
    {
        Project nothing;
        Project::project().replaceStudy(nothing);
    }

    SmallStudy& add(
        const std::string& name,
        const std::vector<double>& values,
        Variable::Nature nature = Variable::Output)
    {
        vtkNew<vtkDoubleArray> column;
        column->SetName(name.c_str());
        for (const double value : values) {
            column->InsertNextValue(value);
        }
        m_study.addVariable(column.Get(), nature);
        return *this;
    }

    SmallStudy& add(const std::string& name, const std::vector<std::string>& texts)
    {
        vtkNew<vtkStringArray> column;
        column->SetName(name.c_str());
        for (const std::string& text : texts) {
            column->InsertNextValue(text);
        }
        m_study.addVariable(column.Get(), Variable::Output);
        return *this;
    }

    /// Makes it the open project's.
    void open() { Project::project().replaceStudy(m_study); }

private:
    Project m_study;
};
