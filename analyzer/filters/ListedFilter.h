#pragma once

#include <dataviews/common/views/PropertyAbstract.h>

#include <dataviews/platform/data/Variant.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/property/ValueRange_s.h>
#include <dataviews/platform/signals/Signal.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <set>
#include <string>
#include <vector>

class FilterAbstract;
class FilterInterface;
class RangeFilter;
class TagFilter;
class ValueSetFilter;
class Variable;

namespace analyzer {

/// One filter of a FilterList: its settings as properties, which panel, undo and session share.
///
/// The undo history keeps it while it is not in the list, so that it comes back as it was. The filter of the pipeline
/// behind it is changed by the properties alone.
class ListedFilter
{
public:
    enum class Kind
    {
        Range,
        Values,
        Tag
    };

    using Range = ValueRange_s<double>;
    using Values = std::set<Variant>;
    template <class T>
    using PropertyPtr = boost::shared_ptr<corvane::PropertyAbstract<T>>;

    explicit ListedFilter(const boost::shared_ptr<RangeFilter>& filter);

    /// \p choices are the values to choose from; see filterValues().
    ListedFilter(const boost::shared_ptr<ValueSetFilter>& filter, std::vector<Variant> choices);
    explicit ListedFilter(const boost::shared_ptr<TagFilter>& filter);
    ListedFilter(const ListedFilter&) = delete;
    ListedFilter& operator=(const ListedFilter&) = delete;
    ~ListedFilter();

    [[nodiscard]] Kind kind() const { return m_kind; }

    /// Of the variable or the tag; kept when those are gone.
    [[nodiscard]] const std::string& name() const { return m_name; }

    /// A handle of nothing for a tag.
    [[nodiscard]] WeakPtr<Variable> variable() const;

    [[nodiscard]] const PropertyPtr<bool>& enabled() const { return m_enabled; }

    [[nodiscard]] const PropertyPtr<bool>& inverted() const { return m_inverted; }

    /// Refuses what RangeFilter::setRange() refuses. Empty for other kinds.
    [[nodiscard]] const PropertyPtr<Range>& range() const { return m_range; }

    /// As ValueSetFilter takes them; the empty value stands for a missing one. Empty for other kinds.
    [[nodiscard]] const PropertyPtr<Values>& values() const { return m_values; }

    /// The different values of the variable in ascending order, the empty one first if values are missing. Only for
    /// filters by values.
    [[nodiscard]] const std::vector<Variant>& choices() const { return m_choices; }

    /// Makes one undo step of what follows until endGesture() or the next beginning, such as the moves of one drag; for
    /// changes of one property.
    void beginGesture();
    void endGesture();

    /// The filter of the pipeline.
    [[nodiscard]] const boost::shared_ptr<FilterInterface>& filter() const { return m_filter; }

    /// One of the properties changed.
    Signal<void(), ListedFilter> signalChanged;

private:
    ListedFilter(Kind kind, std::string name, const boost::shared_ptr<FilterAbstract>& filter);

    template <class T>
    PropertyPtr<T> makeProperty(
        const T& initial,
        const boost::function<void(const T&)>& write,
        const char* undoText,
        const boost::function<void(const T&)>& check = {});

    Kind m_kind;
    std::string m_name;
    boost::shared_ptr<FilterInterface> m_filter;
    boost::shared_ptr<int> m_undoId; ///< of the gesture; -1 outside of one
    SignalConnectionCollection m_connections; ///< before the properties, which add to it
    PropertyPtr<bool> m_enabled;
    PropertyPtr<bool> m_inverted;
    PropertyPtr<Range> m_range;
    PropertyPtr<Values> m_values;
    std::vector<Variant> m_choices;
};

} // namespace analyzer
