#pragma once

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QFrame>

#include <boost/shared_ptr.hpp>

class QCheckBox;
class QToolButton;

namespace analyzer {

class ListedFilter;
class RangeFilterField;
class ValueFilterField;

/// One filter of a FiltersPanel: its name, its switches, and the field of its kind.
class FilterRow : public QFrame
{
    Q_OBJECT

public:
    FilterRow(boost::shared_ptr<ListedFilter> filter, QWidget* parent);
    FilterRow(const FilterRow&) = delete;
    FilterRow& operator=(const FilterRow&) = delete;
    ~FilterRow() override;

    [[nodiscard]] const boost::shared_ptr<ListedFilter>& filter() const { return m_filter; }

    /// Gives the object name "filterN" and those that begin with it: "filterN-enabled", "filterN-invert" and
    /// "filterN-remove" besides the field's.
    void setNumber(int number);

    /// Puts the controls behind \p before and gives the last one.
    QWidget* placeInTabOrder(QWidget* before);

    /// Hides the row of a filter that has left the list until it is deleted.
    void retire();

    /// The control to go on with when the row is new.
    void focusField();
    void focusRemove();

Q_SIGNALS:
    void removeRequested();

private:
    QWidget* makeHeader();
    void showSwitches();

    boost::shared_ptr<ListedFilter> m_filter;
    QCheckBox* m_enabled;
    QCheckBox* m_invert;
    QToolButton* m_remove;
    RangeFilterField* m_range = nullptr;
    ValueFilterField* m_values = nullptr;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
