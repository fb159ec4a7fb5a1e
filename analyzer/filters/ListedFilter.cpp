#include <analyzer/filters/FilterProperty.h>
#include <analyzer/filters/ListedFilter.h>

#include <dataviews/platform/data/Variable.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/pipeline/TagFilter.h>
#include <dataviews/platform/pipeline/ValueSetFilter.h>

#include <utility>

namespace analyzer {

namespace {

constexpr int noGesture = -1;

std::string variableName(const FilterInterface& filter)
{
    return filter.variable().lock()->name();
}

} // namespace

ListedFilter::ListedFilter(
    Kind kind, std::string name, const boost::shared_ptr<FilterAbstract>& filter)
    : m_kind(kind)
    , m_name(std::move(name))
    , m_filter(filter)
    , m_undoId(boost::make_shared<int>(noGesture))
    , m_enabled(makeProperty<bool>(
          filter->isEnabled(),
          [filter](bool enabled) { filter->setEnabled(enabled); },
          "Switch Filter on %1"))
    , m_inverted(makeProperty<bool>(
          filter->isInverted(),
          [filter](bool inverted) { filter->setInverted(inverted); },
          "Invert Filter on %1"))
{}

ListedFilter::ListedFilter(const boost::shared_ptr<RangeFilter>& filter)
    : ListedFilter(Kind::Range, variableName(*filter), filter)
{
    m_range = makeProperty<Range>(
        filter->range(),
        [filter](const Range& range) { filter->setRange(range); },
        "Change Filter on %1",
        [filter](const Range& range) { RangeFilter(filter->variable(), range); });
}

ListedFilter::ListedFilter(
    const boost::shared_ptr<ValueSetFilter>& filter, std::vector<Variant> choices)
    : ListedFilter(Kind::Values, variableName(*filter), filter)
{
    m_choices = std::move(choices);
    m_values = makeProperty<Values>(
        filter->values(),
        [filter](const Values& values) { filter->setValues(values); },
        "Change Filter on %1");
}

ListedFilter::ListedFilter(const boost::shared_ptr<TagFilter>& filter)
    : ListedFilter(Kind::Tag, filter->tag(), filter)
{}

ListedFilter::~ListedFilter() = default;

template <class T>
ListedFilter::PropertyPtr<T> ListedFilter::makeProperty(
    const T& initial,
    const boost::function<void(const T&)>& write,
    const char* undoText,
    const boost::function<void(const T&)>& check)
{
    auto property = boost::make_shared<FilterProperty<T>>(
        initial, write, QString(undoText).arg(QString::fromStdString(m_name)), m_undoId, check);
    m_connections.add(property->valueChanged.connect([this](const T&) { signalChanged(); }));
    return property;
}

WeakPtr<Variable> ListedFilter::variable() const
{
    return m_filter->variable();
}

void ListedFilter::beginGesture()
{
    *m_undoId = UndoStack::nextUndoID();
}

void ListedFilter::endGesture()
{
    *m_undoId = noGesture;
}

} // namespace analyzer
