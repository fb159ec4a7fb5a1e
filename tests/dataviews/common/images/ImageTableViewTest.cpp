#include <dataviews/common/images/ImageMatrixTableModelAdapter.h>
#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/ImageTableView.h>
#include <dataviews/common/images/QImageTableView.h>
#include <dataviews/common/selection/SelectionBroadcaster.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/widgets/QxtLabel.h>

#include <QHeaderView>
#include <QImage>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <gmock/gmock.h>

#include <random>

#include <tests/dataviews/common/images/imageGrid.h>
#include <tests/support/RecordingSelectionModel.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using By = ImageMatrixViewProperties::RowColumnDimensionBy;
using PagesBy = ImageMatrixViewProperties::PageDimensionBy;
using Cases = std::set<unsigned long long>;
using Cell = ImageTableModel::Cell;

/// Rows are y (10, 20), columns x (1, 2, 3): each cell holds an odd case and the next.
class ImageTableViewTest : public testing::Test
{
protected:
    ImageTableViewTest()
        : m_properties(boost::make_shared<ImageMatrixViewProperties>())
        , m_master(boost::make_shared<SelectionModel>())
    {
        m_window.resize(900, 700);
    }

    void build(
        const boost::shared_ptr<ImageFileLoaderInterface>& loader =
            boost::make_shared<FakeLoader>())
    {
        m_view =
            std::make_unique<ImageTableView>(m_window, m_table, m_master, loader, m_properties);
        m_view->widget().resize(m_window.size());
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    }

    void click(int row, int column, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QImageTableView& grid = m_view->grid();
        const QModelIndex index = grid.model()->index(row, column);
        grid.scrollTo(index);
        QTest::mouseClick(
            grid.viewport(), Qt::LeftButton, modifiers, grid.visualRect(index).center());
    }

    void wheel(const QPoint& place, int delta)
    {
        QWidget* viewport = m_view->grid().viewport();
        QWheelEvent event(
            place,
            viewport->mapToGlobal(place),
            QPoint(),
            QPoint(0, delta),
            Qt::NoButton,
            Qt::ControlModifier,
            Qt::NoScrollPhase,
            false);
        QCoreApplication::sendEvent(viewport, &event);
    }

    std::set<Cell> selectedCells() const
    {
        std::set<Cell> cells;
        for (const QModelIndex& index : m_view->grid().selectionModel()->selectedIndexes()) {
            cells.emplace(index.row(), index.column());
        }
        return cells;
    }

    QString caption(const char* name) const
    {
        return m_window.findChild<QxtLabel*>(QString::fromLatin1(name))->text();
    }

    ImageStudy m_study;
    boost::shared_ptr<ImageMatrixViewProperties> m_properties;
    boost::shared_ptr<SelectionModel> m_master;
    vtkSmartPointer<vtkTableAlgorithm> m_table = vtkSmartPointer<StudyTable>::New();
    QWidget m_window;
    std::unique_ptr<ImageTableView> m_view;
};

TEST_F(ImageTableViewTest, IsLaidOutAsAGridWithCaptions)
{
    build();

    EXPECT_EQ(m_view->widget().objectName(), QStringLiteral("ImageTableView"));
    EXPECT_NE(m_window.findChild<QImageTableView*>(QStringLiteral("tableView")), nullptr);
    EXPECT_EQ(caption("rowHeader"), QStringLiteral("y"));
    EXPECT_EQ(caption("columnHeader"), QStringLiteral("x"));
    EXPECT_EQ(
        m_window.findChild<QxtLabel*>(QStringLiteral("rowHeader"))->rotation(),
        QxtLabel::CounterClockwise);
    EXPECT_EQ(m_view->grid().rowHeight(1), 246);
    EXPECT_EQ(m_view->width(), m_view->grid().width());

    m_properties->dimensionRowsBy()->setValue(By::ByTag);
    m_properties->columnVar()->setValue(Project::project().variable("page"));
    EXPECT_EQ(caption("rowHeader"), QStringLiteral("Tags"));
    EXPECT_EQ(caption("columnHeader"), QStringLiteral("page"));
    m_properties->columnVar()->setValue({});
    EXPECT_EQ(caption("columnHeader"), QString());
}

TEST_F(ImageTableViewTest, ShortRowHeadersAreNotShortened)
{
    build();
    QHeaderView& header = *m_view->grid().verticalHeader();
    ASSERT_EQ(header.model()->headerData(0, Qt::Vertical), "10");

    const QImage first =
        header.viewport()->grab(QRect(0, 0, header.width(), header.sectionSize(0) - 1)).toImage();

    // Digits are high; the dots of a text that was cut off are not.
    int inkedLines = 0;
    for (int y = 0; y < first.height(); ++y) {
        bool isInked = false;
        for (int x = 0; x < first.width(); ++x) {
            constexpr int dark = 90;
            isInked = isInked || qGray(first.pixel(x, y)) < dark;
        }
        inkedLines += isInked ? 1 : 0;
    }
    EXPECT_GE(inkedLines, header.fontMetrics().xHeight());
}

TEST_F(ImageTableViewTest, LongRowHeadersLeaveRoomForImages)
{
    Project::project().addTag("Images", std::string(200, 'w'));
    m_properties->tagsToShow()->setValue({std::string(200, 'w'), "front"});
    m_properties->dimensionRowsBy()->setValue(By::ByTag);

    build();

    EXPECT_LT(m_view->grid().verticalHeader()->width(), m_view->grid().width() / 3);
}

TEST_F(ImageTableViewTest, ClickedCellsAreTheSelectedCases)
{
    build();
    int told = 0;
    m_view->selectionBroadcaster().signalSelectedImagesChanged.connect([&told] { ++told; });

    click(0, 1);
    EXPECT_EQ(m_master->getSelections(), (Cases{5, 6}));
    click(1, 2, Qt::ControlModifier);
    EXPECT_EQ(m_master->getSelections(), (Cases{5, 6, 11, 12}));

    EXPECT_EQ(told, 2);
    EXPECT_EQ(m_view->numSelections(), 2);
    std::vector<std::string> paths;
    for (const auto& image : m_view->selectedImages()) {
        paths.push_back(image->filePath());
    }
    EXPECT_THAT(paths, ElementsAre("/5-front", "/6-front", "/6-side", "/11-front"));
    EXPECT_EQ(m_view->selectedAuxFiles().size(), 4U);
    EXPECT_EQ(m_view->displayedAuxFiles().size(), Project::project().auxFileCount());
    EXPECT_THAT(m_view->availableTags(), ElementsAre("front", "side"));
}

TEST_F(ImageTableViewTest, SelectedCasesAreTheCellsThatHoldAny)
{
    m_master->setSelection({2});
    build();
    EXPECT_EQ(selectedCells(), (std::set<Cell>{{0, 0}}));

    m_master->setSelection({3, 7, 8, 11});
    EXPECT_EQ(selectedCells(), (std::set<Cell>{{1, 0}, {1, 1}, {1, 2}}));
    EXPECT_EQ(m_view->grid().selectionModel()->selection().size(), 1);
    EXPECT_EQ(m_master->getSelections(), (Cases{3, 7, 8, 11}));

    m_properties->rowVar()->setValue({});
    EXPECT_EQ(selectedCells(), (std::set<Cell>{{0, 0}, {0, 1}, {0, 2}}));
    EXPECT_EQ(m_master->getSelections(), (Cases{3, 7, 8, 11}));
}

TEST_F(ImageTableViewTest, CasesOnOtherPagesStaySelected)
{
    build();
    m_master->setSelection({1, 2, 6});

    m_properties->choosePages(PagesBy::ByVariable);
    EXPECT_EQ(selectedCells(), (std::set<Cell>{{0, 0}}));
    EXPECT_EQ(m_master->getSelections(), (Cases{1, 2, 6}));

    m_view->pageBy()->setValue(false);
    EXPECT_EQ(m_properties->dimensionPagesBy()->value(), PagesBy::None);
    EXPECT_EQ(selectedCells(), (std::set<Cell>{{0, 0}, {0, 1}}));
}

TEST_F(ImageTableViewTest, WhileSuspendedOnlyItsOwnSelectionPassesOn)
{
    build();
    m_master->setSelection({1});
    m_view->suspend();

    m_master->setSelection({12});
    m_properties->rowVar()->setValue(Project::project().variable("page"));
    EXPECT_EQ(selectedCells(), (std::set<Cell>{{0, 0}}));
    EXPECT_EQ(caption("rowHeader"), QStringLiteral("y"));
    click(0, 1);
    EXPECT_EQ(m_master->getSelections(), (Cases{5, 6}));

    m_master->setSelection({3, 99});
    m_view->resume();
    EXPECT_EQ(selectedCells(), (std::set<Cell>{{1, 0}}));
    EXPECT_EQ(m_master->getSelections(), (Cases{3, 4}));
    m_view->refresh();
    EXPECT_EQ(caption("rowHeader"), QStringLiteral("page"));
    EXPECT_EQ(selectedCells(), (std::set<Cell>{{0, 0}, {1, 0}}));
}

TEST_F(ImageTableViewTest, ZoomChangesTheCellsAndIsOneStep)
{
    build();
    QImageTableView& grid = m_view->grid();
    m_properties->zoom()->setValue(60);
    grid.verticalScrollBar()->setValue(grid.verticalScrollBar()->maximum() / 2);
    const QPoint place(300, 300);
    const QModelIndex under = grid.indexAt(place);

    wheel(place, 120);
    wheel(place, 120);

    EXPECT_EQ(m_properties->zoom()->value(), 70U);
    EXPECT_EQ(grid.rowHeight(0), 575 + 9);
    EXPECT_EQ(grid.indexAt(place), under);
    EXPECT_EQ(grid.model()->index(0, 0).data(Qt::DecorationRole).value<QImage>().width(), 575);

    // Finer than a step, in both directions, and never below nothing.
    for (int turn = 0; turn < 24; ++turn) {
        wheel(place, -10);
    }
    EXPECT_EQ(m_properties->zoom()->value(), 60U);
    wheel(place, -120 * 100);
    EXPECT_EQ(m_properties->zoom()->value(), 0U);
    wheel(place, 120 * 100);
    EXPECT_EQ(m_properties->zoom()->value(), 100U);

    UndoStack::history().undo();
    EXPECT_EQ(m_properties->zoom()->value(), 25U);
    EXPECT_FALSE(UndoStack::history().canUndo());
    EXPECT_EQ(grid.rowHeight(0), 246);
}

TEST_F(ImageTableViewTest, LabelsMakeRoomAndLeaveTheGridInPlace)
{
    build();
    QImageTableView& grid = m_view->grid();
    m_properties->zoom()->setValue(100);
    m_view->setScrollPositions(300, 400);
    const int plain = grid.rowHeight(0);

    m_properties->showLabels()->setValue(true);
    EXPECT_EQ(grid.rowHeight(0), plain);
    m_properties->variablesInLabel()->setValue({Project::project().variable("x")});

    EXPECT_GT(grid.rowHeight(0), plain);
    EXPECT_EQ(grid.rowHeight(0), grid.rowHeight(1));
    int vertical = 0;
    int horizontal = 0;
    m_view->scrollPositions(vertical, horizontal);
    EXPECT_NEAR(vertical, 300, grid.rowHeight(0) - plain);
    EXPECT_EQ(horizontal, 400);
}

TEST_F(ImageTableViewTest, ScrollPositionsBeyondTheGridAreKept)
{
    build();

    m_view->setScrollPositions(5000, 0);

    int vertical = 0;
    int horizontal = 1;
    m_view->scrollPositions(vertical, horizontal);
    EXPECT_EQ(vertical, 5000);
    EXPECT_EQ(horizontal, 0);
}

TEST_F(ImageTableViewTest, AsksAnAsynchronousLoaderForWhatIsVisible)
{
    const auto loader = boost::make_shared<FakeAsyncLoader>();
    build(loader);
    m_properties->zoom()->setValue(100);
    m_properties->choosePages(PagesBy::ByVariable);
    QCoreApplication::processEvents();
    m_view->grid().viewport()->repaint();
    QCoreApplication::processEvents();

    // At most two columns of 809 pixels are to be seen in the window, and one row.
    ASSERT_THAT(loader->visible, testing::SizeIs(testing::Le(2U)));
    EXPECT_EQ(loader->visible.front(), "/1-front");
    // The row below.
    EXPECT_EQ(loader->ahead.size(), loader->visible.size());
    EXPECT_EQ(loader->ahead.front(), "/3-front");
    EXPECT_TRUE(m_view->isLoading());
    for (const std::string& path : std::vector<std::string>(loader->visible)) {
        loader->finish(path);
    }
    EXPECT_FALSE(m_view->isLoading());

    m_view->setScrollPositions(m_view->grid().verticalScrollBar()->maximum(), 2 * 809);
    QCoreApplication::processEvents();
    EXPECT_THAT(loader->visible, testing::Contains("/11-front"));
    EXPECT_EQ(loader->requested.count("/9-front") + loader->requested.count("/11-front"), 2U);
    EXPECT_THAT(loader->ahead, testing::IsEmpty()); // the end of the grid

    m_view->setScrollPositions(m_view->grid().verticalScrollBar()->maximum() - 1, 0);
    QCoreApplication::processEvents();
    m_view->setScrollPositions(0, 0);
    QCoreApplication::processEvents();
    EXPECT_THAT(loader->ahead, testing::IsEmpty()); // back at its begin
    m_view->setScrollPositions(0, 809);
    QCoreApplication::processEvents();
    m_window.hide();
    QCoreApplication::processEvents();
    EXPECT_THAT(loader->ahead, testing::IsEmpty());
}

TEST_F(ImageTableViewTest, FollowsThePipeline)
{
    const auto pipeline = boost::make_shared<DataPipelineManager>(Project::project());
    m_view = std::make_unique<ImageTableView>(
        m_window, pipeline, m_master, boost::make_shared<FakeLoader>(), m_properties);
    EXPECT_EQ(m_view->gridModel().columnCount(), 3);

    pipeline->addFilter(boost::make_shared<RangeFilter>(
        Project::project().variable("x"), ValueRange_s<double>{2.0, 3.0}));

    EXPECT_EQ(m_view->gridModel().columnCount(), 2);
    EXPECT_EQ(m_view->model().caseIDs({0, 0}), (Cases{5, 6}));
}

TEST_F(ImageTableViewTest, MayOutliveItsWidget)
{
    auto window = std::make_unique<QWidget>();
    const ImageTableView view(
        *window, m_table, m_master, boost::make_shared<FakeLoader>(), m_properties);

    window.reset();
    m_master->setSelection({1});
    m_properties->zoom()->setValue(30);
    m_properties->rowVar()->setValue({});

    EXPECT_EQ(view.numSelections(), 0);
    EXPECT_THAT(view.selectedImages(), IsEmpty());
}

/// Whatever happens, the cells that hold a selected case are selected, and others with cases are not.
TEST_F(ImageTableViewTest, GridAndSelectionStayInStepUnderRandomOperations)
{
    build();
    std::mt19937 random(20261121);
    const auto pick = [&random](int count) {
        return std::uniform_int_distribution<>(0, count - 1)(random);
    };
    const std::vector<WeakPtr<Variable>> variables{
        Project::project().variable("x"),
        Project::project().variable("y"),
        Project::project().variable("page"),
        {}};
    const Cases all{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const auto casesOf = [this](const std::set<Cell>& cells) {
        Cases cases;
        for (const Cell& cell : cells) {
            cases.insert(
                m_view->model().caseIDs(cell).begin(), m_view->model().caseIDs(cell).end());
        }
        return cases;
    };
    const auto cellsOf = [this](const Cases& cases) {
        std::set<Cell> cells;
        for (int row = 0; row < m_view->model().rowCount(); ++row) {
            for (int column = 0; column < m_view->model().columnCount(); ++column) {
                const Cases& held = m_view->model().caseIDs({row, column});
                if (std::any_of(held.begin(), held.end(), [&cases](unsigned long long id) {
                        return cases.count(id) != 0;
                    })) {
                    cells.emplace(row, column);
                }
            }
        }
        return cells;
    };

    bool isNewGrid = false;
    const boost::signals2::scoped_connection connection =
        m_view->model().signalModelChanged.connect([&isNewGrid] { isNewGrid = true; });

    for (int step = 0; step < 400; ++step) {
        SCOPED_TRACE(step);
        isNewGrid = false;
        const Cases before = m_master->getSelections();
        const int rows = m_view->model().rowCount();
        const int columns = m_view->model().columnCount();
        const int operation = pick(12);
        switch (operation) {
        case 0:
        case 1:
        case 2:
            if (rows > 0 && columns > 0) {
                const std::set<Cell> cellsBefore = selectedCells();
                click(
                    pick(rows),
                    pick(columns),
                    operation == 0       ? Qt::NoModifier
                        : operation == 1 ? Qt::ControlModifier
                                         : Qt::ShiftModifier);
                // A selected cell that is clicked again stays as it is.
                EXPECT_EQ(
                    m_master->getSelections(),
                    selectedCells() == cellsBefore ? before : casesOf(selectedCells()));
            }
            break;
        case 3: {
            Cases some;
            for (const unsigned long long id : all) {
                if (pick(3) == 0) {
                    some.insert(id);
                }
            }
            m_master->setSelection(some);
            EXPECT_EQ(m_master->getSelections(), some);
            break;
        }
        case 4:
            m_properties->rowVar()->setValue(variables[static_cast<std::size_t>(pick(4))]);
            break;
        case 5:
            m_properties->columnVar()->setValue(variables[static_cast<std::size_t>(pick(4))]);
            break;
        case 6:
            m_properties->dimensionRowsBy()->setValue(pick(3) == 0 ? By::ByTag : By::ByVariable);
            break;
        case 7:
            m_properties->dimensionColumnsBy()->setValue(pick(3) == 0 ? By::ByTag : By::ByVariable);
            break;
        case 8:
            m_properties->choosePages(static_cast<PagesBy>(pick(3)));
            break;
        case 9:
            m_properties->pageValue()->setValue(
                pick(2) == 0 ? Variant(static_cast<std::int64_t>(pick(3)))
                             : Variant(std::string("side")));
            break;
        case 10:
            m_properties->tagsToShow()->setValue(
                pick(2) == 0 ? std::vector<std::string>{"side", "front"}
                             : std::vector<std::string>{"front"});
            break;
        default:
            pick(2) == 0 ? UndoStack::history().undo() : UndoStack::history().redo();
            break;
        }
        if (operation > 3) {
            EXPECT_EQ(m_master->getSelections(), before);
        }
        // What was clicked in the grid itself is not repeated in its other cells with the same cases.
        if (operation == 3 || isNewGrid) {
            std::set<Cell> withCases;
            for (const Cell& cell : selectedCells()) {
                if (m_view->model().caseCount(cell) > 0) {
                    withCases.insert(cell); // cells without cases may be clicked, too
                }
            }
            EXPECT_EQ(withCases, cellsOf(m_master->getSelections()));
        }
        if (HasFailure()) {
            FAIL() << "after operation " << operation;
        }
    }
}

} // namespace
