#pragma once

#include <analyzer/filters/ListedFilter.h>

#include <dataviews/platform/signals/Signal.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>
#include <dataviews/platform/undo/DeleteSignaler.h>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class DataPipelineManager;

namespace analyzer {

/// The filters of a window, in order, with undo: what the panel shows and a session saves.
///
/// Stands over a pipeline that gets filters from here alone. A filter whose variable or tag is gone leaves the list, as
/// it leaves the pipeline; undo and redo of what was done to it then do nothing. Used on the GUI thread.
class FilterList
{
public:
    using FilterPtr = boost::shared_ptr<ListedFilter>;

    /// Empty. \p pipeline, which has no filters, outlives the list.
    explicit FilterList(DataPipelineManager& pipeline);
    FilterList(const FilterList&) = delete;
    FilterList& operator=(const FilterList&) = delete;

    /// The filters stay in the pipeline; what the history holds of them does nothing any more.
    ~FilterList();

    /// Adds a filter by range on the variable called \p variable behind the others, as one undo step.
    /// \throws ExceptionBase with a sentence, and nothing has changed, if there is no such variable, it holds texts or
    /// has a range filter, or RangeFilter refuses \p range.
    FilterPtr addRangeFilter(const std::string& variable, const ListedFilter::Range& range);

    /// Adds a filter that keeps the cases whose value is among \p values, as one undo step; without \p values, those
    /// with any value or none.
    /// \throws ExceptionBase with a sentence if there is no such variable or filterValues() refuses it.
    FilterPtr addValuesFilter(
        const std::string& variable, const std::optional<ListedFilter::Values>& values = {});

    /// Adds a filter that keeps the cases that carry \p tag, as one undo step.
    /// \throws ExceptionBase with a sentence if there is no such tag.
    FilterPtr addTagFilter(const std::string& tag);

    /// Removes \p filter as one undo step; nothing for one that is not in the list.
    void remove(const FilterPtr& filter);

    /// In order, those that are switched off too.
    [[nodiscard]] std::vector<FilterPtr> filters() const;

    /// For counts, and to make several changes together.
    [[nodiscard]] DataPipelineManager& pipeline() const { return m_pipeline; }

    /// A filter came or went. Raised before the pipeline tells its listeners.
    Signal<void(), FilterList> signalListChanged;

    /// A property of a filter in the list changed. Raised after the pipeline has told its listeners.
    Signal<void(const FilterPtr&), FilterList> signalFilterChanged;

private:
    struct Entry
    {
        FilterPtr filter;
        std::unique_ptr<SignalConnectionCollection> connections;
    };

    [[nodiscard]] WeakPtr<Variable> knownVariable(const std::string& name) const;
    [[nodiscard]] bool hasRangeFilter(const WeakPtr<Variable>& variable) const;
    FilterPtr add(const FilterPtr& filter);

    /// Does nothing where \p filter does not fit any more.
    void insert(const FilterPtr& filter, std::size_t place);

    /// Does nothing for a filter that is not there. \p filter is not the entry's own pointer.
    void takeOut(const FilterPtr& filter);
    [[nodiscard]] std::vector<Entry>::iterator find(const FilterPtr& filter);

    /// Forgets what the pipeline has removed by itself.
    void followPipeline();

    DataPipelineManager& m_pipeline;
    std::vector<Entry> m_entries;
    SignalConnectionCollection m_connections;
    DeleteSignaler m_deleteSignaler;
};

} // namespace analyzer
