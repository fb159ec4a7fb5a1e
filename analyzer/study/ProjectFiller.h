#pragma once

#include <analyzer/study/StudyLocation.h>
#include <analyzer/study/headerColumns.h>

#include <cstddef>
#include <string>

class Project;

namespace analyzer {

class ColumnBuilder;
class ReadProgress;
class TableBuilder;
struct StudyReport;

/// Turns the columns of a table into the variables, files and tags of a project.
class ProjectFiller
{
public:
    /// Counts and notes go to \p report. All references outlive the filler. \p threads, at least 1, may work.
    ProjectFiller(
        const StudyLocation& location,
        ReadProgress& progress,
        StudyReport& report,
        std::size_t threads);

    /// Fills \p project, a new one, and empties the columns of \p table. Advances the progress by \p work.
    /// \throws ReadCancelled
    void fill(Project& project, TableBuilder& table, std::size_t work);

private:
    void countMissing(const Project& project);
    void addImages(Project& project, const HeaderColumn& column, const ColumnBuilder& paths);
    [[nodiscard]] bool holdsImages(const HeaderColumn& column, const ColumnBuilder& paths) const;
    void noteTexts(const HeaderColumn& column, const ColumnBuilder& values);
    void noteValueLikeHeader(const TableBuilder& table);

    const StudyLocation& m_location;
    ReadProgress& m_progress;
    StudyReport& m_report;
    std::size_t m_threads;
    std::size_t m_rows = 0;
    std::size_t m_listedImages = 0;
};

} // namespace analyzer
