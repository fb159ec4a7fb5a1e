#pragma once

#include <dataviews/platform/property/ValueRange_s.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QTimer>
#include <QWidget>

#include <boost/shared_ptr.hpp>

#include <optional>

class QLabel;
class QLineEdit;

namespace analyzer {

class ListedFilter;
class RangeSlider;

/// Two fields and a slider for the range of a filter.
///
/// Return applies what is typed, Escape takes it back; what is refused is said under the fields and changes nothing.
/// The slider applies while it moves: the moves that wait in the event queue together, a drag as one undo step.
class RangeFilterField : public QWidget
{
    Q_OBJECT

public:
    /// \p filter is one by range whose variable is there.
    RangeFilterField(boost::shared_ptr<ListedFilter> filter, QWidget* parent);
    RangeFilterField(const RangeFilterField&) = delete;
    RangeFilterField& operator=(const RangeFilterField&) = delete;

    /// A drag that has not ended ends here.
    ~RangeFilterField() override;

    /// Object names: \p prefix with "-min", "-max", "-problem", "-slider", "-lower" and "-upper".
    void setNames(const QString& prefix);

    /// Puts the controls behind \p before and gives the last one.
    QWidget* placeInTabOrder(QWidget* before);

    /// Forgets what is moved or typed and not applied yet: the filter has left the list.
    void retire();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Range = ValueRange_s<double>;

    QLineEdit* makeField(const QString& accessibleName);
    void addSlider();
    void showRange();
    void takeTexts();
    void takeMove();

    boost::shared_ptr<ListedFilter> m_filter;
    QLineEdit* m_min;
    QLineEdit* m_max;
    QLabel* m_problem;
    RangeSlider* m_slider = nullptr; ///< null where the numbers of the variable have no span
    QLabel* m_note;
    std::optional<Range> m_moved; ///< by the slider, not applied yet
    QTimer m_moveTimer;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
