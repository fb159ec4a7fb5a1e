#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/FilterInterface.h>
#include <dataviews/platform/pipeline/FilteredTableSource.h>
#include <dataviews/platform/pipeline/boundVariable.h>
#include <dataviews/platform/pipeline/getFilterType.h>
#include <dataviews/platform/property/ExceptionBase.h>

#include <QtGlobal>

#include <algorithm>
#include <utility>

namespace {

bool isRangeFilter(const boost::shared_ptr<FilterInterface>& filter)
{
    const FilterFactoryInterface::FilterType type = getFilterType(filter);
    return type == FilterFactoryInterface::Range || type == FilterFactoryInterface::InvertedRange;
}

/// Whether what \p filter is bound to is in \p project.
bool isBound(const FilterInterface& filter, const Project& project)
{
    const WeakPtr<Variable> variable = filter.variable();
    return variable.isNull() ? project.hasTag(filter.tag())
                             : boundVariable(project, variable) != nullptr;
}

} // namespace

struct DataPipelineManager::Entry
{
    boost::shared_ptr<FilterInterface> filter;
    bool inForce = false; ///< as of the last notification of the filter
    SignalConnectionCollection connections;
};

DataPipelineManager::DataPipelineManager(Project& project)
    : m_project(project)
{
    m_output->setContent([this] {
        return FilteredTableSource::Content{m_project.table(), passingRows()};
    });
    m_connections.add(project.signalProjectChanged.connect(
        [this](const ProjectChange& change) { updateAfterProjectChange(change); }));
}

DataPipelineManager::~DataPipelineManager()
{
    m_output->setContent({});
}

void DataPipelineManager::addFilter(const boost::shared_ptr<FilterInterface>& filter)
{
    insertFilter(filter, m_entries.size());
}

void DataPipelineManager::insertFilter(
    const boost::shared_ptr<FilterInterface>& filter, std::size_t place)
{
    Q_ASSERT_X(filter != nullptr, "DataPipelineManager::insertFilter", "there is no filter");
    const WeakPtr<Variable> variable = filter->variable();
    if (!isBound(*filter, m_project)) {
        throw ExceptionBase(
            variable.isNull() ? "There is no tag \"" + filter->tag() + "\" to filter by."
                              : "The variable of the filter is not in the open study.");
    }
    const bool isRange = isRangeFilter(filter);
    for (const std::unique_ptr<Entry>& entry : m_entries) {
        if (entry->filter == filter) {
            throw ExceptionBase("The filter is in the pipeline already and cannot be added again.");
        }
        if (isRange && isRangeFilter(entry->filter) && entry->filter->variable() == variable) {
            throw ExceptionBase(
                "Variable \"" + variable.lock()->name()
                + "\" has a range filter already; change that one instead.");
        }
    }
    auto entry = std::make_unique<Entry>();
    entry->filter = filter;
    entry->inForce = filter->isEnabled();
    // By reference: a slot that held the filter, which holds the slot, would keep both for ever.
    entry->connections.add(filter->signalFilterChanged.connect(
        [this, &changed = *filter] { updateAfterFilterChange(changed); }));
    m_entries.insert(
        m_entries.begin() + static_cast<std::ptrdiff_t>(std::min(place, m_entries.size())),
        std::move(entry));
    if (filter->isEnabled()) {
        invalidate();
    }
    notify();
}

void DataPipelineManager::removeFilter(const boost::shared_ptr<FilterInterface>& filter)
{
    const auto place = std::find_if(
        m_entries.begin(), m_entries.end(), [&filter](const std::unique_ptr<Entry>& entry) {
            return entry->filter == filter;
        });
    if (place == m_entries.end()) {
        return;
    }
    // Kept until the end: the argument may be the entry's own pointer.
    const std::unique_ptr<Entry> removed = std::move(*place);
    m_entries.erase(place);
    if (removed->inForce) {
        invalidate();
    }
    notify();
}

std::vector<boost::shared_ptr<FilterInterface>> DataPipelineManager::filters() const
{
    std::vector<boost::shared_ptr<FilterInterface>> result;
    result.reserve(m_entries.size());
    for (const std::unique_ptr<Entry>& entry : m_entries) {
        result.push_back(entry->filter);
    }
    return result;
}

void DataPipelineManager::changeTogether(const std::function<void()>& changes)
{
    const auto finish = [this] {
        --m_changeDepth;
        if (m_changeDepth == 0 && std::exchange(m_notificationPending, false)) {
            emitPipelineChanged();
        }
    };
    ++m_changeDepth;
    try {
        changes();
    } catch (...) {
        finish();
        throw;
    }
    finish();
}

const RowBitmap& DataPipelineManager::passingRows() const
{
    return passing().rows;
}

std::size_t DataPipelineManager::passingCount() const
{
    return passing().count;
}

boost::shared_ptr<FilterInterface> DataPipelineManager::filter(
    const WeakPtr<Variable>& variable) const
{
    boost::shared_ptr<FilterInterface> first;
    if (variable.isNull()) {
        return first;
    }
    for (const std::unique_ptr<Entry>& entry : m_entries) {
        if (entry->filter->variable() != variable) {
            continue;
        }
        if (isRangeFilter(entry->filter)) {
            return entry->filter;
        }
        if (!first) {
            first = entry->filter;
        }
    }
    return first;
}

std::vector<boost::shared_ptr<FilterInterface>> DataPipelineManager::filtersInForce() const
{
    std::vector<boost::shared_ptr<FilterInterface>> result = filters();
    result.erase(
        std::remove_if(
            result.begin(),
            result.end(),
            [](const boost::shared_ptr<FilterInterface>& filter) { return !filter->isEnabled(); }),
        result.end());
    return result;
}

vtkTableAlgorithm& DataPipelineManager::output() const
{
    return *m_output;
}

const DataPipelineManager::Passing& DataPipelineManager::passing() const
{
    if (!m_passing) {
        RowBitmap rows = computePassingRows();
        const std::size_t count = rows.count();
        m_passing = Passing{std::move(rows), count};
    }
    return *m_passing;
}

RowBitmap DataPipelineManager::computePassingRows() const
{
    RowBitmap rows(m_project.caseCount(), true);
    for (const std::unique_ptr<Entry>& entry : m_entries) {
        if (entry->filter->isEnabled()) {
            entry->filter->apply(m_project, rows);
        }
    }
    return rows;
}

bool DataPipelineManager::isTagFilterInForce() const
{
    return std::any_of(m_entries.begin(), m_entries.end(), [](const std::unique_ptr<Entry>& entry) {
        return entry->inForce && entry->filter->variable().isNull();
    });
}

void DataPipelineManager::updateAfterFilterChange(const FilterInterface& filter)
{
    const auto place = std::find_if(
        m_entries.begin(), m_entries.end(), [&filter](const std::unique_ptr<Entry>& entry) {
            return entry->filter.get() == &filter;
        });
    const bool wasInForce = std::exchange((*place)->inForce, filter.isEnabled());
    if (wasInForce || filter.isEnabled()) {
        invalidate();
        notify();
    }
}

void DataPipelineManager::updateAfterProjectChange(const ProjectChange& change)
{
    const auto firstUnbound = std::stable_partition(
        m_entries.begin(), m_entries.end(), [this](const std::unique_ptr<Entry>& entry) {
            return isBound(*entry->filter, m_project);
        });
    const bool filtersRemoved = firstUnbound != m_entries.end();
    bool rowsChanged = change.studyReplaced
        || std::any_of(firstUnbound, m_entries.end(), [](const std::unique_ptr<Entry>& entry) {
                           return entry->inForce;
                       });
    m_entries.erase(firstUnbound, m_entries.end());
    if (!rowsChanged && isTagFilterInForce()) {
        // The project does not say which cases got or lost which tag. Comparing rows costs far less
        // than making all views draw the same again.
        rowsChanged = !m_passing || computePassingRows() != m_passing->rows;
    }
    if (rowsChanged) {
        invalidate();
    }
    if (rowsChanged || filtersRemoved) {
        notify();
    }
}

void DataPipelineManager::invalidate()
{
    m_passing.reset();
    m_output->Modified();
}

void DataPipelineManager::notify()
{
    if (m_changeDepth > 0) {
        m_notificationPending = true;
        return;
    }
    emitPipelineChanged();
}
