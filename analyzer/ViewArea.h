#pragma once

#include <analyzer/views/ViewServices.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>
#include <dataviews/platform/undo/DeleteSignaler.h>

#include <QByteArray>
#include <QMainWindow>
#include <QPoint>

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <string>
#include <vector>

class AuxFile;
class QDockWidget;
class QLabel;

namespace analyzer {

class AnalyzerViewInterface;

/// The open views, each in a panel that can be moved, stacked, floated and closed; one of them is the active one.
///
/// Opening and closing are undo steps. A view that is closed lives on in them, suspended and out of sight, and comes back
/// as the same object at its place.
class ViewArea : public QMainWindow
{
    Q_OBJECT

public:
    struct OpenView
    {
        boost::shared_ptr<AnalyzerViewInterface> view;
        int number; ///< among the views of its kind, from 1
        std::string place; ///< the name of its panel in the layout
    };

    explicit ViewArea(ViewServices services, QWidget* parent = nullptr);
    ViewArea(const ViewArea&) = delete;
    ViewArea& operator=(const ViewArea&) = delete;
    ~ViewArea() override;

    enum class Beside
    {
        Right, ///< of the view opened last; below an earlier one where there are three already
        Below, ///< the view opened last
        OnTop ///< of the largest view but the active one
    };

    /// Opens a view of \p kind, one of viewKinds(), as one undo step and makes it the active one.
    boost::shared_ptr<AnalyzerViewInterface> open(
        const std::string& kind, Beside beside = Beside::Right);

    /// Closes \p view as one undo step; nothing for one that is not open.
    void close(const boost::shared_ptr<AnalyzerViewInterface>& view);

    /// Closes all views, for good once the undo history is cleared too.
    void closeAll();

    /// Opens a view as it was saved, without an undo step. All that are opened so are put in place by setLayout().
    boost::shared_ptr<AnalyzerViewInterface> reopen(
        const std::string& kind, int number, const std::string& place);

    /// Where the views are, for setLayout() in another window with views of the same places.
    [[nodiscard]] QByteArray layoutOfViews() const { return saveState(); }

    /// False, with any layout, if \p layout is none.
    bool setLayout(const QByteArray& layout) { return restoreState(layout); }

    /// Oldest first.
    [[nodiscard]] std::vector<OpenView> openViews() const;
    [[nodiscard]] std::vector<boost::shared_ptr<AnalyzerViewInterface>> views() const;

    [[nodiscard]] const boost::shared_ptr<AnalyzerViewInterface>& activeView() const
    {
        return m_active;
    }

    void setActiveView(const boost::shared_ptr<AnalyzerViewInterface>& view);

    /// Brings \p view, one of the open ones, to the front of those it is stacked with and makes it the active one.
    void raise(const boost::shared_ptr<AnalyzerViewInterface>& view);

    /// What people call \p view, one of the open ones: "Chart 2".
    [[nodiscard]] QString nameOf(const AnalyzerViewInterface& view) const;

Q_SIGNALS:
    void activeViewChanged();

    /// A view came or went.
    void viewsChanged();

    /// A view asks for a menu, at this place of the screen; it is the active one now.
    void menuRequested(const QPoint& place);

    void imageActivated(const WeakPtr<AuxFile>& file);

    /// A sentence about what a view could not do.
    void problemTold(const QString& sentence);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Panel;
    using PanelPtr = boost::shared_ptr<Panel>;

    PanelPtr makePanel(const std::string& kind, int number, const std::string& place);
    void arrange(Panel& panel, Beside beside, QDockWidget* under);
    void connectView(Panel& panel);
    void takeOut(const PanelPtr& panel);
    void putBack(const PanelPtr& panel, std::size_t index);
    void nameDock(const AnalyzerViewInterface& view);
    void focusMoved(const QWidget* widget);
    [[nodiscard]] QDockWidget* largestOtherDock() const;
    [[nodiscard]] PanelPtr find(const AnalyzerViewInterface* view) const;

    ViewServices m_services;
    QLabel* m_welcome;
    std::vector<PanelPtr> m_panels; ///< those that are open, oldest first
    boost::shared_ptr<AnalyzerViewInterface> m_active;
    int m_panelsMade = 0;
    DeleteSignaler m_deleteSignaler;
};

} // namespace analyzer
