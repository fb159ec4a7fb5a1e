#include <analyzer/MainWindow.h>
#include <analyzer/StudyPreview.h>
#include <analyzer/panels/SettingsPanel.h>
#include <analyzer/views/AnalyzerViewInterface.h>
#include <analyzer/views/CaseTableSelection.h>
#include <analyzer/views/CaseTableView.h>
#include <analyzer/views/CaseTableWidget.h>
#include <analyzer/views/ImageCanvas.h>
#include <analyzer/views/ImageMatrixView.h>
#include <analyzer/views/ScatterPlotView.h>
#include <analyzer/views/SelectedImageView.h>
#include <analyzer/views/SelectedImageWidget.h>

#include <dataviews/common/images/QImageTableView.h>

#include <dataviews/platform/data/Project.h>
#include <dataviews/platform/selection/SelectionModelInterface.h>
#include <dataviews/platform/undo/UndoStack.h>

#include <QAction>
#include <QComboBox>
#include <QDockWidget>
#include <QFile>
#include <QHelpEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolTip>
#include <QUndoView>

#include <vtkIdTypeArray.h>
#include <vtkPlotPoints.h>

#include <gtest/gtest.h>

#include <algorithm>

#include <tests/support/mouseMoves.h>

namespace {

using Cases = std::set<unsigned long long>;
using analyzer::MainWindow;
using analyzer::SettingsPanel;
using analyzer::StudyPreview;

class MainWindowTest : public testing::Test
{
protected:
    MainWindowTest() { m_window->setTellsErrorsInDialogs(false); }

    ~MainWindowTest() override
    {
        m_window.reset();
        Project nothing;
        Project::project().replaceStudy(nothing);
    }

    QString write(const QString& name, const QByteArray& content) const
    {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    QString writeStudy() const
    {
        QByteArray content = "Design,Span,Drag,Lift,Material\n";
        for (int i = 0; i < 40; ++i) {
            content += "d" + QByteArray::number(i) + ',' + QByteArray::number(i % 5) + ','
                + QByteArray::number(i * 0.37) + ',' + QByteArray::number(1.0 / (i + 1)) + ",steel"
                + QByteArray::number(i % 2) + '\n';
        }
        return write(QStringLiteral("wings.csv"), content);
    }

    /// Two spans by two times, each case with a picture of its own color: 0.png to 3.png.
    QString writeImageStudy() const
    {
        QByteArray content = "Span,Time,FILE\n";
        for (int i = 0; i < caseCountWithImages; ++i) {
            QImage image(60, 40, QImage::Format_RGB32);
            image.fill(colorOf(i));
            EXPECT_TRUE(image.save(m_folder.filePath(QStringLiteral("%1.png").arg(i))));
            content += QByteArray::number(i / 2) + ',' + QByteArray::number(i % 2) + ','
                + QByteArray::number(i) + ".png\n";
        }
        return write(QStringLiteral("images.csv"), content);
    }

    static QColor colorOf(int number)
    {
        constexpr int step = 60;
        return QColor(step * number, 200, 255 - step * number);
    }

    void show()
    {
        m_window->show();
        QApplication::setActiveWindow(m_window.get());
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
        QTest::qWait(50); // docks take their places
    }

    /// The action of a menu, by its text without the mark of its key.
    [[nodiscard]] QAction& action(const QString& text) const
    {
        for (QAction* candidate : m_window->findChildren<QAction*>()) {
            if (candidate->text().remove(QLatin1Char('&')) == text) {
                return *candidate;
            }
        }
        throw std::logic_error("there is no action " + text.toStdString());
    }

    template <class View>
    [[nodiscard]] boost::shared_ptr<View> view(std::size_t place) const
    {
        return boost::dynamic_pointer_cast<View>(m_window->views().at(place));
    }

    /// Until what \p view shows is there.
    static void settle(const analyzer::AnalyzerViewInterface& view)
    {
        QTimer deadline;
        deadline.setSingleShot(true);
        deadline.start(30000);
        while (view.isLoading() && deadline.isActive()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        ASSERT_FALSE(view.isLoading());
    }

    static constexpr int caseCountWithImages = 4;

    /// False if the study was refused.
    bool open(const QString& path)
    {
        QSignalSpy opened(m_window.get(), &MainWindow::studyOpened);
        QSignalSpy failed(m_window.get(), &MainWindow::openingFailed);
        m_window->openStudy(path);
        for (int i = 0; i < 500 && opened.isEmpty() && failed.isEmpty(); ++i) {
            QTest::qWait(10);
        }
        EXPECT_EQ(opened.size() + failed.size(), 1);
        return !opened.isEmpty();
    }

    [[nodiscard]] QString status() const
    {
        return m_window->findChild<QLabel*>(QStringLiteral("SelectionStatus"))->text();
    }

    [[nodiscard]] std::vector<std::string> kinds() const
    {
        std::vector<std::string> result;
        for (const auto& view : m_window->views()) {
            result.push_back(view->kind());
        }
        return result;
    }

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindow> m_window = std::make_unique<MainWindow>();
};

} // namespace

TEST_F(MainWindowTest, OpensAStudyWithAChartBesideTheTable)
{
    EXPECT_EQ(status(), QStringLiteral("No study is open"));

    ASSERT_TRUE(open(writeStudy()));

    EXPECT_EQ(kinds(), (std::vector<std::string>{"scatter", "table"}));
    EXPECT_EQ(status(), QStringLiteral("0 of 40 cases selected"));
    EXPECT_TRUE(m_window->windowTitle().contains(QStringLiteral("wings")));
    EXPECT_FALSE(UndoStack::history().canUndo());
}

TEST_F(MainWindowTest, UndoNamesVariablesAsTheyAre)
{
    QAction& undo = action(QStringLiteral("Undo"));
    UndoStack::history().push(new QUndoCommand(QStringLiteral("Add Filter on <b>R&D</b>")));
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo Add Filter on <b>R&&D</b>"));
    EXPECT_TRUE(undo.toolTip().contains(QStringLiteral("&lt;b&gt;R&amp;D")));

    UndoStack::history().undo();
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo"));
}

TEST_F(MainWindowTest, SelectionCommandsReachEveryView)
{
    ASSERT_TRUE(open(writeStudy()));

    m_window->selectAll();
    EXPECT_EQ(status(), QStringLiteral("40 of 40 cases selected"));
    m_window->selection().setSelection({3, 5});
    m_window->invertSelection();
    EXPECT_EQ(status(), QStringLiteral("38 of 40 cases selected"));
    EXPECT_EQ(m_window->selection().getSelections().count(3), 0U);
    m_window->clearSelection();
    EXPECT_EQ(status(), QStringLiteral("0 of 40 cases selected"));
}

TEST_F(MainWindowTest, PicksWithTheMouseShowInTheOtherView)
{
    ASSERT_TRUE(open(writeStudy()));
    m_window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
    QTest::qWait(50); // docks take their places
    const auto chart = boost::dynamic_pointer_cast<analyzer::ScatterPlotView>(m_window->views()[0]);
    const auto table = boost::dynamic_pointer_cast<analyzer::CaseTableView>(m_window->views()[1]);
    ASSERT_TRUE(chart && table);
    m_window->assign({"scatter", 1, "x", "Drag"});
    m_window->assign({"scatter", 1, "y", "Drag"});
    chart->render();

    // The twelfth of forty points on a diagonal; a reach of five pixels holds that one alone.
    QWidget* widget = &chart->widget();
    QMouseEvent move(
        QEvent::MouseMove, chart->placeOfRow(11), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &move);
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, chart->placeOfRow(11));
    EXPECT_EQ(m_window->selection().getSelections(), Cases({12}));
    EXPECT_TRUE(table->selection().contains(11));
    EXPECT_EQ(m_window->activeView(), chart);
    EXPECT_EQ(status(), QStringLiteral("1 of 40 cases selected"));

    const auto clickRow = [&table](int row, Qt::KeyboardModifiers keys) {
        const QModelIndex index = table->table().model()->index(row, 0);
        table->table().scrollTo(index);
        QTest::mouseClick(
            table->table().viewport(),
            Qt::LeftButton,
            keys,
            table->table().visualRect(index).center());
    };
    clickRow(4, Qt::ControlModifier);
    clickRow(6, Qt::ControlModifier);
    EXPECT_EQ(m_window->selection().getSelections(), Cases({5, 7, 12}));
    vtkIdTypeArray* drawn = chart->plot().GetSelection();
    ASSERT_EQ(drawn->GetNumberOfValues(), 3);
    EXPECT_EQ(drawn->GetValue(0), 4);
    EXPECT_EQ(drawn->GetValue(1), 6);
    EXPECT_EQ(drawn->GetValue(2), 11);
}

TEST_F(MainWindowTest, UndoOfSelectionsShowsInEveryView)
{
    ASSERT_TRUE(open(writeStudy()));
    show();
    const auto chart = view<analyzer::ScatterPlotView>(0);
    const auto table = view<analyzer::CaseTableView>(1);
    m_window->assign({"scatter", 1, "x", "Drag"});
    m_window->assign({"scatter", 1, "y", "Drag"});
    chart->render();
    UndoStack::history().clear();

    QWidget* widget = &chart->widget();
    const QPoint point = chart->placeOfRow(11);
    sendMouseMove(*widget, point);
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, point);
    const auto cell = [&table](int row) {
        const QModelIndex index = table->table().model()->index(row, 0);
        table->table().scrollTo(index);
        return table->table().visualRect(index).center();
    };
    QWidget& rows = *table->table().viewport();
    QTest::mousePress(&rows, Qt::LeftButton, Qt::NoModifier, cell(2));
    for (int row = 3; row <= 5; ++row) {
        sendMouseMove(rows, cell(row), Qt::LeftButton);
    }
    QTest::mouseRelease(&rows, Qt::LeftButton, Qt::NoModifier, cell(5));
    QCoreApplication::processEvents();
    action(QStringLiteral("Clear Selection")).trigger();

    auto* list = m_window->findChild<QUndoView*>();
    ASSERT_NE(list, nullptr);
    std::vector<std::string> lines;
    for (int line = 0; line < list->model()->rowCount(); ++line) {
        lines.push_back(list->model()->index(line, 0).data().toString().toStdString());
    }
    EXPECT_EQ(
        lines,
        (std::vector<std::string>{
            "Opened study", "Select 1 Case", "Select 4 Cases", "Clear Selection"}));

    const struct
    {
        int line;
        std::vector<vtkIdType> selectedRows;
    } jumps[] = {{2, {2, 3, 4, 5}}, {1, {11}}, {0, {}}, {2, {2, 3, 4, 5}}, {3, {}}};

    for (const auto& [line, selectedRows] : jumps) {
        SCOPED_TRACE(line);
        list->setCurrentIndex(list->model()->index(line, 0));
        vtkIdTypeArray* drawn = chart->plot().GetSelection();
        const auto count = static_cast<vtkIdType>(selectedRows.size());
        ASSERT_EQ(drawn == nullptr ? 0 : drawn->GetNumberOfValues(), count);
        for (vtkIdType i = 0; i < count; ++i) {
            EXPECT_EQ(drawn->GetValue(i), selectedRows[static_cast<std::size_t>(i)]);
        }
        for (int row = 0; row < 40; ++row) {
            EXPECT_EQ(
                table->selection().contains(row),
                std::count(selectedRows.begin(), selectedRows.end(), row) == 1);
        }
    }
}

TEST_F(MainWindowTest, HistoryListIsClosedAtFirstAndCutsLongTexts)
{
    show();
    auto* list = m_window->findChild<QUndoView*>();
    ASSERT_NE(list, nullptr);
    EXPECT_FALSE(list->isVisible());
    EXPECT_EQ(list->accessibleName(), QStringLiteral("History"));

    action(QStringLiteral("History")).trigger();
    UndoStack::history().push(new QUndoCommand(QString(500, QLatin1Char('W'))));

    EXPECT_TRUE(list->isVisible());
    const QModelIndex last = list->model()->index(1, 0);
    EXPECT_LE(list->visualRect(last).width(), list->viewport()->width());
    for (const int line : {0, 1}) {
        const QPoint place = list->visualRect(list->model()->index(line, 0)).center();
        QHelpEvent help(QEvent::ToolTip, place, list->viewport()->mapToGlobal(place));
        QApplication::sendEvent(list->viewport(), &help);
        EXPECT_EQ(QToolTip::text().contains(QStringLiteral("WWW")), line == 1);
    }
    QToolTip::hideText();
    EXPECT_EQ(UndoStack::history().undoLimit(), 1000);
}

TEST_F(MainWindowTest, SelectionKeepsTheZoomStepsAroundItApart)
{
    ASSERT_TRUE(open(writeImageStudy()));
    const auto zoom = m_window->views().front()->zoom();
    zoom->setValue(30);
    zoom->setValue(40);
    m_window->selection().setSelection({1, 2});
    zoom->setValue(50);
    zoom->setValue(60);
    ASSERT_EQ(UndoStack::history().count(), 3);

    UndoStack::history().undo();
    EXPECT_EQ(zoom->value(), 40U);
    EXPECT_EQ(m_window->selection().getSelections(), Cases({1, 2}));
    UndoStack::history().undo();
    EXPECT_EQ(m_window->selection().getSelections(), Cases());
    EXPECT_EQ(zoom->value(), 40U);
}

TEST_F(MainWindowTest, RefusedStudyLeavesEverythingAsItWas)
{
    ASSERT_TRUE(open(writeStudy()));
    m_window->selection().setSelection({2});
    const auto viewsBefore = m_window->views();
    QSignalSpy told(m_window.get(), &MainWindow::errorTold);

    EXPECT_FALSE(open(m_folder.filePath(QStringLiteral("nowhere.csv"))));
    EXPECT_FALSE(open(write(QStringLiteral("empty.csv"), "")));

    ASSERT_EQ(told.size(), 2);
    EXPECT_TRUE(told[0][0].toString().contains(QStringLiteral("nowhere.csv")));
    EXPECT_EQ(m_window->views(), viewsBefore);
    EXPECT_EQ(status(), QStringLiteral("1 of 40 cases selected"));
}

TEST_F(MainWindowTest, CancelledReadingLeavesEverythingAsItWas)
{
    ASSERT_TRUE(open(writeStudy()));
    m_window->selection().setSelection({2});
    QByteArray rows("x,y\n");
    constexpr int rowCount = 2000000; // far more than are read before the click
    for (int row = 0; row < rowCount; ++row) {
        rows += "1.25,3.5\n";
    }
    QSignalSpy told(m_window.get(), &MainWindow::errorTold);
    QSignalSpy opened(m_window.get(), &MainWindow::studyOpened);

    m_window->openStudy(write(QStringLiteral("large.csv"), rows));
    auto* preview = m_window->findChild<StudyPreview*>();
    ASSERT_NE(preview, nullptr);
    auto* cancel = preview->findChild<QPushButton*>();
    ASSERT_NE(cancel, nullptr);
    cancel->click();
    for (int i = 0; i < 2000 && m_window->isOpening(); ++i) {
        QTest::qWait(5);
    }
    QTest::qWait(10);

    EXPECT_FALSE(m_window->isOpening());
    EXPECT_TRUE(opened.isEmpty());
    EXPECT_TRUE(told.isEmpty()) << "whoever cancels knows";
    EXPECT_FALSE(preview->isVisible());
    EXPECT_EQ(status(), QStringLiteral("1 of 40 cases selected"));
}

TEST_F(MainWindowTest, FirstRowsStandInForTheViewsUntilTheReadingIsCancelled)
{
    ASSERT_TRUE(open(writeStudy()));
    m_window->show();
    const QWidget& view = m_window->views().front()->widget();
    auto* settings = m_window->findChild<SettingsPanel*>();
    auto* preview = m_window->findChild<StudyPreview*>();
    auto* table = preview->findChild<QTableWidget*>();
    QByteArray rows("x,y,z\n");
    constexpr int rowCount = 4000000; // far more than are read before the click
    for (int row = 0; row < rowCount; ++row) {
        rows += "1.25,3.5,abc\n";
    }
    QCoreApplication::processEvents();
    ASSERT_TRUE(view.isVisible());

    m_window->openStudy(write(QStringLiteral("large.csv"), rows));
    m_window->findChild<QTimer*>(QStringLiteral("PreviewDelay"))->start(0);
    while (m_window->isOpening() && (!preview->isVisible() || table->rowCount() == 0)) {
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(preview->isVisible());
    EXPECT_FALSE(view.isVisible());
    EXPECT_FALSE(settings->isEnabled()) << "what is set now would be lost in a moment";
    ASSERT_EQ(table->rowCount(), 100);
    EXPECT_EQ(table->horizontalHeaderItem(2)->text(), QStringLiteral("z"));
    EXPECT_EQ(table->item(99, 1)->text(), QStringLiteral("3.5"));
    QTest::mouseClick(preview->findChild<QPushButton*>(), Qt::LeftButton);
    while (m_window->isOpening()) {
        QCoreApplication::processEvents();
    }

    EXPECT_FALSE(preview->isVisible());
    EXPECT_TRUE(view.isVisible());
    EXPECT_TRUE(settings->isEnabled());
    EXPECT_EQ(status(), QStringLiteral("0 of 40 cases selected"));
}

TEST_F(MainWindowTest, AnotherStudyTakesThePlaceOfTheOpenOne)
{
    ASSERT_TRUE(open(writeStudy()));
    m_window->assign({"scatter", 1, "x", "Lift"});
    m_window->selection().setSelection({2});
    ASSERT_TRUE(UndoStack::history().canUndo());

    ASSERT_TRUE(open(write(QStringLiteral("two.csv"), "p,q\n1,2\n3,4\n")));

    EXPECT_EQ(status(), QStringLiteral("0 of 2 cases selected"));
    EXPECT_EQ(kinds(), (std::vector<std::string>{"scatter", "table"}));
    EXPECT_FALSE(UndoStack::history().canUndo());
}

TEST_F(MainWindowTest, PanelSetsTheActiveViewUndoablyAndFollowsUndo)
{
    ASSERT_TRUE(open(writeStudy()));
    auto* panel = m_window->findChild<analyzer::SettingsPanel*>();
    auto* x = panel->findChild<QComboBox*>(QStringLiteral("x"));
    ASSERT_NE(x, nullptr);
    const QString before = x->currentText();
    EXPECT_EQ(x->findText(QStringLiteral("Material")), -1) << "texts cannot be drawn along an axis";
    const int lift = x->findText(QStringLiteral("Lift"));
    ASSERT_GE(lift, 0);

    x->setFocus();
    x->setCurrentIndex(lift);
    Q_EMIT x->activated(lift);
    EXPECT_EQ(
        m_window->views().front()->title().substr(m_window->views().front()->title().size() - 4),
        "Lift");
    EXPECT_EQ(UndoStack::history().undoText(), QStringLiteral("Change X Variable"));

    UndoStack::history().undo();
    EXPECT_EQ(x->currentText(), before);
}

TEST_F(MainWindowTest, AssignmentsFindViewsByKindAndNumber)
{
    ASSERT_TRUE(open(writeStudy()));
    const auto second = m_window->addView("scatter");

    m_window->assign({"scatter", 2, "y", "Drag"});

    EXPECT_EQ(second->title().substr(0, 4), "Drag");
    EXPECT_THROW(m_window->assign({"scatter", 3, "y", "Drag"}), analyzer::UsageError);
    EXPECT_THROW(m_window->assign({"scatter", 1, "colour", "Drag"}), analyzer::UsageError);
    EXPECT_THROW(m_window->assign({"table", 1, "x", "Drag"}), analyzer::UsageError);
    EXPECT_THROW(m_window->assign({"scatter", 1, "y", "Material"}), ExceptionBase);
    EXPECT_THROW(m_window->assign({"scatter", 1, "legend", "maybe"}), ExceptionBase);
}

TEST_F(MainWindowTest, ClosedViewComesBackAsItWasAndTheOthersStayLinked)
{
    ASSERT_TRUE(open(writeStudy()));
    const boost::weak_ptr<analyzer::AnalyzerViewInterface> chart = m_window->views().front();
    const std::string before = chart.lock()->title();
    m_window->assign({"scatter", 1, "x", "Lift"});
    m_window->show();

    for (QDockWidget* dock : m_window->findChildren<QDockWidget*>()) {
        if (dock->widget()->isAncestorOf(&chart.lock()->widget())) {
            dock->close();
            break;
        }
    }
    QTest::qWait(10);

    EXPECT_EQ(kinds(), (std::vector<std::string>{"table"}));
    EXPECT_EQ(m_window->activeView(), m_window->views().front());
    m_window->selectAll();
    EXPECT_EQ(status(), QStringLiteral("40 of 40 cases selected"));

    QUndoStack& history = UndoStack::history();
    history.undo(); // the selection
    EXPECT_EQ(history.undoText(), QStringLiteral("Close Chart 1"));
    history.undo();
    EXPECT_EQ(kinds(), (std::vector<std::string>{"scatter", "table"}));
    ASSERT_EQ(m_window->views().front(), chart.lock());
    EXPECT_TRUE(chart.lock()->widget().isVisible());
    EXPECT_NE(chart.lock()->title(), before);
    history.undo(); // the variable: of the view that was away
    EXPECT_EQ(chart.lock()->title(), before);
    history.setIndex(history.count());
    EXPECT_EQ(kinds(), (std::vector<std::string>{"table"}));
    history.clear();
    EXPECT_TRUE(chart.expired()) << "nothing can bring it back";
}

TEST_F(MainWindowTest, OpensAStudyWithImagesAsAMatrixBesideTheOthers)
{
    ASSERT_TRUE(open(writeImageStudy()));
    EXPECT_EQ(kinds(), (std::vector<std::string>{"images", "scatter", "table"}));
    EXPECT_EQ(m_window->activeView(), m_window->views().front());

    action(QStringLiteral("New Image Matrix")).trigger();
    EXPECT_EQ(kinds(), (std::vector<std::string>{"images", "scatter", "table", "images"}));
    EXPECT_EQ(m_window->activeView(), m_window->views().back());
    m_window->assign({"images", 2, "row", "(all)"});
    EXPECT_EQ(view<analyzer::ImageMatrixView>(0)->title(), "Time × Span");
    EXPECT_EQ(view<analyzer::ImageMatrixView>(3)->title(), "Span");
    EXPECT_FALSE(m_window->views().front()->mouseModeProperty());
}

TEST_F(MainWindowTest, DoubleClickInTheMatrixShowsTheImageInOneView)
{
    ASSERT_TRUE(open(writeImageStudy()));
    show();
    const auto matrix = view<analyzer::ImageMatrixView>(0);
    QImageTableView& grid = matrix->imageTable().grid();

    const struct
    {
        int row;
        int column;
        int number;
    } clicks[] = {{1, 0, 1}, {0, 1, 2}, {0, 1, 2}};

    for (const auto& [row, column, number] : clicks) {
        SCOPED_TRACE(number);
        const QModelIndex index = grid.model()->index(row, column);
        grid.scrollTo(index);
        const QPoint place = grid.visualRect(index).center();
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, Qt::NoModifier, place);
        EXPECT_EQ(
            m_window->selection().getSelections(), Cases({static_cast<unsigned>(number) + 1}));
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseRelease(grid.viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::qWait(50); // docks take their places

        ASSERT_EQ(
            kinds(), (std::vector<std::string>{"images", "scatter", "table", "selected-image"}));
        const auto shown = view<analyzer::SelectedImageView>(3);
        EXPECT_EQ(m_window->activeView(), shown);
        settle(*shown);
        EXPECT_EQ(shown->title(), std::to_string(number) + ".png");
        const QImage picture = shown->imageWidget().canvas().grab().toImage();
        EXPECT_EQ(picture.pixelColor(picture.rect().center()), colorOf(number));
        EXPECT_EQ(
            m_window->selection().getSelections(), Cases({static_cast<unsigned>(number) + 1}));
    }
}

TEST_F(MainWindowTest, KeysZoomTheActiveMatrixOnly)
{
    ASSERT_TRUE(open(writeImageStudy()));
    const auto other = m_window->addView("images");
    show();
    const auto matrix = m_window->views()[0];
    const auto chart = m_window->views()[1];
    const auto press = [this](Qt::Key key) {
        QTest::keyClick(m_window.get(), key, Qt::ControlModifier);
    };
    other->zoom()->setValue(50);
    m_window->setActiveView(matrix);

    press(Qt::Key_Plus);
    EXPECT_EQ(matrix->zoom()->value(), 30U);
    press(Qt::Key_Minus);
    press(Qt::Key_Minus);
    EXPECT_EQ(matrix->zoom()->value(), 20U);
    press(Qt::Key_0);
    EXPECT_EQ(matrix->zoom()->value(), 25U);
    for (int i = 0; i < 30; ++i) {
        press(Qt::Key_Plus);
    }
    EXPECT_EQ(matrix->zoom()->value(), 100U);
    for (int i = 0; i < 30; ++i) {
        press(Qt::Key_Minus);
    }
    EXPECT_EQ(matrix->zoom()->value(), 0U);
    EXPECT_EQ(other->zoom()->value(), 50U);

    m_window->setActiveView(chart);
    for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Minus, Qt::Key_0}) {
        press(key);
    }
    EXPECT_EQ(matrix->zoom()->value(), 0U);
    EXPECT_EQ(other->zoom()->value(), 50U);
    m_window->setActiveView(other);
    press(Qt::Key_0);
    EXPECT_EQ(other->zoom()->value(), 25U);
    EXPECT_EQ(matrix->zoom()->value(), 0U);
}
