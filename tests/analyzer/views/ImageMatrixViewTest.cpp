#include <analyzer/study/StudyReader.h>
#include <analyzer/views/ImageMatrixView.h>
#include <analyzer/views/StepsSettingInterface.h>

#include <dataviews/common/images/AsyncImageCache.h>
#include <dataviews/common/images/AsyncImageLoader.h>
#include <dataviews/common/images/ImageMatrixTableModelAdapter.h>
#include <dataviews/common/images/ImageMatrixViewProperties.h>
#include <dataviews/common/images/ImageTableModel.h>
#include <dataviews/common/images/QImageTableView.h>

#include <dataviews/platform/pipeline/DataPipelineManager.h>
#include <dataviews/platform/pipeline/RangeFilter.h>
#include <dataviews/platform/selection/SelectionModel.h>
#include <dataviews/platform/widgets/QxtLabel.h>

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QMenu>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include <functional>

#include <sys/stat.h>
#include <tests/dataviews/common/images/imageGrid.h>
#include <tests/support/mouseMoves.h>

namespace analyzer {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Cases = std::set<unsigned long long>;
using Cell = ImageTableModel::Cell;
using State = ImageMatrixTableModelAdapter::State;

/// A matrix in a window, and what a user does with it.
class ShownMatrix
{
public:
    explicit ShownMatrix(const boost::shared_ptr<ImageFileLoaderInterface>& loader)
        : m_view(boost::make_shared<ImageMatrixView>(m_pipeline, m_master, loader, m_hovered))
    {
        m_connections.add(
            m_view->signalTitleChanged.connect([this] { titles.push_back(m_view->title()); }));
        m_connections.add(m_view->signalContextMenuRequested.connect(
            [this](const QPoint& place) { menuPlaces.push_back(place); }));
        m_connections.add(
            m_view->signalImageActivated.connect([this](const WeakPtr<AuxFile>& file) {
                activated.push_back(file.lock()->filePath());
            }));
        m_view->widget().resize(900, 700);
        m_view->widget().show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_view->widget()));
    }

    [[nodiscard]] ImageMatrixView& view() const { return *m_view; }

    [[nodiscard]] QImageTableView& grid() const { return m_view->imageTable().grid(); }

    [[nodiscard]] SelectionModel& master() const { return *m_master; }

    [[nodiscard]] DataPipelineManager& pipeline() { return m_pipeline; }

    [[nodiscard]] HoveredCase& hovered() { return *m_hovered; }

    [[nodiscard]] SettingInterface& setting(const std::string& name) const
    {
        for (const boost::shared_ptr<SettingInterface>& candidate : m_view->settings()) {
            if (candidate->name() == name) {
                return *candidate;
            }
        }
        throw std::logic_error("there is no setting " + name);
    }

    void set(const std::string& name, const std::string& text) const
    {
        setting(name).setText(text);
    }

    /// The captions and headers of rows and columns, the files of the first cell: "y: 10 20 | x: 1 2 3 | /1-front".
    [[nodiscard]] std::string shown() const
    {
        const auto side = [this](const char* caption, const QHeaderView& header) {
            std::string text = m_view->widget()
                                   .findChild<QxtLabel*>(QString::fromLatin1(caption))
                                   ->text()
                                   .toStdString()
                + ":";
            for (int section = 0; section < header.count(); ++section) {
                text += " "
                    + grid()
                          .model()
                          ->headerData(section, header.orientation())
                          .toString()
                          .toStdString();
            }
            return text + " |";
        };
        std::string text = side("rowHeader", *grid().verticalHeader()) + " "
            + side("columnHeader", *grid().horizontalHeader());
        const ImageTableModel& model = m_view->imageTable().model();
        if (model.rowCount() > 0 && model.columnCount() > 0) {
            for (const AuxFileImageData& image : model.images({0, 0})) {
                text += " " + image.filePath();
            }
        }
        return text;
    }

    [[nodiscard]] std::string textUnder(int row, int column) const
    {
        return grid().model()->index(row, column).data().toString().toStdString();
    }

    [[nodiscard]] std::set<Cell> selectedCells() const
    {
        std::set<Cell> cells;
        for (const QModelIndex& index : grid().selectionModel()->selectedIndexes()) {
            cells.emplace(index.row(), index.column());
        }
        return cells;
    }

    [[nodiscard]] QPoint placeOf(int row, int column) const
    {
        const QModelIndex index = grid().model()->index(row, column);
        grid().scrollTo(index);
        return grid().visualRect(index).center();
    }

    [[nodiscard]] QPoint emptyPlace() const { return grid().viewport()->rect().bottomRight(); }

    /// As a user does it, who first presses the button twice.
    void doubleClick(const QPoint& place) const
    {
        QTest::mouseClick(grid().viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseDClick(grid().viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseRelease(grid().viewport(), Qt::LeftButton, Qt::NoModifier, place);
    }

    /// The actions for \p place after a click with the right button.
    std::unique_ptr<QMenu> menuAt(const QPoint& place) const
    {
        QWidget* viewport = grid().viewport();
        QTest::mousePress(viewport, Qt::RightButton, Qt::NoModifier, place);
        QContextMenuEvent event(
            QContextMenuEvent::Mouse, place, viewport->mapToGlobal(place), Qt::NoModifier);
        QApplication::sendEvent(viewport, &event);
        QTest::mouseRelease(viewport, Qt::RightButton, Qt::NoModifier, place);
        auto menu = std::make_unique<QMenu>();
        m_view->addContextActions(*menu);
        return menu;
    }

    static QAction& actionOf(const QMenu& menu, const QString& text)
    {
        for (QAction* action : menu.actions()) {
            if (action->text().remove(QLatin1Char('&')) == text) {
                return *action;
            }
        }
        throw std::logic_error("the menu has no action " + text.toStdString());
    }

    /// Until the pictures on the screen are there.
    void settle() const
    {
        QTimer deadline;
        deadline.setSingleShot(true);
        deadline.start(30000);
        while (m_view->isLoading() && deadline.isActive()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        ASSERT_FALSE(m_view->isLoading());
    }

    void close()
    {
        m_connections.clear();
        m_view.reset();
    }

    std::vector<std::string> titles;
    std::vector<QPoint> menuPlaces;
    std::vector<std::string> activated;

private:
    DataPipelineManager m_pipeline{Project::project()};
    boost::shared_ptr<SelectionModel> m_master = boost::make_shared<SelectionModel>();
    boost::shared_ptr<HoveredCase> m_hovered = boost::make_shared<HoveredCase>();
    boost::shared_ptr<ImageMatrixView> m_view;
    SignalConnectionCollection m_connections;
};

/// What \p action says when it throws.
std::string refusalOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const ExceptionBase& error) {
        return error.what();
    }
    return "nothing was refused";
}

/// The study of imageGrid.h: rows are y (10, 20), columns x (1, 2, 3): each cell holds an odd case and the next.
class ImageMatrixViewTest : public testing::Test
{
protected:
    ImageStudy m_study;
    ShownMatrix m_matrix{boost::make_shared<FakeLoader>()};
};

} // namespace

TEST_F(ImageMatrixViewTest, SettingsByTextChangeTheGridInOneUndoStepEach)
{
    const std::string start = "y: 10 20 | x: 1 2 3 | /1-front /2-front /2-side";
    using Settings = std::vector<std::pair<std::string, std::string>>;

    const struct
    {
        Settings before;
        const char* name;
        const char* text;
        std::string shown;
        const char* title;
    } table[] = {
        {{}, "row", "page", "page: 0 1 | x: 1 2 3 | /1-front /3-front", "page × x"},
        {{},
         "row",
         "(all)",
         ": All | x: 1 2 3 | /1-front /2-front /2-side /3-front /4-front /4-side",
         "x"},
        {{}, "column", "page", "y: 10 20 | page: 0 1 | /1-front /5-front /9-front", "y × page"},
        {{{"row", "page"}},
         "column",
         "(all)",
         "page: 0 1 | : All | /1-front /3-front /5-front /7-front /9-front /11-front",
         "page"},
        {{{"row", "(all)"}, {"pages-by", "variable"}},
         "column",
         "(all)",
         ": All | : All | /1-front /3-front /5-front /7-front /9-front /11-front",
         "all cases, page = 0"},
        {{},
         "rows-by",
         "tag",
         "Tags: front side | x: 1 2 3 | /1-front /2-front /3-front /4-front",
         "tags × x"},
        {{{"row", "page"}},
         "columns-by",
         "tag",
         "page: 0 1 | Tags: front side | /1-front /3-front /5-front /7-front /9-front /11-front",
         "page × tags"},
        {{}, "pages-by", "variable", "y: 10 20 | x: 1 2 3 | /1-front", "y × x, page = 0"},
        {{}, "pages-by", "tag", "y: 10 20 | x: 1 2 3 | /1-front /2-front", "y × x, front"},
        {{}, "page", "x", start, "y × x"},
        {{{"pages-by", "variable"}, {"page-value", "1"}}, "page", "x", start, "y × x, x = 1"},
        {{{"pages-by", "variable"}},
         "page-value",
         "1",
         "y: 10 20 | x: 1 2 3 | /2-front /2-side",
         "y × x, page = 1"},
        {{{"pages-by", "tag"}},
         "page-value",
         "side",
         "y: 10 20 | x: 1 2 3 | /2-side",
         "y × x, side"},
        {{{"rows-by", "tag"}}, "tag-groups", "", "Tags: | x: 1 2 3 |", "tags × x"},
        {{{"rows-by", "tag"}, {"tag-groups", ""}},
         "tags",
         "side",
         "Tags: side | x: 1 2 3 | /2-side /4-side",
         "tags × x"},
        {{}, "labels", "on", start, "y × x"},
        {{}, "label-variables", "y,x", start, "y × x"},
        {{}, "zoom", "0", start, "y × x"},
    };

    QUndoStack& history = UndoStack::history();
    for (const auto& line : table) {
        SCOPED_TRACE(std::string(line.name) + "=" + line.text);
        for (const auto& [name, text] : line.before) {
            m_matrix.set(name, text);
        }
        const std::string shownBefore = m_matrix.shown();
        const std::string titleBefore = m_matrix.view().title();
        const std::string textBefore = m_matrix.setting(line.name).text();
        const int steps = history.index();

        m_matrix.set(line.name, line.text);
        EXPECT_EQ(m_matrix.setting(line.name).text(), line.text);
        EXPECT_EQ(m_matrix.shown(), line.shown);
        EXPECT_EQ(m_matrix.view().title(), line.title);
        EXPECT_EQ(m_matrix.titles.empty() ? titleBefore : m_matrix.titles.back(), line.title);
        EXPECT_EQ(history.index(), steps + 1);

        history.undo();
        EXPECT_EQ(m_matrix.setting(line.name).text(), textBefore);
        EXPECT_EQ(m_matrix.shown(), shownBefore);
        EXPECT_EQ(m_matrix.view().title(), titleBefore);
        history.redo();
        EXPECT_EQ(m_matrix.shown(), line.shown);
        while (history.canUndo()) {
            history.undo();
        }
        EXPECT_EQ(m_matrix.shown(), start);
        m_matrix.titles.clear();
        history.clear();
    }
}

TEST_F(ImageMatrixViewTest, ShowsTheImagesOfTheStudyFromTheStart)
{
    EXPECT_EQ(m_matrix.setting("tag-groups").text(), "Images");
    EXPECT_EQ(m_matrix.setting("tags").text(), "");
    EXPECT_THAT(
        m_matrix.view().properties().allTagsToShow()->value(), ElementsAre("front", "side"));
    EXPECT_FALSE(UndoStack::history().canUndo());
}

TEST_F(ImageMatrixViewTest, LabelsAndZoomChangeTheHeightOfRows)
{
    const int plain = m_matrix.grid().rowHeight(0);
    m_matrix.set("label-variables", "x,y");
    EXPECT_EQ(m_matrix.textUnder(0, 0), "");

    m_matrix.set("labels", "on");
    EXPECT_EQ(m_matrix.textUnder(0, 0), "x=1  y=10");
    EXPECT_EQ(m_matrix.textUnder(1, 2), "x=3  y=20");
    EXPECT_GT(m_matrix.grid().rowHeight(0), plain);
    m_matrix.set("labels", "off");
    EXPECT_EQ(m_matrix.textUnder(0, 0), "");
    EXPECT_EQ(m_matrix.grid().rowHeight(0), plain);

    m_matrix.set("zoom", "30");
    m_matrix.set("zoom", "60");
    EXPECT_EQ(m_matrix.grid().rowHeight(1) - plain, 500 - 237);
    EXPECT_EQ(m_matrix.grid().columnWidth(0), m_matrix.grid().rowHeight(0));
    UndoStack::history().undo();
    EXPECT_EQ(m_matrix.setting("zoom").text(), "25");
    EXPECT_EQ(m_matrix.grid().rowHeight(1), plain);
}

TEST_F(ImageMatrixViewTest, StepsThroughPagesAreOneUndoStep)
{
    m_matrix.set("page", "x");
    m_matrix.set("pages-by", "variable");
    auto& steps = dynamic_cast<StepsSettingInterface&>(m_matrix.setting("page-value"));
    EXPECT_THAT(steps.choices(), ElementsAre("1", "2", "3"));
    ASSERT_EQ(steps.place(), std::optional<std::size_t>(0));

    m_matrix.set("page-value", "2");
    EXPECT_EQ(steps.place(), std::optional<std::size_t>(1));
    EXPECT_THAT(m_matrix.view().imageTable().model().images({0, 0}), IsEmpty());
    EXPECT_EQ(m_matrix.view().imageTable().model().caseIDs({0, 1}), (Cases{5, 6}));
    steps.setPlace(2);
    EXPECT_EQ(m_matrix.titles.back(), "y × x, x = 3");
    EXPECT_EQ(m_matrix.view().imageTable().model().caseIDs({0, 2}), (Cases{9, 10}));
    steps.setPlace(1);
    EXPECT_EQ(m_matrix.titles.back(), "y × x, x = 2");

    UndoStack::history().undo();
    EXPECT_EQ(m_matrix.view().title(), "y × x, x = 1");
    UndoStack::history().undo();
    EXPECT_EQ(m_matrix.view().title(), "y × x");
    UndoStack::history().undo();
    EXPECT_EQ(m_matrix.setting("page").text(), "page");
    EXPECT_FALSE(UndoStack::history().canUndo());
}

TEST_F(ImageMatrixViewTest, WrongTextsAreRefusedWithASentenceAndChangeNothing)
{
    const struct
    {
        const char* pagesBy;
        const char* name;
        const char* text;
        const char* sentence;
    } table[] = {
        {"none", "row", "z", R"(The study has no variable "z".)"},
        {"none",
         "rows-by",
         "none",
         R"("none" is not a value of rows-by; its values are variable, tag.)"},
        {"none",
         "pages-by",
         "x",
         R"("x" is not a value of pages-by; its values are none, variable, tag.)"},
        {"none",
         "page-value",
         "1",
         R"("1" cannot be set for page-value: there are no pages, for neither a tag nor a variable makes them.)"},
        {"variable", "page-value", "7", R"("7" is not a value of page.)"},
        {"variable", "page-value", "side", R"("side" is not a value of page.)"},
        {"tag", "page-value", "top", R"("top" is not among the tags that are shown.)"},
        {"none", "labels", "yes", R"("yes" is not a value of labels; its values are on, off.)"},
        {"none", "label-variables", "x,z", R"(The study has no variable "z".)"},
        {"none", "tag-groups", "Pictures", R"(The study has no tag group "Pictures".)"},
        {"none", "tags", "side,top", R"(The study has no tag "top".)"},
        {"none",
         "zoom",
         "101",
         "101 is not a value of zoom, which takes whole numbers from 0 to 100."},
        {"none",
         "zoom",
         "-1",
         R"("-1" is not a value of zoom, which takes whole numbers from 0 to 100.)"},
    };

    for (const auto& [pagesBy, name, text, sentence] : table) {
        SCOPED_TRACE(std::string(name) + "=" + text);
        m_matrix.set("pages-by", pagesBy);
        const std::string before = m_matrix.shown() + m_matrix.view().title();
        const int steps = UndoStack::history().index();

        EXPECT_EQ(refusalOf([&, n = name, t = text] { m_matrix.set(n, t); }), sentence);

        EXPECT_EQ(m_matrix.shown() + m_matrix.view().title(), before);
        EXPECT_EQ(UndoStack::history().index(), steps);
    }
}

TEST_F(ImageMatrixViewTest, SettingsWithoutEffectAreDisabled)
{
    EXPECT_FALSE(m_matrix.setting("page").isEnabled());
    EXPECT_FALSE(m_matrix.setting("page-value").isEnabled());
    EXPECT_FALSE(m_matrix.setting("label-variables").isEnabled());
    EXPECT_TRUE(m_matrix.setting("row").isEnabled());

    m_matrix.set("pages-by", "tag");
    m_matrix.set("labels", "on");
    m_matrix.set("rows-by", "tag");

    EXPECT_FALSE(m_matrix.setting("page").isEnabled());
    EXPECT_TRUE(m_matrix.setting("page-value").isEnabled());
    EXPECT_TRUE(m_matrix.setting("label-variables").isEnabled());
    EXPECT_FALSE(m_matrix.setting("row").isEnabled());
}

TEST_F(ImageMatrixViewTest, MenuSelectsOneCaseOfACellWithSeveral)
{
    m_matrix.master().setSelection({2, 7});

    const auto menu = m_matrix.menuAt(m_matrix.placeOf(0, 0));
    EXPECT_EQ(m_matrix.menuPlaces.size(), 1U);
    EXPECT_EQ(m_matrix.master().getSelections(), (Cases{2, 7})) << "the cell was selected before";
    ShownMatrix::actionOf(*menu, QStringLiteral("Select Only This Case")).trigger();
    EXPECT_EQ(m_matrix.master().getSelections(), Cases{1});
    EXPECT_EQ(m_matrix.selectedCells(), (std::set<Cell>{{0, 0}}));

    m_matrix.menuAt(m_matrix.placeOf(1, 0));
    EXPECT_EQ(m_matrix.master().getSelections(), (Cases{3, 4}));
}

TEST_F(ImageMatrixViewTest, MenuHasNothingWhereNoImageIs)
{
    m_matrix.set("pages-by", "variable");
    m_matrix.set("page-value", "1");
    EXPECT_FALSE(m_matrix.menuAt(m_matrix.placeOf(0, 0))->isEmpty());

    EXPECT_TRUE(m_matrix.menuAt(m_matrix.emptyPlace())->isEmpty());
    EXPECT_TRUE(m_matrix.menuAt(m_matrix.placeOf(1, 2))->isEmpty()) << "case 12 has no image";
    EXPECT_EQ(m_matrix.menuPlaces.size(), 3U);
}

TEST_F(ImageMatrixViewTest, DoubleClickAsksForTheFirstImageOfTheCell)
{
    m_matrix.doubleClick(m_matrix.placeOf(1, 1));
    EXPECT_THAT(m_matrix.activated, ElementsAre("/7-front"));
    m_matrix.set("pages-by", "tag");
    m_matrix.set("page-value", "side");
    m_matrix.doubleClick(m_matrix.placeOf(0, 1));
    EXPECT_THAT(m_matrix.activated, ElementsAre("/7-front", "/6-side"));

    m_matrix.doubleClick(m_matrix.emptyPlace());
    m_matrix.doubleClick(m_matrix.placeOf(1, 2)); // no image on this page
    EXPECT_EQ(m_matrix.activated.size(), 2U);

    const auto menu = m_matrix.menuAt(m_matrix.placeOf(0, 0));
    ShownMatrix::actionOf(*menu, QStringLiteral("Show Image at Full Size")).trigger();
    EXPECT_EQ(m_matrix.activated.back(), "/2-side");
}

TEST_F(ImageMatrixViewTest, ResumedViewShowsWhatItMissed)
{
    const std::string before = m_matrix.shown();
    const int height = m_matrix.grid().rowHeight(0);
    m_matrix.view().suspend();

    m_matrix.set("row", "page");
    m_matrix.set("zoom", "30");
    m_matrix.master().setSelection({6});
    m_matrix.pipeline().addFilter(boost::make_shared<RangeFilter>(
        Project::project().variable("x"), ValueRange_s<double>{2.0, 3.0}, false));
    EXPECT_EQ(m_matrix.shown(), before);
    EXPECT_THAT(m_matrix.titles, IsEmpty());
    EXPECT_THAT(m_matrix.selectedCells(), IsEmpty());
    m_matrix.view().resume();

    EXPECT_EQ(m_matrix.shown(), "page: 0 1 | x: 2 3 | /5-front /7-front");
    EXPECT_EQ(m_matrix.titles.back(), "page × x");
    EXPECT_EQ(m_matrix.selectedCells(), (std::set<Cell>{{1, 0}}));
    EXPECT_GT(m_matrix.grid().rowHeight(0), height);
}

TEST_F(ImageMatrixViewTest, CellWithOneCaseUnderTheMouseIsHovered)
{
    QWidget& viewport = *m_matrix.grid().viewport();
    sendMouseMove(viewport, m_matrix.placeOf(0, 0)); // cases 1 and 2
    settle();
    EXPECT_EQ(m_matrix.hovered().caseID(), std::nullopt);

    m_matrix.set("pages-by", "variable");
    m_matrix.set("page", "page");
    sendMouseMove(
        viewport, m_matrix.placeOf(1, 2)); // of cases 11 and 12 the first page has the first
    settle();
    EXPECT_EQ(m_matrix.hovered().caseID(), std::optional(11ULL));

    sendLeave(viewport);
    EXPECT_EQ(m_matrix.hovered().caseID(), std::nullopt);
}

TEST_F(ImageMatrixViewTest, CellsWithTheHoveredCaseAreOutlinedAndPaintedAlone)
{
    QImageTableView& grid = m_matrix.grid();
    const auto rectOf = [&grid](int row, int column) {
        return grid.visualRect(grid.model()->index(row, column));
    };
    const auto isOutlined = [&](int row, int column) {
        const QRect cell = rectOf(row, column);
        const QImage picture = grid.viewport()->grab().toImage();
        return picture.pixelColor(cell.topLeft()) == Qt::black
            && picture.pixelColor(cell.bottomRight()) == Qt::black
            && picture.pixelColor(cell.left(), cell.center().y()) == Qt::black;
    };
    m_matrix.set("zoom", "0");
    settle();
    EXPECT_FALSE(isOutlined(0, 0));
    PaintWatcher watcher(*grid.viewport());

    m_matrix.hovered().setCaseID(2);
    settle();
    EXPECT_EQ(watcher.painted, QRegion(rectOf(0, 0)));
    EXPECT_TRUE(isOutlined(0, 0));
    EXPECT_FALSE(isOutlined(0, 1));

    watcher.painted = {};
    m_matrix.hovered().setCaseID(11);
    settle();
    EXPECT_EQ(watcher.painted, QRegion(rectOf(0, 0)) + rectOf(1, 2));
    EXPECT_FALSE(isOutlined(0, 0));
    EXPECT_TRUE(isOutlined(1, 2));

    m_matrix.set("row", "page");
    settle();
    EXPECT_TRUE(isOutlined(0, 2)); // the grid is another
    EXPECT_FALSE(isOutlined(1, 2));

    m_matrix.hovered().setCaseID(std::nullopt);
    settle();
    EXPECT_FALSE(isOutlined(0, 2));
}

TEST_F(ImageMatrixViewTest, LeavesOutWhatIsFilteredAndNothingElse)
{
    int changes = 0;
    const boost::signals2::scoped_connection connection =
        m_matrix.view().signalLeftOutChanged.connect([&changes] { ++changes; });
    m_matrix.set("pages-by", "variable");
    EXPECT_TRUE(m_matrix.view().leftOut().empty());

    m_matrix.pipeline().addFilter(boost::make_shared<RangeFilter>(
        Project::project().variable("x"), ValueRange_s<double>{2, 3}));

    EXPECT_EQ(changes, 1);
    ASSERT_EQ(m_matrix.view().leftOut().size(), 1U);
    EXPECT_EQ(m_matrix.view().leftOut()[0].count, 4U);
    EXPECT_EQ(m_matrix.view().leftOut()[0].reason, "filtered");
    EXPECT_EQ(m_matrix.view().leftOutCaseIDs(), (Cases{1, 2, 3, 4}));
}

TEST(ImageMatrixViewLoadingTest, MayGoWhilePicturesAreBeingDecoded)
{
    const ImageStudy study;
    QSemaphore gate;
    QSemaphore begun;
    auto cache = std::make_unique<AsyncImageCache>(
        AsyncImageCache::defaultBudgetBytes, 2, [&](const std::string& path, const QSize& size) {
            begun.release();
            gate.acquire();
            return ImageFileReading{pictureOf(path, size), {}};
        });
    {
        ShownMatrix matrix(cache->imageLoader());
        ASSERT_TRUE(matrix.view().isLoading());
        begun.acquire();
        EXPECT_GT(cache->pendingCount(), 0U);

        matrix.close();
        EXPECT_EQ(cache->pendingCount(), 0U);
    }
    gate.release(100);
    cache.reset();
    QCoreApplication::processEvents();
}

namespace {

/// A PNG file of 1 x 1 pixels whose header, with a fitting checksum, claims 100,000 x 100,000.
QByteArray hugePng()
{
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "png"));
    bytes.replace(16, 8, QByteArray::fromHex("000186a0000186a0"));
    quint32 sum = 0xffffffff;
    for (const char byte : bytes.mid(12, 17)) {
        sum ^= static_cast<uchar>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ (sum % 2 != 0 ? 0xedb88320 : 0);
        }
    }
    sum ^= 0xffffffff;
    for (int i = 0; i < 4; ++i) {
        bytes[29 + i] = static_cast<char>(sum >> (24 - 8 * i));
    }
    return bytes;
}

/// A study on disk, of one case for each file, with the variable Name.
class ImageMatrixFilesTest : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("study"))); }

    void TearDown() override
    {
        m_matrix.reset();
        Project nothing;
        Project::project().replaceStudy(nothing);
        UndoStack::history().clear();
        QApplication::clipboard()->clear();
    }

    [[nodiscard]] QString path(const QString& name) const
    {
        return m_folder.filePath(QStringLiteral("study/") + name);
    }

    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    void draw(const QString& name, const QSize& size, const QColor& color) const
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(color);
        ASSERT_TRUE(image.save(path(name)));
    }

    void open(const QByteArray& rows)
    {
        write(QStringLiteral("data.csv"), "Name,FILE\n" + rows);
        ReadProgress progress;
        const ReadStudy study = readStudy(path(QString()).toStdString(), progress);
        Project::project().replaceStudy(*study.project);
        m_matrix = std::make_unique<ShownMatrix>(m_cache.imageLoader());
        m_matrix->set("row", "Name");
        m_matrix->set("column", "(all)");
    }

    QTemporaryDir m_folder;
    AsyncImageCache m_cache;
    std::unique_ptr<ShownMatrix> m_matrix;
};

} // namespace

TEST_F(ImageMatrixFilesTest, SaysOfEachFileWhyItIsNotShown)
{
    const auto link = [this](const QString& target, const char* name) {
        ASSERT_TRUE(QFile::link(target, path(QString::fromLatin1(name))));
    };
    ASSERT_TRUE(QDir().mkdir(path(QStringLiteral("folder.png"))));
    const QSize small(40, 30);
    draw(QStringLiteral("good.png"), small, Qt::red);
    draw(QStringLiteral("good.jpg"), small, Qt::red);
    draw(QStringLiteral("good.bmp"), small, Qt::red);
    draw(QStringLiteral("one.png"), {1, 1}, Qt::red);
    draw(QStringLiteral("large.png"), {4000, 3000}, Qt::red);
    draw(QStringLiteral("../outside.png"), small, Qt::red);
    write(QStringLiteral("empty.png"), "");
    write(QStringLiteral("text.png"), "Name,FILE\n");
    write(
        QStringLiteral("drawing.png"),
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"/>)");
    write(QStringLiteral("huge.png"), hugePng());
    ASSERT_EQ(mkfifo(path(QStringLiteral("pipe.png")).toLocal8Bit().constData(), 0600), 0);
    link(path(QStringLiteral("nowhere.png")), "dangling.png");
    link(path(QStringLiteral("loop.png")), "loop.png");
    link(m_folder.filePath(QStringLiteral("outside.png")), "leaving.png");
    link(path(QStringLiteral("good.png")), "link.png");

    const struct
    {
        const char* file;
        State state;
        const char* reason;
    } table[] = {
        {"good.png", State::Shown, ""},
        {"good.jpg", State::Shown, ""},
        {"good.bmp", State::Shown, ""},
        {"one.png", State::Shown, ""},
        {"large.png", State::Shown, ""},
        {"link.png", State::Shown, ""},
        {"missing.png", State::Unreadable, "The file does not exist"},
        {"empty.png", State::Unreadable, "The file is empty"},
        {"text.png",
         State::Unreadable,
         "Not an image, or of a format that this program cannot read"},
        {"drawing.png",
         State::Unreadable,
         "It is an SVG drawing, and only pictures made of pixels are shown"},
        {"huge.png",
         State::Unreadable,
         "The picture has 100,000 x 100,000 pixels, more than 268 million"},
        {"folder.png", State::Unreadable, "It is a folder"},
        {"pipe.png", State::Unreadable, "It is not a regular file"},
        // Refused by the reader.
        {"dangling.png", State::NoImages, ""},
        {"loop.png", State::NoImages, ""},
        {"leaving.png", State::NoImages, ""},
        {"../outside.png", State::NoImages, ""},
    };

    QByteArray rows;
    int number = 0;
    for (const auto& line : table) {
        // Names in the order of the table.
        rows += "case" + QByteArray::number(100 + number++) + "," + line.file + "\n";
    }
    open(rows);
    const QAbstractItemModel& model = *m_matrix->grid().model();
    ASSERT_EQ(model.rowCount(), number);

    for (const char* zoom : {"0", "30"}) {
        m_matrix->set("zoom", zoom);
        for (int row = 0; row < number; ++row) {
            const auto& [file, state, reason] = table[row];
            SCOPED_TRACE(std::string(file) + " at zoom " + zoom);
            const QModelIndex index = model.index(row, 0);
            m_matrix->grid().scrollTo(index);
            m_matrix->settle();
            EXPECT_EQ(m_matrix->view().imageTable().gridModel().state(index), state);
            const std::string toolTip = index.data(Qt::ToolTipRole).toString().toStdString();
            if (state == State::Unreadable) {
                EXPECT_THAT(toolTip, testing::EndsWith(std::string("\nNot shown: ") + reason));
            } else {
                EXPECT_THAT(toolTip, testing::Not(testing::HasSubstr("Not shown")));
            }
            if (state == State::Shown) {
                const auto image = index.data(Qt::DecorationRole).value<QImage>();
                ASSERT_FALSE(image.isNull());
                EXPECT_GT(image.pixelColor(image.rect().center()).red(), 250);
            }
            EXPECT_FALSE(m_matrix->grid().grab().isNull());
        }
    }
}

TEST_F(ImageMatrixFilesTest, MenuCopiesThePictureAtFullSizeAndSaysWhyItCannot)
{
    draw(QStringLiteral("a.png"), {400, 300}, Qt::blue);
    draw(QStringLiteral("b.png"), {40, 30}, Qt::green);
    open("a,a.png\nb,b.png\n");
    m_matrix->set("zoom", "10");
    m_matrix->settle();

    const auto menu = m_matrix->menuAt(m_matrix->placeOf(0, 0));
    ShownMatrix::actionOf(*menu, QStringLiteral("Copy Image")).trigger();
    const QImage copied = QApplication::clipboard()->image();
    EXPECT_EQ(copied.size(), QSize(400, 300));
    EXPECT_EQ(copied.pixelColor(200, 150), QColor(Qt::blue));

    const auto second = m_matrix->menuAt(m_matrix->placeOf(1, 0));
    ASSERT_TRUE(QFile::remove(path(QStringLiteral("b.png"))));
    std::string problem;
    const boost::signals2::scoped_connection connection = m_matrix->view().signalProblem.connect(
        [&problem](const std::string& sentence) { problem = sentence; });
    ShownMatrix::actionOf(*second, QStringLiteral("Copy Image")).trigger();
    EXPECT_EQ(
        problem,
        "The image \"" + path(QStringLiteral("b.png")).toStdString()
            + "\" cannot be copied: The file does not exist.");
    EXPECT_EQ(QApplication::clipboard()->image().size(), QSize(400, 300));
}

} // namespace analyzer
