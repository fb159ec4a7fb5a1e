#pragma once

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QWidget>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <vector>

class Project;
class QLabel;
class QMenu;
class QPushButton;
class QVBoxLayout;

namespace analyzer {

class FilterList;
class FilterRow;
class ListedFilter;
class VerticalScrollArea;

/// Edits the filters of a window: how many cases are shown, a menu to add a filter, and a row for each filter.
///
/// The rows are "filter1", "filter2" and so on in the order of the list. What is refused is said under the menu.
class FiltersPanel : public QWidget
{
    Q_OBJECT

public:
    /// \p filters, whose pipeline filters \p project, and \p project outlive the panel.
    FiltersPanel(FilterList& filters, Project& project, QWidget* parent = nullptr);
    FiltersPanel(const FiltersPanel&) = delete;
    FiltersPanel& operator=(const FiltersPanel&) = delete;
    ~FiltersPanel() override;

private:
    void fillMenu();
    void fillVariables();
    void fillTags();
    void addFilter(const boost::function<boost::shared_ptr<ListedFilter>()>& add);
    void removeFilter(const boost::shared_ptr<ListedFilter>& filter);
    void showFilters();
    void showCount();

    FilterList& m_filters;
    Project& m_project;
    QLabel* m_shown;
    QPushButton* m_add;
    QMenu* m_ranges;
    QMenu* m_values;
    QMenu* m_tags;
    QLabel* m_problem;
    VerticalScrollArea* m_scroll;
    QVBoxLayout* m_layout;
    std::vector<FilterRow*> m_rows; ///< in the order of the list
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
