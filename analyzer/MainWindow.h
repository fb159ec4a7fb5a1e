#pragma once

#include <analyzer/CommandLine.h>
#include <analyzer/study/StudyReport.h>

#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <boost/shared_ptr.hpp>

#include <memory>
#include <string>
#include <vector>

class AsyncImageCache;
class AuxFile;
class ImageCache;
class QAction;
class QActionGroup;
class QDockWidget;
class QLabel;
class QMenu;
class QProgressDialog;
class SelectionModelInterface;

namespace analyzer {

class AnalyzerViewInterface;
class FilterList;
class FiltersPanel;
class HoveredCase;
class SettingsPanel;
class StudyLoader;

/// The window of the analyzer: menus, the views as docked panels, the settings of the active view, a status line.
///
/// Shows the open project; there is one main window. Errors are told in a dialog, or, with
/// setTellsErrorsInDialogs(false), by errorTold() alone.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    enum ExportedCases
    {
        CasesShown, ///< those that pass the filters
        SelectedCases
    };

    MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;
    ~MainWindow() override;

    /// Reads the study at \p path in the background, with progress and cancel, and then shows it in place of the open
    /// one. If it cannot be read, everything stays as it is.
    void openStudy(const QString& path);

    /// Whether a study is being read now.
    [[nodiscard]] bool isOpening() const;

    /// Kinds of the views that a study is opened with; without any, they are chosen for the study.
    void setFirstViews(std::vector<std::string> kinds) { m_firstViews = std::move(kinds); }

    /// Opens a view of \p kind, one of viewKinds(), beside the others and makes it the active one.
    boost::shared_ptr<AnalyzerViewInterface> addView(const std::string& kind);

    /// Shows \p file in the view of selected images, the one used last if there are several, or in a new one.
    void showImage(const WeakPtr<AuxFile>& file);

    /// The open views, oldest first.
    [[nodiscard]] std::vector<boost::shared_ptr<AnalyzerViewInterface>> views() const;

    [[nodiscard]] boost::shared_ptr<AnalyzerViewInterface> activeView() const;
    void setActiveView(const boost::shared_ptr<AnalyzerViewInterface>& view);

    /// \throws UsageError if there is no such view or property; ExceptionBase if the value is refused.
    void assign(const CommandLine::Assignment& assignment);

    /// The filters that all views show the cases of.
    [[nodiscard]] FilterList& filters() { return *m_filters; }

    /// The selection that all views share.
    [[nodiscard]] SelectionModelInterface& selection() { return *m_selection; }

    /// What the reader said of the open study.
    [[nodiscard]] const StudyReport& report() const { return m_report; }

    /// Writes cases of the open study with all their variables to the file \p path; see writeCasesCsv().
    /// \throws ExceptionBase if the file cannot be written.
    void exportCases(const QString& path, ExportedCases cases, bool forSpreadsheets = false) const;

    /// Writes the table of the cases shown, as charts get it, to \p path by VTK's writer: numbers have six digits.
    /// \throws ExceptionBase if the file cannot be opened.
    void exportPipelineTable(const QString& path) const;

    void setTellsErrorsInDialogs(bool inDialogs) { m_tellsErrorsInDialogs = inDialogs; }

public Q_SLOTS:
    void selectAll();
    void clearSelection();
    void invertSelection();

    /// Shows \p message to the user.
    void tellError(const QString& message);

Q_SIGNALS:
    void studyOpened(const QString& path);
    void openingFailed(const QString& path, const QString& message);
    void errorTold(const QString& message);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct OpenView
    {
        boost::shared_ptr<AnalyzerViewInterface> view;
        QDockWidget* dock;
        int number;
    };

    /// Beside the view opened last, or on top of the panel \p over.
    boost::shared_ptr<AnalyzerViewInterface> addView(
        const std::string& kind, Qt::Orientation beside, QDockWidget* over = nullptr);

    /// The largest panel but that of the active view; null without one.
    [[nodiscard]] QDockWidget* largestOtherDock() const;
    void addFirstViews();
    void buildMenus();
    QList<QAction*> buildViewMenu();
    void buildExportMenu(QMenu& file);
    void buildPanels();
    void closeProgress();
    void takeStudy(const QString& path);
    void closeViews();
    void closeView(QDockWidget* dock);
    void nameDock(const AnalyzerViewInterface* view);
    void focusMoved(const QWidget* widget);
    void showContextMenu(const QPoint& place);
    void updateActions();
    void updateStatus();
    void updateExportActions();
    void updateRecent();
    void rememberRecent(const QString& path);
    void chooseStudyFile();
    void chooseStudyFolder();
    void chooseExportFile(ExportedCases cases);
    void showReport();
    void showAbout();
    [[nodiscard]] std::vector<OpenView>::const_iterator find(
        const AnalyzerViewInterface* view) const;

    boost::shared_ptr<SelectionModelInterface> m_selection;
    std::unique_ptr<DataPipelineManager> m_pipeline;
    std::unique_ptr<FilterList> m_filters;
    boost::shared_ptr<ImageCache> m_images;
    boost::shared_ptr<AsyncImageCache> m_scaledImages;
    boost::shared_ptr<HoveredCase> m_hovered;
    StudyLoader* m_loader;
    StudyReport m_report;
    std::vector<OpenView> m_views;
    boost::shared_ptr<AnalyzerViewInterface> m_active;
    std::vector<std::string> m_firstViews;
    int m_viewsMade = 0;
    std::size_t m_selectedCount = 0;
    bool m_tellsErrorsInDialogs = true;

    QMainWindow* m_viewArea =
        nullptr; ///< within the window, so that views and panels do not share their widths
    QLabel* m_welcome = nullptr;
    SettingsPanel* m_settings = nullptr;
    FiltersPanel* m_filtersPanel = nullptr;
    QLabel* m_status = nullptr;
    QMenu* m_recentMenu = nullptr;
    QMenu* m_viewMenu = nullptr;
    QActionGroup* m_mouseModes = nullptr;
    QAction* m_fit = nullptr;
    QAction* m_resetX = nullptr;
    QAction* m_resetY = nullptr;
    QAction* m_zoomIn = nullptr;
    QAction* m_zoomOut = nullptr;
    QAction* m_resetZoom = nullptr;
    QAction* m_showReport = nullptr;
    QAction* m_exportShown = nullptr;
    QAction* m_exportSelected = nullptr;
    QAction* m_exportTable = nullptr;
    QList<QAction*> m_selectionActions;
    QList<QAction*> m_studyActions; ///< those that need an open study
    QPointer<QProgressDialog> m_progress;
    QTimer m_progressTimer;
    SignalConnectionCollection m_activeConnections;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
