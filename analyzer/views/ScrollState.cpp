#include <analyzer/views/ScrollState.h>
#include <analyzer/views/stateText.h>

#include <dataviews/platform/property/ExceptionBase.h>

#include <QAbstractScrollArea>
#include <QDomElement>
#include <QEvent>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>

namespace analyzer {

namespace {

constexpr int passes =
    10; ///< of the event loop, within which widgets know how far they can be scrolled

} // namespace

ScrollState::ScrollState(const std::string& elementName, QAbstractScrollArea& area)
    : Serializer(elementName)
    , m_area(&area)
{
    area.installEventFilter(this);
}

ScrollState::~ScrollState() = default;

bool ScrollState::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && m_wanted) {
        // Behind whatever else the widget does when it is shown.
        QTimer::singleShot(0, this, &ScrollState::scrollToWanted);
    }
    return QObject::eventFilter(watched, event);
}

void ScrollState::serializeSelf(QDomElement& element) const
{
    Place place{0, 0};
    if (m_wanted) {
        place = *m_wanted;
    } else if (m_area) {
        place = {m_area->horizontalScrollBar()->value(), m_area->verticalScrollBar()->value()};
    }
    element.setAttribute(QStringLiteral("Across"), place.across);
    element.setAttribute(QStringLiteral("Down"), place.down);
}

void ScrollState::deserializeSelf(const QDomElement& element)
{
    const Place place{wholeAttribute(element, "Across"), wholeAttribute(element, "Down")};
    if (std::min(place.across, place.down) < 0) {
        throw ExceptionBase("A view cannot be scrolled by less than nothing");
    }
    m_wanted = place;
    m_passesLeft = passes;
    if (m_area && m_area->isVisible()) {
        QTimer::singleShot(0, this, &ScrollState::scrollToWanted);
    }
}

void ScrollState::scrollToWanted()
{
    if (!m_wanted || !m_area) {
        return;
    }
    QScrollBar& across = *m_area->horizontalScrollBar();
    QScrollBar& down = *m_area->verticalScrollBar();
    // Views lay themselves out in one of the next passes of the event loop.
    if ((across.maximum() < m_wanted->across || down.maximum() < m_wanted->down)
        && m_passesLeft-- > 0) {
        QTimer::singleShot(0, this, &ScrollState::scrollToWanted);
        return;
    }
    across.setValue(m_wanted->across);
    down.setValue(m_wanted->down);
    m_wanted.reset();
}

} // namespace analyzer
