#include <analyzer/Autosave.h>
#include <analyzer/HistoryView.h>
#include <analyzer/MainWindow.h>
#include <analyzer/PictureDialog.h>
#include <analyzer/SessionKeeper.h>
#include <analyzer/StepProgress.h>
#include <analyzer/StudyLoader.h>
#include <analyzer/StudyPreview.h>
#include <analyzer/ViewArea.h>
#include <analyzer/export/ReplacementFile.h>
#include <analyzer/export/Report.h>
#include <analyzer/export/exportPicture.h>
#include <analyzer/export/makeReport.h>
#include <analyzer/export/writeCasesCsv.h>
#include <analyzer/export/writeHtmlReport.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/imageViews.h>
#include <analyzer/panels/FiltersPanel.h>
#include <analyzer/panels/SettingsPanel.h>
#include <analyzer/panels/TagsPanel.h>
#include <analyzer/panels/plainToolTip.h>
#include <analyzer/panels/withoutMnemonic.h>
#include <analyzer/runWithProgress.h>
#include <analyzer/selection/UndoableSelectionModel.h>
#include <analyzer/session/sessionText.h>
#include <analyzer/session/sessionXml.h>
#include <analyzer/study/studyInfo.h>
#include <analyzer/tags/TagEditor.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/ChartViewAbstract.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/ImageMatrixViewInterface.h>
#include <analyzer/views/SelectedImageView.h>
#include <analyzer/views/ViewServices.h>
#include <analyzer/views/countText.h>
#include <analyzer/views/selectedRows.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/common/export/SurrogateModelCSVExporter.h>
#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/images/ThumbnailedImageReader.h>
#include <dataviews/common/selection/CaseIDColumn.h>
#include <dataviews/common/views/CvWaitCursor.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDate>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QShortcut>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QUndoStack>

#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace analyzer {

namespace {

constexpr const char* recentKey = "RecentStudies";
constexpr int maxRecent = 10;
constexpr int maxUndoSteps = 1000;
constexpr int progressInterval = 50; // milliseconds
constexpr int previewDelay = 80; // milliseconds: what opens faster does not flicker
constexpr int remarkTime = 10000; // milliseconds

constexpr std::uint64_t zoomStep = 5; // percent
constexpr std::uint64_t largestZoom = 100;
constexpr std::uint64_t initialZoom = 25;

template <class Slot>
QAction* makeAction(
    MainWindow& window, QMenu* menu, const QString& text, const QKeySequence& shortcut, Slot slot)
{
    QAction* action = menu->addAction(text);
    action->setShortcut(shortcut);
    QObject::connect(action, &QAction::triggered, &window, slot);
    return action;
}

/// Keeps the text of \p action, the undo or redo of the history, free of marks of keys and of markup: a change may be
/// named after a variable. \p change is what would be undone or redone now, \p changed tells another.
void showPlainly(
    QAction& action,
    const QString& prefix,
    const QString& change,
    void (QUndoStack::*changed)(const QString&))
{
    const auto show = [&action, prefix](const QString& text) {
        action.setText((prefix + QLatin1Char(' ') + withoutMnemonic(text)).trimmed());
        const QString plain = QString(prefix).remove(QLatin1Char('&'));
        action.setToolTip(plainToolTip((plain + QLatin1Char(' ') + text).trimmed()));
    };
    show(change);
    // Connected after the action's own connection, and so called after it.
    QObject::connect(&UndoStack::history(), changed, &action, show);
}

} // namespace

MainWindow::MainWindow()
    : m_selection(boost::make_shared<UndoableSelectionModel>())
    , m_pipeline(std::make_unique<DataPipelineManager>(Project::project()))
    , m_filters(std::make_unique<FilterList>(*m_pipeline))
    , m_images(boost::make_shared<ImageCache>())
    , m_scaledImages(boost::make_shared<AsyncImageCache>(
          AsyncImageCache::defaultBudgetBytes,
          AsyncImageCache::defaultThreadCount(),
          ThumbnailedImageReader::desktopDecode()))
    , m_hovered(boost::make_shared<HoveredCase>())
    , m_tags(std::make_unique<TagEditor>(*m_filters))
    , m_loader(new StudyLoader(this))
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(tr("DataViews"));
    setAcceptDrops(true);
    resize(1280, 800);

    UndoStack::history().clear(); // takes a limit only while it is empty
    UndoStack::history().setUndoLimit(maxUndoSteps);
    const ViewServices services{*m_pipeline, m_selection, m_images, m_scaledImages, m_hovered};
    m_viewArea = new ViewArea(services, this);
    buildPreview();
    buildMenus();
    buildPanels();
    m_sessions = std::make_unique<SessionKeeper>(
        SessionKeeper::Parts{*this, *m_viewArea, *m_filters, *m_tags, *m_selection, services});
    connect(m_viewArea, &ViewArea::activeViewChanged, this, &MainWindow::activeViewChanged);
    connect(m_viewArea, &ViewArea::viewsChanged, this, &MainWindow::updateActions);
    connect(m_viewArea, &ViewArea::menuRequested, this, &MainWindow::showContextMenu);
    connect(m_viewArea, &ViewArea::imageActivated, this, &MainWindow::showImage);
    connect(m_viewArea, &ViewArea::problemTold, this, &MainWindow::tellError);

    m_connections.add(
        m_selection->signalSelectionChanged.connect([this](const CaseSelection& selection) {
            m_selectedCount = selection->size();
            updateStatus();
            // When the views have it, too.
            QTimer::singleShot(0, m_tagsPanel, [this] { m_tagsPanel->imagesChanged(); });
        }));
    m_connections.add(m_pipeline->signalPipelineChanged.connect([this] { updateStatus(); }));
    connect(m_loader, &StudyLoader::finished, this, &MainWindow::takeStudy);
    connect(m_loader, &StudyLoader::cancelled, this, [this] {
        hidePreview();
        m_pendingSession.reset();
    });
    connect(
        m_loader, &StudyLoader::failed, this, [this](const QString& path, const QString& message) {
            hidePreview();
            m_pendingSession.reset();
            tellError(message);
            Q_EMIT openingFailed(path, message);
        });
    updateActions();
    updateStatus();
}

MainWindow::~MainWindow()
{
    m_connections.clear();
    m_sessions.reset();
    m_viewArea->closeAll();
    UndoStack::history().clear();
    m_viewArea->disconnect(this);
    // Before the filters and the tags that they show.
    delete m_filtersPanel;
    delete m_tagsPanel;
}

void MainWindow::openStudy(const QString& path)
{
    if (!mayLeaveSession()) {
        return;
    }
    m_pendingSession.reset();
    startLoading(path, {});
}

void MainWindow::openSession(const QString& path)
{
    openSession(path, true);
}

void MainWindow::openStudyOrSession(const QString& path)
{
    if (path.endsWith(QLatin1String(".dvsession"))) {
        openSession(path);
    } else {
        openStudy(path);
    }
}

void MainWindow::openSession(const QString& path, bool isOwn)
{
    if (!mayLeaveSession()) {
        return;
    }
    try {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            throw ExceptionBase(
                "The session \"" + path.toStdString()
                + "\" cannot be opened: " + file.errorString().toStdString() + ".");
        }
        // One more than any session has, so that a larger one is noticed.
        Session session = readSession(file.read(largestSession + 1));
        const QString study = SessionKeeper::studyPath(session, QFileInfo(path).absolutePath());
        if (!QFileInfo::exists(study)) {
            throw ExceptionBase(
                "The study of the session is not there any more: \"" + study.toStdString() + "\".");
        }
        m_pendingSession =
            PendingSession{std::move(session), QFileInfo(path).absoluteFilePath(), isOwn, {}, {}};
        startLoading(study, [this](const ReadStudy& read, const StudyFingerprint& fingerprint) {
            tryOutSession(read, fingerprint);
        });
    } catch (const ExceptionBase& error) {
        const QString message = QString::fromUtf8(error.what());
        tellError(message);
        Q_EMIT openingFailed(path, message);
    }
}

void MainWindow::saveSession(const QString& path)
{
    const CvWaitCursor wait;
    const QByteArray text = sessionText(QFileInfo(path).absolutePath());
    ReplacementFile file(path.toStdString());
    file.write(text.constData(), static_cast<std::size_t>(text.size()));
    file.commit();
}

QByteArray MainWindow::sessionText(const QString& folder) const
{
    if (Project::project().caseCount() == 0) {
        throw ExceptionBase("There is no study open that a session could be saved of.");
    }
    return m_sessions->write(folder);
}

void MainWindow::startLoading(const QString& path, StudyLoader::Check check)
{
    m_loader->start(path, std::move(check));
    m_preview->start(QFileInfo(path).fileName());
    if (!isPreviewShown()) {
        m_previewDelay->start();
    }
}

bool MainWindow::isOpening() const
{
    return m_loader->isRunning();
}

boost::shared_ptr<AnalyzerViewInterface> MainWindow::addView(const std::string& kind)
{
    return m_viewArea->open(kind);
}

void MainWindow::addFirstViews()
{
    if (m_firstViews.empty() && Project::project().auxFileCount() > 0) {
        addView("images");
        addView("scatter");
        m_viewArea->open("table", ViewArea::Beside::Below);
        return;
    }
    const std::vector<std::string> plain{"scatter", "table"};
    for (const std::string& kind : m_firstViews.empty() ? plain : m_firstViews) {
        addView(kind);
    }
}

void MainWindow::showImage(const WeakPtr<AuxFile>& file)
{
    const auto open = views();
    const auto last = std::find_if(open.rbegin(), open.rend(), [](const auto& candidate) {
        return candidate->kind() == "selected-image";
    });
    const boost::shared_ptr<AnalyzerViewInterface> view =
        last == open.rend() ? m_viewArea->open("selected-image", ViewArea::Beside::OnTop) : *last;
    boost::dynamic_pointer_cast<SelectedImageView>(view)->showImage(file);
    m_viewArea->raise(view);
}

std::vector<boost::shared_ptr<AnalyzerViewInterface>> MainWindow::views() const
{
    return m_viewArea->views();
}

boost::shared_ptr<AnalyzerViewInterface> MainWindow::activeView() const
{
    return m_viewArea->activeView();
}

void MainWindow::setActiveView(const boost::shared_ptr<AnalyzerViewInterface>& view)
{
    m_viewArea->setActiveView(view);
}

void MainWindow::activeViewChanged()
{
    const boost::shared_ptr<AnalyzerViewInterface>& view = m_viewArea->activeView();
    m_activeConnections.clear();
    if (view && view->mouseModeProperty()) {
        m_activeConnections.add(view->mouseModeProperty()->valueChanged.connect(
            [this](DataViewInterface::MouseMode) { updateActions(); }));
    }
    if (const auto* chart = dynamic_cast<const ChartViewAbstract*>(view.get())) {
        m_activeConnections.add(chart->selectionShapeProperty()->valueChanged.connect(
            [this](SelectionShape) { updateActions(); }));
    }
    if (view) {
        // A title tells what a view of images shows.
        m_activeConnections.add(
            view->signalTitleChanged.connect([this] { m_tagsPanel->imagesChanged(); }));
    }
    m_settings->setView(view);
    m_tagsPanel->imagesChanged();
    updateActions();
}

void MainWindow::assign(const CommandLine::Assignment& assignment)
{
    const boost::shared_ptr<AnalyzerViewInterface> named = view(assignment.view);
    std::string known;
    for (const boost::shared_ptr<SettingInterface>& setting : named->settings()) {
        if (setting->name() == assignment.property) {
            setting->setText(assignment.value);
            return;
        }
        known += (known.empty() ? "" : ", ") + setting->name();
    }
    throw UsageError(
        "A view of kind " + assignment.view.kind + " has no property \"" + assignment.property
        + "\"" + (known.empty() ? std::string(".") : "; it has " + known + "."));
}

boost::shared_ptr<AnalyzerViewInterface> MainWindow::view(const CommandLine::ViewName& name) const
{
    for (const ViewArea::OpenView& open : m_viewArea->openViews()) {
        if (open.view->kind() == name.kind
            && static_cast<std::size_t>(open.number) == name.number) {
            return open.view;
        }
    }
    throw UsageError("There is no view " + name.kind + std::to_string(name.number) + ".");
}

void MainWindow::exportReport(
    const QString& path, const std::function<void(double)>& progress) const
{
    const CvWaitCursor wait;
    const std::vector<boost::shared_ptr<AnalyzerViewInterface>> open = views();
    std::vector<AnalyzerViewInterface*> shown;
    for (const boost::shared_ptr<AnalyzerViewInterface>& view : open) {
        shown.push_back(view.get());
    }
    const QString date = QLocale::c().toString(QDate::currentDate(), QStringLiteral("d MMMM yyyy"));
    writeHtmlReport(
        path.toStdString(),
        makeReport(
            Project::project(),
            *m_filters,
            shown,
            *m_selection->cases(),
            date.toStdString(),
            progress));
}

void MainWindow::selectAll()
{
    const CvWaitCursor waitCursor;
    m_selection->takeCases(boost::make_shared<const CaseSet>(shownCases()));
}

void MainWindow::clearSelection()
{
    m_selection->setSelection({});
}

void MainWindow::invertSelection()
{
    const CvWaitCursor waitCursor;
    // Cases that are not shown stay as they are.
    m_selection->takeCases(boost::make_shared<const CaseSet>(
        CaseSet::symmetricDifference(shownCases(), *m_selection->cases())));
}

CaseSet MainWindow::shownCases() const
{
    m_pipeline->output().Update();
    vtkTable& table = *m_pipeline->output().GetOutput();
    std::vector<CaseIDMembership::Key> keys;
    if (table.GetNumberOfRows() > 0) {
        CaseIDColumn(*table.GetColumn(0)).appendKeys(keys);
    }
    return CaseIDColumn::toCases(std::move(keys));
}

void MainWindow::tellError(const QString& message)
{
    Q_EMIT errorTold(message);
    if (m_tellsErrorsInDialogs) {
        QMessageBox::warning(this, tr("DataViews"), message);
    }
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!mayLeaveSession()) {
        event->ignore();
        return;
    }
    m_loader->cancel();
    if (m_autosave && Project::project().caseCount() > 0) {
        try {
            m_autosave->saveAsLast(sessionText(m_autosave->folder()));
        } catch (const std::exception& error) {
            tellError(tr("What is open cannot be kept: %1").arg(QString::fromUtf8(error.what())));
        }
    }
    QMainWindow::closeEvent(event);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.size() == 1 && urls.first().isLocalFile()) {
        event->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty()) {
        openStudyOrSession(urls.first().toLocalFile());
    }
}

void MainWindow::buildMenus()
{
    const auto add = [this](auto&&... arguments) {
        return makeAction(*this, std::forward<decltype(arguments)>(arguments)...);
    };

    QAction* open = buildFileMenu();

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    QAction* undo = UndoStack::history().createUndoAction(this, tr("&Undo"));
    undo->setShortcut(QKeySequence::Undo);
    QAction* redo = UndoStack::history().createRedoAction(this, tr("&Redo"));
    redo->setShortcuts({QKeySequence::Redo, QKeySequence(tr("Ctrl+Y"))});
    const QUndoStack& history = UndoStack::history();
    showPlainly(*undo, tr("&Undo"), history.undoText(), &QUndoStack::undoTextChanged);
    showPlainly(*redo, tr("&Redo"), history.redoText(), &QUndoStack::redoTextChanged);
    // In the tool bar without what would be undone: the buttons behind it stay where they are.
    undo->setIconText(tr("Undo"));
    redo->setIconText(tr("Redo"));
    edit->addAction(undo);
    edit->addAction(redo);
    edit->addSeparator();
    QAction* all = add(edit, tr("Select &All"), QKeySequence::SelectAll, &MainWindow::selectAll);
    QAction* none =
        add(edit, tr("&Clear Selection"), tr("Ctrl+Shift+A"), &MainWindow::clearSelection);
    QAction* invert =
        add(edit, tr("&Invert Selection"), tr("Ctrl+I"), &MainWindow::invertSelection);

    const QList<QAction*> newViews = buildViewMenu();

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    add(help, tr("&About DataViews"), QKeySequence(), &MainWindow::showAbout);

    QToolBar* tools = addToolBar(tr("Tools"));
    tools->setObjectName(QStringLiteral("Tools"));
    tools->setToolButtonStyle(Qt::ToolButtonTextOnly);
    tools->addAction(open);
    tools->addSeparator();
    tools->addAction(undo);
    tools->addAction(redo);
    tools->addSeparator();
    tools->addActions(m_mouseModes->actions());
    tools->addAction(m_selectionShapeMenu->menuAction());
    qobject_cast<QToolButton*>(tools->widgetForAction(m_selectionShapeMenu->menuAction()))
        ->setPopupMode(QToolButton::InstantPopup);
    tools->addAction(m_fit);
    tools->addSeparator();
    // The ones that most studies are looked at with.
    for (const int index : {0, 1, 3, 4}) {
        tools->addAction(newViews[index]);
    }

    m_selectionActions = {all, none, invert};
    m_studyActions += m_selectionActions + newViews;
    updateRecent();
}

QAction* MainWindow::buildFileMenu()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    const auto add = [this, file](auto&&... arguments) {
        return makeAction(*this, file, std::forward<decltype(arguments)>(arguments)...);
    };
    QAction* open = add(tr("&Open Study…"), QKeySequence::Open, &MainWindow::chooseStudyFile);
    add(tr("Open Study &Folder…"), tr("Ctrl+Shift+O"), &MainWindow::chooseStudyFolder);
    m_recentMenu = file->addMenu(tr("Open &Recent"));
    file->addSeparator();
    add(tr("Open S&ession…"), tr("Ctrl+Alt+O"), &MainWindow::chooseSession);
    m_reopenLast = add(tr("Reopen &Last Session"), QKeySequence(), [this] {
        openSession(m_autosave->lastSession(), false);
    });
    m_reopenLast->setEnabled(false);
    QAction* save = add(tr("&Save Session"), QKeySequence::Save, [this] { saveSession(); });
    QAction* saveAs =
        add(tr("Save Session &As…"), tr("Ctrl+Shift+S"), [this] { chooseAndSaveSession(); });
    file->addSeparator();
    m_showReport = add(tr("Study &Information…"), QKeySequence(), &MainWindow::showReport);
    buildExportMenu(*file);
    file->addSeparator();
    QAction* quit = add(tr("&Quit"), QKeySequence::Quit, &QWidget::close);
    quit->setMenuRole(QAction::QuitRole);
    m_studyActions += {save, saveAs, m_showReport};
    return open;
}

QList<QAction*> MainWindow::buildViewMenu()
{
    const auto add = [this](auto&&... arguments) {
        return makeAction(*this, m_viewMenu, std::forward<decltype(arguments)>(arguments)...);
    };

    m_viewMenu = menuBar()->addMenu(tr("&View"));

    const struct
    {
        QString text;
        QString shortcut;
        const char* kind;
    } kinds[] = {
        {tr("New &XY Chart"), tr("Ctrl+N"), "scatter"},
        {tr("New &Line Chart"), tr("Ctrl+L"), "line"},
        {tr("New &3-D Chart"), tr("Ctrl+Shift+N"), "scatter3d"},
        {tr("New Case &Table"), tr("Ctrl+T"), "table"},
        {tr("New Image &Matrix"), tr("Ctrl+M"), "images"},
        {tr("New View of Selected &Cases"), tr("Ctrl+Shift+T"), "selected-cases"},
        {tr("New View of Selected &Images"), tr("Ctrl+Shift+M"), "selected-image"},
        {tr("New Image &Difference"), tr("Ctrl+Shift+D"), "image-diff"},
    };

    QList<QAction*> newViews;
    for (const auto& kind : kinds) {
        newViews +=
            add(kind.text, kind.shortcut, [this, name = std::string(kind.kind)] { addView(name); });
    }
    m_viewMenu->addSeparator();
    m_mouseModes = new QActionGroup(this);

    const struct
    {
        QString text;
        QString shortcut;
        DataViewInterface::MouseMode mode;
    } modes[] = {
        {tr("Mouse &Selects"), tr("Ctrl+1"), DataViewInterface::Select},
        {tr("Mouse &Pans"), tr("Ctrl+2"), DataViewInterface::Pan},
        {tr("Mouse &Zooms"), tr("Ctrl+3"), DataViewInterface::Zoom},
    };

    for (const auto& mode : modes) {
        QAction* action = add(mode.text, mode.shortcut, [this, value = mode.mode] {
            if (activeView() && activeView()->mouseModeProperty()) {
                activeView()->mouseModeProperty()->setValue(value);
            }
        });
        action->setCheckable(true);
        action->setData(static_cast<int>(mode.mode));
        m_mouseModes->addAction(action);
    }
    buildSelectionShapeMenu();
    m_viewMenu->addSeparator();
    m_fit = add(tr("&Fit Data"), tr("Ctrl+0"), [this] { activeView()->fitData(); });
    m_resetX = add(tr("Reset X Axis"), tr("Ctrl+Shift+X"), [this] { activeView()->resetXAxis(); });
    m_resetY = add(tr("Reset Y Axis"), tr("Ctrl+Shift+Y"), [this] { activeView()->resetYAxis(); });
    m_viewMenu->addSeparator();
    m_zoomIn = add(tr("Zoom &In"), QKeySequence::ZoomIn, [this] {
        const std::uint64_t zoom = activeView()->zoom()->value();
        activeView()->zoom()->setValue(std::max(zoom, std::min(zoom + zoomStep, largestZoom)));
    });
    m_zoomOut = add(tr("Zoom &Out"), QKeySequence::ZoomOut, [this] {
        const std::uint64_t zoom = activeView()->zoom()->value();
        activeView()->zoom()->setValue(zoom - std::min(zoom, zoomStep));
    });
    // Shares its keys with fitting the data: no view has both.
    m_resetZoom = add(
        tr("Reset Z&oom"), tr("Ctrl+0"), [this] { activeView()->zoom()->setValue(initialZoom); });
    return newViews;
}

void MainWindow::buildSelectionShapeMenu()
{
    m_selectionShapeMenu = m_viewMenu->addMenu(tr("&Selection Shape"));
    m_selectionShapes = new QActionGroup(this);

    const struct
    {
        QString text;
        QString shortcut;
        SelectionShape shape;
    } shapes[] = {
        {tr("&Rectangle"), tr("Ctrl+4"), SelectionShape::Rectangle},
        {tr("&Lasso"), tr("Ctrl+5"), SelectionShape::Lasso},
        {tr("Along &X"), tr("Ctrl+6"), SelectionShape::AlongX},
        {tr("Along &Y"), tr("Ctrl+7"), SelectionShape::AlongY},
    };

    for (const auto& shape : shapes) {
        const auto choose = [this, value = shape.shape] {
            if (const auto* chart = dynamic_cast<const ChartViewAbstract*>(activeView().get())) {
                chart->selectionShapeProperty()->setValue(value);
                // Whoever chooses a shape wants to select with it.
                chart->mouseModeProperty()->setValue(DataViewInterface::Select);
            }
        };
        QAction* action =
            makeAction(*this, m_selectionShapeMenu, shape.text, shape.shortcut, choose);
        action->setCheckable(true);
        action->setData(static_cast<int>(shape.shape));
        m_selectionShapes->addAction(action);
    }
}

void MainWindow::buildExportMenu(QMenu& file)
{
    QMenu* menu = file.addMenu(tr("&Export"));
    m_exportShown = makeAction(
        *this, menu, tr("Cases &Shown…"), QKeySequence(), [this] { chooseExportFile(CasesShown); });
    m_exportSelected = makeAction(*this, menu, tr("Selected &Cases…"), QKeySequence(), [this] {
        chooseExportFile(SelectedCases);
    });
    m_exportTable = makeAction(*this, menu, tr("Pipeline &Table…"), QKeySequence(), [this] {
        const QString path = QFileDialog::getSaveFileName(
            this, tr("Export Pipeline Table"), QString(), tr("CSV (*.csv)"));
        if (path.isEmpty()) {
            return;
        }
        attemptInSteps(tr("Export Pipeline Table"), [&](const auto& progress) {
            exportPipelineTable(path, progress);
        });
    });
    menu->addSeparator();
    m_exportPicture = makeAction(
        *this, menu, tr("&View as Picture…"), QKeySequence(), [this] { choosePicture(); });
    m_exportReport = makeAction(*this, menu, tr("&Report…"), QKeySequence(), [this] {
        const QString path = chooseFileToWrite(
            tr("Export Report"), tr("Web pages (*.html)"), QStringLiteral("html"));
        if (!path.isEmpty()) {
            attemptInSteps(
                tr("Export Report"), [&](const auto& progress) { exportReport(path, progress); });
        }
    });
}

void MainWindow::choosePicture()
{
    const boost::shared_ptr<AnalyzerViewInterface> view = activeView();
    const QString path = chooseFileToWrite(
        tr("Export %1").arg(m_viewArea->nameOf(*view)),
        tr("Pictures (*.png *.svg *.pdf)"),
        QStringLiteral("png"));
    if (path.isEmpty()) {
        return;
    }
    PictureDialog dialog(view->widget().size(), this);
    if (dialog.exec() == QDialog::Accepted) {
        attempt([&] { exportPictureWithProgress(*view, path.toStdString(), dialog.options()); });
    }
}

void MainWindow::exportPictureWithProgress(
    AnalyzerViewInterface& view, const std::string& path, const PictureOptions& options)
{
    const auto picture = [&] {
        const CvWaitCursor wait;
        return std::make_unique<const ViewPicture>(view, pictureFormat(path), options);
    }();
    const QString title = tr("Export Picture");
    const bool isDone = runWithProgress(
        *this, title, [&](const auto& progress) { return writePicture(*picture, path, progress); });
    if (!isDone) {
        statusBar()->showMessage(tr("Cancelled: %1").arg(title), remarkTime);
    }
}

QString MainWindow::chooseFileToWrite(
    const QString& title, const QString& kinds, const QString& suffix)
{
    QFileDialog dialog(this, title);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(kinds);
    dialog.setDefaultSuffix(suffix);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().constFirst() : QString();
}

template <class Function>
void MainWindow::attempt(Function function)
{
    try {
        function();
    } catch (const std::exception& error) {
        tellError(QString::fromUtf8(error.what()));
    }
}

template <class Function>
void MainWindow::attemptInSteps(const QString& title, Function function)
{
    attempt([&] {
        try {
            StepProgress steps(*this, title);
            function([&](double fraction) { steps.reach(fraction); });
        } catch (const StepProgress::Cancelled&) {
            statusBar()->showMessage(tr("Cancelled: %1").arg(title), remarkTime);
        }
    });
}

void MainWindow::buildPanels()
{
    m_settings = new SettingsPanel(this);
    auto* settingsDock = new QDockWidget(tr("Settings"), this);
    settingsDock->setObjectName(QStringLiteral("Settings"));
    settingsDock->setWidget(m_settings);
    addDockWidget(Qt::RightDockWidgetArea, settingsDock);
    auto* filtersDock = new QDockWidget(tr("Filters"), this);
    filtersDock->setObjectName(QStringLiteral("Filters"));
    m_filtersPanel = new FiltersPanel(*m_filters, Project::project(), this);
    filtersDock->setWidget(m_filtersPanel);
    addDockWidget(Qt::RightDockWidgetArea, filtersDock);
    resizeDocks({settingsDock, filtersDock}, {3, 2}, Qt::Vertical);
    m_viewMenu->addSeparator();
    m_viewMenu->addAction(settingsDock->toggleViewAction());
    m_viewMenu->addAction(filtersDock->toggleViewAction());

    auto* tagsDock = new QDockWidget(tr("Tags"), this);
    tagsDock->setObjectName(QStringLiteral("Tags"));
    m_tagsPanel = new TagsPanel(*m_tags, m_selection, this);
    tagsDock->setWidget(m_tagsPanel);
    addDockWidget(Qt::RightDockWidgetArea, tagsDock);
    tabifyDockWidget(filtersDock, tagsDock);
    filtersDock->raise();
    m_viewMenu->addAction(tagsDock->toggleViewAction());
    connectTagsPanel();

    auto* historyDock = new QDockWidget(tr("History"), this);
    historyDock->setObjectName(QStringLiteral("History"));
    historyDock->setWidget(new HistoryView(historyDock));
    addDockWidget(Qt::RightDockWidgetArea, historyDock);
    historyDock->hide();
    m_viewMenu->addAction(historyDock->toggleViewAction());

    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("SelectionStatus"));
    statusBar()->addPermanentWidget(m_status);
}

void MainWindow::connectTagsPanel()
{
    m_tagsPanel->setImages(
        [this] { return activeView() ? imagesMeantIn(*activeView()) : TagEditor::Files(); });
    m_connections.add(m_tagsPanel->signalShowUnderImages.connect(
        [this](const std::string& tag) { matrixForTags()->showTag(tag); }));
    m_connections.add(m_tagsPanel->signalLayOutByTags.connect(
        [this](const std::string& group) { matrixForTags()->layOutByTags(group); }));
    constexpr int mostKeys = 9;
    for (int number = 1; number <= mostKeys; ++number) {
        // Fields for numbers and texts take the digits first.
        auto* shortcut = new QShortcut(QKeySequence(QString::number(number)), this);
        connect(shortcut, &QShortcut::activated, this, [this, number] {
            m_tagsPanel->toggleTag(number);
        });
    }
}

boost::shared_ptr<ImageMatrixViewInterface> MainWindow::matrixForTags()
{
    // The active one, else the one opened last, else a new one.
    std::vector<boost::shared_ptr<AnalyzerViewInterface>> candidates = views();
    candidates.push_back(activeView());
    for (auto view = candidates.rbegin(); view != candidates.rend(); ++view) {
        if (*view && imageMatrix(**view)) {
            m_viewArea->raise(*view);
            return imageMatrix(**view);
        }
    }
    return imageMatrix(*addView("images"));
}

void MainWindow::buildPreview()
{
    m_pages = new QStackedWidget(this);
    m_preview = new StudyPreview(m_pages);
    m_pages->addWidget(m_viewArea);
    m_pages->addWidget(m_preview);
    setCentralWidget(m_pages);
    connect(m_preview, &StudyPreview::cancelled, m_loader, &StudyLoader::cancel);
    m_previewDelay = new QTimer(this);
    m_previewDelay->setObjectName(QStringLiteral("PreviewDelay"));
    m_previewDelay->setSingleShot(true);
    m_previewDelay->setInterval(previewDelay);
    connect(m_previewDelay, &QTimer::timeout, this, &MainWindow::showPreview);
    m_progressTimer.setInterval(progressInterval);
    connect(&m_progressTimer, &QTimer::timeout, this, &MainWindow::updatePreview);
}

bool MainWindow::isPreviewShown() const
{
    return m_pages->currentWidget() == m_preview;
}

void MainWindow::showPreview()
{
    if (!m_loader->isRunning()) {
        return;
    }
    updatePreview();
    m_progressTimer.start();
    m_focusBeforePreview = focusWidget();
    m_pages->setCurrentWidget(m_preview);
    m_preview->setFocus();
    // Whatever is changed in the former study now may be lost in a moment.
    for (QWidget* panel : panels()) {
        panel->setEnabled(false);
    }
    updateActions();
}

void MainWindow::updatePreview()
{
    if (const std::optional<TablePreview> table = m_loader->takePreview()) {
        m_preview->setTable(*table);
    }
    m_preview->setFraction(m_loader->fraction());
}

void MainWindow::hidePreview()
{
    m_previewDelay->stop();
    m_progressTimer.stop();
    if (!isPreviewShown()) {
        return;
    }
    m_pages->setCurrentWidget(m_viewArea);
    for (QWidget* panel : panels()) {
        panel->setEnabled(true);
    }
    if (m_focusBeforePreview) {
        m_focusBeforePreview->setFocus();
    }
    updateActions();
}

QList<QWidget*> MainWindow::panels() const
{
    return {m_settings, m_filtersPanel, m_tagsPanel};
}

void MainWindow::takeStudy(const QString& path)
{
    hidePreview();
    if (m_pendingSession) {
        takeSession(path);
        return;
    }
    ReadStudy study = m_loader->takeStudy();
    const std::size_t filterCount = m_filters->filters().size();
    replaceStudy(study);
    m_sessions->studyOpened(m_loader->readingBegan());
    m_sessionPath.clear();
    rememberRecent(path);
    {
        // What a study opens with is no doing of the user's.
        const UndoStack::SuspendUndoRecording noRecording;
        addFirstViews();
    }
    if (!views().empty()) {
        setActiveView(views().front());
    }
    updateTitle();
    updateActions();
    updateStatus();
    QStringList remarks;
    if (m_report.refusedLineCount > 0 || !m_report.notes.empty()) {
        remarks += tr("The study was opened with remarks: File ▸ Study Information.");
    }
    if (filterCount > 0) {
        remarks += tr("The filters of the former study are gone.");
    }
    statusBar()->showMessage(remarks.join(QStringLiteral(" ")), remarkTime);
    Q_EMIT studyOpened(path);
}

void MainWindow::tryOutSession(const ReadStudy& study, const StudyFingerprint& fingerprint)
{
    const CvWaitCursor wait;
    try {
        m_pendingSession->remarks =
            m_sessions->tryOut(m_pendingSession->session, study, fingerprint);
    } catch (const std::exception& error) {
        m_pendingSession->failure = QString::fromUtf8(error.what());
    }
}

void MainWindow::takeSession(const QString& path)
{
    const PendingSession pending = *std::exchange(m_pendingSession, std::nullopt);
    ReadStudy study = m_loader->takeStudy();
    const StudyFingerprint fingerprint = m_loader->fingerprint().value_or(StudyFingerprint());
    if (!pending.failure.isEmpty()) {
        tellError(pending.failure);
        Q_EMIT openingFailed(pending.path, pending.failure);
        return;
    }
    replaceStudy(study);
    m_sessions->restore(pending.session, fingerprint);
    m_sessions->studyOpened(m_loader->readingBegan(), fingerprint);
    m_sessionPath = pending.isOwn ? pending.path : QString();
    if (m_autosave && m_autosave->isLeftBehind(pending.path)) {
        m_autosave->forget(pending.path);
    }
    rememberRecent(pending.isOwn ? pending.path : path);
    updateTitle();
    updateActions();
    updateStatus();
    Q_EMIT sessionOpened(pending.path, pending.remarks);
    if (!pending.remarks.isEmpty()) {
        tellError(tr("Not all of the session could be restored:\n%1")
                      .arg(pending.remarks.join(QLatin1Char('\n'))));
    }
}

void MainWindow::replaceStudy(ReadStudy& study)
{
    // A view with OpenGL paints itself whenever it gets another parent, size or visibility. Until all have their places
    // that is in vain, and with many cases it takes long.
    m_viewArea->setUpdatesEnabled(false);
    QTimer::singleShot(0, m_viewArea, [this] { m_viewArea->setUpdatesEnabled(true); });

    // The views of the former study go before it does, and with them everything that could be undone.
    m_viewArea->closeAll();
    {
        const UndoStack::SuspendUndoRecording noRecording;
        m_selection->setSelection({});
    }
    UndoStack::history().clear();
    m_report = study.report;
    Project::project().replaceStudy(*study.project);
}

void MainWindow::updateTitle()
{
    const QString study = QString::fromStdString(Project::project().name());
    const QString session = m_sessionPath.isEmpty()
        ? QString()
        : QStringLiteral(" (%1)").arg(QFileInfo(m_sessionPath).fileName());
    setWindowTitle(tr("%1%2 – DataViews").arg(study, session));
}

void MainWindow::showContextMenu(const QPoint& place)
{
    QMenu menu(this);
    if (activeView()) {
        activeView()->addContextActions(menu);
        menu.addSeparator();
    }
    if (activeView() && activeView()->hasAxes()) {
        menu.addActions({m_fit, m_resetX, m_resetY});
        menu.addSeparator();
        menu.addActions(m_mouseModes->actions());
        menu.addMenu(m_selectionShapeMenu);
        menu.addSeparator();
    }
    menu.addActions(m_selectionActions);
    menu.exec(place);
}

void MainWindow::updateActions()
{
    updateExportActions();
    const bool hasStudy = showsStudy();
    for (QAction* action : m_studyActions) {
        action->setEnabled(hasStudy);
    }
    const bool hasAxes = hasStudy && activeView() && activeView()->hasAxes();
    for (QAction* action : {m_fit, m_resetX, m_resetY}) {
        action->setEnabled(hasAxes);
    }
    const bool zooms = hasStudy && activeView() && activeView()->zoom();
    for (QAction* action : {m_zoomIn, m_zoomOut, m_resetZoom}) {
        action->setEnabled(zooms);
    }
    const bool hasModes = hasStudy && activeView() && activeView()->mouseModeProperty();
    for (QAction* action : m_mouseModes->actions()) {
        action->setEnabled(hasModes);
        action->setChecked(
            hasModes
            && action->data().toInt()
                == static_cast<int>(activeView()->mouseModeProperty()->value()));
    }
    const auto* chart = dynamic_cast<const ChartViewAbstract*>(activeView().get());
    m_selectionShapeMenu->menuAction()->setEnabled(chart != nullptr);
    for (QAction* action : m_selectionShapes->actions()) {
        action->setEnabled(chart != nullptr);
        action->setChecked(
            chart != nullptr
            && action->data().toInt()
                == static_cast<int>(chart->selectionShapeProperty()->value()));
    }
}

bool MainWindow::showsStudy() const
{
    return Project::project().caseCount() > 0 && !isPreviewShown();
}

void MainWindow::updateExportActions()
{
    const bool hasStudy = showsStudy();
    m_exportShown->setEnabled(hasStudy);
    m_exportTable->setEnabled(hasStudy);
    m_exportReport->setEnabled(hasStudy);
    m_exportPicture->setEnabled(hasStudy && activeView());
    m_exportSelected->setEnabled(hasStudy && m_selectedCount > 0);
}

void MainWindow::updateStatus()
{
    updateExportActions();
    const std::size_t cases = Project::project().caseCount();
    if (cases == 0) {
        m_status->setText(tr("No study is open"));
        return;
    }
    QString text = tr("%1 of %2 cases selected").arg(countText(m_selectedCount), countText(cases));
    const std::size_t shown = m_pipeline->passingCount();
    if (shown != cases) {
        text += tr(", %1 shown").arg(countText(shown));
    }
    m_status->setText(text);
}

void MainWindow::updateRecent()
{
    m_recentMenu->clear();
    const QStringList recent = QSettings().value(recentKey).toStringList();
    for (const QString& path : recent) {
        QAction* action = m_recentMenu->addAction(withoutMnemonic(path));
        connect(action, &QAction::triggered, this, [this, path] { openStudyOrSession(path); });
    }
    m_recentMenu->setEnabled(!recent.isEmpty());
}

void MainWindow::rememberRecent(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QSettings settings;
    QStringList recent = settings.value(recentKey).toStringList();
    recent.removeAll(absolute);
    recent.prepend(absolute);
    while (recent.size() > maxRecent) {
        recent.removeLast();
    }
    settings.setValue(recentKey, recent);
    updateRecent();
}

void MainWindow::chooseStudyFile()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open Study"), QString(), tr("Tables (*.csv *.tsv *.txt);;All files (*)"));
    if (!path.isEmpty()) {
        openStudy(path);
    }
}

void MainWindow::chooseStudyFolder()
{
    const QString path = QFileDialog::getExistingDirectory(this, tr("Open Study Folder"));
    if (!path.isEmpty()) {
        openStudy(path);
    }
}

void MainWindow::chooseSession()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open Session"), QString(), tr("Sessions (*.dvsession);;All files (*)"));
    if (!path.isEmpty()) {
        openSession(path);
    }
}

bool MainWindow::saveSession()
{
    if (m_sessionPath.isEmpty()) {
        return chooseAndSaveSession();
    }
    try {
        saveSession(m_sessionPath);
    } catch (const ExceptionBase& error) {
        tellError(QString::fromUtf8(error.what()));
        return false;
    }
    UndoStack::history().setClean();
    rememberRecent(m_sessionPath);
    statusBar()->showMessage(
        tr("The session is saved in %1.").arg(QFileInfo(m_sessionPath).fileName()), remarkTime);
    return true;
}

bool MainWindow::chooseAndSaveSession()
{
    const QString path = chooseFileToWrite(
        tr("Save Session"), tr("Sessions (*.dvsession)"), QStringLiteral("dvsession"));
    if (path.isEmpty()) {
        return false;
    }
    const QString former = std::exchange(m_sessionPath, path);
    const bool isSaved = saveSession();
    if (!isSaved) {
        m_sessionPath = former;
    }
    updateTitle();
    return isSaved;
}

bool MainWindow::mayLeaveSession()
{
    if (m_sessionPath.isEmpty() || UndoStack::history().isClean() || !m_tellsErrorsInDialogs) {
        return true;
    }
    const QMessageBox::StandardButton answer = QMessageBox::question(
        this,
        tr("DataViews"),
        tr("The session \"%1\" has changed since it was saved.")
            .arg(QFileInfo(m_sessionPath).fileName()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && saveSession());
}

void MainWindow::startAutosave(const QString& folder)
{
    m_autosave = std::make_unique<Autosave>(folder);
    m_reopenLast->setEnabled(!m_autosave->lastSession().isEmpty());
    constexpr int interval = 60 * 1000; // milliseconds
    m_autosaveTimer.setInterval(interval);
    connect(&m_autosaveTimer, &QTimer::timeout, this, &MainWindow::autosave);
    m_autosaveTimer.start();
}

bool MainWindow::offerRecovery()
{
    const QStringList left = m_autosave->leftBehind();
    if (left.isEmpty()) {
        return false;
    }
    const QString& newest = left.constFirst();
    const QMessageBox::StandardButton answer = QMessageBox::question(
        this,
        tr("DataViews"),
        tr("DataViews ended without being asked to. Restore what was open on %1?")
            .arg(QLocale().toString(QFileInfo(newest).lastModified(), QLocale::ShortFormat)),
        QMessageBox::Yes | QMessageBox::No);
    if (answer == QMessageBox::Yes) {
        openSession(newest, false);
        return true;
    }
    for (const QString& path : left) {
        Autosave::forget(path);
    }
    return false;
}

void MainWindow::autosave()
{
    if (Project::project().caseCount() == 0 || isOpening()) {
        return;
    }
    try {
        m_autosave->save(sessionText(m_autosave->folder()));
    } catch (const std::exception& error) {
        // Not in a dialog every minute.
        statusBar()->showMessage(
            tr("What is open cannot be kept: %1").arg(QString::fromUtf8(error.what())), remarkTime);
    }
}

void MainWindow::chooseExportFile(ExportedCases cases)
{
    const QString plain = tr("CSV (*.csv)");
    const QString forSpreadsheets = tr("CSV for spreadsheets (*.csv)");
    QFileDialog dialog(
        this, cases == CasesShown ? tr("Export Cases Shown") : tr("Export Selected Cases"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({plain, forSpreadsheets});
    dialog.setDefaultSuffix(QStringLiteral("csv"));
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const std::string path = dialog.selectedFiles().constFirst().toStdString();
    const CsvOptions options{dialog.selectedNameFilter() == forSpreadsheets};
    const RowBitmap rows = rowsToExport(cases);
    attempt([&] {
        runWithProgress(*this, dialog.windowTitle(), [&](const ExportProgress& progress) {
            return writeCasesCsv(Project::project(), rows, path, options, progress);
        });
    });
}

RowBitmap MainWindow::rowsToExport(ExportedCases cases) const
{
    RowBitmap rows = m_pipeline->passingRows();
    if (cases == SelectedCases) {
        rows = selectedRows(Project::project(), *m_selection->cases());
    }
    return rows;
}

void MainWindow::exportCases(const QString& path, ExportedCases cases, bool forSpreadsheets) const
{
    const CvWaitCursor wait;
    writeCasesCsv(Project::project(), rowsToExport(cases), path.toStdString(), {forSpreadsheets});
}

void MainWindow::exportPipelineTable(
    const QString& path, const std::function<void(double)>& progress) const
{
    const CvWaitCursor wait;
    m_pipeline->output().Update();
    ReplacementFile file(path.toStdString());
    SurrogateModelCSVExporter().writeCSV(
        &m_pipeline->output(),
        [&file](const std::string& text) { file.write(text.data(), text.size()); },
        progress);
    file.commit();
}

void MainWindow::showReport()
{
    QMessageBox box(this);
    box.setWindowTitle(tr("Study Information"));
    box.setText(tr("%1\n%2").arg(
        QString::fromStdString(Project::project().name()),
        QString::fromStdString(Project::project().filePath())));
    box.setInformativeText(
        tr("%1 cases, %2 variables, %3 images, %4 missing values, %5 refused lines")
            .arg(
                countText(m_report.cases),
                countText(m_report.variables),
                countText(m_report.images),
                countText(m_report.missingValues),
                countText(m_report.refusedLineCount)));
    box.setDetailedText(QString::fromStdString(studyInfo(Project::project(), m_report)));
    box.exec();
}

void MainWindow::showAbout()
{
    QMessageBox::about(
        this,
        tr("About DataViews"),
        tr("DataViews %1\nLinked views of the cases of simulation and design studies.")
            .arg(QStringLiteral(DATAVIEWS_VERSION)));
}

} // namespace analyzer
