#pragma once

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <boost/shared_ptr.hpp>

#include <optional>
#include <string>
#include <vector>

class AsyncImageCache;
class AsyncImageLoader;
class Record;
class Variable;

namespace analyzer {

/// A small window beside the mouse with a case's values, and its first picture if it has one.
///
/// Appears when the mouse has rested for a moment, and at once when it comes from another case. Takes neither focus nor
/// mouse. Texts of the study are shown as they are, never read as markup. Pictures are read in the background; until
/// one has come, there is no room for it. Used on the GUI thread.
class CaseToolTip : public QWidget
{
    Q_OBJECT

public:
    struct Value
    {
        QString name;
        QString value;
    };

    static constexpr std::size_t maxValues = 10;
    static constexpr int largestPicturePx = 160; ///< device-independent

    /// \p images gives the pictures; without one, none are shown.
    explicit CaseToolTip(
        const boost::shared_ptr<AsyncImageCache>& images, QWidget* parent = nullptr);
    CaseToolTip(const CaseToolTip&) = delete;
    CaseToolTip& operator=(const CaseToolTip&) = delete;
    ~CaseToolTip() override;

    /// The mouse is on the case \p caseID, at \p mouse on the screen: shows the values of \p variables, those that
    /// there are, and then those of the other variables of the study, maxValues at most. Nothing for a case that the
    /// study does not have.
    void showCase(
        unsigned long long caseID,
        const std::vector<WeakPtr<Variable>>& variables,
        const QPoint& mouse);

    /// The mouse is on no case.
    void leave();

    /// How long the mouse must rest before the tool tip appears, and for how long after leave() it need not.
    void setDelays(int restMs, int graceMs);

    /// The upper left corner for a tool tip of \p size beside \p mouse, on \p screen as far as it fits there, and not
    /// under the mouse unless it takes more than half of the screen both ways.
    [[nodiscard]] static QPoint placeBeside(
        const QPoint& mouse, const QSize& size, const QRect& screen);

    // ---- what is shown, in full; for tests

    [[nodiscard]] QString title() const { return m_title; }

    [[nodiscard]] const std::vector<Value>& values() const { return m_values; }

    /// Says how many values there are besides; empty without further ones.
    [[nodiscard]] QString furtherText() const { return m_further; }

    /// A null image without one.
    [[nodiscard]] const QImage& picture() const { return m_picture; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Layout;

    void appear();
    void fill(const Record& record);
    void requestPicture(const std::string& path);
    void place();
    [[nodiscard]] Layout layOut() const;

    boost::shared_ptr<AsyncImageLoader> m_loader;
    std::optional<unsigned long long> m_caseID;
    std::vector<WeakPtr<Variable>> m_variables;
    QPoint m_mouse;
    QString m_title;
    std::vector<Value> m_values;
    QString m_further;
    QImage m_picture;
    std::string m_picturePath; ///< of the picture that is shown or being read
    QTimer m_rest;
    QTimer m_grace; ///< runs while the next case is shown without rest
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
