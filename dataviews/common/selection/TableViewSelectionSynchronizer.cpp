#include <dataviews/common/selection/SelectionConverterInterface.h>
#include <dataviews/common/selection/TableViewSelectionSynchronizer.h>

#include <dataviews/platform/selection/SelectionModelInterface.h>

#include <QItemSelectionModel>
#include <QPalette>
#include <QScopeGuard>
#include <QTableView>

#include <utility>

namespace {

void keepHighlightWithoutFocus(QTableView& tableView)
{
    QPalette palette = tableView.palette();
    palette.setColor(
        QPalette::Inactive,
        QPalette::Highlight,
        palette.color(QPalette::Active, QPalette::Highlight));
    tableView.setPalette(palette);
}

} // namespace

TableViewSelectionSynchronizer::TableViewSelectionSynchronizer(
    boost::shared_ptr<SelectionModelInterface> master,
    QTableView& tableView,
    boost::shared_ptr<SelectionConverterInterface> converter)
    : m_master(std::move(master))
    , m_tableView(tableView)
    , m_converter(std::move(converter))
{
    Q_ASSERT_X(
        m_tableView.selectionModel() != nullptr,
        "TableViewSelectionSynchronizer",
        "The table view has no model yet.");
    keepHighlightWithoutFocus(m_tableView);
    // Before anything is listened to, so that the first selection does not travel back to the master.
    show(CaseSelection(m_master->cases()));
    beginLocalSelectionMonitoring();
    TableViewSelectionSynchronizer::beginMasterSelectionMonitoring();
}

TableViewSelectionSynchronizer::~TableViewSelectionSynchronizer() = default;

void TableViewSelectionSynchronizer::suspend()
{
    m_connections.block();
}

void TableViewSelectionSynchronizer::resume()
{
    m_connections.unblock();
    updateLocalSelections();
}

void TableViewSelectionSynchronizer::showMasterSelection()
{
    onMasterSelectionChanged(CaseSelection(m_master->cases()));
}

void TableViewSelectionSynchronizer::beginMasterSelectionMonitoring()
{
    // A listener that changes the selection while it is told of one makes monitoring begin twice in a row.
    m_connections.clear();
    m_connections.add(m_master->signalSelectionChanged.connect(
        [this](const CaseSelection& selection) { onMasterSelectionChanged(selection); }));
}

void TableViewSelectionSynchronizer::endMasterSelectionMonitoring()
{
    m_connections.clear();
}

void TableViewSelectionSynchronizer::onLocalSelectionChanged()
{
    const boost::shared_ptr<const CaseSet> cases =
        m_converter->toCases(*m_tableView.selectionModel());
    endMasterSelectionMonitoring();
    const auto listenAgain = qScopeGuard([this] { beginMasterSelectionMonitoring(); });
    m_master->takeCases(cases);
}

void TableViewSelectionSynchronizer::setLocalSelectionsToMaster(
    const std::set<unsigned long long>& selection)
{
    select(m_converter->toItemSelection(selection));
}

void TableViewSelectionSynchronizer::show(const CaseSelection& selection)
{
    if (const std::optional<QItemSelection> cells = m_converter->cellsOf(*selection)) {
        select(*cells);
    } else {
        setLocalSelectionsToMaster(selection);
    }
}

void TableViewSelectionSynchronizer::select(const QItemSelection& cells)
{
    m_tableView.selectionModel()->select(cells, QItemSelectionModel::ClearAndSelect);
}

void TableViewSelectionSynchronizer::onMasterSelectionChanged(const CaseSelection& selection)
{
    endLocalSelectionMonitoring();
    const auto listenAgain = qScopeGuard([this] { beginLocalSelectionMonitoring(); });
    show(selection);
}

void TableViewSelectionSynchronizer::updateLocalSelections()
{
    show(CaseSelection(m_master->cases()));
}

void TableViewSelectionSynchronizer::beginLocalSelectionMonitoring()
{
    // Unique for the case that a listener has changed the selection while it was told of one.
    connect(
        m_tableView.selectionModel(),
        SIGNAL(selectionChanged(const QItemSelection&, const QItemSelection&)),
        this,
        SLOT(onLocalSelectionChanged()),
        static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::UniqueConnection));
}

void TableViewSelectionSynchronizer::endLocalSelectionMonitoring()
{
    disconnect(m_tableView.selectionModel(), nullptr, this, nullptr);
}
