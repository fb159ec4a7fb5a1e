#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/data/Record.h>
#include <dataviews/platform/data/Variable.h>

#include <QtGlobal>

Record::Record(const Project& project, std::size_t row)
    : m_project(&project)
    , m_row(row)
{
    Q_ASSERT_X(row < project.caseCount(), "Record::Record", "the project has no such row");
}

unsigned long long Record::caseID() const
{
    return m_project->caseID(m_row);
}

Variant Record::value(const Variable& variable) const
{
    return variable.value(m_row);
}

Variant Record::value(const WeakPtr<Variable>& variable) const
{
    const boost::shared_ptr<Variable> locked = variable.lock();
    return locked ? locked->value(m_row) : Variant();
}

std::vector<WeakPtr<AuxFile>> Record::auxFiles() const
{
    const std::vector<boost::shared_ptr<AuxFile>>& files = m_project->auxFiles(m_row);
    return {files.begin(), files.end()};
}

std::vector<std::string> Record::tags() const
{
    return m_project->caseTags(m_row);
}
