#pragma once

#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QString>
#include <QTimer>
#include <QWidget>

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

class QAbstractButton;
class SelectionModelInterface;

namespace analyzer {

class AnalyzerViewInterface;

/// A view's widget, and below it a line that says how many cases the view leaves out and why; a click on the line
/// selects them.
///
/// The line is there while something is left out. Once it was there its space stays free, so that the view keeps its
/// size while a filter is dragged to and fro. Changes are shown once for each pass of the event loop, and only while
/// the frame is on the screen.
class ViewFrame : public QWidget
{
    Q_OBJECT

public:
    /// Takes the widget of \p view among its children, but does not keep the view alive; the widget goes with the frame
    /// unless somebody has taken it away.
    ViewFrame(
        const boost::shared_ptr<AnalyzerViewInterface>& view,
        boost::shared_ptr<SelectionModelInterface> selection,
        QWidget* parent = nullptr);
    ViewFrame(const ViewFrame&) = delete;
    ViewFrame& operator=(const ViewFrame&) = delete;
    ~ViewFrame() override;

    /// What the line says, in full: "37 not drawn: 31 without Drag, 6 filtered"; empty while nothing is left out.
    [[nodiscard]] QString text() const;

    /// The line, which is hidden while nothing is left out. For tests.
    [[nodiscard]] QAbstractButton& line() const { return *m_line; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void updateLine();
    void selectLeftOutCases();

    boost::weak_ptr<AnalyzerViewInterface> m_view;
    boost::shared_ptr<SelectionModelInterface> m_selection;
    QAbstractButton* m_line;
    QTimer m_later;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
