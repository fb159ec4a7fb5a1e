#pragma once

#include <analyzer/CommandLine.h>
#include <analyzer/StudyLoader.h>
#include <analyzer/session/Session.h>
#include <analyzer/study/StudyReport.h>

#include <dataviews/platform/data/RowBitmap.h>
#include <dataviews/platform/data/WeakPtr.h>
#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/signals/SignalConnectionCollection.h>

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <boost/shared_ptr.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class AsyncImageCache;
class AuxFile;
class CaseSet;
class ImageCache;
class ImageMatrixViewInterface;
class QAction;
class QActionGroup;
class QLabel;
class QMenu;
class QStackedWidget;
class SelectionModelInterface;

namespace analyzer {

struct PictureOptions;
struct ReadStudy;
class Autosave;
class AnalyzerViewInterface;
class FilterList;
class FiltersPanel;
class HoveredCase;
class SessionKeeper;
class SettingsPanel;
class StudyPreview;
class TagEditor;
class TagsPanel;
class ViewArea;

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

    /// Reads the study at \p path in the background and then shows it in place of the open one. While that takes, a
    /// StudyPreview hides the views. If it cannot be read, everything stays as it is.
    void openStudy(const QString& path);

    /// Reads the session at \p path and its study in the background and then shows them in place of what is open. If
    /// something of it cannot be read, everything stays as it is.
    void openSession(const QString& path);

    /// Writes what is open to the session file \p path.
    /// \throws ExceptionBase if no study is open or the file cannot be written; the old file is whole then.
    void saveSession(const QString& path);

    /// What is open, as the content of a session file in \p folder.
    [[nodiscard]] QByteArray sessionText(const QString& folder) const;

    /// Keeps what is open in \p folder from now on, once a minute; see Autosave.
    void startAutosave(const QString& folder);

    /// Asks the user whether to restore what a program that crashed had open, if there is such a thing, and begins with it;
    /// false if not. After startAutosave().
    bool offerRecovery();

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

    /// \throws UsageError if there is no such view.
    [[nodiscard]] boost::shared_ptr<AnalyzerViewInterface> view(
        const CommandLine::ViewName& name) const;

    /// \throws UsageError if there is no such view or property; ExceptionBase if the value is refused.
    void assign(const CommandLine::Assignment& assignment);

    /// The filters that all views show the cases of.
    [[nodiscard]] FilterList& filters() { return *m_filters; }

    /// The user's tags.
    [[nodiscard]] TagEditor& tags() { return *m_tags; }

    /// Where the views are, to open and close them.
    [[nodiscard]] ViewArea& viewArea() { return *m_viewArea; }

    /// The selection that all views share.
    [[nodiscard]] SelectionModelInterface& selection() { return *m_selection; }

    /// What the reader said of the open study.
    [[nodiscard]] const StudyReport& report() const { return m_report; }

    /// Writes cases of the open study with all their variables to the file \p path; see writeCasesCsv().
    /// \throws ExceptionBase if the file cannot be written.
    void exportCases(const QString& path, ExportedCases cases, bool forSpreadsheets = false) const;

    /// Writes the table of the cases shown, as charts get it, to \p path by VTK's writer: numbers have six digits.
    /// \p progress, if there is one, is told the share that is written; it may throw to end the work, and the file is as it
    /// was then.
    /// \throws ExceptionBase if the file cannot be written; it is as it was then.
    void exportPipelineTable(
        const QString& path, const std::function<void(double)>& progress = {}) const;

    /// Writes a report with pictures of all views to the file \p path, a page of HTML; see makeReport().
    /// \throws ExceptionBase if a picture cannot be made or the file not be written.
    /// \p progress as for exportPipelineTable(); the file stays as it was.
    void exportReport(const QString& path, const std::function<void(double)>& progress = {}) const;

    void setTellsErrorsInDialogs(bool inDialogs) { m_tellsErrorsInDialogs = inDialogs; }

public Q_SLOTS:
    void selectAll();
    void clearSelection();
    void invertSelection();

    /// Shows \p message to the user.
    void tellError(const QString& message);

Q_SIGNALS:
    void studyOpened(const QString& path);

    /// \p remarks has a sentence for everything that could not be restored.
    void sessionOpened(const QString& path, const QStringList& remarks);
    void openingFailed(const QString& path, const QString& message);
    void errorTold(const QString& message);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void addFirstViews();
    [[nodiscard]] CaseSet shownCases() const;
    void buildMenus();
    QAction* buildFileMenu();
    QList<QAction*> buildViewMenu();
    void buildSelectionShapeMenu();
    void buildExportMenu(QMenu& file);
    void buildPanels();
    void connectTagsPanel();
    boost::shared_ptr<ImageMatrixViewInterface> matrixForTags();
    void buildPreview();
    [[nodiscard]] bool isPreviewShown() const;
    [[nodiscard]] bool showsStudy() const;
    [[nodiscard]] QList<QWidget*> panels() const;
    void showPreview();
    void hidePreview();
    void updatePreview();
    void startLoading(const QString& path, StudyLoader::Check check);
    void takeStudy(const QString& path);
    /// The session that is to be opened, with its study, which is not open yet.
    void tryOutSession(const ReadStudy& study, const StudyFingerprint& fingerprint);
    void takeSession(const QString& path);
    void replaceStudy(ReadStudy& study);
    void activeViewChanged();
    void showContextMenu(const QPoint& place);
    void updateActions();
    void updateStatus();
    void updateExportActions();
    void updateRecent();
    void updateTitle();
    void rememberRecent(const QString& path);
    void chooseStudyFile();
    void chooseStudyFolder();
    void chooseSession();
    bool saveSession();
    bool chooseAndSaveSession();
    [[nodiscard]] bool mayLeaveSession();
    void chooseExportFile(ExportedCases cases);
    [[nodiscard]] RowBitmap rowsToExport(ExportedCases cases) const;
    void choosePicture();
    void exportPictureWithProgress(
        AnalyzerViewInterface& view, const std::string& path, const PictureOptions& options);

    /// Empty if the user does not want to.
    QString chooseFileToWrite(const QString& title, const QString& kinds, const QString& suffix);

    /// Exceptions must not pass through Qt's menus.
    template <class Function>
    void attempt(Function function);

    /// As attempt(), for work that takes a function to tell of its progress; the user may cancel it. \p title says what it
    /// is.
    template <class Function>
    void attemptInSteps(const QString& title, Function function);
    void showReport();
    void showAbout();

    /// A session that is being opened, until its study has been read.
    struct PendingSession
    {
        Session session;
        QString path;
        bool isOwn; ///< the user's own file, to be saved to again
        QStringList remarks; ///< what it has and the study does not, once it has been tried out
        QString failure; ///< why it cannot be opened; empty if it can
    };

    void openSession(const QString& path, bool isOwn);
    void openStudyOrSession(const QString& path);
    void autosave();

    boost::shared_ptr<SelectionModelInterface> m_selection;
    std::unique_ptr<DataPipelineManager> m_pipeline;
    std::unique_ptr<FilterList> m_filters;
    boost::shared_ptr<ImageCache> m_images;
    boost::shared_ptr<AsyncImageCache> m_scaledImages;
    boost::shared_ptr<HoveredCase> m_hovered;
    std::unique_ptr<TagEditor> m_tags;
    std::unique_ptr<SessionKeeper> m_sessions;
    std::optional<PendingSession> m_pendingSession;
    QString m_sessionPath; ///< of the session that is open; empty without one
    std::unique_ptr<Autosave> m_autosave; ///< empty until startAutosave()
    QTimer m_autosaveTimer;
    StudyLoader* m_loader;
    StudyReport m_report;
    std::vector<std::string> m_firstViews;
    std::size_t m_selectedCount = 0;
    bool m_tellsErrorsInDialogs = true;

    ViewArea* m_viewArea =
        nullptr; ///< within the window, so that views and panels do not share their widths
    SettingsPanel* m_settings = nullptr;
    FiltersPanel* m_filtersPanel = nullptr;
    TagsPanel* m_tagsPanel = nullptr;
    QLabel* m_status = nullptr;
    QMenu* m_recentMenu = nullptr;
    QMenu* m_viewMenu = nullptr;
    QActionGroup* m_mouseModes = nullptr;
    QMenu* m_selectionShapeMenu = nullptr;
    QActionGroup* m_selectionShapes = nullptr;
    QAction* m_fit = nullptr;
    QAction* m_resetX = nullptr;
    QAction* m_resetY = nullptr;
    QAction* m_zoomIn = nullptr;
    QAction* m_zoomOut = nullptr;
    QAction* m_resetZoom = nullptr;
    QAction* m_showReport = nullptr;
    QAction* m_reopenLast = nullptr;
    QAction* m_exportShown = nullptr;
    QAction* m_exportSelected = nullptr;
    QAction* m_exportTable = nullptr;
    QAction* m_exportPicture = nullptr;
    QAction* m_exportReport = nullptr;
    QList<QAction*> m_selectionActions;
    QList<QAction*> m_studyActions; ///< those that need an open study
    QStackedWidget* m_pages = nullptr; ///< the views, and the preview in their place
    StudyPreview* m_preview = nullptr;
    QPointer<QWidget> m_focusBeforePreview;
    QTimer* m_previewDelay = nullptr;
    QTimer m_progressTimer;
    SignalConnectionCollection m_activeConnections;
    SignalConnectionCollection m_connections;
};

} // namespace analyzer
