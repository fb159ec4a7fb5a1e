#pragma once

#include <dataviews/common/selection/SelectionExport.h>

#include <dataviews/platform/signals/Signal.h>

#include <QModelIndexList>
#include <QObject>

class QItemSelectionModel;

/// Tells listeners that are no Qt objects when the selected indexes of an item view change.
///
/// Also when Qt does not say so itself: a reset of the item model silently empties the selection, and a new layout may
/// move the selected indexes. The selection of before is then compared with the present one, index by index in their
/// order, so that a sort which moves selected items is told even though the same items stay selected. Used on the GUI
/// thread.
class DATAVIEWS_SELECTION_EXPORT SelectionBroadcaster : public QObject
{
    Q_OBJECT

public:
    /// \p selectionModel is not owned, has its item model already and keeps it; it must outlive this object.
    explicit SelectionBroadcaster(const QItemSelectionModel& selectionModel);
    SelectionBroadcaster(const SelectionBroadcaster&) = delete;
    SelectionBroadcaster& operator=(const SelectionBroadcaster&) = delete;
    ~SelectionBroadcaster() override;

    /// The selected indexes changed. Raised once for each selectionChanged() of Qt, even if nothing is different.
    Signal<void(), SelectionBroadcaster> signalSelectedImagesChanged;

private:
    virtual void signalSelectedImagesChangedConnected() const;

private Q_SLOTS:
    void selectionChanged() const;
    void signalIfSelectionChanged() const;

private:
    mutable QModelIndexList m_lastSelection;
    const QItemSelectionModel* m_selectionModel;
};
