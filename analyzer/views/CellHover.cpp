#include <analyzer/views/CellHover.h>
#include <analyzer/views/HoveredCase.h>

#include <QAbstractScrollArea>
#include <QEvent>
#include <QMouseEvent>

#include <utility>

namespace analyzer {

CellHover::CellHover(
    QAbstractScrollArea& view, boost::shared_ptr<HoveredCase> hovered, CaseAt caseAt)
    : m_hovered(std::move(hovered))
    , m_caseAt(std::move(caseAt))
    , m_viewport(view.viewport())
{
    m_viewport->setMouseTracking(true);
    m_viewport->installEventFilter(this);
    m_later.setSingleShot(true);
    m_later.setInterval(0);
    connect(&m_later, &QTimer::timeout, this, &CellHover::look);
}

CellHover::~CellHover()
{
    leave();
}

bool CellHover::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseMove: {
        const auto* move = static_cast<QMouseEvent*>(event);
        if (move->buttons() != Qt::NoButton) {
            leave();
            break;
        }
        m_mouse = move->pos();
        m_later.start();
        break;
    }
    case QEvent::Paint:
        // Something may have scrolled away, or other rows have come.
        if (m_mouse) {
            m_later.start();
        }
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Leave:
    case QEvent::Hide:
        leave();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void CellHover::look()
{
    if (!m_mouse || !m_viewport) {
        return;
    }
    const std::optional<unsigned long long> caseID = m_caseAt(*m_mouse);
    if (!caseID) {
        leaveCase();
        return;
    }
    m_caseID = caseID;
    m_hovered->setCaseID(caseID);
}

void CellHover::leave()
{
    m_mouse.reset();
    m_later.stop();
    leaveCase();
}

void CellHover::leaveCase()
{
    const std::optional<unsigned long long> caseID = std::exchange(m_caseID, std::nullopt);
    if (caseID && m_hovered->caseID() == caseID) {
        m_hovered->setCaseID(std::nullopt);
    }
}

} // namespace analyzer
