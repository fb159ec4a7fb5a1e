#include <analyzer/HistoryView.h>
#include <analyzer/MainWindow.h>
#include <analyzer/StudyLoader.h>
#include <analyzer/ViewFrame.h>
#include <analyzer/export/writeCasesCsv.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/panels/FiltersPanel.h>
#include <analyzer/panels/SettingsPanel.h>
#include <analyzer/panels/plainToolTip.h>
#include <analyzer/panels/withoutMnemonic.h>
#include <analyzer/selection/UndoableSelectionModel.h>
#include <analyzer/study/studyInfo.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/HoveredCase.h>
#include <analyzer/views/SelectedImageView.h>
#include <analyzer/views/ViewServices.h>
#include <analyzer/views/countText.h>
#include <analyzer/views/viewKinds.h>

#include <dataviews/common/export/SurrogateModelCSVExporter.h>
#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/selection/RecordTableUtils.h>
#include <dataviews/common/views/CvWaitCursor.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressDialog>
#include <QSettings>
#include <QStatusBar>
#include <QToolBar>
#include <QUndoStack>

#include <vtkTable.h>
#include <vtkTableAlgorithm.h>

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
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
constexpr int progressSteps = 1000;

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
    , m_scaledImages(boost::make_shared<AsyncImageCache>())
    , m_hovered(boost::make_shared<HoveredCase>())
    , m_loader(new StudyLoader(this))
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(tr("DataViews"));
    setAcceptDrops(true);
    resize(1280, 800);

    UndoStack::history().clear(); // takes a limit only while it is empty
    UndoStack::history().setUndoLimit(maxUndoSteps);
    buildMenus();
    buildPanels();

    m_connections.add(m_selection->signalSelectionChanged.connect(
        [this](const std::set<unsigned long long>& selection) {
            m_selectedCount = selection.size();
            updateStatus();
        }));
    m_connections.add(m_pipeline->signalPipelineChanged.connect([this] { updateStatus(); }));
    connect(m_loader, &StudyLoader::finished, this, &MainWindow::takeStudy);
    connect(m_loader, &StudyLoader::cancelled, this, &MainWindow::closeProgress);
    connect(
        m_loader, &StudyLoader::failed, this, [this](const QString& path, const QString& message) {
            closeProgress();
            tellError(message);
            Q_EMIT openingFailed(path, message);
        });
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        focusMoved(now);
    });
    m_progressTimer.setInterval(progressInterval);
    connect(&m_progressTimer, &QTimer::timeout, this, [this] {
        if (m_progress && m_loader->isRunning()) {
            m_progress->setValue(
                static_cast<int>(std::lround(m_loader->fraction() * (progressSteps - 1))));
        } else {
            m_progressTimer.stop();
        }
    });
    updateActions();
    updateStatus();
}

MainWindow::~MainWindow()
{
    // Focus moves also while the parts of the window go.
    disconnect(qApp, nullptr, this, nullptr);
    m_connections.clear();
    closeViews();
    UndoStack::history().clear();
    // Before the filters that it shows.
    delete m_filtersPanel;
}

void MainWindow::openStudy(const QString& path)
{
    m_loader->start(path);
    closeProgress();
    m_progress = new QProgressDialog(
        tr("Reading %1…").arg(QFileInfo(path).fileName()), tr("Cancel"), 0, progressSteps, this);
    m_progress->setWindowTitle(tr("Open Study"));
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setAutoClose(false);
    m_progress->setAutoReset(false);
    m_progress->setMinimumDuration(300);
    m_progress->setValue(0);
    connect(m_progress, &QProgressDialog::canceled, m_loader, &StudyLoader::cancel);
    m_progressTimer.start();
}

bool MainWindow::isOpening() const
{
    return m_loader->isRunning();
}

boost::shared_ptr<AnalyzerViewInterface> MainWindow::addView(const std::string& kind)
{
    return addView(kind, Qt::Horizontal);
}

boost::shared_ptr<AnalyzerViewInterface> MainWindow::addView(
    const std::string& kind, Qt::Orientation beside, QDockWidget* over)
{
    boost::shared_ptr<AnalyzerViewInterface> view =
        makeView(kind, {*m_pipeline, m_selection, m_images, m_scaledImages, m_hovered});
    int number = 1;
    for (const OpenView& open : m_views) {
        number = open.view->kind() == kind ? std::max(number, open.number + 1) : number;
    }

    auto* dock = new QDockWidget(m_viewArea);
    dock->setObjectName(QStringLiteral("View%1").arg(++m_viewsMade));
    dock->setAttribute(Qt::WA_DeleteOnClose, false);
    dock->setWidget(new ViewFrame(view, m_selection, dock));
    dock->installEventFilter(this);
    if (m_views.empty()) {
        m_welcome->hide();
        m_viewArea->addDockWidget(Qt::LeftDockWidgetArea, dock);
    } else if (over != nullptr) {
        m_viewArea->tabifyDockWidget(over, dock);
    } else {
        m_viewArea->splitDockWidget(m_views.back().dock, dock, beside);
    }
    m_views.push_back({view, dock, number});
    nameDock(view.get());

    if (over == nullptr) {
        // Equal shares for all views.
        QList<QDockWidget*> docks;
        QList<int> shares;
        for (const OpenView& open : m_views) {
            docks.append(open.dock);
            shares.append(1);
        }
        m_viewArea->resizeDocks(docks, shares, beside);
    }

    AnalyzerViewInterface* raw = view.get();
    m_connections.add(view->signalTitleChanged.connect([this, raw] { nameDock(raw); }));
    m_connections.add(view->signalContextMenuRequested.connect([this, raw](const QPoint& place) {
        const auto found = find(raw);
        if (found != m_views.end()) {
            setActiveView(found->view);
        }
        showContextMenu(place);
    }));
    m_connections.add(view->signalImageActivated.connect(
        [this](const WeakPtr<AuxFile>& file) { showImage(file); }));
    m_connections.add(view->signalProblem.connect(
        [this](const std::string& sentence) { tellError(QString::fromStdString(sentence)); }));
    dock->show();
    setActiveView(view);
    updateActions();
    return view;
}

void MainWindow::addFirstViews()
{
    if (m_firstViews.empty() && Project::project().auxFileCount() > 0) {
        addView("images");
        addView("scatter");
        addView("table", Qt::Vertical);
        return;
    }
    const std::vector<std::string> plain{"scatter", "table"};
    for (const std::string& kind : m_firstViews.empty() ? plain : m_firstViews) {
        addView(kind);
    }
}

void MainWindow::showImage(const WeakPtr<AuxFile>& file)
{
    const auto open = std::find_if(m_views.rbegin(), m_views.rend(), [](const OpenView& candidate) {
        return candidate.view->kind() == "selected-image";
    });
    const boost::shared_ptr<AnalyzerViewInterface> view = open == m_views.rend()
        ? addView("selected-image", Qt::Horizontal, largestOtherDock())
        : open->view;
    boost::dynamic_pointer_cast<SelectedImageView>(view)->showImage(file);
    find(view.get())->dock->raise();
    setActiveView(view);
}

QDockWidget* MainWindow::largestOtherDock() const
{
    const auto area = [](const QDockWidget& dock) {
        return dock.isVisible() && !dock.isFloating() ? dock.width() * dock.height() : 0;
    };
    QDockWidget* largest = nullptr;
    for (const OpenView& open : m_views) {
        if (open.view != m_active && area(*open.dock) > (largest == nullptr ? 0 : area(*largest))) {
            largest = open.dock;
        }
    }
    return largest;
}

std::vector<boost::shared_ptr<AnalyzerViewInterface>> MainWindow::views() const
{
    std::vector<boost::shared_ptr<AnalyzerViewInterface>> result;
    for (const OpenView& open : m_views) {
        result.push_back(open.view);
    }
    return result;
}

boost::shared_ptr<AnalyzerViewInterface> MainWindow::activeView() const
{
    return m_active;
}

void MainWindow::setActiveView(const boost::shared_ptr<AnalyzerViewInterface>& view)
{
    if (view == m_active) {
        return;
    }
    m_active = view;
    m_activeConnections.clear();
    if (m_active && m_active->mouseModeProperty()) {
        m_activeConnections.add(m_active->mouseModeProperty()->valueChanged.connect(
            [this](DataViewInterface::MouseMode) { updateActions(); }));
    }
    for (const OpenView& open : m_views) {
        nameDock(open.view.get());
    }
    m_settings->setView(view);
    updateActions();
}

void MainWindow::assign(const CommandLine::Assignment& assignment)
{
    std::size_t number = 0;
    for (const OpenView& open : m_views) {
        if (open.view->kind() != assignment.viewKind || ++number != assignment.viewNumber) {
            continue;
        }
        std::string known;
        for (const boost::shared_ptr<SettingInterface>& setting : open.view->settings()) {
            if (setting->name() == assignment.property) {
                setting->setText(assignment.value);
                return;
            }
            known += (known.empty() ? "" : ", ") + setting->name();
        }
        throw UsageError(
            "A view of kind " + assignment.viewKind + " has no property \"" + assignment.property
            + "\"" + (known.empty() ? std::string(".") : "; it has " + known + "."));
    }
    throw UsageError(
        "There is no view " + assignment.viewKind + std::to_string(assignment.viewNumber)
        + " to set " + assignment.property + " of.");
}

void MainWindow::selectAll()
{
    const CvWaitCursor waitCursor;
    m_pipeline->output().Update();
    m_selection->takeSelection(RecordTableUtils::caseIDs(*m_pipeline->output().GetOutput()));
}

void MainWindow::clearSelection()
{
    m_selection->setSelection({});
}

void MainWindow::invertSelection()
{
    const CvWaitCursor waitCursor;
    m_pipeline->output().Update();
    const std::set<unsigned long long> shown =
        RecordTableUtils::caseIDs(*m_pipeline->output().GetOutput());
    const std::set<unsigned long long> selected = m_selection->getSelections();
    // Cases that are not shown stay as they are.
    std::set<unsigned long long> inverted;
    std::set_symmetric_difference(
        shown.begin(),
        shown.end(),
        selected.begin(),
        selected.end(),
        std::inserter(inverted, inverted.end()));
    m_selection->takeSelection(std::move(inverted));
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
    m_loader->cancel();
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
        openStudy(urls.first().toLocalFile());
    }
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    auto* dock = qobject_cast<QDockWidget*>(watched);
    if (dock != nullptr && event->type() == QEvent::Close) {
        // Later: the dock is in the middle of its own event.
        QTimer::singleShot(0, this, [this, dock] { closeView(dock); });
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::buildMenus()
{
    const auto add = [this](auto&&... arguments) {
        return makeAction(*this, std::forward<decltype(arguments)>(arguments)...);
    };

    QMenu* file = menuBar()->addMenu(tr("&File"));
    QAction* open = add(file, tr("&Open Study…"), QKeySequence::Open, &MainWindow::chooseStudyFile);
    add(file, tr("Open Study &Folder…"), tr("Ctrl+Shift+O"), &MainWindow::chooseStudyFolder);
    m_recentMenu = file->addMenu(tr("Open &Recent"));
    file->addSeparator();
    m_showReport = add(file, tr("Study &Information…"), QKeySequence(), &MainWindow::showReport);
    buildExportMenu(*file);
    file->addSeparator();
    QAction* quit = add(file, tr("&Quit"), QKeySequence::Quit, &QWidget::close);
    quit->setMenuRole(QAction::QuitRole);

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
    tools->addAction(m_fit);
    tools->addSeparator();
    tools->addActions(newViews.mid(0, 4));

    m_selectionActions = {all, none, invert};
    m_studyActions = QList<QAction*>{all, none, invert, m_showReport} + newViews;
    updateRecent();
}

QList<QAction*> MainWindow::buildViewMenu()
{
    const auto add = [this](auto&&... arguments) {
        return makeAction(*this, m_viewMenu, std::forward<decltype(arguments)>(arguments)...);
    };

    m_viewMenu = menuBar()->addMenu(tr("&View"));
    const QList<QAction*> newViews = {
        add(tr("New &XY Chart"), tr("Ctrl+N"), [this] { addView("scatter"); }),
        add(tr("New &Line Chart"), tr("Ctrl+L"), [this] { addView("line"); }),
        add(tr("New Case &Table"), tr("Ctrl+T"), [this] { addView("table"); }),
        add(tr("New Image &Matrix"), tr("Ctrl+M"), [this] { addView("images"); }),
        add(tr("New View of Selected &Images"), tr("Ctrl+Shift+M"), [this] {
            addView("selected-image");
        })};
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
            if (m_active && m_active->mouseModeProperty()) {
                m_active->mouseModeProperty()->setValue(value);
            }
        });
        action->setCheckable(true);
        action->setData(static_cast<int>(mode.mode));
        m_mouseModes->addAction(action);
    }
    m_viewMenu->addSeparator();
    m_fit = add(tr("&Fit Data"), tr("Ctrl+0"), [this] { m_active->fitData(); });
    m_resetX = add(tr("Reset X Axis"), tr("Ctrl+Shift+X"), [this] { m_active->resetXAxis(); });
    m_resetY = add(tr("Reset Y Axis"), tr("Ctrl+Shift+Y"), [this] { m_active->resetYAxis(); });
    m_viewMenu->addSeparator();
    m_zoomIn = add(tr("Zoom &In"), QKeySequence::ZoomIn, [this] {
        const std::uint64_t zoom = m_active->zoom()->value();
        m_active->zoom()->setValue(std::max(zoom, std::min(zoom + zoomStep, largestZoom)));
    });
    m_zoomOut = add(tr("Zoom &Out"), QKeySequence::ZoomOut, [this] {
        const std::uint64_t zoom = m_active->zoom()->value();
        m_active->zoom()->setValue(zoom - std::min(zoom, zoomStep));
    });
    // Shares its keys with fitting the data: no view has both.
    m_resetZoom =
        add(tr("Reset Z&oom"), tr("Ctrl+0"), [this] { m_active->zoom()->setValue(initialZoom); });
    return newViews;
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
        try {
            exportPipelineTable(path);
        } catch (const ExceptionBase& error) {
            tellError(QString::fromUtf8(error.what()));
        }
    });
}

void MainWindow::buildPanels()
{
    m_viewArea = new QMainWindow(this);
    m_viewArea->setWindowFlags(Qt::Widget); // a main window asks to be a window of its own
    m_viewArea->setDockNestingEnabled(true);
    m_viewArea->setTabPosition(Qt::AllDockWidgetAreas, QTabWidget::North);
    // Charts place their legends in the first picture: no pictures of sizes on the way.
    m_viewArea->setAnimated(false);
    m_welcome = new QLabel(
        tr("Open a study: File ▸ Open Study, or drop a file or folder here."), m_viewArea);
    m_welcome->setAlignment(Qt::AlignCenter);
    m_welcome->setWordWrap(true);
    m_viewArea->setCentralWidget(m_welcome);
    setCentralWidget(m_viewArea);

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

void MainWindow::closeProgress()
{
    if (m_progress) {
        // Not at once: the dialog handles events in the middle of showing a new value, and this may be one of them.
        m_progress->hide();
        m_progress->deleteLater();
        m_progress = nullptr;
    }
}

void MainWindow::takeStudy(const QString& path)
{
    closeProgress();
    ReadStudy study = m_loader->takeStudy();

    // The views of the former study go before it does, and with them everything that could be undone.
    closeViews();
    {
        const UndoStack::SuspendUndoRecording noRecording;
        m_selection->setSelection({});
    }
    UndoStack::history().clear();
    m_report = study.report;
    const std::size_t filterCount = m_filters->filters().size();
    Project::project().replaceStudy(*study.project);

    setWindowTitle(tr("%1 – DataViews").arg(QString::fromStdString(Project::project().name())));
    rememberRecent(path);
    addFirstViews();
    if (!m_views.empty()) {
        setActiveView(m_views.front().view);
    }
    updateActions();
    updateStatus();
    QStringList remarks;
    if (m_report.refusedLineCount > 0 || !m_report.notes.empty()) {
        remarks += tr("The study was opened with remarks: File ▸ Study Information.");
    }
    if (filterCount > 0) {
        remarks += tr("The filters of the former study are gone.");
    }
    constexpr int remarkTime = 10000; // milliseconds
    statusBar()->showMessage(remarks.join(QStringLiteral(" ")), remarkTime);
    Q_EMIT studyOpened(path);
}

void MainWindow::closeViews()
{
    while (!m_views.empty()) {
        closeView(m_views.back().dock);
    }
}

void MainWindow::closeView(QDockWidget* dock)
{
    const auto place = std::find_if(
        m_views.begin(), m_views.end(), [dock](const OpenView& open) { return open.dock == dock; });
    if (place == m_views.end()) {
        return;
    }
    const OpenView closed = *place;
    m_views.erase(place);
    if (m_active == closed.view) {
        setActiveView(
            m_views.empty() ? boost::shared_ptr<AnalyzerViewInterface>() : m_views.back().view);
    }
    closed.view->widget().setParent(nullptr); // the view's own
    delete closed.dock;
    m_welcome->setVisible(m_views.empty());
    updateActions();
}

void MainWindow::nameDock(const AnalyzerViewInterface* view)
{
    const auto found = find(view);
    if (found == m_views.end()) {
        return;
    }
    const std::map<std::string, QString> kinds{
        {"line", tr("Lines")},
        {"table", tr("Table")},
        {"images", tr("Images")},
        {"selected-image", tr("Image")}};
    const auto named = kinds.find(view->kind());
    const QString kind = named == kinds.end() ? tr("Chart") : named->second;
    const QString mark = found->view == m_active ? QStringLiteral("● ") : QString();
    found->dock->setWindowTitle(tr("%1%2 %3: %4")
                                    .arg(mark, kind)
                                    .arg(found->number)
                                    .arg(QString::fromStdString(view->title())));
}

void MainWindow::focusMoved(const QWidget* widget)
{
    for (const OpenView& open : m_views) {
        if (widget != nullptr && (widget == open.dock || open.dock->isAncestorOf(widget))) {
            setActiveView(open.view);
            return;
        }
    }
}

void MainWindow::showContextMenu(const QPoint& place)
{
    QMenu menu(this);
    if (m_active) {
        m_active->addContextActions(menu);
        menu.addSeparator();
    }
    if (m_active && m_active->hasAxes()) {
        menu.addActions({m_fit, m_resetX, m_resetY});
        menu.addSeparator();
        menu.addActions(m_mouseModes->actions());
        menu.addSeparator();
    }
    menu.addActions(m_selectionActions);
    menu.exec(place);
}

void MainWindow::updateActions()
{
    const bool hasStudy = Project::project().caseCount() > 0;
    for (QAction* action : m_studyActions) {
        action->setEnabled(hasStudy);
    }
    const bool hasAxes = m_active && m_active->hasAxes();
    for (QAction* action : {m_fit, m_resetX, m_resetY}) {
        action->setEnabled(hasAxes);
    }
    const bool zooms = m_active && m_active->zoom();
    for (QAction* action : {m_zoomIn, m_zoomOut, m_resetZoom}) {
        action->setEnabled(zooms);
    }
    const bool hasModes = m_active && m_active->mouseModeProperty();
    for (QAction* action : m_mouseModes->actions()) {
        action->setEnabled(hasModes);
        action->setChecked(
            hasModes
            && action->data().toInt() == static_cast<int>(m_active->mouseModeProperty()->value()));
    }
}

void MainWindow::updateExportActions()
{
    const bool hasStudy = Project::project().caseCount() > 0;
    m_exportShown->setEnabled(hasStudy);
    m_exportTable->setEnabled(hasStudy);
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
        connect(action, &QAction::triggered, this, [this, path] { openStudy(path); });
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
    try {
        exportCases(
            dialog.selectedFiles().constFirst(),
            cases,
            dialog.selectedNameFilter() == forSpreadsheets);
    } catch (const ExceptionBase& error) {
        tellError(QString::fromUtf8(error.what()));
    }
}

void MainWindow::exportCases(const QString& path, ExportedCases cases, bool forSpreadsheets) const
{
    const CvWaitCursor wait;
    const Project& project = Project::project();
    RowBitmap rows = m_pipeline->passingRows();
    if (cases == SelectedCases) {
        rows.fill(false);
        for (const unsigned long long id : m_selection->getSelections()) {
            if (const std::optional<std::size_t> row = project.row(id)) {
                rows.set(*row);
            }
        }
    }
    writeCasesCsv(project, rows, path.toStdString(), {forSpreadsheets});
}

void MainWindow::exportPipelineTable(const QString& path) const
{
    const CvWaitCursor wait;
    m_pipeline->output().Update();
    if (!SurrogateModelCSVExporter().writeCSVFile(
            &m_pipeline->output(), QFile::encodeName(path).toStdString())) {
        throw ExceptionBase("\"" + path.toStdString() + "\" cannot be opened for writing.");
    }
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

std::vector<MainWindow::OpenView>::const_iterator MainWindow::find(
    const AnalyzerViewInterface* view) const
{
    return std::find_if(m_views.begin(), m_views.end(), [view](const OpenView& open) {
        return open.view.get() == view;
    });
}

} // namespace analyzer
