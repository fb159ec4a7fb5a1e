#pragma once

#include <dataviews/common/selection/SelectionExport.h>

#include <dataviews/platform/selection/SuspendableInterface.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QObject>

#include <boost/shared_ptr.hpp>

#include <set>

class CaseSelection;
class QItemSelection;
class QTableView;
class SelectionConverterInterface;
class SelectionModelInterface;

/// Keeps the selected cells of a table and the application-wide selection of cases in step.
///
/// Which cells stand for which cases is the matter of a converter. Each direction is closed while the other one writes:
/// a selection made in the table is neither completed by other cells of the same cases nor written a second time, and
/// the master keeps the cases that the table does not show. A reset of the table's model empties the table's selection
/// without a word from Qt, so that the owner calls showMasterSelection() afterwards. Used on the GUI thread.
class DATAVIEWS_SELECTION_EXPORT TableViewSelectionSynchronizer
    : public QObject
    , public SuspendableInterface
{
    Q_OBJECT

public:
    /// Shows the selection of \p master at once, and from now on in the active highlight color even while the table has
    /// no focus. The selection model of \p tableView is there already and stays; the view must outlive this object.
    TableViewSelectionSynchronizer(
        boost::shared_ptr<SelectionModelInterface> master,
        QTableView& tableView,
        boost::shared_ptr<SelectionConverterInterface> converter);
    TableViewSelectionSynchronizer(const TableViewSelectionSynchronizer&) = delete;
    TableViewSelectionSynchronizer& operator=(const TableViewSelectionSynchronizer&) = delete;
    ~TableViewSelectionSynchronizer() override;

    /// Closes the direction from the master to the table; a selection made in the table still reaches the master.
    void suspend() override;

    /// Opens the direction again and shows the master's selection. If that changes what is selected in the table, the
    /// table's cases become the master's selection: those that the table does not show drop out of it.
    void resume() override;

    /// Shows the master's selection, also while suspended; the master is left as it is. To be called after each reset
    /// of the table's model, before a resume().
    void showMasterSelection();

protected:
    /// Listens to the master, from scratch; still hears nothing while suspended. Called also while an exception passes,
    /// so that an override must not throw.
    virtual void beginMasterSelectionMonitoring();

    /// Stops listening to the master, before the table's selection is written to it.
    virtual void endMasterSelectionMonitoring();

private Q_SLOTS:
    void onLocalSelectionChanged();

private:
    /// For converters that ask for a std::set.
    virtual void setLocalSelectionsToMaster(const std::set<unsigned long long>& selection);

    void onMasterSelectionChanged(const CaseSelection& selection);
    void show(const CaseSelection& selection);
    void select(const QItemSelection& cells);
    void updateLocalSelections();
    void beginLocalSelectionMonitoring();
    void endLocalSelectionMonitoring();

    // Destroyed from the last to the first: the connections before the master they lead to.
    boost::shared_ptr<SelectionModelInterface> m_master;
    QTableView& m_tableView;
    boost::shared_ptr<SelectionConverterInterface> m_converter;
    SignalConnectionCollection m_connections;
};
