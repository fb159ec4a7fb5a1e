#pragma once

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QWidget>

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

class Project;
class QAction;
class QLabel;
class QMenu;
class QPushButton;
class QVBoxLayout;

namespace analyzer {

class ChooserPopup;
class FilterList;
class FilterRow;
class ListedFilter;
class VerticalScrollArea;

/// Edits the filters of a window: how many cases are shown, a menu to add a filter, and a row for each filter.
///
/// Where a submenu would be long, a window to search in takes its place.
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
    using AddByName = boost::function<boost::shared_ptr<ListedFilter>(const std::string&)>;

    /// A kind of filter that the menu offers, with names of what can have one.
    struct Kind
    {
        QMenu* menu = nullptr;
        QAction* search = nullptr; ///< in place of the menu
        std::vector<std::string> names; ///< those that can be taken now
        AddByName add;
    };

    void addKind(Kind& kind, QMenu& menu, const QString& text, AddByName add);
    void fillMenu();
    void fillVariables();
    void fillTags();
    void offer(Kind& kind, const std::string& name, bool isEnabled);
    void searchFor(const Kind& kind);
    void addFilter(const boost::function<boost::shared_ptr<ListedFilter>()>& add);
    void removeFilter(const boost::shared_ptr<ListedFilter>& filter);
    void showFilters();
    void showCount();

    FilterList& m_filters;
    Project& m_project;
    QLabel* m_shown;
    QPushButton* m_add;
    ChooserPopup* m_chooser;
    Kind m_ranges;
    Kind m_values;
    Kind m_tags;
    QLabel* m_problem;
    VerticalScrollArea* m_scroll;
    QVBoxLayout* m_layout;
    std::vector<FilterRow*> m_rows; ///< in the order of the list
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
