#include <analyzer/AnalyzerApplication.h>
#include <analyzer/Autosave.h>
#include <analyzer/CommandLine.h>
#include <analyzer/MainWindow.h>
#include <analyzer/export/exportPicture.h>
#include <analyzer/filters/FilterList.h>
#include <analyzer/runAnalyzer.h>
#include <analyzer/study/ReadProgress.h>
#include <analyzer/study/StudyReader.h>
#include <analyzer/study/studyInfo.h>
#include <analyzer/views/AnalyzerViewInterface.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QHashFunctions>
#include <QPixmap>
#include <QSurfaceFormat>
#include <QTimer>
#include <QVTKOpenGLNativeWidget.h>
#include <QWindow>

#include <algorithm>
#include <exception>
#include <iostream>
#include <set>
#include <string>
#include <vector>

namespace analyzer {

namespace {

constexpr int done = 0;
constexpr int notDone = 1;
constexpr int wrongUse = 2;

int tell(const char* message, int status)
{
    std::cerr << "dataviews-analyzer: " << message << std::endl;
    return status;
}

std::string toUtf8(const char* argument)
{
    return QFile::decodeName(argument).toStdString();
}

void printInfo(const std::string& path)
{
    ReadProgress progress;
    const ReadStudy study = readStudy(path, progress);
    std::cout << studyInfo(*study.project, study.report) << std::flush;
}

/// Waits until study or session are there; throws what the window would have told.
void openAndWait(MainWindow& window, const CommandLine& commandLine)
{
    QEventLoop loop;
    bool isOver = false;
    QString problem;
    const auto end = [&] {
        isOver = true;
        loop.quit();
    };
    QObject::connect(&window, &MainWindow::studyOpened, &loop, end);
    QObject::connect(
        &window,
        &MainWindow::sessionOpened,
        &loop,
        [&](const QString&, const QStringList& remarks) {
            for (const QString& remark : remarks) {
                std::cerr << "dataviews-analyzer: " << remark.toStdString() << std::endl;
            }
            end();
        });
    QObject::connect(
        &window, &MainWindow::openingFailed, &loop, [&](const QString&, const QString& message) {
            problem = message;
            end();
        });
    if (!commandLine.session.empty()) {
        window.openSession(QString::fromStdString(commandLine.session));
    } else {
        window.openStudy(QString::fromStdString(commandLine.study));
    }
    if (!isOver) {
        loop.exec();
    }
    if (!problem.isEmpty()) {
        throw ExceptionBase(problem.toStdString());
    }
}

void select(MainWindow& window, const CommandLine& commandLine)
{
    std::set<unsigned long long> cases;
    for (const auto& [first, last] : commandLine.selection) {
        for (unsigned long long id = first; id <= last; ++id) {
            if (!Project::project().row(id)) {
                throw ExceptionBase("The study has no case " + std::to_string(id) + ".");
            }
            cases.insert(cases.end(), id);
        }
    }
    window.selection().setSelection(cases);
}

/// Lets the window come up, lay itself out and draw.
void settle(MainWindow& window)
{
    constexpr int patience = 5000; // milliseconds
    constexpr int loadingPatience = 60000; // large pictures on slow disks
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < patience
           && (window.windowHandle() == nullptr || !window.windowHandle()->isExposed())) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    // Layouts settle in a few rounds of events; the pictures are drawn at the end, once.
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    const auto views = window.views();
    const auto isLoading = [](const boost::shared_ptr<AnalyzerViewInterface>& view) {
        return view->isLoading();
    };
    timer.restart();
    while (timer.elapsed() < loadingPatience
           && std::any_of(views.begin(), views.end(), isLoading)) {
        QEventLoop pause;
        QTimer::singleShot(10, &pause, &QEventLoop::quit);
        pause.exec();
    }
    for (const boost::shared_ptr<AnalyzerViewInterface>& view : views) {
        view->render();
    }
}

void takeScreenshot(MainWindow& window, const std::string& fileName)
{
    settle(window);
    if (!window.grab().save(QString::fromStdString(fileName))) {
        throw ExceptionBase("The picture cannot be written to \"" + fileName + "\".");
    }
}

/// What the call asks for once the study is there; leaves nothing to undo.
void applyCommands(MainWindow& window, const CommandLine& commandLine)
{
    const UndoStack::SuspendUndoRecording noRecording;
    if (!commandLine.session.empty()) {
        for (const std::string& kind : commandLine.views) {
            window.addView(kind);
        }
        if (commandLine.size) {
            window.resize(*commandLine.size);
        }
    }
    for (const CommandLine::Filter& filter : commandLine.filters) {
        window.filters().addRangeFilter(filter.variable, filter.range);
    }
    for (const CommandLine::Assignment& assignment : commandLine.assignments) {
        window.assign(assignment);
    }
    if (commandLine.hasSelection) {
        select(window, commandLine);
    }
}

int runWindow(const CommandLine& commandLine)
{
    MainWindow window;
    auto* application = static_cast<AnalyzerApplication*>(qApp);
    QObject::connect(
        application,
        &AnalyzerApplication::errorReached,
        &window,
        &MainWindow::tellError,
        Qt::QueuedConnection);
    if (commandLine.size) {
        window.resize(*commandLine.size);
    }
    if (!commandLine.views.empty() && commandLine.session.empty()) {
        window.setFirstViews(commandLine.views);
    }
    const bool isShown = !commandLine.screenshot.empty() || !commandLine.saveSession.empty()
        || !commandLine.pictures.empty() || !commandLine.report.empty();
    const bool isScript = isShown || !commandLine.exportCsv.empty();
    if (!isScript) {
        window.startAutosave(Autosave::defaultFolder());
    }
    if (!isScript || isShown) {
        window.show();
    }

    // A wrong call ends the program; a study that cannot be opened does so only where nobody sits at the window.
    const bool hasStudy = !commandLine.study.empty() || !commandLine.session.empty();
    const bool mustSucceed = isScript || !commandLine.assignments.empty()
        || !commandLine.filters.empty() || commandLine.hasSelection || !commandLine.session.empty();
    const bool isRecovering = !isScript && !mustSucceed && window.offerRecovery();
    if (hasStudy && !mustSucceed && !isRecovering) {
        window.openStudy(QString::fromStdString(commandLine.study));
    }
    if (mustSucceed) {
        window.setTellsErrorsInDialogs(false);
        if (hasStudy) {
            openAndWait(window, commandLine);
        }
        applyCommands(window, commandLine);
        window.setTellsErrorsInDialogs(true);
    }
    if (!commandLine.exportCsv.empty()) {
        window.exportCases(QString::fromStdString(commandLine.exportCsv), MainWindow::CasesShown);
    }
    if (!commandLine.screenshot.empty()) {
        takeScreenshot(window, commandLine.screenshot);
    }
    if (isShown && commandLine.screenshot.empty()) {
        settle(window);
    }
    for (const CommandLine::ViewPicture& picture : commandLine.pictures) {
        PictureOptions options;
        options.size = commandLine.pictureSize.value_or(QSize());
        options.dpi = commandLine.pictureDpi;
        exportPicture(*window.view(picture.view), picture.file, options);
    }
    if (!commandLine.report.empty()) {
        window.exportReport(QString::fromStdString(commandLine.report));
    }
    if (!commandLine.saveSession.empty()) {
        window.saveSession(QString::fromStdString(commandLine.saveSession));
    }
    if (isScript) {
        return done;
    }
    return QApplication::exec();
}

} // namespace

int runAnalyzer(int argc, char** argv)
{
    // Attributes of sessions in the same order at every save: people keep sessions under version control.
    qSetGlobalQHashSeed(0);
    QCoreApplication::setOrganizationName(QStringLiteral("DataViews"));
    QCoreApplication::setApplicationName(QStringLiteral("DataViews"));
    QCoreApplication::setApplicationVersion(QStringLiteral(DATAVIEWS_VERSION));
    try {
        const CommandLine commandLine = [&] {
            std::vector<std::string> arguments;
            for (int i = 1; i < argc; ++i) {
                arguments.push_back(toUtf8(argv[i]));
            }
            return CommandLine::parse(arguments);
        }();
        if (commandLine.help) {
            std::cout << CommandLine::helpText() << std::flush;
            return done;
        }
        if (commandLine.version) {
            std::cout << "dataviews-analyzer " DATAVIEWS_VERSION << std::endl;
            return done;
        }
        if (commandLine.info) {
            printInfo(commandLine.study);
            return done;
        }
        QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
        // Pictures in cells are drawn in the pixels of the screen.
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
        const AnalyzerApplication application(argc, argv);
        return runWindow(commandLine);
    } catch (const UsageError& error) {
        return tell(error.what(), wrongUse);
    } catch (const std::exception& error) {
        return tell(error.what(), notDone);
    }
}

} // namespace analyzer
