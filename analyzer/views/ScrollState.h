#pragma once

#include <dataviews/platform/serialize/Serializer.h>

#include <QObject>
#include <QPointer>

#include <optional>
#include <string>

class QAbstractScrollArea;

namespace analyzer {

/// Keeps how far a widget is scrolled, in the steps of its scroll bars.
///
/// A widget that has never been on the screen does not know how far it can be scrolled: what was read is applied when it
/// is shown.
class ScrollState
    : public QObject
    , public Serializer
{
    Q_OBJECT

public:
    ScrollState(const std::string& elementName, QAbstractScrollArea& area);
    ScrollState(const ScrollState&) = delete;
    ScrollState& operator=(const ScrollState&) = delete;
    ~ScrollState() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void serializeSelf(QDomElement& element) const override;

    /// \throws ExceptionBase for a place that is no pair of whole numbers from 0.
    void deserializeSelf(const QDomElement& element) override;

private:
    struct Place
    {
        int across;
        int down;
    };

    void scrollToWanted();

    QPointer<QAbstractScrollArea> m_area;
    std::optional<Place> m_wanted; ///< until it has been applied
    int m_passesLeft =
        0; ///< of the event loop, to wait for a widget that cannot be scrolled as far
};

} // namespace analyzer
