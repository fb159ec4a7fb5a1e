#include <analyzer/filters/FilterList.h>
#include <analyzer/panels/FilterRow.h>
#include <analyzer/panels/FiltersPanel.h>
#include <analyzer/panels/VerticalScrollArea.h>
#include <analyzer/panels/announce.h>
#include <analyzer/panels/withoutMnemonic.h>
#include <analyzer/views/countText.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <set>
#include <string>

namespace analyzer {

namespace {

QString menuText(const std::string& name)
{
    return withoutMnemonic(QString::fromStdString(name).simplified());
}

/// All numbers of the variable.
ValueRange_s<double> wholeRange(const Variable& variable)
{
    const ValueRange_s<double> range = variable.range();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return std::isnan(range.min) ? ValueRange_s<double>{-infinity, infinity} : range;
}

} // namespace

FiltersPanel::FiltersPanel(FilterList& filters, Project& project, QWidget* parent)
    : QWidget(parent)
    , m_filters(filters)
    , m_project(project)
    , m_shown(new QLabel(this))
    , m_add(new QPushButton(tr("Add filter…"), this))
    , m_problem(new QLabel(this))
    , m_scroll(new VerticalScrollArea(this))
{
    setObjectName(QStringLiteral("FiltersPanel"));
    m_shown->setObjectName(QStringLiteral("FiltersShown"));
    m_add->setObjectName(QStringLiteral("AddFilter"));
    auto* menu = new QMenu(m_add);
    menu->setObjectName(QStringLiteral("AddFilterMenu"));
    m_ranges = menu->addMenu(tr("&Range of"));
    m_values = menu->addMenu(tr("&Values of"));
    m_tags = menu->addMenu(tr("&Tag"));
    m_add->setMenu(menu);
    m_problem->setObjectName(QStringLiteral("FiltersProblem"));
    m_problem->setWordWrap(true);
    m_problem->setTextFormat(Qt::PlainText); // it quotes names of studies
    m_problem->hide();

    auto* rows = new QWidget;
    m_layout = new QVBoxLayout(rows);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->addStretch(1);
    m_scroll->setWidget(rows);

    auto* top = new QHBoxLayout;
    top->addWidget(m_shown, 1);
    top->addWidget(m_add);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_problem);
    layout->addWidget(m_scroll, 1);

    connect(menu, &QMenu::aboutToShow, this, &FiltersPanel::fillMenu);
    m_connections.add(filters.signalListChanged.connect([this] { showFilters(); }));
    m_connections.add(filters.pipeline().signalPipelineChanged.connect([this] { showCount(); }));
    showFilters();
    showCount();
}

FiltersPanel::~FiltersPanel() = default;

void FiltersPanel::fillMenu()
{
    for (QMenu* menu : {m_ranges, m_values, m_tags}) {
        menu->clear();
    }
    fillVariables();
    fillTags();
    for (QMenu* menu : {m_ranges, m_values, m_tags}) {
        menu->menuAction()->setEnabled(!menu->isEmpty());
    }
}

void FiltersPanel::fillVariables()
{
    std::set<std::string> ranged;
    for (const FilterList::FilterPtr& filter : m_filters.filters()) {
        if (filter->kind() == ListedFilter::Kind::Range) {
            ranged.insert(filter->name());
        }
    }
    for (const WeakPtr<Variable>& handle : m_project.variables()) {
        const boost::shared_ptr<Variable> variable = handle.lock();
        const std::string name = variable->name();
        if (variable->isNumeric()) {
            QAction* action = m_ranges->addAction(menuText(name));
            action->setEnabled(ranged.count(name) == 0);
            connect(action, &QAction::triggered, this, [this, name] {
                addFilter([this, &name] {
                    const boost::shared_ptr<Variable> present = m_project.variable(name).lock();
                    return m_filters.addRangeFilter(
                        name, present ? wholeRange(*present) : ListedFilter::Range{});
                });
            });
        }
        if (!variable->isNumeric()
            || variable->distinctValueCount() <= Variable::maxDistinctValues) {
            connect(m_values->addAction(menuText(name)), &QAction::triggered, this, [this, name] {
                addFilter([this, &name] { return m_filters.addValuesFilter(name); });
            });
        }
    }
}

void FiltersPanel::fillTags()
{
    for (const WeakPtr<TagGroup>& handle : m_project.tagGroups()) {
        for (const std::string& tag : handle.lock()->tags()) {
            if (m_project.taggedCases(tag).count() > 0) {
                connect(m_tags->addAction(menuText(tag)), &QAction::triggered, this, [this, tag] {
                    addFilter([this, &tag] { return m_filters.addTagFilter(tag); });
                });
            }
        }
    }
}

void FiltersPanel::addFilter(const boost::function<boost::shared_ptr<ListedFilter>()>& add)
{
    m_problem->hide();
    try {
        const boost::shared_ptr<ListedFilter> filter = add();
        const auto row = std::find_if(m_rows.begin(), m_rows.end(), [&filter](FilterRow* other) {
            return other->filter() == filter;
        });
        if (row != m_rows.end()) {
            (*row)->focusField();
            // Once the new row has its place.
            QTimer::singleShot(
                0, *row, [this, shown = *row] { m_scroll->ensureWidgetVisible(shown, 0, 0); });
        }
    } catch (const std::exception& error) {
        m_problem->setText(QString::fromUtf8(error.what()));
        m_problem->show();
        announce(*m_problem);
    }
}

void FiltersPanel::removeFilter(const boost::shared_ptr<ListedFilter>& filter)
{
    m_problem->hide();
    const auto place = std::find_if(m_rows.begin(), m_rows.end(), [&filter](FilterRow* row) {
        return row->filter() == filter;
    });
    const auto index = static_cast<std::size_t>(place - m_rows.begin());
    m_filters.remove(filter);
    if (m_rows.empty()) {
        m_add->setFocus(Qt::OtherFocusReason);
    } else {
        m_rows[std::min(index, m_rows.size() - 1)]->focusRemove();
    }
}

void FiltersPanel::showFilters()
{
    const std::vector<FilterList::FilterPtr> filters = m_filters.filters();
    const auto firstGone =
        std::stable_partition(m_rows.begin(), m_rows.end(), [&filters](FilterRow* row) {
            return std::find(filters.begin(), filters.end(), row->filter()) != filters.end();
        });
    for (auto gone = firstGone; gone != m_rows.end(); ++gone) {
        m_layout->removeWidget(*gone);
        (*gone)->retire();
        (*gone)->deleteLater(); // it may be in the middle of an event of its own
    }
    m_rows.erase(firstGone, m_rows.end());

    // Those that are left are in order.
    for (std::size_t place = 0; place < filters.size(); ++place) {
        const FilterList::FilterPtr& filter = filters[place];
        if (place < m_rows.size() && m_rows[place]->filter() == filter) {
            continue;
        }
        auto* row = new FilterRow(filter, m_scroll->widget());
        connect(row, &FilterRow::removeRequested, this, [this, filter] { removeFilter(filter); });
        m_layout->insertWidget(static_cast<int>(place), row);
        m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(place), row);
    }

    int number = 0;
    QWidget* before = m_add;
    for (FilterRow* row : m_rows) {
        row->setNumber(++number);
        before = row->placeInTabOrder(before);
    }
}

void FiltersPanel::showCount()
{
    const std::size_t cases = m_project.caseCount();
    m_add->setEnabled(cases > 0);
    m_shown->setText(
        cases == 0 ? tr("No study is open")
                   : tr("shown %1 of %2")
                         .arg(countText(m_filters.pipeline().passingCount()), countText(cases)));
}

} // namespace analyzer
