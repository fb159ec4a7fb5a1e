#include <dataviews/common/selection/SelectionBroadcaster.h>

#include <QAbstractItemModel>
#include <QItemSelectionModel>

SelectionBroadcaster::SelectionBroadcaster(const QItemSelectionModel& selectionModel)
    : signalSelectedImagesChanged([this] { signalSelectedImagesChangedConnected(); })
    , m_lastSelection(selectionModel.selectedIndexes())
    , m_selectionModel(&selectionModel)
{
    const QAbstractItemModel* itemModel = selectionModel.model();
    Q_ASSERT_X(
        itemModel != nullptr, "SelectionBroadcaster", "The selection model has no item model yet.");
    // clang-format off
    connect(
        m_selectionModel, SIGNAL(selectionChanged(const QItemSelection& , const QItemSelection&)),
        this, SLOT(selectionChanged()));
    // clang-format on
    // The selection model listens to its item model since it was made: it has adapted itself when these slots run.
    connect(itemModel, SIGNAL(modelReset()), this, SLOT(signalIfSelectionChanged()));
    connect(itemModel, SIGNAL(layoutChanged()), this, SLOT(signalIfSelectionChanged()));
}

SelectionBroadcaster::~SelectionBroadcaster() = default;

void SelectionBroadcaster::signalSelectedImagesChangedConnected() const {}

void SelectionBroadcaster::selectionChanged() const
{
    m_lastSelection = m_selectionModel->selectedIndexes();
    signalSelectedImagesChanged();
}

void SelectionBroadcaster::signalIfSelectionChanged() const
{
    const QModelIndexList selection = m_selectionModel->selectedIndexes();
    if (selection == m_lastSelection) {
        return;
    }
    m_lastSelection = selection;
    signalSelectedImagesChanged();
}
