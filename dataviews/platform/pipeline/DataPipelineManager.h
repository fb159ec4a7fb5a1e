#pragma once

#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/pipeline/DataPipelineManagerInterface.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <vtkNew.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class FilteredTableSource;
class Project;
struct ProjectChange;

/// Puts a project's cases through filters.
///
/// Owns the filters it is given and follows them and the project: a filter whose variable or tag is gone
/// is removed. The passing rows and the output table are worked out once after a change, when somebody
/// asks. Everything happens on the GUI thread, the execution of the output included.
class DATAVIEWS_PLATFORM_PIPELINE_EXPORT DataPipelineManager : public DataPipelineManagerInterface
{
public:
    /// Without filters. \p project outlives the manager and is usually Project::project().
    explicit DataPipelineManager(Project& project);

    DataPipelineManager(const DataPipelineManager&) = delete;
    DataPipelineManager& operator=(const DataPipelineManager&) = delete;

    /// Whoever still holds the output keeps its last table.
    ~DataPipelineManager() override;

    /// Adds \p filter, which is not empty, behind the others.
    /// \throws ExceptionBase, with everything as it was, if it is there already, if its variable or tag
    /// is not in the project, or if it is a range filter and its variable has one, inverted or not.
    void addFilter(const boost::shared_ptr<FilterInterface>& filter);

    /// The same, but in front of the filter at \p place, counted from 0, or behind all for a place beyond the last.
    void insertFilter(const boost::shared_ptr<FilterInterface>& filter, std::size_t place);

    /// Does nothing for a filter that is not there.
    void removeFilter(const boost::shared_ptr<FilterInterface>& filter);

    /// All filters in order, those that are not enabled too.
    [[nodiscard]] std::vector<boost::shared_ptr<FilterInterface>> filters() const;

    /// Runs \p changes, which may add, remove and change any number of filters, and notifies once at the
    /// end, also when \p changes throws, and not at all if nothing changed. Calls may be nested: the
    /// outermost one notifies. Passing rows and output are up to date at any time within.
    void changeTogether(const std::function<void()>& changes);

    /// The project whose cases are filtered.
    [[nodiscard]] Project& project() const { return m_project; }

    /// The rows of the cases that pass all filters in force; valid until the next change.
    [[nodiscard]] const RowBitmap& passingRows() const;

    [[nodiscard]] std::size_t passingCount() const;

    [[nodiscard]] boost::shared_ptr<FilterInterface> filter(
        const WeakPtr<Variable>& variable) const override;
    [[nodiscard]] std::vector<boost::shared_ptr<FilterInterface>> filtersInForce() const override;
    [[nodiscard]] vtkTableAlgorithm& output() const override;

private:
    struct Entry;

    struct Passing
    {
        RowBitmap rows;
        std::size_t count;
    };

    [[nodiscard]] const Passing& passing() const;
    [[nodiscard]] RowBitmap computePassingRows() const;
    [[nodiscard]] bool isTagFilterInForce() const;
    void updateAfterFilterChange(const FilterInterface& filter);
    void updateAfterProjectChange(const ProjectChange& change);
    void invalidate();
    void notify();

    Project& m_project;
    std::vector<std::unique_ptr<Entry>> m_entries;
    vtkNew<FilteredTableSource> m_output;
    mutable std::optional<Passing> m_passing;
    std::size_t m_changeDepth = 0;
    bool m_notificationPending = false;
    SignalConnectionCollection m_connections;
};
