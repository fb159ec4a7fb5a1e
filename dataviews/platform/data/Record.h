#pragma once

#include <dataviews/platform/data/PlatformDataExport.h>
#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/data/WeakPtr.h>

#include <cstddef>
#include <string>
#include <vector>

class AuxFile;
class Project;
class Variable;

/// One case of a project: a small value, no more than the project and a row.
///
/// Valid as long as the project lives and keeps its study.
class DATAVIEWS_PLATFORM_DATA_EXPORT Record
{
public:
    /// \p row must be a row of \p project.
    Record(const Project& project, std::size_t row);

    [[nodiscard]] std::size_t row() const { return m_row; }

    [[nodiscard]] unsigned long long caseID() const;

    /// Empty where the value is missing.
    [[nodiscard]] Variant value(const Variable& variable) const;

    /// Empty also for a handle without a variable.
    [[nodiscard]] Variant value(const WeakPtr<Variable>& variable) const;

    /// In the order in which the reader found them.
    [[nodiscard]] std::vector<WeakPtr<AuxFile>> auxFiles() const;

    /// The tags of the case, sorted.
    [[nodiscard]] std::vector<std::string> tags() const;

private:
    const Project* m_project;
    std::size_t m_row;
};
