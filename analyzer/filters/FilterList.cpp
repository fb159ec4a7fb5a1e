#include <analyzer/filters/FilterList.h>
#include <analyzer/filters/filterValues.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/pipeline/TagFilter.h>
#include <dataviews/platform/pipeline/ValueSetFilter.h>
#include <dataviews/platform/pipeline/boundVariable.h>
#include <dataviews/platform/property/ExceptionBase.h>
#include <dataviews/platform/undo/GenericUndoCommand.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QString>
#include <QtGlobal>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace analyzer {

namespace {

QString undoText(const char* text, const ListedFilter& filter)
{
    return QString(text).arg(QString::fromStdString(filter.name()));
}

} // namespace

FilterList::FilterList(DataPipelineManager& pipeline)
    : m_pipeline(pipeline)
{
    Q_ASSERT_X(
        pipeline.filters().empty(), "FilterList", "the pipeline gets its filters from here alone");
    m_connections.add(pipeline.signalPipelineChanged.connect([this] { followPipeline(); }));
}

FilterList::~FilterList() = default;

FilterList::FilterPtr FilterList::addRangeFilter(
    const std::string& variable, const ListedFilter::Range& range)
{
    const WeakPtr<Variable> handle = knownVariable(variable);
    if (hasRangeFilter(handle)) {
        throw ExceptionBase("There is a range filter on \"" + variable + "\" already.");
    }
    return add(boost::make_shared<ListedFilter>(boost::make_shared<RangeFilter>(handle, range)));
}

FilterList::FilterPtr FilterList::addValuesFilter(
    const std::string& variable, const std::optional<ListedFilter::Values>& values)
{
    const WeakPtr<Variable> handle = knownVariable(variable);
    std::vector<Variant> choices = filterValues(*handle.lock());
    ListedFilter::Values chosen =
        values ? *values : ListedFilter::Values(choices.begin(), choices.end());
    return add(boost::make_shared<ListedFilter>(
        boost::make_shared<ValueSetFilter>(handle, std::move(chosen)), std::move(choices)));
}

FilterList::FilterPtr FilterList::addTagFilter(const std::string& tag)
{
    if (!m_pipeline.project().hasTag(tag)) {
        throw ExceptionBase("The study has no tag \"" + tag + "\".");
    }
    return add(boost::make_shared<ListedFilter>(boost::make_shared<TagFilter>(tag)));
}

void FilterList::remove(const FilterPtr& filter)
{
    const auto place = find(filter);
    if (place == m_entries.end()) {
        return;
    }
    UndoStack::push(std::make_unique<GenericUndoCommand>(
        [this, kept = filter] { takeOut(kept); },
        [this, kept = filter, index = static_cast<std::size_t>(place - m_entries.begin())] {
            insert(kept, index);
        },
        m_deleteSignaler,
        undoText("Remove Filter on %1", *filter)));
}

std::vector<FilterList::FilterPtr> FilterList::filters() const
{
    std::vector<FilterPtr> result;
    result.reserve(m_entries.size());
    for (const Entry& entry : m_entries) {
        result.push_back(entry.filter);
    }
    return result;
}

WeakPtr<Variable> FilterList::knownVariable(const std::string& name) const
{
    WeakPtr<Variable> handle = m_pipeline.project().variable(name);
    if (handle.expired()) {
        throw ExceptionBase("The study has no variable \"" + name + "\".");
    }
    return handle;
}

bool FilterList::hasRangeFilter(const WeakPtr<Variable>& variable) const
{
    return std::any_of(m_entries.begin(), m_entries.end(), [&variable](const Entry& entry) {
        return entry.filter->kind() == ListedFilter::Kind::Range
            && entry.filter->variable() == variable;
    });
}

FilterList::FilterPtr FilterList::add(const FilterPtr& filter)
{
    UndoStack::push(std::make_unique<GenericUndoCommand>(
        [this, filter, place = m_entries.size()] { insert(filter, place); },
        [this, filter] { takeOut(filter); },
        m_deleteSignaler,
        undoText("Add Filter on %1", *filter)));
    return filter;
}

void FilterList::insert(const FilterPtr& filter, std::size_t place)
{
    // Between doing and redoing another study may have come, or filters that no undo step knows of.
    const Project& project = m_pipeline.project();
    const bool bound = filter->kind() == ListedFilter::Kind::Tag
        ? project.hasTag(filter->name())
        : boundVariable(project, filter->variable()) != nullptr;
    const bool taken =
        filter->kind() == ListedFilter::Kind::Range && hasRangeFilter(filter->variable());
    if (!bound || taken || find(filter) != m_entries.end()) {
        return;
    }
    place = std::min(place, m_entries.size());
    Entry entry{filter, std::make_unique<SignalConnectionCollection>()};
    entry.connections->add(filter->signalChanged.connect([this, raw = filter.get()] {
        for (const Entry& listed : m_entries) {
            if (listed.filter.get() == raw) {
                const FilterPtr changed = listed.filter;
                signalFilterChanged(changed);
                return;
            }
        }
    }));
    m_pipeline.changeTogether([&] {
        m_pipeline.insertFilter(filter->filter(), place);
        m_entries.insert(m_entries.begin() + static_cast<std::ptrdiff_t>(place), std::move(entry));
        signalListChanged();
    });
}

void FilterList::takeOut(const FilterPtr& filter)
{
    const auto place = find(filter);
    if (place == m_entries.end()) {
        return;
    }
    m_pipeline.changeTogether([&] {
        m_entries.erase(place);
        m_pipeline.removeFilter(filter->filter());
        signalListChanged();
    });
}

std::vector<FilterList::Entry>::iterator FilterList::find(const FilterPtr& filter)
{
    return std::find_if(m_entries.begin(), m_entries.end(), [&filter](const Entry& entry) {
        return entry.filter == filter;
    });
}

void FilterList::followPipeline()
{
    const std::vector<boost::shared_ptr<FilterInterface>> present = m_pipeline.filters();
    if (present.size() == m_entries.size()) {
        return; // all are from here
    }
    m_entries.erase(
        std::remove_if(
            m_entries.begin(),
            m_entries.end(),
            [&present](const Entry& entry) {
                return std::find(present.begin(), present.end(), entry.filter->filter())
                    == present.end();
            }),
        m_entries.end());
    signalListChanged();
}

} // namespace analyzer
