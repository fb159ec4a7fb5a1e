#pragma once

#include <QUndoView>

namespace analyzer {

/// The undo history as a list; a click on an entry goes back or forward to it.
///
/// Entries that are too long for the list are cut and have tool tips.
class HistoryView : public QUndoView
{
    Q_OBJECT

public:
    explicit HistoryView(QWidget* parent = nullptr);
    HistoryView(const HistoryView&) = delete;
    HistoryView& operator=(const HistoryView&) = delete;
    ~HistoryView() override;

protected:
    bool viewportEvent(QEvent* event) override;
};

} // namespace analyzer
