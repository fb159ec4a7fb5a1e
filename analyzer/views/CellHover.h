#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>

#include <boost/shared_ptr.hpp>

#include <functional>
#include <optional>

class QAbstractScrollArea;
class QWidget;

namespace analyzer {

class HoveredCase;

/// Makes the case under the mouse in a scrolling view the hovered one.
///
/// Events of the view are watched, not taken. Moves of the mouse that have queued up are answered once, and what moves
/// below a resting mouse counts as well. Used on the GUI thread.
class CellHover : public QObject
{
    Q_OBJECT

public:
    /// The case at a place of the viewport; none where there is no single one.
    using CaseAt = std::function<std::optional<unsigned long long>(const QPoint&)>;

    /// \p view may go before this object, which does nothing more then.
    CellHover(QAbstractScrollArea& view, boost::shared_ptr<HoveredCase> hovered, CaseAt caseAt);
    CellHover(const CellHover&) = delete;
    CellHover& operator=(const CellHover&) = delete;
    ~CellHover() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void look();
    void leave();
    void leaveCase();

    boost::shared_ptr<HoveredCase> m_hovered;
    CaseAt m_caseAt;
    QPointer<QWidget> m_viewport;
    std::optional<QPoint> m_mouse; ///< in the viewport, while no button is pressed
    std::optional<unsigned long long> m_caseID; ///< the hovered case, if that came from here
    QTimer m_later;
};

} // namespace analyzer
