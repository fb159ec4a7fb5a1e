#include <analyzer/filters/FilterList.h>
#include <analyzer/panels/ChooserPopup.h>
#include <analyzer/panels/FilterRow.h>
#include <analyzer/panels/FiltersPanel.h>
#include <analyzer/panels/VerticalScrollArea.h>
#include <analyzer/panels/announce.h>
#include <analyzer/panels/withoutMnemonic.h>
#include <analyzer/views/countText.h>

#include <dataviews/common/models/StringListModel.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <utility>

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
    , m_chooser(new ChooserPopup(m_add))
    , m_problem(new QLabel(this))
    , m_scroll(new VerticalScrollArea(this))
{
    setObjectName(QStringLiteral("FiltersPanel"));
    m_shown->setObjectName(QStringLiteral("FiltersShown"));
    m_add->setObjectName(QStringLiteral("AddFilter"));
    auto* menu = new QMenu(m_add);
    menu->setObjectName(QStringLiteral("AddFilterMenu"));
    addKind(m_ranges, *menu, tr("&Range of"), [this](const std::string& name) {
        const boost::shared_ptr<Variable> variable = m_project.variable(name).lock();
        return m_filters.addRangeFilter(
            name, variable ? wholeRange(*variable) : ListedFilter::Range{});
    });
    addKind(m_values, *menu, tr("&Values of"), [this](const std::string& name) {
        return m_filters.addValuesFilter(name);
    });
    addKind(m_tags, *menu, tr("&Tag"), [this](const std::string& name) {
        return m_filters.addTagFilter(name);
    });
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

void FiltersPanel::addKind(Kind& kind, QMenu& menu, const QString& text, AddByName add)
{
    kind.menu = menu.addMenu(text);
    kind.search = menu.addAction(text + QChar(0x2026)); // it asks for more
    kind.add = std::move(add);
    connect(kind.search, &QAction::triggered, this, [this, &kind] { searchFor(kind); });
}

void FiltersPanel::fillMenu()
{
    for (Kind* kind : {&m_ranges, &m_values, &m_tags}) {
        kind->menu->clear();
        kind->names.clear();
    }
    fillVariables();
    fillTags();
    for (const Kind* kind : {&m_ranges, &m_values, &m_tags}) {
        const bool isLong = kind->menu->actions().size() >= ChooserPopup::minSearched;
        kind->menu->menuAction()->setEnabled(!kind->menu->isEmpty());
        kind->menu->menuAction()->setVisible(!isLong);
        kind->search->setEnabled(!kind->names.empty());
        kind->search->setVisible(isLong);
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
        if (variable->isNumeric()) {
            offer(m_ranges, variable->name(), ranged.count(variable->name()) == 0);
        }
        if (!variable->isNumeric()
            || variable->distinctValueCount() <= Variable::maxDistinctValues) {
            offer(m_values, variable->name(), true);
        }
    }
}

void FiltersPanel::fillTags()
{
    for (const WeakPtr<TagGroup>& handle : m_project.tagGroups()) {
        for (const std::string& tag : handle.lock()->tags()) {
            if (m_project.taggedCases(tag).count() > 0) {
                offer(m_tags, tag, true);
            }
        }
    }
}

void FiltersPanel::offer(Kind& kind, const std::string& name, bool isEnabled)
{
    QAction* action = kind.menu->addAction(menuText(name));
    action->setEnabled(isEnabled);
    connect(action, &QAction::triggered, this, [this, &kind, name] {
        addFilter([&] { return kind.add(name); });
    });
    if (isEnabled) {
        kind.names.push_back(name);
    }
}

void FiltersPanel::searchFor(const Kind& kind)
{
    const auto choices = boost::make_shared<StringListModel>(
        std::set<std::string>(kind.names.begin(), kind.names.end()));
    disconnect(m_chooser, &ChooserPopup::chosen, this, nullptr);
    connect(
        m_chooser, &ChooserPopup::chosen, this, [this, &kind, choices](ChooserModel::Index index) {
            addFilter([&] { return kind.add(choices->data(index)); });
        });
    m_chooser->open(
        *m_add,
        QStringLiteral("AddFilter"),
        kind.search->text().remove(QLatin1Char('&')),
        choices,
        std::nullopt);
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
